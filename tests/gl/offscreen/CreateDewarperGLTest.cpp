// Which engine a host gets, and that asking leaves nothing behind.
#include "dewarp/Dewarper.h"
#include "tests/support/TestDewarper.h"

#include <EGL/egl.h>
#include <gtest/gtest.h>

namespace
{

/// Every display that was opened must be closed again, and everything else must be gone.
class CreateDewarperGL : public testing::Test
{
protected:
    void SetUp() override { CGLRecorder::Get().Start(); }
    void TearDown() override
    {
        CGLRecorder& r = CGLRecorder::Get();
        r.ClearInjections();
        r.Stop();
        EXPECT_EQ(r.Count("eglTerminate"), r.Count("eglInitialize") - nUnmatched);
        EXPECT_EQ(r.Living(EGL_KIND_CONTEXT), nContexts);
        EXPECT_EQ(r.Living(EGL_KIND_SURFACE), nSurfaces);
        EXPECT_EQ(r.LivingGLNames(), 0);
        EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
    }

    int nContexts = CGLRecorder::Get().Living(EGL_KIND_CONTEXT);
    int nSurfaces = CGLRecorder::Get().Living(EGL_KIND_SURFACE);
    int nUnmatched = 0; ///< calls of eglInitialize that no eglTerminate belongs to
};

} // namespace

TEST_F(CreateDewarperGL, ASoftwareRasteriserIsNoReasonForGL)
{
    const CLogCapture oLog;
    const std::unique_ptr<CDewarper> pDewarper = CreateDewarper(ENGINE_AUTO, 64, 48);
    ASSERT_NE(pDewarper, nullptr);
    EXPECT_EQ(pDewarper->GetEngine(), ENGINE_CPU);
    EXPECT_EQ(pDewarper->GetEngineText().find("processor"), 0u) << pDewarper->GetEngineText();
    EXPECT_EQ(oLog.Text(), "");
}

TEST_F(CreateDewarperGL, EachEngineIsGivenWhereItIsAskedFor)
{
    const std::unique_ptr<CDewarper> pGL = CreateDewarper(ENGINE_GL, 64, 48);
    const std::unique_ptr<CDewarper> pCPU = CreateDewarper(ENGINE_CPU, 64, 48);
    ASSERT_NE(pGL, nullptr);
    ASSERT_NE(pCPU, nullptr);
    EXPECT_EQ(pGL->GetEngine(), ENGINE_GL);
    EXPECT_EQ(pCPU->GetEngine(), ENGINE_CPU);
}

TEST_F(CreateDewarperGL, TheProcessorEngineAsksNoDriver)
{
    EXPECT_NE(CreateDewarper(ENGINE_CPU, 64, 48), nullptr);
    EXPECT_EQ(CGLRecorder::Get().CountPrefix("egl"), 0);
    EXPECT_EQ(CGLRecorder::Get().CountPrefix("gl"), 0);
}

TEST_F(CreateDewarperGL, WithoutADriverAutomaticIsTheProcessorAndSaysNothing)
{
    CGLRecorder::Get().Inject("eglInitialize", 0, 0, 1000);
    {
        const CLogCapture oLog;
        const std::unique_ptr<CDewarper> pDewarper = CreateDewarper(ENGINE_AUTO, 64, 48);
        ASSERT_NE(pDewarper, nullptr);
        EXPECT_EQ(pDewarper->GetEngine(), ENGINE_CPU);
        EXPECT_EQ(oLog.Text(), "");
    }
    const CLogCapture oLog;
    EXPECT_EQ(CreateDewarper(ENGINE_GL, 64, 48), nullptr);
    ASSERT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
    EXPECT_TRUE(oLog.Contains("StartGL: no EGL display")) << oLog.Text();
    nUnmatched = CGLRecorder::Get().Count("eglInitialize");
}

TEST_F(CreateDewarperGL, ImpossibleSizesAndEnginesAreRefused)
{
    for (const EDewarpEngine eEngine : {ENGINE_AUTO, ENGINE_GL, ENGINE_CPU}) {
        const CLogCapture oLog;
        EXPECT_EQ(CreateDewarper(eEngine, 0, 48), nullptr) << eEngine;
        EXPECT_EQ(CreateDewarper(eEngine, 64, 16385), nullptr) << eEngine;
    }
    const CLogCapture oLog;
    EXPECT_EQ(CreateDewarper(static_cast<EDewarpEngine>(7), 64, 48), nullptr);
    ASSERT_EQ(oLog.Lines().size(), 1u);
    EXPECT_EQ(oLog.Lines()[0].strText, "CreateDewarper: 7 is no engine");
    EXPECT_EQ(oLog.Lines()[0].strTag, "LUMORVIDEOMANAGER_DEWRAP");
}

TEST_F(CreateDewarperGL, AContextOfTheHostIsCurrentAgainAfterTheAutomaticChoice)
{
    CTestDewarper oHost(32, 32);
    ASSERT_TRUE(oHost.Started());
    EGLContext pBefore = eglGetCurrentContext();
    ASSERT_NE(pBefore, EGL_NO_CONTEXT);
    EXPECT_NE(CreateDewarper(ENGINE_AUTO, 64, 48), nullptr);
    EXPECT_EQ(eglGetCurrentContext(), pBefore);
    // The host has the display open: the two more uses of it end without a call.
    nUnmatched = 2;
}
