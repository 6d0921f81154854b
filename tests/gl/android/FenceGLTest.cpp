// The fence at the end of a frame, and drivers that lack an entry point.
#include "TestVela.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>

namespace
{

using Fence = CVelaTest;

} // namespace

TEST_F(Fence, AFrameEndsWithItsFence)
{
    ASSERT_TRUE(m_oDewarper.CreateImageF(m_oInput.get(), m_oOutput.get()));
    m_oRecorder.Start();
    ASSERT_TRUE(m_oDewarper.DrawGLScene(false));
    EXPECT_EQ(m_oRecorder.CountPrefix("eglCreateSync"), 0);
    EXPECT_EQ(m_oDewarper.mSync, EGL_NO_SYNC_KHR);
    m_oRecorder.Start();
    ASSERT_TRUE(m_oDewarper.DrawGLScene(true));
    const std::vector<SGLCall> vCreated = m_oRecorder.Named("eglCreateSyncKHR");
    const std::vector<SGLCall> vWaited = m_oRecorder.Named("eglClientWaitSyncKHR");
    const std::vector<SGLCall> vDestroyed = m_oRecorder.Named("eglDestroySyncKHR");
    ASSERT_EQ(vCreated.size(), 1u);
    ASSERT_EQ(vWaited.size(), 1u);
    ASSERT_EQ(vDestroyed.size(), 1u);
    EXPECT_EQ(vCreated[0].Int(1), EGL_SYNC_FENCE_KHR);
    EXPECT_EQ(vCreated[0].aArgs[2], 0.0);
    EXPECT_EQ(vWaited[0].Int(2), 0) << "no flush flag";
    EXPECT_EQ(vWaited[0].aArgs[3], static_cast<double>(static_cast<long long>(EGL_FOREVER_KHR)));
    const int aOrder[] = {m_oRecorder.Find("glDrawArrays"), m_oRecorder.Find("eglCreateSyncKHR"),
                          m_oRecorder.Find("glFlush"), m_oRecorder.Find("eglClientWaitSyncKHR"),
                          m_oRecorder.Find("eglDestroySyncKHR")};
    for (std::size_t i = 0; i + 1 < std::size(aOrder); ++i)
        EXPECT_LT(aOrder[i], aOrder[i + 1]) << i;
    // The handle stays, and is destroyed once more at the end.
    EXPECT_NE(m_oDewarper.mSync, EGL_NO_SYNC_KHR);
    EXPECT_EQ(vDestroyed[0].aArgs[1], NumberOfPointer(m_oDewarper.mSync));
    m_oRecorder.Start();
    m_oDewarper.StopGL();
    EXPECT_EQ(m_oRecorder.Count("eglDestroySyncKHR"), 1);
    EXPECT_EQ(m_oRecorder.Living(EGL_KIND_SYNC), 0);
}

TEST_F(Fence, AFenceThatCannotBeMadeIsSilent)
{
    ASSERT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
    for (const char* pCall : {"eglCreateSyncKHR", "eglClientWaitSyncKHR", "eglDestroySyncKHR"}) {
        SCOPED_TRACE(pCall);
        ASSERT_TRUE(m_oDewarper.CreateImageF(m_oInput.get(), m_oOutput.get()));
        m_oRecorder.Start();
        m_oRecorder.Inject(pCall, 0.0);
        CLogCapture oLog;
        EXPECT_TRUE(m_oDewarper.DrawGLScene(true));
        EXPECT_EQ(oLog.Text(), "");
        if (std::string(pCall) == "eglCreateSyncKHR") {
            EXPECT_EQ(m_oDewarper.mSync, EGL_NO_SYNC_KHR);
            EXPECT_EQ(m_oRecorder.Count("eglClientWaitSyncKHR"), 0);
        }
        m_oDewarper.DestroyImage();
    }
}

// Whatever becomes of the fence, the buffer is complete when DrawGLScene returns.
TEST_F(Fence, TheBufferIsCompleteWithoutAFence)
{
    ASSERT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
    const std::vector<unsigned char> vGolden = m_oOutput.Texels().vPixels;
    CTestFrame oBlack(STestImage(64, 40), IMAGE_FORMAT_NV12);
    for (const char* pCall : {"eglCreateSyncKHR", "eglClientWaitSyncKHR", "eglDestroySyncKHR"}) {
        SCOPED_TRACE(pCall);
        m_oOutput.Fill(oBlack);
        ASSERT_NE(m_oOutput.Texels().vPixels, vGolden);
        m_oRecorder.Inject(pCall, 0.0);
        EXPECT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
        m_oRecorder.ClearInjections();
        EXPECT_EQ(m_oOutput.Texels().vPixels, vGolden);
    }
    for (const char* pName : {"eglCreateSyncKHR", "eglClientWaitSyncKHR", "eglDestroySyncKHR"}) {
        SCOPED_TRACE(std::string("no ") + pName);
        m_oDewarper.StopGL();
        m_oRecorder.Inject(std::string("eglGetProcAddress:") + pName, 0.0);
        ASSERT_TRUE(m_oDewarper.StartGL());
        m_oRecorder.ClearInjections();
        m_oOutput.Fill(oBlack);
        EXPECT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
        EXPECT_EQ(m_oOutput.Texels().vPixels, vGolden);
    }
}

TEST_F(Fence, TheDriverHasFinishedWhereThereIsNoFence)
{
    ASSERT_TRUE(m_oDewarper.CreateImageF(m_oInput.get(), m_oOutput.get()));
    m_oRecorder.Start();
    m_oRecorder.Inject("eglCreateSyncKHR", 0.0);
    ASSERT_TRUE(m_oDewarper.DrawGLScene(true));
    EXPECT_EQ(m_oRecorder.Count("glFinish"), 1);
    EXPECT_LT(m_oRecorder.Find("glDrawArrays"), m_oRecorder.Find("glFinish"));
    EXPECT_EQ(m_oDewarper.mSync, EGL_NO_SYNC_KHR);
    m_oDewarper.DestroyImage();
}

TEST_F(Fence, MissingEntryPointsAreNamed)
{
    const char* const aNames[] = {"eglCreateImageKHR",
                                  "eglDestroyImageKHR",
                                  "glEGLImageTargetTexture2DOES",
                                  "glEGLImageTargetRenderbufferStorageOES",
                                  "eglCreateSyncKHR",
                                  "eglClientWaitSyncKHR",
                                  "eglDestroySyncKHR"};
    for (const char* pName : aNames) {
        SCOPED_TRACE(pName);
        m_oDewarper.StopGL();
        m_oRecorder.Inject(std::string("eglGetProcAddress:") + pName, 0.0);
        ASSERT_TRUE(m_oDewarper.StartGL());
        CLogCapture oLog;
        const bool bBound = m_oDewarper.CreateImageF(m_oInput.get(), m_oOutput.get());
        const bool bDrawn = bBound && m_oDewarper.DrawGLScene(true);
        m_oDewarper.DestroyImage();
        const std::string strName = pName;
        EXPECT_TRUE(bBound || m_oDewarper.GetLastErrorText() == "CreateImageF: the driver has no " + strName)
            << m_oDewarper.GetLastErrorText();
        // Fences only delay; without them the frame is drawn, and finished another way.
        const bool bFence = strName.find("Sync") != std::string::npos;
        EXPECT_EQ(bDrawn, bFence);
        EXPECT_TRUE(oLog.Contains("the driver has no " + strName)) << oLog.Text();
    }
    m_oDewarper.StopGL();
    ASSERT_TRUE(m_oDewarper.StartGL());
    EXPECT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
}
