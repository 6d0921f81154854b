// Buffers that no frame can be drawn with, and GL errors that the host has left behind.
#include "TestVela.h"

#include <GLES3/gl31.h>

namespace
{

/// Refusals come before and between good frames.
class BufferRefusals : public CVelaTest
{
protected:
    BufferRefusals()
    {
        EXPECT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
        m_vGolden = m_oOutput.Texels().vPixels;
    }

    /// Bytes that no frame has.
    static void Spoil(CTestBuffer& rBuffer)
    {
        CTestFrame oFrame(STestImage(static_cast<int>(rBuffer.get()->getWidth()),
                                     static_cast<int>(rBuffer.get()->getHeight())),
                          IMAGE_FORMAT_NV12);
        rBuffer.Fill(oFrame);
    }

    void ExpectRefused(CTestBuffer& rInput, CTestBuffer& rOutput, const std::string& strReason)
    {
        const std::vector<unsigned char> vBefore = rOutput.Texels().vPixels;
        m_oRecorder.Start();
        CLogCapture oLog;
        EXPECT_FALSE(m_oDewarper.CreateImageF(rInput.get(), rOutput.get()));
        ASSERT_EQ(oLog.Lines().size(), 2u) << oLog.Text();
        ExpectLine(oLog, 0, ERROR_PRIORITY, strReason);
        ExpectLine(oLog, 1, ERROR_PRIORITY, "CreateImageF: Error creating egl image ");
        EXPECT_EQ(m_oDewarper.mInputImage, EGL_NO_IMAGE_KHR);
        EXPECT_EQ(m_oDewarper.mOutputImage, EGL_NO_IMAGE_KHR);
        EXPECT_EQ(m_oRecorder.Living(EGL_KIND_IMAGE), 0);
        EXPECT_EQ(m_oRecorder.Count("glEGLImageTargetRenderbufferStorageOES"), 0);
        EXPECT_EQ(m_oRecorder.Count("glDrawArrays"), 0);
        // A host that draws all the same reaches neither buffer.
        m_oDewarper.DrawGLScene(true);
        EXPECT_EQ(rOutput.Texels().vPixels, vBefore);
        Spoil(m_oOutput);
        EXPECT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
        EXPECT_EQ(m_oOutput.Texels().vPixels, m_vGolden) << "the next good frame";
    }

    std::vector<unsigned char> m_vGolden;
};

class HostErrors : public BufferRefusals
{
protected:
    /// What a host's own call leaves when it does not look.
    void LeaveBehind(unsigned int nError)
    {
        m_oRecorder.InjectError("glEnable", nError);
        glEnable(GL_DITHER);
        m_oRecorder.ClearInjections();
        m_oRecorder.TakeErrors();
    }

    static std::string Line(const char* pFunction, unsigned int nError)
    {
        char acLine[100];
        std::snprintf(acLine, sizeof acLine, "%s: GL error 0x%x was left behind by the host\n", pFunction,
                      nError);
        return acLine;
    }

