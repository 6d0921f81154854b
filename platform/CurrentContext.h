/// \file
/// A thread's current context.
#pragma once

#include "platform/Export.h"

#include <EGL/egl.h>

/// What was current on this thread, to be put back later.
struct LUMOR_API SCurrentContext
{
    EGLDisplay pDisplay = EGL_NO_DISPLAY;
    EGLSurface pDrawSurface = EGL_NO_SURFACE;
    EGLSurface pReadSurface = EGL_NO_SURFACE;
    EGLContext pContext = EGL_NO_CONTEXT;
};
