/// \file
/// Driver calls that can fail for want of memory, and how each fails.
#pragma once

#include "tests/support/GLRecorder.h"

#include <GLES3/gl31.h>

#include <gtest/gtest.h>
#include <ostream>

/// One kind of fault.
struct SFaultKind
{
    const char* pInjection;  ///< call, or query whose answer is replaced
    const char* pCall;       ///< call that is counted to see whether the fault was reached
    unsigned int nError = 0; ///< GL error that the call leaves; 0: only its result tells
    int nTimes = 1;          ///< how often in a row
};

inline std::ostream& operator<<(std::ostream& rStream, const SFaultKind& rKind)
{
    return rStream << rKind.pInjection;
}

/// Makes one such call fail, the next one after nSkip others.
inline void InjectFault(const SFaultKind& rKind, int nSkip)
{
    CGLRecorder::Get().Start();
    if (rKind.nError != 0)
        CGLRecorder::Get().InjectError(rKind.pInjection, rKind.nError, nSkip, rKind.nTimes);
    else
        CGLRecorder::Get().Inject(rKind.pInjection, 0.0, nSkip, rKind.nTimes);
}

/// Ends the injection; true when the call was reached.
inline bool EndFault(const SFaultKind& rKind, int nSkip)
{
    CGLRecorder& rRecorder = CGLRecorder::Get();
    rRecorder.ClearInjections();
    return rRecorder.Count(rKind.pCall) > nSkip;
}

/// What a frame of both classes can meet.
inline const SFaultKind FRAME_FAULTS[] = {
    {"glGenTextures", "glGenTextures", GL_OUT_OF_MEMORY},
    {"glTexImage2D", "glTexImage2D", GL_OUT_OF_MEMORY},
    {"glGenBuffers", "glGenBuffers", GL_OUT_OF_MEMORY},
    {"glBufferData", "glBufferData", GL_OUT_OF_MEMORY},
    {"glGenFramebuffers", "glGenFramebuffers", GL_OUT_OF_MEMORY},
    {"glCreateShader", "glCreateShader"},
    {"glCreateProgram", "glCreateProgram"},
    // The given text and its adapted copy both fail.
    {"GL_COMPILE_STATUS", "glCompileShader", 0, 2},
    {"GL_LINK_STATUS", "glLinkProgram"},
};
