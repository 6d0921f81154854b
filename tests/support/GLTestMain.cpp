// main() of tests that need a GL context. Exits 77, which CTest counts as skipped, where none is to be had.
#include "tests/support/GLRecorder.h"

#include <EGL/egl.h>
#include <GLES3/gl31.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>

/// What the driver keeps for itself until the program ends is not ours to judge.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the name is the leak checker's
extern "C" const char* __lsan_default_suppressions();
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libLLVM\nleak:swrast_dri\nleak:libgallium\nleak:libEGL_mesa\nleak:libGLdispatch\n"
           "leak:libEGL.so\nleak:libdrm\nleak:libnvidia\n";
}

/// Keeps one module of the driver loaded, so that a leak checker can still name its frames at exit.
static int PinModule(dl_phdr_info* pInfo, std::size_t /*nSize*/, void* /*pUser*/)
{
    for (const char* pPart : {"EGL", "GLES", "GLdispatch", "glapi", "_dri.so", "gallium", "LLVM", "nvidia"})
        if (std::strstr(pInfo->dlpi_name, pPart) != nullptr)
            dlopen(pInfo->dlpi_name, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
    return 0;
}

/// Makes a context the plainest way, and lets it go again.
static bool ContextCanBeHad()
{
    EGLDisplay pDisplay = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    if (pDisplay == EGL_NO_DISPLAY || !eglInitialize(pDisplay, nullptr, nullptr))
        return false;
    eglBindAPI(EGL_OPENGL_ES_API);
    const EGLint anConfig[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_ES3_BIT,
                               EGL_NONE};
    EGLConfig pConfig = nullptr;
    EGLint nConfigs = 0;
    eglChooseConfig(pDisplay, anConfig, &pConfig, 1, &nConfigs);
    const EGLint anContext[] = {EGL_CONTEXT_MAJOR_VERSION, 3, EGL_CONTEXT_MINOR_VERSION, 1, EGL_NONE};
    EGLContext pContext =
        nConfigs < 1 ? EGL_NO_CONTEXT : eglCreateContext(pDisplay, pConfig, EGL_NO_CONTEXT, anContext);
    bool bReady = pContext != EGL_NO_CONTEXT &&
                  eglMakeCurrent(pDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, pContext) == EGL_TRUE;
    if (bReady)
        std::printf("GL: %s\n", reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
    dl_iterate_phdr(PinModule, nullptr);
    eglMakeCurrent(pDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (pContext != EGL_NO_CONTEXT)
        eglDestroyContext(pDisplay, pContext);
    eglTerminate(pDisplay);
    return bReady;
}

/// A GL error that a test did not ask about fails it.
class CGLErrorListener : public testing::EmptyTestEventListener
{
public:
    void OnTestStart(const testing::TestInfo& /*oInfo*/) override
    {
        CGLRecorder::Get().ClearInjections();
        CGLRecorder::Get().Start();
    }
    void OnTestEnd(const testing::TestInfo& /*oInfo*/) override
    {
        CGLRecorder::Get().ClearInjections();
        EXPECT_NO_GL_ERROR() << "GL errors that the test did not look at";
    }
};

int main(int nArgs, char** ppArgs)
{
    // Tests run without a window system, also when started by hand.
    setenv("EGL_PLATFORM", "surfaceless", 0);
    testing::InitGoogleTest(&nArgs, ppArgs);
    if (testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();
    if (!ContextCanBeHad()) {
        std::fprintf(stderr, "no OpenGL ES 3.1 context is to be had here: skipped\n");
        return 77;
    }
    testing::UnitTest::GetInstance()->listeners().Append(new CGLErrorListener);
    return RUN_ALL_TESTS();
}
