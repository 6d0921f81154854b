// A view without an object of its own: it builds its own mesh and is drawn in its parts.
#include "dewarp/gl/GPUObjView.h"
#include "dewarp/views/View.h"
#include "tests/support/TestDewarper.h"

#include <gtest/gtest.h>

namespace
{

/// The frame, twice beside each other.
class CTwinView final : public CView
{
public:
    EViewMesh Mesh() const override { return MESH_OF_VIEW; }
    SMeshKey MeshKey(const SDewarpParams& rParams) const override
    {
        SMeshKey sKey;
        sKey.eMesh = MESH_OF_VIEW;
        sKey.eView = static_cast<EViewType>(77);
        sKey.nImageWidth = rParams.nImageWidth;
        return sKey;
    }
    void BuildMesh(CCustomGPUGeometry& rGeometry, const SMeshKey& /*rKey*/) const override
    {
        rGeometry.m_nVertexCount = 0;
        rGeometry.CheckBufferSize(3);
        for (int i = 0; i < 3; ++i)
            rGeometry.AddVertex(static_cast<float>(i), 0.0f, 0.0f, 0.0f, 1.0f);
    }
    float MeshAspect(const SDewarpParams& /*rParams*/) const override { return 1.25f; }
    SPTZLimits Limits(const SDewarpParams& /*rParams*/) const override { return {}; }
    void LimitPTZ(SDewarpParams& /*rParams*/) const override {}
    void Drag(const SDrag& /*rDrag*/, SDewarpParams& /*rParams*/) const override {}
    void Move(const SDewarpParams& /*rParams*/, float /*fMeshAspect*/, float /*fImageAspect*/,
              int /*nRotation*/, float* /*pModel*/) const override
    {}
    int Parts(const SDewarpParams& /*rParams*/, const SDewarpMatrices& rMatrices, float /*fMeshAspect*/,
              bool /*bTopDown*/, SViewPart* pParts) const override
    {
        pParts[0] = pParts[1] = WholeView(rMatrices);
        pParts[0].nWidth = pParts[1].nWidth = pParts[1].nX = rMatrices.nViewportWidth / 2;
        return 2;
    }
    void DefaultSize(const SDewarpParams& /*rParams*/, int& nWidth, int& nHeight) const override
    {
        nWidth = nHeight = 64;
    }
};

} // namespace

TEST(AnyView, BuildsTheMeshOfTheViewItShowsAndDrawsItsParts)
{
    CTestDewarper oDewarper(64, 48);
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_RGB24);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame)); // a program is in use then
    const CTwinView oView;
    CCustomGPUGeometry oGeometry;
    SDewarpParams sParams;
    sParams.nImageWidth = sParams.nImageHeight = 32;
    SDewarpMatrices sMatrices;
    sMatrices.nViewportWidth = 64;
    sMatrices.nViewportHeight = 48;
    {
        CCGPUObjAnyView oObject;
        oObject.Activate(&oGeometry, &sParams);
        EXPECT_FALSE(oObject.IsBuiltFor(oView.MeshKey(sParams))) << "a mesh of another view";
        oObject.Show(oView);
        oObject.Rebuild(&oGeometry, &sParams);
        EXPECT_TRUE(oObject.IsBuiltFor(oView.MeshKey(sParams)));
        EXPECT_EQ(oObject.m_nVertexCount, 3);
        EXPECT_EQ(oObject.m_fGeometryAspect, 1.25f);
        sParams.nImageWidth = 40;
        EXPECT_FALSE(oObject.IsBuiltFor(oView.MeshKey(sParams)));
        CGLRecorder::Get().Start();
        oObject.LoadVertexAndTextureCoordinates(&oDewarper.sMainShader);
        oObject.DrawArrays(&sParams, &sMatrices, &oDewarper.sMainShader);
        EXPECT_EQ(CGLRecorder::Get().Count("glDrawArrays"), 2);
        EXPECT_EQ(CGLRecorder::Get().Count("glUniformMatrix4fv"), 2);
        const std::vector<SGLCall> vViewports = CGLRecorder::Get().Named("glViewport");
        ASSERT_EQ(vViewports.size(), 3u) << "both parts, and the whole again";
        EXPECT_EQ(vViewports[1].Int(0), 32);
        EXPECT_EQ(vViewports[1].Int(2), 32);
        EXPECT_EQ(vViewports[2].Int(2), 64);
    }
    EXPECT_NO_GL_ERROR();
}
