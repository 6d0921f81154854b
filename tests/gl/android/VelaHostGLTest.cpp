// The host finds current what it had, however a dewarper ends.
#include "HostContext.h"
#include "TestVela.h"

namespace
{

/// A host with a context, and buffers.
class VelaHost : public testing::Test
{
protected:
    VelaHost() { m_oInput.Fill(m_oFrame); }

    CHostContext m_oHost;
    CTestFrame m_oFrame{AsymmetricPicture(32, 32), IMAGE_FORMAT_NV12};
    CTestBuffer m_oInput{32, 32};
    CTestBuffer m_oOutput{16, 16};
};

} // namespace

TEST_F(VelaHost, ItsContextIsCurrentAgainAfterAStop)
{
    CTestVela oDewarper(16, 16);
    ASSERT_TRUE(oDewarper.DrawFrame(m_oInput, m_oOutput));
    EXPECT_FALSE(m_oHost.IsCurrent()) << "ours stands in its place while frames are drawn";
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(oDewarper.StopGL());
        EXPECT_TRUE(m_oHost.IsCurrent());
        m_oHost.ExpectUntouched();
        ASSERT_TRUE(oDewarper.StartGL());
        ASSERT_TRUE(oDewarper.DrawFrame(m_oInput, m_oOutput));
    }
}

TEST_F(VelaHost, ItsContextIsCurrentAgainAfterTheDewarperIsGone)
{
    {
        CTestVela oDewarper(16, 16);
        ASSERT_TRUE(oDewarper.DrawFrame(m_oInput, m_oOutput));
    }
    EXPECT_TRUE(m_oHost.IsCurrent());
    m_oHost.ExpectUntouched();
}

TEST_F(VelaHost, ItsContextIsCurrentAgainAfterARestart)
{
    CTestVela oDewarper(16, 16);
    ASSERT_TRUE(oDewarper.StartGL()) << "a start while started is a restart";
    EXPECT_TRUE(oDewarper.StopGL());
    EXPECT_TRUE(m_oHost.IsCurrent());
    m_oHost.ExpectUntouched();
}

TEST_F(VelaHost, ItsContextIsCurrentAgainAfterAStartThatFailedIsGone)
{
    for (const char* pCall : {"eglCreatePbufferSurface", "eglMakeCurrent", "glGenFramebuffers"}) {
        SCOPED_TRACE(pCall);
        {
            CCustomGPUDewarperVela oDewarper;
            oDewarper.InitGL(16, 16);
            if (std::string(pCall) == "glGenFramebuffers")
                CGLRecorder::Get().InjectError(pCall, GL_OUT_OF_MEMORY);
            else
                CGLRecorder::Get().Inject(pCall, 0.0);
            EXPECT_FALSE(oDewarper.StartGL());
            CGLRecorder::Get().ClearInjections();
            CGLRecorder::Get().TakeErrors();
        }
        EXPECT_TRUE(m_oHost.IsCurrent());
        m_oHost.ExpectUntouched();
    }
}
