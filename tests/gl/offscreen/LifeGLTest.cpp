// Starting, stopping and ending: whose context is current afterwards, and what is left.
#include "tests/gl/overlays/OverlayTools.h"

#include <EGL/egl.h>
#include <gtest/gtest.h>
#include <random>

namespace
{

/// A context of the host's own.
class CHostContext
{
public:
    CHostContext()
    {
        m_pDisplay = eglGetDisplay(EGL_DEFAULT_DISPLAY);
        eglInitialize(m_pDisplay, nullptr, nullptr);
        eglBindAPI(EGL_OPENGL_ES_API);
        const EGLint aConfig[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_ES3_BIT,
                                  EGL_NONE};
        EGLConfig pConfig = nullptr;
        EGLint nConfigs = 0;
        eglChooseConfig(m_pDisplay, aConfig, &pConfig, 1, &nConfigs);
        const EGLint aContext[] = {EGL_CONTEXT_CLIENT_VERSION, 3, EGL_NONE};
        m_pContext = eglCreateContext(m_pDisplay, pConfig, EGL_NO_CONTEXT, aContext);
        const EGLint aSize[] = {EGL_WIDTH, 8, EGL_HEIGHT, 8, EGL_NONE};
        m_pSurface = eglCreatePbufferSurface(m_pDisplay, pConfig, aSize);
    }
    ~CHostContext()
    {
        if (eglGetCurrentContext() == m_pContext)
            eglMakeCurrent(m_pDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        eglDestroySurface(m_pDisplay, m_pSurface);
        eglDestroyContext(m_pDisplay, m_pContext);
    }
    CHostContext(const CHostContext&) = delete;
    CHostContext& operator=(const CHostContext&) = delete;

    void MakeCurrent() const { eglMakeCurrent(m_pDisplay, m_pSurface, m_pSurface, m_pContext); }
    /// Context and both surfaces.
    bool IsCurrent() const
    {
        return eglGetCurrentContext() == m_pContext && eglGetCurrentSurface(EGL_DRAW) == m_pSurface &&
               eglGetCurrentSurface(EGL_READ) == m_pSurface;
    }

private:
    EGLDisplay m_pDisplay = EGL_NO_DISPLAY;
    EGLContext m_pContext = EGL_NO_CONTEXT;
    EGLSurface m_pSurface = EGL_NO_SURFACE;
};

class Life : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
        ASSERT_EQ(CGLRecorder::Get().LivingGLNames(), 0);
    }
    bool Start(CCustomGPUDewarperOffscreen& rDewarper)
    {
        return rDewarper.InitGL(32, 24) && rDewarper.StartGL();
    }
    bool Draw(CCustomGPUDewarperOffscreen& rDewarper)
    {
        return rDewarper.SetTexture(oFrame.Image(), false, nullptr, 0) && rDewarper.DrawGLScene(false);
    }
    static void ExpectNothingLeft(int nLost)
    {
        const CGLRecorder& r = CGLRecorder::Get();
        EXPECT_EQ(r.LivingGLNames(), 0);
        EXPECT_EQ(r.Living(EGL_KIND_SYNC) + r.Living(EGL_KIND_IMAGE), 0);
        EXPECT_EQ(r.NamesLostWithContexts(), nLost) << "deleted, not dropped with the context";
    }

    CTestFrame oFrame{AsymmetricPicture(32, 24), IMAGE_FORMAT_NV12};
};

} // namespace

TEST_F(Life, TheHostsContextIsCurrentAgainAfterTheStop)
{
    const CHostContext oHost;
    for (const bool bDrawn : {false, true}) {
        oHost.MakeCurrent();
        CCustomGPUDewarperOffscreen oDewarper;
        ASSERT_TRUE(Start(oDewarper));
        EXPECT_FALSE(oHost.IsCurrent());
        if (bDrawn) {
            ASSERT_TRUE(Draw(oDewarper));
        }
        ASSERT_TRUE(oDewarper.StopGL());
        EXPECT_TRUE(oHost.IsCurrent());
        ASSERT_TRUE(oDewarper.StopGL());
        EXPECT_TRUE(oHost.IsCurrent()) << "a second stop is none";
    }
}

