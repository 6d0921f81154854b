// What setters leave behind and getters answer; what is refused; what a dewarper without a platform does.
#include "tests/support/EngineDewarper.h"
#include "tests/support/TestDewarper.h"
#include "tests/unit/shaders/GoldenTexts.h"

#include <GLES3/gl31.h>

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace
{

class Answers : public CEngineTest
{
protected:
    CEngineDewarper oDewarper{GetParam(), 96, 64};
    CTestFrame oFrame{AsymmetricPicture(64, 64), IMAGE_FORMAT_YUV420P};
};

/// Of the GL engine alone.
class AnswersOfGL : public testing::Test
{
protected:
    CTestDewarper oDewarper{96, 64};
    CTestFrame oFrame{AsymmetricPicture(64, 64), IMAGE_FORMAT_YUV420P};
};

} // namespace

TEST_P(Answers, EverySetterIsAnsweredByItsGetter)
{
    oDewarper->SetMountTilt(12.5f);
    oDewarper->SetStrictTiltLimits(false);
    oDewarper->SetRotation(270);
    oDewarper->SetFlip(false, true);
    oDewarper->SetGains(1.5f, 0.25f);
    oDewarper->SetYUVLevels(10, 240, 12);
    oDewarper->SetEyeDistance(0.5f);
    EXPECT_EQ(oDewarper->GetMountTilt(), 12.5f);
    EXPECT_FALSE(oDewarper->GetStrictTiltLimits());
    EXPECT_EQ(oDewarper->GetRotation(), 270);
    bool bHorizontal = true;
    bool bVertical = false;
    oDewarper->GetFlip(bHorizontal, bVertical);
    EXPECT_FALSE(bHorizontal);
    EXPECT_TRUE(bVertical);
    float fLuma = 0.0f;
    float fChroma = 0.0f;
    oDewarper->GetGains(fLuma, fChroma);
    EXPECT_EQ(fLuma, 1.5f);
    EXPECT_EQ(fChroma, 0.25f);
    int anLevels[3] = {};
    oDewarper->GetYUVLevels(anLevels[0], anLevels[1], anLevels[2]);
    EXPECT_EQ(anLevels[0], 10);
    EXPECT_EQ(anLevels[1], 240);
    EXPECT_EQ(anLevels[2], 12);
    EXPECT_EQ(oDewarper->GetEyeDistance(), 0.5f);
    int nMajor = -1;
    int nMinor = -1;
    EXPECT_TRUE(oDewarper->GetDewarperVersion(nMajor, nMinor));
    EXPECT_EQ(nMajor, 0);
    EXPECT_EQ(nMinor, 1);
}

TEST_P(Answers, NumbersThatAreNoneAreRefusedWithALine)
{
    const float fNone = std::numeric_limits<float>::quiet_NaN();
    const float fEndless = std::numeric_limits<float>::infinity();
    oDewarper->SetMountTilt(5.0f);
    oDewarper->SetGains(1.0f, 2.0f);
    oDewarper->SetEyeDistance(0.5f);
    oDewarper->SetRotation(90);
    CLogCapture oLog;
    oDewarper->SetMountTilt(fEndless);
    oDewarper->SetGains(fNone, 1.0f);
    oDewarper->SetGains(1.0f, -fEndless);
    oDewarper->SetEyeDistance(fNone);
    oDewarper->SetRotation(45);
    EXPECT_EQ(oLog.Lines().size(), 5u) << oLog.Text();
    EXPECT_EQ(oDewarper->GetMountTilt(), 5.0f);
    float fLuma = 0.0f;
    float fChroma = 0.0f;
    oDewarper->GetGains(fLuma, fChroma);
    EXPECT_EQ(fLuma, 1.0f);
    EXPECT_EQ(fChroma, 2.0f);
    EXPECT_EQ(oDewarper->GetEyeDistance(), 0.5f);
    EXPECT_EQ(oDewarper->GetRotation(), 90);
}

TEST_P(Answers, ATinyNegativePanIsNoWholeTurn)
{
    oDewarper->SetViewType(VIEW_VCAM);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    oDewarper->AbsolutePTZ(-1e-8f, 40.0f, 90.0f);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    float fPan = -1.0f;
    float fTilt = 0.0f;
    float fZoom = 0.0f;
    oDewarper->GetPTZ(fPan, fTilt, fZoom);
    EXPECT_GE(fPan, 0.0f);
    EXPECT_LT(fPan, 360.0f);
}