    void ExpectGolden()
    {
        EXPECT_EQ(m_oOutput.Texels().vPixels, m_vGolden);
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
};

const unsigned int HOST_ERRORS[] = {GL_OUT_OF_MEMORY, GL_INVALID_ENUM, GL_INVALID_OPERATION};

} // namespace

TEST_F(BufferRefusals, AnOutputOfAnotherSizeThanThePicturesIsRefused)
{
    const int aSizes[][2] = {{32, 20}, {64, 42}, {66, 40}, {40, 64}, {128, 80}};
    for (const auto& rSize : aSizes) {
        SCOPED_TRACE(testing::Message() << rSize[0] << " x " << rSize[1]);
        CTestBuffer oOther(rSize[0], rSize[1]);
        ExpectRefused(m_oInput, oOther,
                      "CreateImageF: the output buffer is " + std::to_string(rSize[0]) + " x " +
                          std::to_string(rSize[1]) + ", the pictures are 64 x 40");
    }
}

TEST_F(BufferRefusals, ABufferThatFitsAfterANewInitGLIsTaken)
{
    CTestBuffer oOther(32, 20);
    m_oDewarper.InitGL(32, 20);
    EXPECT_TRUE(m_oDewarper.DrawFrame(m_oInput, oOther));
    CTestVela oFresh(32, 20);
    CTestBuffer oExpected(32, 20);
    ASSERT_TRUE(oFresh.DrawFrame(m_oInput, oExpected));
    EXPECT_EQ(oOther.Texels().vPixels, oExpected.Texels().vPixels);
}

TEST_F(BufferRefusals, OneBufferAsInputAndOutputIsRefused)
{
    CTestBuffer oBoth(64, 40);
    CTestFrame oFrame(AsymmetricPicture(64, 40), IMAGE_FORMAT_NV12);
    oBoth.Fill(oFrame);
    ExpectRefused(oBoth, oBoth, "CreateImageF: one buffer cannot be input and output at once");
    EXPECT_TRUE(m_oDewarper.DrawFrame(oBoth, m_oOutput)) << "it is an input like any other";
}

TEST_F(BufferRefusals, TheFirstBuffersMayBeRefused)
{
    CTestVela oDewarper(64, 40);
    CTestBuffer oOther(32, 20);
    EXPECT_FALSE(oDewarper.CreateImageF(m_oInput.get(), oOther.get()));
    EXPECT_FALSE(oDewarper.DrawGLScene(true)) << "there was no frame yet";
    Spoil(m_oOutput);
    EXPECT_TRUE(oDewarper.DrawFrame(m_oInput, m_oOutput));
    EXPECT_EQ(m_oOutput.Texels().vPixels, m_vGolden);
}

TEST_F(HostErrors, CountForNothingWhenAFrameIsBound)
{
    for (const unsigned int nError : HOST_ERRORS) {
        SCOPED_TRACE(nError);
        Spoil(m_oOutput);
        LeaveBehind(nError);
        CLogCapture oLog;
        EXPECT_TRUE(m_oDewarper.CreateImageF(m_oInput.get(), m_oOutput.get()));
        EXPECT_EQ(oLog.Text(), Line("CreateImageF", nError));
        EXPECT_TRUE(m_oDewarper.DrawGLScene(true));
        m_oDewarper.DestroyImage();
        EXPECT_EQ(oLog.Text(), Line("CreateImageF", nError)) << "said once";
        ExpectGolden();
    }
}

TEST_F(HostErrors, CountForNothingWhenAnInputIsBoundAlone)
{
    // A buffer of its own: its texture is made now, which the driver is asked about.
    CTestBuffer oOther(48, 32);
    LeaveBehind(GL_OUT_OF_MEMORY);
    CLogCapture oLog;
    EXPECT_TRUE(m_oDewarper.CreateImage(oOther.get()));
    EXPECT_TRUE(oLog.Contains("CreateImage: GL error 0x505 was left behind by the host")) << oLog.Text();
    m_oDewarper.DestroyImage();
}

TEST_F(HostErrors, CountForNothingWhenAFrameIsDrawn)
{
    for (const unsigned int nError : HOST_ERRORS) {
        SCOPED_TRACE(nError);
        Spoil(m_oOutput);
        ASSERT_TRUE(m_oDewarper.CreateImageF(m_oInput.get(), m_oOutput.get()));
        LeaveBehind(nError);
        CLogCapture oLog;
        EXPECT_TRUE(m_oDewarper.DrawGLScene(true));
        m_oDewarper.DestroyImage();
        EXPECT_EQ(oLog.Text(), Line("DrawGLScene", nError));
        ExpectGolden();
    }
}

TEST_F(HostErrors, CountForNothingInAFirstFrame)
{
    for (const unsigned int nError : HOST_ERRORS) {
        SCOPED_TRACE(nError);
        CTestVela oDewarper(64, 40);
        Spoil(m_oOutput);
        ASSERT_TRUE(oDewarper.CreateImageF(m_oInput.get(), m_oOutput.get()));
        LeaveBehind(nError);
        CLogCapture oLog;
        EXPECT_TRUE(oDewarper.DrawGLScene(true));
        oDewarper.DestroyImage();
        EXPECT_TRUE(oLog.Contains(Line("DrawGLScene", nError).substr(0, 30))) << oLog.Text();
        EXPECT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
        ExpectGolden();
    }
}

TEST_F(HostErrors, CountForNothingInARead)
{
    // The pixels are plain here, and stay where they were drawn.
    ASSERT_TRUE(m_oDewarper.CreateImageF(m_oInput.get(), m_oOutput.get()));
    ASSERT_TRUE(m_oDewarper.DrawGLScene(true));
    int nSize = 0;
    int nWidth = 0;
    int nHeight = 0;
    int nStride = 0;
    LeaveBehind(GL_OUT_OF_MEMORY);
    CLogCapture oLog;
    EXPECT_NE(m_oDewarper.GetImage(&nSize, &nWidth, &nHeight, &nStride), nullptr);
    EXPECT_EQ(oLog.Text(), Line("GetImage", GL_OUT_OF_MEMORY));
    EXPECT_EQ(nWidth, 64);
    EXPECT_EQ(nHeight, 40);
    m_oDewarper.DestroyImage();
}