TEST_F(Life, TheHostsContextIsCurrentAgainAfterTheEnd)
{
    const CHostContext oHost;
    oHost.MakeCurrent();
    {
        CCustomGPUDewarperOffscreen oDewarper;
        ASSERT_TRUE(Start(oDewarper));
        ASSERT_TRUE(Draw(oDewarper));
    }
    EXPECT_TRUE(oHost.IsCurrent());
}

TEST_F(Life, AnotherContextThatIsCurrentAtTheStopStaysSo)
{
    const CHostContext oHost;
    const CHostContext oOther;
    oHost.MakeCurrent();
    CCustomGPUDewarperOffscreen oDewarper;
    ASSERT_TRUE(Start(oDewarper));
    ASSERT_TRUE(Draw(oDewarper));
    oOther.MakeCurrent();
    const int nLost = CGLRecorder::Get().NamesLostWithContexts();
    ASSERT_TRUE(oDewarper.StopGL());
    EXPECT_TRUE(oOther.IsCurrent());
    ExpectNothingLeft(nLost);
}

TEST_F(Life, WhereNoContextWasCurrentNoneIsAfterTheStop)
{
    CCustomGPUDewarperOffscreen oDewarper;
    ASSERT_TRUE(Start(oDewarper));
    ASSERT_TRUE(Draw(oDewarper));
    ASSERT_TRUE(oDewarper.StopGL());
    EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
}

TEST_F(Life, AStopWithoutAStartTouchesNothing)
{
    const CHostContext oHost;
    oHost.MakeCurrent();
    CGLRecorder::Get().Start();
    {
        CCustomGPUDewarperOffscreen oDewarper;
        EXPECT_TRUE(oDewarper.StopGL());
        EXPECT_TRUE(oDewarper.InitGL(32, 24));
        EXPECT_TRUE(oDewarper.StopGL());
    }
    EXPECT_EQ(CGLRecorder::Get().CountPrefix("gl"), 0);
    EXPECT_EQ(CGLRecorder::Get().Count("eglMakeCurrent"), 0);
    EXPECT_TRUE(oHost.IsCurrent());
}

TEST_F(Life, AnyOrderOfStartsStopsAndFramesLeavesNothing)
{
    CLogCapture oLog;
    std::mt19937 oRandom(3);
    const int nLost = CGLRecorder::Get().NamesLostWithContexts();
    const int nContexts = CGLRecorder::Get().Living(EGL_KIND_CONTEXT);
    const int nSurfaces = CGLRecorder::Get().Living(EGL_KIND_SURFACE);
    int nDrawn = 0;
    for (int nLife = 0; nLife < 25; ++nLife) {
        CCustomGPUDewarperOffscreen oDewarper;
        oDewarper.InitGL(32, 24);
        bool bStarted = false;
        for (int i = 0; i < 20; ++i) {
            switch (oRandom() % 9) {
            case 0:
            case 1:
                ASSERT_TRUE(oDewarper.StartGL());
                bStarted = true;
                break;
            case 2:
                ASSERT_TRUE(oDewarper.StopGL());
                bStarted = false;
                ExpectNothingLeft(nLost);
                EXPECT_EQ(CGLRecorder::Get().Living(EGL_KIND_CONTEXT), nContexts);
                EXPECT_EQ(CGLRecorder::Get().Living(EGL_KIND_SURFACE), nSurfaces);
                break;
            case 3:
                if (bStarted)
                    oDewarper.FreeOpenGLObjects();
                break;
            case 4:
                if (bStarted)
                    oDewarper.ReinitializeOpenGLObjects();
                break;
            case 5:
                oDewarper.SetMaskPolygons({{{{2, 2}, {20, 2}, {20, 20}}, 0x204060FF}});
                oDewarper.SetStrings({Text("1", 0, 0, 16)});
                SetOutput(oDewarper, PlainPicture(8, 8, 0x00800080));
                break;
            case 6:
                oDewarper.SetViewType(static_cast<EViewType>(1 + oRandom() % 9));
                break;
            default:
                EXPECT_EQ(Draw(oDewarper), bStarted);
                nDrawn += bStarted ? 1 : 0;
                break;
            }
        }
    }
    ExpectNothingLeft(nLost);
    EXPECT_EQ(CGLRecorder::Get().Living(EGL_KIND_CONTEXT), nContexts);
    EXPECT_EQ(CGLRecorder::Get().Living(EGL_KIND_SURFACE), nSurfaces);
    EXPECT_GT(nDrawn, 20);
    EXPECT_NO_GL_ERROR();
}