TEST_P(Answers, SpeedsWithoutLimitLoseNoPosition)
{
    oDewarper->SetViewType(VIEW_VCAM);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    oDewarper->AbsolutePTZ(20.0f, 40.0f, 90.0f);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    const float fNone = std::numeric_limits<float>::quiet_NaN();
    oDewarper->AnaloguePTZ(fNone, fNone, fNone);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(oDewarper.Pan(), 20.0f);
    EXPECT_EQ(oDewarper.Tilt(), 40.0f);
    EXPECT_EQ(oDewarper.Zoom(), 90.0f);
    EXPECT_NO_GL_ERROR();
}

TEST_P(Answers, SideInformationOfNoSizeIsRefused)
{
    SQPInfo sInfo;
    sInfo.pQP = new unsigned char[16]();
    sInfo.nWidth = 0;
    sInfo.nHeight = 4;
    sInfo.nStride = 4;
    CLogCapture oLog;
    EXPECT_FALSE(oDewarper->SetTexture(oFrame.Image(), false, &sInfo, 0));
    EXPECT_TRUE(oLog.Contains("macroblock information")) << oLog.Text();
}

TEST_P(Answers, AMaskOfTwoPointsCoversNothing)
{
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    const STestImage sBefore = oDewarper.Picture();
    SGPolygon sMask;
    sMask.vPoints = {{0, 0}, {63, 63}};
    sMask.nColor = 0xFF0000FF;
    oDewarper->SetMaskPolygons({sMask});
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(oDewarper.Picture().vPixels, sBefore.vPixels);
    EXPECT_NO_GL_ERROR();
}

INSTANTIATE_ENGINES(Answers);

TEST_F(AnswersOfGL, SwitchesOfTheLogAreAnswered)
{
    oDewarper.SetLogGLErrors(true);
    oDewarper.SetLogShaderCode(true);
    EXPECT_TRUE(oDewarper.GetLogGLErrors());
    EXPECT_TRUE(oDewarper.GetLogShaderCode());
}

TEST_F(AnswersOfGL, CopiesOfAnUnknownSourceDrawNothing)
{
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    CGLRecorder::Get().Start();
    EXPECT_EQ(oDewarper.HandleTextureToScreen(96, 64, 7), 0);
    EXPECT_EQ(oDewarper.HandleTextureToTexture(96, 64, 7), 0);
    EXPECT_EQ(CGLRecorder::Get().Count("glDrawArrays"), 0);
    EXPECT_EQ(oDewarper.HandleTextureToScreen(96, 64, 2), 0) << "the copy of the view";
    EXPECT_EQ(CGLRecorder::Get().Count("glDrawArrays"), 1);
    CGLRecorder::Get().TakeErrors();
}

TEST_F(AnswersOfGL, TheBaseWritesTheUnturnedVertexText)
{
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    const SGoldenCase sPlain = GoldenCases("vertex").front();
    ASSERT_EQ(sPlain.strKey, "vertex 0 0 0 0");
    EXPECT_EQ(oDewarper.CCustomGPUDewarper::GetVertexShaderCode(), sPlain.strText);
    EXPECT_NE(oDewarper.GetVertexShaderCode(), sPlain.strText) << "rows are drawn top row first";
}

TEST(DewarperWithoutAPlatform, HasNoTargetAndDrawsNothing)
{
    CTestFrame oFrame(AsymmetricPicture(64, 64), IMAGE_FORMAT_RGBA32);
    CGLRecorder::Get().Start();
    {
        CCustomGPUDewarper oBase;
        int nWidth = 5;
        int nHeight = 5;
        EXPECT_FALSE(oBase.GetTargetWidthHeight(nWidth, nHeight));
        EXPECT_EQ(nWidth, 0);
        EXPECT_EQ(nHeight, 0);
        EXPECT_TRUE(oBase.SetTexture(oFrame.Image(), false, nullptr, 0));
        EXPECT_FALSE(oBase.DrawGLScene(true));
        EXPECT_EQ(oBase.GetImage(&nWidth, &nWidth, &nWidth, &nWidth), nullptr);
        EXPECT_EQ(oBase.OSDependentCheckLoadShaders(), 0);
        EXPECT_FALSE(oBase.OSDependentUploadTexture());
    }
    EXPECT_EQ(CGLRecorder::Get().CountPrefix("gl"), 0) << CGLRecorder::Get().Dump();
}
