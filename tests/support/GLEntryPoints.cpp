// The entry points of OpenGL ES that need nothing but recording.
#include "tests/support/GLForward.h"

#include <EGL/egl.h>
#include <GLES3/gl31.h>

unsigned long long CurrentGLContext()
{
    static const auto fReal = RealFunction<EGLContext (*)()>("eglGetCurrentContext");
    return static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(fReal()));
}

void CheckGLErrorAfter(const char* pName)
{
    static const auto fReal = RealFunction<GLenum (*)()>("glGetError");
    CGLRecorder& oRecorder = CGLRecorder::Get();
    if (CurrentGLContext() == 0) {
        oRecorder.NoteError(pName, 0);
        return;
    }
    // A lost context may answer the same error for ever.
    for (int i = 0; i < 8; ++i) {
        const GLenum nError = fReal();
        if (nError == GL_NO_ERROR)
            return;
        oRecorder.NoteError(pName, nError);
        oRecorder.PushPendingError(nError);
    }
}

#define GL_BODY(R, N, ...)                                                                                   \
    static const auto fReal = RealFunction<decltype(&N)>(#N);                                                \
    return ForwardCall<R>(true, CallOf(#N __VA_OPT__(, ) __VA_ARGS__), fReal __VA_OPT__(, ) __VA_ARGS__);

#define GL_CALL_0(R, N)                                                                                      \
    extern "C" R N()                                                                                         \
    {                                                                                                        \
        GL_BODY(R, N)                                                                                        \
    }
#define GL_CALL_1(R, N, A)                                                                                   \
    extern "C" R N(A a)                                                                                      \
    {                                                                                                        \
        GL_BODY(R, N, a)                                                                                     \
    }
#define GL_CALL_2(R, N, A, B)                                                                                \
    extern "C" R N(A a, B b)                                                                                 \
    {                                                                                                        \
        GL_BODY(R, N, a, b)                                                                                  \
    }
#define GL_CALL_3(R, N, A, B, C)                                                                             \
    extern "C" R N(A a, B b, C c)                                                                            \
    {                                                                                                        \
        GL_BODY(R, N, a, b, c)                                                                               \
    }
#define GL_CALL_4(R, N, A, B, C, D)                                                                          \
    extern "C" R N(A a, B b, C c, D d)                                                                       \
    {                                                                                                        \
        GL_BODY(R, N, a, b, c, d)                                                                            \
    }
#define GL_CALL_5(R, N, A, B, C, D, E)                                                                       \
    extern "C" R N(A a, B b, C c, D d, E e)                                                                  \
    {                                                                                                        \
        GL_BODY(R, N, a, b, c, d, e)                                                                         \
    }
#define GL_CALL_6(R, N, A, B, C, D, E, F)                                                                    \
    extern "C" R N(A a, B b, C c, D d, E e, F f)                                                             \
    {                                                                                                        \
        GL_BODY(R, N, a, b, c, d, e, f)                                                                      \
    }
#define GL_CALL_7(R, N, A, B, C, D, E, F, G)                                                                 \
    extern "C" R N(A a, B b, C c, D d, E e, F f, G g)                                                        \
    {                                                                                                        \
        GL_BODY(R, N, a, b, c, d, e, f, g)                                                                   \
    }
#define GL_CALL_8(R, N, A, B, C, D, E, F, G, H)                                                              \
    extern "C" R N(A a, B b, C c, D d, E e, F f, G g, H h)                                                   \
    {                                                                                                        \
        GL_BODY(R, N, a, b, c, d, e, f, g, h)                                                                \
    }
#define GL_CALL_9(R, N, A, B, C, D, E, F, G, H, I)                                                           \
    extern "C" R N(A a, B b, C c, D d, E e, F f, G g, H h, I i)                                              \
    {                                                                                                        \
        GL_BODY(R, N, a, b, c, d, e, f, g, h, i)                                                             \
    }
#define GL_CALL_10(R, N, A, B, C, D, E, F, G, H, I, J)                                                       \
    extern "C" R N(A a, B b, C c, D d, E e, F f, G g, H h, I i, J j)                                         \
    {                                                                                                        \
        GL_BODY(R, N, a, b, c, d, e, f, g, h, i, j)                                                          \
    }
#define GL_CALL_11(R, N, A, B, C, D, E, F, G, H, I, J, K)                                                    \
    extern "C" R N(A a, B b, C c, D d, E e, F f, G g, H h, I i, J j, K k)                                    \
    {                                                                                                        \
        GL_BODY(R, N, a, b, c, d, e, f, g, h, i, j, k)                                                       \
    }

#include "tests/support/GLEntryPointTable.inc"
