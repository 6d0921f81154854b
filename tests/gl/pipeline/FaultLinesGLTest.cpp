// What keeps frames from being drawn is said once, not once a frame, and again after a good frame.
#include "dewarp/Rooms.h"
#include "tests/gl/overlays/OverlayTools.h"

#include <EGL/egl.h>
#include <gtest/gtest.h>

namespace
{

const int WIDTH = 48;
const int HEIGHT = 40;

class CSmallTextures : public CTestDewarper
{
public:
    CSmallTextures() : CTestDewarper(WIDTH, HEIGHT) {}
    void SetMaxTextureSize(int nMost) { pRooms->oTextures.nMaxTextureSize = nMost; }
};

class FaultLines : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(oDewarper.Started());
        oDewarper.SetViewType(VIEW_FISHEYE);
    }
    /// Frames that fail for one cause leave one line, which is the last error.
    void ExpectOneLine(const std::string& strText)
    {
        oLog.Clear();
        for (int i = 0; i < 5; ++i)
            EXPECT_FALSE(oDewarper.DrawGLScene(i % 2 == 0));
        ASSERT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
        EXPECT_EQ(oLog.Lines()[0].strText, strText);
        EXPECT_EQ(oLog.Lines()[0].strTag, "LUMORVIDEOMANAGER_DEWRAP");
        EXPECT_EQ(oDewarper.GetLastErrorText(), strText);
    }

    CLogCapture oLog;
    CTestFrame oFrame{AsymmetricPicture(WIDTH, HEIGHT), IMAGE_FORMAT_NV12};
    CSmallTextures oDewarper;
};

} // namespace

TEST_F(FaultLines, ThereIsNoErrorBeforeOneHappened)
{
    EXPECT_EQ(oDewarper.GetLastErrorText(), "");
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(oDewarper.GetLastErrorText(), "");
}

TEST_F(FaultLines, ADrawingBeforeTheStartAndAfterTheStop)
{
    CTestFrame oAny(AsymmetricPicture(WIDTH, HEIGHT), IMAGE_FORMAT_NV12);
    CCustomGPUDewarperOffscreen oNever;
    ASSERT_TRUE(oNever.SetTexture(oAny.Image(), false, nullptr, 0));
    for (int i = 0; i < 5; ++i)
        EXPECT_FALSE(oNever.DrawGLScene(false));
    ASSERT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
    EXPECT_EQ(oLog.Lines()[0].strText, "DrawGLScene: GL is not started");
    EXPECT_EQ(oNever.GetLastErrorText(), "DrawGLScene: GL is not started");

    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        ASSERT_TRUE(oDewarper.StopGL());
        ExpectOneLine("DrawGLScene: GL is not started");
        ASSERT_TRUE(oDewarper.StartGL());
    }
}

TEST_F(FaultLines, ADrawingWithoutAFrame)
{
    ExpectOneLine("DrawGLScene: no frame was handed over yet");
    EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
}

TEST_F(FaultLines, AFrameLargerThanTheDriversTextures)
{
    const std::string strLine = "DrawGLScene: frames of 48 x 40 are larger than this driver's textures (47)";
    oDewarper.SetMaxTextureSize(47);
    ASSERT_TRUE(oDewarper.SetTexture(oFrame.Image(), false, nullptr, 0));
    ExpectOneLine(strLine);
    EXPECT_NO_GL_ERROR();
    // Frame after frame of that size is one cause.
    oLog.Clear();
    for (int i = 0; i < 5; ++i)
        EXPECT_FALSE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(oLog.Text(), "");
    CTestFrame oSmall(AsymmetricPicture(32, 32), IMAGE_FORMAT_NV12);
    ASSERT_TRUE(oDewarper.DrawFrame(oSmall));
    ASSERT_TRUE(oDewarper.SetTexture(oFrame.Image(), false, nullptr, 0));
    ExpectOneLine(strLine);
    EXPECT_NO_GL_ERROR();
}

