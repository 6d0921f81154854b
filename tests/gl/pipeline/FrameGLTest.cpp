// What one frame asks of GL: the first, the second, and frames on which nothing changed.
#include "tests/support/TestDewarper.h"

#include <GLES3/gl31.h>
#include <gtest/gtest.h>

struct SViewCase
{
    const char* pName;
    EViewType eView;
    EMountType eMount;
    int nDraws;
};

static const SViewCase VIEWS[] = {
    {"virtual camera, ceiling", VIEW_VCAM, MOUNT_CEILING, 1},
    {"virtual camera, wall", VIEW_VCAM, MOUNT_WALL, 1},
    {"quad, ceiling", VIEW_VCAM_QUAD, MOUNT_CEILING, 4},
    {"quad, wall", VIEW_VCAM_QUAD, MOUNT_WALL, 1},
    {"fisheye", VIEW_FISHEYE, MOUNT_CEILING, 1},
    {"circular fisheye", VIEW_FISHEYE_CIRCULAR, MOUNT_CEILING, 1},
    {"full panorama", VIEW_PANORAMA_FULL, MOUNT_CEILING, 1},
    {"half panorama, floor", VIEW_PANORAMA_HALF, MOUNT_FLOOR, 1},
    {"panorama in two halves", VIEW_PANORAMA_QUARTER, MOUNT_CEILING, 2},
    {"dual panorama", VIEW_PANORAMA_DUAL, MOUNT_CEILING, 1},
    {"triple panorama", VIEW_PANORAMA_TRIPLE, MOUNT_CEILING, 1},
    {"wall panorama", VIEW_PANORAMA_FULL, MOUNT_WALL, 1},
};

class FrameOfView : public testing::TestWithParam<SViewCase>
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(oDewarper.Started());
        oDewarper.SetViewType(GetParam().eView);
        oDewarper.SetMountType(GetParam().eMount);
        oDewarper.SetLensType(LENS_DSL419);
    }

    CTestDewarper oDewarper{96, 64};
    CTestFrame oFrame{AsymmetricPicture(64, 64), IMAGE_FORMAT_YUV420P};
};

TEST_P(FrameOfView, TheFirstFrameMakesWhatItNeedsAndTheSecondMakesNothing)
{
    CGLRecorder& oRecorder = CGLRecorder::Get();
    oRecorder.Start();
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    int nPlanes = 0;
    for (const SGLCall& sCall : oRecorder.Named("glTexImage2D"))
        nPlanes += sCall.Int(6) == GL_LUMINANCE ? 1 : 0;
    EXPECT_EQ(nPlanes, 3) << "besides the target's own";
    EXPECT_GE(oRecorder.Count("glLinkProgram"), 1);
    EXPECT_LE(oRecorder.Count("glLinkProgram"), 2); // once more when the view asks for clip bands
    EXPECT_EQ(oRecorder.Count("glGenBuffers") - oRecorder.Count("glDeleteBuffers"), 2);
    EXPECT_EQ(oRecorder.Count("glDrawArrays"), GetParam().nDraws);

    oRecorder.Start();
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(oRecorder.CountPrefix("glGen") + oRecorder.CountPrefix("glDelete") +
                  oRecorder.CountPrefix("glCreate"),
              0)
        << oRecorder.Dump();
    EXPECT_EQ(oRecorder.Count("glCompileShader") + oRecorder.Count("glLinkProgram"), 0);
    EXPECT_EQ(oRecorder.Count("glBufferData") + oRecorder.Count("glTexImage2D"), 0);
    EXPECT_EQ(oRecorder.Count("glTexSubImage2D"), 3);
    EXPECT_EQ(oRecorder.Count("glClear"), 1);
    EXPECT_EQ(oRecorder.Count("glDrawArrays"), GetParam().nDraws);
    EXPECT_EQ(oRecorder.Count("glGetError") + oRecorder.Count("glFinish"), 0)
        << "nothing may wait for the GPU";
    EXPECT_EQ(oRecorder.CountPrefix("glGetUniformLocation") + oRecorder.CountPrefix("glGetAttribLocation"),
              0);
}

TEST_P(FrameOfView, ASteadyFrameTakesNothingFromTheHeap)
{
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    CGLRecorder::Get().Stop();
    CHeapCounter oHeap;
    const bool bTaken = oDewarper.SetTexture(oFrame.Image(), false, nullptr, 1);
    const bool bDrawn = oDewarper.DrawGLScene(false);
    EXPECT_EQ(oHeap.Count(), 0);
    EXPECT_TRUE(bTaken && bDrawn);
}

