/// \file
/// How an entry point is recorded and passed on. Only for the entry points of the recording layer.
#pragma once

#include "tests/support/GLRecorder.h"
#include "tests/support/HeapCounter.h"

#include <cstdint>
#include <dlfcn.h>
#include <type_traits>

/// The context current on this thread, as a number; 0 when there is none.
unsigned long long CurrentGLContext();
/// Asks the driver for its error after a call, and keeps it for the application.
void CheckGLErrorAfter(const char* pName);

/// The next definition of a function after this program's own: the real one.
template <typename F>
F RealFunction(const char* pName)
{
    CDriverScope oScope;
    return reinterpret_cast<F>(dlsym(RTLD_NEXT, pName));
}

template <typename T>
double NumberOf(T oValue)
{
    if constexpr (std::is_pointer_v<T>)
        return static_cast<double>(reinterpret_cast<std::uintptr_t>(oValue));
    else if constexpr (std::is_floating_point_v<T>)
        return static_cast<double>(oValue);
    else
        return static_cast<double>(static_cast<long long>(oValue));
}

template <typename R>
R ResultOf(double fValue)
{
    if constexpr (std::is_void_v<R>)
        return;
    else if constexpr (std::is_pointer_v<R>)
        return reinterpret_cast<R>(static_cast<std::uintptr_t>(fValue)); // NOLINT(performance-no-int-to-ptr)
    else
        return static_cast<R>(fValue);
}

template <typename... A>
SGLCall CallOf(const char* pName, A... oArgs)
{
    SGLCall sCall;
    sCall.pName = pName;
    ((sCall.nPointers |= std::is_pointer_v<A> ? 1U << sCall.nArgs : 0U,
      sCall.aArgs[sCall.nArgs++] = NumberOf(oArgs)),
     ...);
    return sCall;
}

/// Records a call, then passes it on or makes it fail. bGL: a GL call, so its error is asked for.
template <typename R, typename F, typename... A>
R ForwardCall(bool bGL, SGLCall sCall, F fReal, A... oArgs)
{
    CDriverScope oScope;
    CGLRecorder& oRecorder = CGLRecorder::Get();
    oRecorder.Note(sCall);
    CGLRecorder::SInjection sInjection;
    if (oRecorder.TakeInjection(sCall.pName, sInjection)) {
        if (sInjection.nError != 0)
            oRecorder.PushPendingError(sInjection.nError);
        return ResultOf<R>(sInjection.fResult);
    }
    if (fReal == nullptr)
        return ResultOf<R>(0.0);
    if constexpr (std::is_void_v<R>) {
        fReal(oArgs...);
        if (bGL)
            CheckGLErrorAfter(sCall.pName);
    } else {
        const R oResult = fReal(oArgs...);
        if (bGL)
            CheckGLErrorAfter(sCall.pName);
        return oResult;
    }
}