TEST_F(FaultLines, AFrameTooLargeInThePlainClassToo)
{
    // The plain class with a target in somebody else's context: here the desktop's.
    class CPlain : public CCustomGPUDewarper
    {
    public:
        CPlain() { pRooms->oTextures.nMaxTextureSize = 40; }
        bool GetTargetWidthHeight(int& nWidth, int& nHeight) override
        {
            nWidth = nHeight = 32;
            return true;
        }
    };
    {
        CPlain oPlain;
        ASSERT_TRUE(oPlain.SetTexture(oFrame.Image(), false, nullptr, 0));
        for (int i = 0; i < 5; ++i)
            EXPECT_FALSE(oPlain.DrawGLScene(false));
        ASSERT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
        EXPECT_EQ(oPlain.GetLastErrorText(),
                  "DrawGLScene: frames of 48 x 40 are larger than this driver's textures (40)");
        oPlain.FreeOpenGLObjects();
    }
    EXPECT_NO_GL_ERROR();
}

TEST_F(FaultLines, AContextThatCannotBeMadeCurrent)
{
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        eglMakeCurrent(eglGetCurrentDisplay(), EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        CGLRecorder::Get().Inject("eglMakeCurrent", EGL_FALSE, 0, 1000);
        ExpectOneLine(
            "SetCurrentRenderingContext: the context cannot be made current: it is lost, or current on "
            "another thread");
        CGLRecorder::Get().ClearInjections();
    }
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
}

TEST_F(FaultLines, ATextHigherThanItsLimitWithItsListAndNotWithFrames)
{
    oDewarper.SetStrings({Text("a", 0, 0, 8192), Text("b", 0, 0, 8193), Text("c", 0, 0, 1 << 30)});
    ASSERT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
    EXPECT_EQ(oLog.Lines()[0].strText,
              "SetStrings: 2 of 3 texts are higher than 8192 pixels and are not drawn");
    EXPECT_EQ(oDewarper.GetLastErrorText(), oLog.Lines()[0].strText);
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
    oDewarper.SetStrings({Text("a", 0, 0, 8192)});
    EXPECT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
}

TEST_F(FaultLines, AFrameThatIsNotWholeInThePlainClass)
{
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    SImageProperties sImage = *oFrame.Image();
    sImage.pPlane1 = nullptr;
    for (int i = 0; i < 2; ++i) {
        // Past the desktop's check, as a host of the plain class would hand it over.
        ASSERT_TRUE(oDewarper.CCustomGPUDewarper::SetTexture(&sImage, false, nullptr, 0));
        ExpectOneLine(
            "DrawGLScene: the frame is not whole: a plane is missing, its rows are too short, or format 5 "
            "has none");
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    }
}

TEST_F(FaultLines, AProgramThatCannotBeBuiltIsNotTriedWithEveryFrame)
{
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    oDewarper.SetFlip(true, false);
    CGLRecorder::Get().Inject("GL_LINK_STATUS", 0.0, 0, 1000);
    CGLRecorder::Get().Start();
    oLog.Clear();
    for (int i = 0; i < 20; ++i)
        EXPECT_FALSE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(CGLRecorder::Get().Count("glLinkProgram"), 2) << "once, and once again";
    EXPECT_EQ(oLog.Lines().size(), 3u) << "two with the driver's words, one of the frames: " << oLog.Text();
    EXPECT_EQ(oDewarper.GetLastErrorText(), "DrawGLScene: the view's program could not be built");
    CGLRecorder::Get().ClearInjections();
    oDewarper.SetMountTilt(0.0f); // any request
    EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
}

TEST_F(FaultLines, AWireFrameHasNoEffectWhichIsSaidOnceItIsAskedFor)
{
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    const STestImage sBefore = oDewarper.Picture();
    oDewarper.SetWireFrame(false);
    EXPECT_EQ(oLog.Text(), "");
    oDewarper.SetWireFrame(true);
    oDewarper.SetWireFrame(true);
    ASSERT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
    EXPECT_EQ(oLog.Lines()[0].strText, "SetWireFrame: OpenGL ES draws no wire frames; it has no effect");
    EXPECT_EQ(oDewarper.GetLastErrorText(), oLog.Lines()[0].strText);
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
    EXPECT_TRUE(oDewarper.bWireFrame);
    EXPECT_EQ(CompareImages(oDewarper.Picture(), sBefore).nMax, 0);
}