TEST_P(FrameOfView, AFrameWithoutNewPixelsUploadsNothing)
{
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    const STestImage sBefore = oDewarper.Picture();
    CGLRecorder& oRecorder = CGLRecorder::Get();
    oRecorder.Start();
    ASSERT_TRUE(oDewarper.DrawGLScene(false));
    EXPECT_EQ(oRecorder.Count("glTexSubImage2D") + oRecorder.Count("glTexImage2D"), 0);
    EXPECT_EQ(oRecorder.Count("glDrawArrays"), GetParam().nDraws);
    EXPECT_EQ(CompareImages(sBefore, oDewarper.Picture()).nMax, 0);
}

TEST_P(FrameOfView, StoppingGLLeavesNoName)
{
    CGLRecorder& oRecorder = CGLRecorder::Get();
    const int nLost = oRecorder.NamesLostWithContexts();
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_GT(oRecorder.LivingGLNames(), 0);
    EXPECT_TRUE(oDewarper.StopGL());
    EXPECT_EQ(oRecorder.LivingGLNames(), 0);
    EXPECT_EQ(oRecorder.NamesLostWithContexts(), nLost) << "deleted, not dropped with the context";
}

INSTANTIATE_TEST_SUITE_P(Views, FrameOfView, testing::ValuesIn(VIEWS), [](const auto& oInfo) {
    std::string strName = oInfo.param.pName;
    for (char& cLetter : strName)
        if (cLetter == ' ' || cLetter == ',')
            cLetter = '_';
    return strName;
});

TEST(Frame, TheStateOfOneFrameIsNotLeftToLuck)
{
    CTestDewarper oDewarper(96, 64);
    CTestFrame oFrame(AsymmetricPicture(64, 64), IMAGE_FORMAT_RGB24);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    const STestImage sBefore = oDewarper.Picture();
    // A host that draws something of its own in between.
    glUseProgram(0);
    glActiveTexture(GL_TEXTURE7);
    glViewport(3, 3, 5, 5);
    oDewarper.AbsolutePTZ(90.0f, 0.0f, 180.0f);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(CompareImages(sBefore, oDewarper.Picture()).nMax, 0);
    EXPECT_NO_GL_ERROR();
}

TEST(Frame, AnIncompleteFramebufferOfThePassesIsLoggedAndUsedAnyway)
{
    CTestDewarper oDewarper(96, 64);
    CTestFrame oFrame(AsymmetricPicture(64, 64), IMAGE_FORMAT_RGB24);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    std::vector<unsigned char> vOverlay(96 * 64 * 4, 0);
    ASSERT_EQ(oDewarper.SetOutputOverlay(vOverlay.data(), 96, 64, 0), 1);
    CLogCapture oLog;
    CGLRecorder::Get().Inject("glCheckFramebufferStatus", GL_FRAMEBUFFER_UNSUPPORTED);
    EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_TRUE(oLog.Contains("DrawGLScene:7++++ nError! glCheckFramebufferStatus not complete!"))
        << oLog.Text();
}

TEST(Frame, GLErrorsAreLoggedOnlyWhenAskedFor)
{
    CTestDewarper oDewarper(96, 64);
    CTestFrame oFrame(AsymmetricPicture(64, 64), IMAGE_FORMAT_RGB24);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    for (const bool bLog : {false, true}) {
        oDewarper.SetLogGLErrors(bLog);
        CLogCapture oLog;
        CGLRecorder::Get().InjectError("glClear", GL_OUT_OF_MEMORY);
        EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
        EXPECT_EQ(oLog.Contains("End of DrawGLScene and the error is=1285"), bLog) << oLog.Text();
        while (glGetError() != GL_NO_ERROR) {
        }
    }
}

TEST(Frame, CompletenessIsAskedOfThePassesFramebufferWithItsTextureInIt)
{
    CTestDewarper oDewarper(96, 64);
    CTestFrame oFrame(AsymmetricPicture(64, 64), IMAGE_FORMAT_RGB24);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    std::vector<unsigned char> vOverlay(96 * 64 * 4, 0);
    ASSERT_EQ(oDewarper.SetOutputOverlay(vOverlay.data(), 96, 64, 0), 1);
    CGLRecorder::Get().Start();
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    unsigned int nBound = 0;
    unsigned int nAttached = 0;
    int nAsked = 0;
    for (const SGLCall& rCall : CGLRecorder::Get().Calls()) {
        const std::string strName = rCall.pName;
        if (strName == "glBindFramebuffer") {
            nBound = static_cast<unsigned int>(rCall.Int(1));
            nAttached = 0;
        } else if (strName == "glFramebufferTexture2D") {
            nAttached = static_cast<unsigned int>(rCall.Int(3));
        } else if (strName == "glCheckFramebufferStatus") {
            ++nAsked;
            EXPECT_EQ(nBound, oDewarper.nFrameBuffer);
            EXPECT_EQ(nAttached, oDewarper.nFrameTexture);
        }
    }
    EXPECT_EQ(nAsked, 1);
    EXPECT_NO_GL_ERROR();
}
