// Meshes of the view objects in their buffers.
#include "dewarp/gl/GPUObjFisheye.h"
#include "dewarp/gl/GPUObjPanorama.h"
#include "dewarp/gl/GPUObjPanoramaMulti.h"
#include "dewarp/gl/GPUObjPanoramaWall.h"
#include "dewarp/gl/GPUObjVCAM.h"
#include "tests/support/TestDewarper.h"

#include <GLES3/gl31.h>
#include <gtest/gtest.h>

class Activation : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(oDewarper.Started());
        sParams.eMountType = MOUNT_CEILING;
        sParams.eLensType = LENS_DSL419;
        sParams.nImageWidth = sParams.nImageHeight = 640;
        nBuffers = CGLRecorder::Get().Living(GL_KIND_BUFFER);
    }
    static GLint SizeOf(GLuint nBuffer)
    {
        GLint nSize = 0;
        glBindBuffer(GL_ARRAY_BUFFER, nBuffer);
        glGetBufferParameteriv(GL_ARRAY_BUFFER, GL_BUFFER_SIZE, &nSize);
        return nSize;
    }
    void ExpectLoaded(const CCGPUObjBase& oView, int nVertices, float fAspect)
    {
        EXPECT_EQ(oView.m_nVertexCount, nVertices);
        EXPECT_FLOAT_EQ(oView.m_fGeometryAspect, fAspect);
        EXPECT_EQ(SizeOf(oView.m_nVertexBuffer), nVertices * 12);
        EXPECT_EQ(SizeOf(oView.m_nTexCoordBuffer), nVertices * 8);
    }
    /// Activates a second time and expects no work, then resets and expects no buffers.
    void ExpectOnceAndGone(CCGPUObjBase& oView)
    {
        CGLRecorder::Get().Start();
        oView.Activate(&oGeometry, &sParams);
        EXPECT_EQ(CGLRecorder::Get().Count("glGenBuffers") + CGLRecorder::Get().Count("glBufferData"), 0);
        oView.Reset();
        EXPECT_EQ(CGLRecorder::Get().Living(GL_KIND_BUFFER), nBuffers);
        EXPECT_EQ(oView.m_nVertexCount, 0);
        EXPECT_EQ(oView.m_nVertexBuffer, 0u);
        EXPECT_EQ(oView.m_nTexCoordBuffer, 0u);
        EXPECT_EQ(oView.m_fGeometryAspect, 1.0f);
        EXPECT_NO_GL_ERROR();
    }

    CTestDewarper oDewarper{32, 32};
    CCustomGPUGeometry oGeometry;
    SDewarpParams sParams;
    int nBuffers = 0;
};

TEST_F(Activation, ThePanoramaUploadsItsStripOnce)
{
    CCGPUObjPanorama oView;
    oView.Activate(&oGeometry, &sParams);
    ExpectLoaded(oView, 34080, 50.0f / 7.0f);
    ExpectOnceAndGone(oView);
}

TEST_F(Activation, DualAndTripleReportTheirFixedAspects)
{
    CCGPUObjPanoramaDual oDual;
    oDual.Activate(&oGeometry, &sParams);
    ExpectLoaded(oDual, 13500, 1.6f);
    ExpectOnceAndGone(oDual);
    CCGPUObjPanoramaTriple oTriple;
    oTriple.Activate(&oGeometry, &sParams);
    ExpectLoaded(oTriple, 20160, 2.4f);
    ExpectOnceAndGone(oTriple);
}

TEST_F(Activation, DualAndTripleRefillTheirBuffersWhenTheyMove)
{
    CCGPUObjPanoramaDual oDual;
    oDual.Activate(&oGeometry, &sParams);
    const GLuint nVertexBuffer = oDual.m_nVertexBuffer;
    const GLuint nTexCoordBuffer = oDual.m_nTexCoordBuffer;
    SDewarpMatrices sMatrices;
    sParams.fPan = 40.0f;
    CGLRecorder::Get().Start();
    oDual.AdjustPTZ(&oGeometry, &sParams, &sMatrices, 1.0f, 0);
    EXPECT_EQ(CGLRecorder::Get().Count("glGenBuffers"), 0);
    const std::vector<SGLCall> vFills = CGLRecorder::Get().Named("glBufferData");
    ASSERT_EQ(vFills.size(), 2u);
    EXPECT_EQ(vFills[0].Int(1), 13500 * 12);
    EXPECT_EQ(vFills[1].Int(1), 13500 * 8);
    EXPECT_EQ(vFills[0].Int(3), GL_STATIC_DRAW);
    EXPECT_EQ(oDual.m_nVertexBuffer, nVertexBuffer);
    EXPECT_EQ(oDual.m_nTexCoordBuffer, nTexCoordBuffer);
    EXPECT_EQ(oDual.m_fGeometryAspect, 1.6f);
    EXPECT_EQ(sMatrices.fModel[12], 0.0f) << "pan and tilt live in the mesh";
    EXPECT_EQ(sMatrices.fModel[0], 1.0f);
}

TEST_F(Activation, TheWallPanoramaUploadsItsHalfSphereOnce)
{
    CCGPUObjPanoramaWall oView;
    sParams.eMountType = MOUNT_WALL;
    oView.Activate(&oGeometry, &sParams);
    ExpectLoaded(oView, 48600, 2.5f);
    ExpectOnceAndGone(oView);
}

TEST_F(Activation, TheCameraKeepsItsMeshUntilItIsReset)
{
    CCGPUObjVCAM oView;
    oView.Activate(&oGeometry, &sParams);
    const int nVertices = oView.m_nVertexCount;
    EXPECT_GT(nVertices, 12 * 30);
    EXPECT_EQ(nVertices % 12, 0);
    ExpectLoaded(oView, nVertices, 1.0f);
    CGLRecorder::Get().Start();
    sParams.nImageWidth = 400;
    oView.Activate(&oGeometry, &sParams);
    EXPECT_EQ(CGLRecorder::Get().Count("glBufferData"), 0);
    EXPECT_EQ(oView.m_nVertexCount, nVertices);
    ExpectOnceAndGone(oView);
    oView.Activate(&oGeometry, &sParams);
    EXPECT_NE(oView.m_nVertexCount, nVertices) << "a narrower frame has another mesh";
}

TEST_F(Activation, TheFisheyeFollowsTheAspectOfTheFrame)
{
    CCGPUObjFisheye oView;
    oView.Activate(&oGeometry, &sParams);
    ExpectLoaded(oView, 6, 1.0f);
    CGLRecorder::Get().Start();
    sParams.nImageWidth = sParams.nImageHeight = 320;
    oView.Activate(&oGeometry, &sParams);
    EXPECT_EQ(CGLRecorder::Get().Count("glBufferData"), 0) << "another size of one aspect";
    sParams.nImageWidth = 480;
    oView.Activate(&oGeometry, &sParams);
    EXPECT_EQ(CGLRecorder::Get().Count("glBufferData"), 2);
    ExpectLoaded(oView, 6, 1.5f);
    oView.Reset();
    EXPECT_NO_GL_ERROR();
}

TEST_F(Activation, TheCircularFisheyeKeepsItsFanThroughAReset)
{
    CCGPUObjFisheye oView;
    oView.m_nPrimitiveMode = GL_TRIANGLE_FAN;
    oView.Activate(&oGeometry, &sParams);
    ExpectLoaded(oView, 182, 1.0f);
    ExpectOnceAndGone(oView);
    EXPECT_EQ(oView.m_nPrimitiveMode, static_cast<GLenum>(GL_TRIANGLE_FAN));
}
