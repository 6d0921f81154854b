// How view objects bind their buffers and draw.
#include "dewarp/gl/GPUObjFisheye.h"
#include "dewarp/gl/GPUObjVCAM.h"
#include "tests/support/TestDewarper.h"

#include <GLES3/gl31.h>
#include <gtest/gtest.h>

class Drawing : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(oDewarper.Started()); }

    /// Draws one frame of a view and keeps its calls.
    void Show(EViewType eView, EMountType eMount)
    {
        oDewarper.SetViewType(eView);
        oDewarper.SetMountType(eMount);
        oDewarper.SetLensType(LENS_DSL419);
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        CGLRecorder::Get().Start();
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    }

    CTestDewarper oDewarper{641, 481};
    CTestFrame oFrame{AsymmetricPicture(64, 64), IMAGE_FORMAT_GRAY8};
};

TEST_F(Drawing, TheCircularFisheyeIsOneFan)
{
    Show(VIEW_FISHEYE_CIRCULAR, MOUNT_CEILING);
    const std::vector<SGLCall> vDraws = CGLRecorder::Get().Named("glDrawArrays");
    ASSERT_EQ(vDraws.size(), 1u);
    EXPECT_EQ(vDraws[0].Int(0), GL_TRIANGLE_FAN);
    EXPECT_EQ(vDraws[0].Int(2), 182);
}

TEST_F(Drawing, TheQuadViewDrawsFourQuartersClockwise)
{
    Show(VIEW_VCAM_QUAD, MOUNT_CEILING);
    std::vector<SGLCall> vViewports;
    std::vector<std::string> vMatrices;
    for (const SGLCall& sCall : CGLRecorder::Get().Calls()) {
        const std::string strName = sCall.pName;
        if (strName == "glViewport" && sCall.Int(2) == 320)
            vViewports.push_back(sCall);
        if (strName == "glUniformMatrix4fv")
            vMatrices.push_back(sCall.strText);
    }
    ASSERT_EQ(vViewports.size(), 4u);
    for (const SGLCall& sCall : vViewports)
        EXPECT_EQ(sCall.Int(3), 240);
    EXPECT_EQ(vViewports[0].Int(0), 0);
    EXPECT_EQ(vViewports[1].Int(0), 320);
    EXPECT_EQ(vViewports[2].Int(0), 320);
    EXPECT_EQ(vViewports[3].Int(0), 0);
    EXPECT_EQ(vViewports[0].Int(1), vViewports[1].Int(1));
    EXPECT_EQ(vViewports[2].Int(1), vViewports[3].Int(1));
    EXPECT_NE(vViewports[0].Int(1), vViewports[2].Int(1));
    ASSERT_EQ(vMatrices.size(), 4u);
    EXPECT_NE(vMatrices[0], vMatrices[1]);
    EXPECT_EQ(CGLRecorder::Get().Count("glDrawArrays"), 4);
    // Whatever the quarters left behind, the next frame starts with the whole target.
    EXPECT_EQ(CGLRecorder::Get().Named("glViewport").back().Int(2), 641);
}

TEST_F(Drawing, TheQuadViewRestoresAnEvenViewport)
{
    Show(VIEW_VCAM_QUAD, MOUNT_CEILING);
    CGLRecorder::Get().Start();
    oDewarper.pVCAM->DrawArrays(oDewarper.pParams, oDewarper.pMatrices, &oDewarper.sMainShader);
    const std::vector<SGLCall> vViewports = CGLRecorder::Get().Named("glViewport");
    ASSERT_EQ(vViewports.size(), 5u);
    EXPECT_EQ(vViewports[4].Int(0), 0);
    EXPECT_EQ(vViewports[4].Int(1), 0);
    EXPECT_EQ(vViewports[4].Int(2), 640);
    EXPECT_EQ(vViewports[4].Int(3), 480);
}

TEST_F(Drawing, OnABottomUpTargetTheUpperQuartersStandAboveInGLsSense)
{
    Show(VIEW_VCAM_QUAD, MOUNT_CEILING);
    CCGPUObjVCAM oPlain;
    SDewarpMatrices sMatrices;
    sMatrices.nViewportWidth = 641;
    sMatrices.nViewportHeight = 481;
    CGLRecorder::Get().Start();
    oPlain.DrawArrays(oDewarper.pParams, &sMatrices, &oDewarper.sMainShader);
    const std::vector<SGLCall> v = CGLRecorder::Get().Named("glViewport");
    ASSERT_EQ(v.size(), 5u);
    const int anWanted[4][2] = {{0, 240}, {320, 240}, {320, 0}, {0, 0}};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(v[i].Int(0), anWanted[i][0]) << i;
        EXPECT_EQ(v[i].Int(1), anWanted[i][1]) << i;
    }
}

TEST_F(Drawing, AWallCameraHasNoQuadView)
{
    Show(VIEW_VCAM_QUAD, MOUNT_WALL);
    EXPECT_EQ(CGLRecorder::Get().Count("glDrawArrays"), 1);
}

TEST_F(Drawing, ThePanoramaInTwoHalvesDrawsItsStripTwice)
{
    Show(VIEW_PANORAMA_QUARTER, MOUNT_CEILING);
    EXPECT_EQ(CGLRecorder::Get().Count("glDrawArrays"), 2);
    const std::vector<SGLCall> vMatrices = CGLRecorder::Get().Named("glUniformMatrix4fv");
    ASSERT_EQ(vMatrices.size(), 2u);
    EXPECT_NE(vMatrices[0].strText, vMatrices[1].strText);
    Show(VIEW_PANORAMA_FULL, MOUNT_CEILING);
    EXPECT_EQ(CGLRecorder::Get().Count("glDrawArrays"), 1);
    Show(VIEW_PANORAMA_HALF, MOUNT_CEILING);
    EXPECT_EQ(CGLRecorder::Get().Count("glDrawArrays"), 1);
}

TEST_F(Drawing, AProgramWithoutTextureCoordinatesGetsThePositionsOnly)
{
    Show(VIEW_FISHEYE, MOUNT_CEILING);
    CCGPUObjFisheye oView;
    oView.Activate(oDewarper.pGeometry, oDewarper.pParams);
    SShaderProperties sShader;
    sShader.nPositionLocation = 0;
    sShader.nTexCoordLocation = -1;
    CGLRecorder::Get().Start();
    oView.LoadVertexAndTextureCoordinates(&sShader);
    EXPECT_EQ(CGLRecorder::Get().Count("glVertexAttribPointer"), 1);
    EXPECT_EQ(CGLRecorder::Get().Count("glEnableVertexAttribArray"), 1);
    EXPECT_EQ(CGLRecorder::Get().Named("glVertexAttribPointer")[0].Int(1), 3);
    sShader.nTexCoordLocation = 1;
    CGLRecorder::Get().Start();
    oView.LoadVertexAndTextureCoordinates(&sShader);
    ASSERT_EQ(CGLRecorder::Get().Count("glVertexAttribPointer"), 2);
    EXPECT_EQ(CGLRecorder::Get().Named("glVertexAttribPointer")[1].Int(1), 2);
}
