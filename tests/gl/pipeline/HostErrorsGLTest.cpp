// GL errors that a host leaves behind: told, never counted as ours; and our own of textures just made.
#include "tests/support/TestDewarper.h"

#include <GLES3/gl31.h>
#include <gtest/gtest.h>

static const int FORMATS[] = {IMAGE_FORMAT_RGB24,   IMAGE_FORMAT_BGR24,  IMAGE_FORMAT_NV12,
                              IMAGE_FORMAT_YUV420P, IMAGE_FORMAT_RGBA32, IMAGE_FORMAT_BGRA32,
                              IMAGE_FORMAT_GRAY8,   IMAGE_FORMAT_NV21};

class HostErrors : public testing::TestWithParam<int>
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(oDewarper.Started());
        oDewarper.SetViewType(VIEW_FISHEYE);
        CTestDewarper oClean(48, 40);
        oClean.SetViewType(VIEW_FISHEYE);
        ASSERT_TRUE(oClean.DrawFrame(oFrame));
        sWanted = oClean.Picture();
        ASSERT_TRUE(oClean.StopGL());
        MakeCurrent(oDewarper);
    }
    void TearDown() override
    {
        // Drivers that do not know blue-first uploads say so once.
        CGLRecorder::Get().TakeErrors();
    }
    static void MakeCurrent(CTestDewarper& rDewarper)
    {
        void* pContext = nullptr;
        ASSERT_TRUE(rDewarper.SetCurrentRenderingContext(&pContext));
    }
    /// The line about what the host left; how often it was said.
    int HostLines() const
    {
        int nLines = 0;
        for (const SLogLine& rLine : oLog.Lines())
            nLines += rLine.strText.find("was left behind by the host") != std::string::npos ? 1 : 0;
        return nLines;
    }
    void ExpectPicture() { EXPECT_EQ(CompareImages(oDewarper.Picture(), sWanted).nMax, 0); }

    CLogCapture oLog;
    CTestFrame oFrame{AsymmetricPicture(48, 40), GetParam()};
    CTestDewarper oDewarper{48, 40};
    STestImage sWanted;
};

TEST_P(HostErrors, BeforeAFrameAreToldAndDoNotRefuseIt)
{
    for (const unsigned int nError : {GL_INVALID_ENUM, GL_OUT_OF_MEMORY}) {
        // All is made in this frame; every error of ours would count.
        oDewarper.FreeOpenGLObjects();
        oLog.Clear();
        CGLRecorder::Get().PushPendingError(nError);
        EXPECT_TRUE(oDewarper.DrawFrame(oFrame)) << oLog.Text();
        EXPECT_EQ(HostLines(), 1) << oLog.Text();
        EXPECT_TRUE(oLog.Contains(nError == GL_INVALID_ENUM ? "0x500" : "0x505")) << oLog.Text();
        EXPECT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
        ExpectPicture();
        EXPECT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
    }
}

TEST_P(HostErrors, BetweenAFrameAndItsDrawingAreToldAndDoNotRefuseIt)
{
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    oLog.Clear();
    // Another format makes textures and a program anew.
    CTestFrame oOther(AsymmetricPicture(48, 40),
                      GetParam() == IMAGE_FORMAT_GRAY8 ? IMAGE_FORMAT_NV12 : IMAGE_FORMAT_GRAY8);
    ASSERT_TRUE(oDewarper.DrawFrame(oOther));
    ASSERT_TRUE(oDewarper.SetTexture(oFrame.Image(), false, nullptr, 0));
    CGLRecorder::Get().PushPendingError(GL_OUT_OF_MEMORY);
    CGLRecorder::Get().PushPendingError(GL_INVALID_VALUE);
    EXPECT_TRUE(oDewarper.DrawGLScene(false)) << oLog.Text();
    EXPECT_EQ(HostLines(), 1) << oLog.Text();
    ExpectPicture();
}

TEST_P(HostErrors, InASteadyFrameDoNotRefuseItAndAreNotReportedAsOurs)
{
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    oLog.Clear();
    for (const bool bLog : {false, true}) {
        oDewarper.SetLogGLErrors(bLog);
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        CGLRecorder::Get().PushPendingError(GL_OUT_OF_MEMORY);
        EXPECT_TRUE(oDewarper.DrawFrame(oFrame)) << oLog.Text();
        EXPECT_FALSE(oLog.Contains("End of DrawGLScene and the error is")) << oLog.Text();
        ExpectPicture();
        EXPECT_EQ(HostLines(), bLog ? 2 : 1) << oLog.Text();
    }
}

TEST_P(HostErrors, BeforeAReadBackAreToldAndTheImageIsGiven)
{
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    for (const unsigned int nError : {GL_INVALID_ENUM, GL_OUT_OF_MEMORY}) {
        oLog.Clear();
        CGLRecorder::Get().PushPendingError(nError);
        ExpectPicture();
        EXPECT_EQ(HostLines(), 1) << oLog.Text();
        EXPECT_TRUE(oLog.Contains("GetImage: GL error")) << oLog.Text();
    }
}

TEST_P(HostErrors, OurOwnLackOfMemoryForAnInputTextureRefusesThatFrameOnly)
{
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    CTestFrame oSmall(AsymmetricPicture(16, 16), GetParam());
    ASSERT_TRUE(oDewarper.DrawFrame(oSmall));
    oLog.Clear();
    // A frame of another size gets new textures; the first of them gets no memory.
    ASSERT_TRUE(oDewarper.SetTexture(oFrame.Image(), false, nullptr, 0));
    CGLRecorder::Get().InjectError("glTexImage2D", GL_OUT_OF_MEMORY);
    EXPECT_FALSE(oDewarper.DrawGLScene(false));
    ASSERT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
    EXPECT_TRUE(oLog.Contains("DrawGLScene: the driver is out of memory")) << oLog.Text();
    EXPECT_EQ(oDewarper.GetLastErrorText(), "DrawGLScene: the driver is out of memory");
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    ExpectPicture();
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    ExpectPicture();
}

TEST_P(HostErrors, OurOwnLackOfMemoryAtTheFirstUploadRefusesThatFrameOnly)
{
    if (GetParam() != IMAGE_FORMAT_BGR24 && GetParam() != IMAGE_FORMAT_BGRA32)
        GTEST_SKIP() << "only blue-first uploads are asked how they went";
    CGLRecorder::Get().InjectError("glTexSubImage2D", GL_OUT_OF_MEMORY);
    EXPECT_FALSE(oDewarper.DrawFrame(oFrame));
    EXPECT_TRUE(oLog.Contains("DrawGLScene: the driver is out of memory")) << oLog.Text();
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    ExpectPicture();
}

INSTANTIATE_TEST_SUITE_P(Formats, HostErrors, testing::ValuesIn(FORMATS),
                         [](const auto& oInfo) { return "Format" + std::to_string(oInfo.param); });
