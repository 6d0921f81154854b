/// \file
/// EGL displays and contexts of a process without windows.
#pragma once

#include "platform/CurrentContext.h"

#include <mutex>

/// Initialises a display for one more user. Displays are shared by all dewarpers of the process, and some
/// drivers do not count how often they were initialised: the count is kept here. A display that the host
/// itself initialised before is never terminated. Thread: any. Fails: false when the driver cannot initialise
/// it.
bool InitializeDisplay(EGLDisplay pDisplay, EGLint* pMajor, EGLint* pMinor);

/// Ends one use of a display; the last one terminates it.
/// \param bReleaseThread a destroyed context is still current on this thread: while the display has other
/// users it is let go here, for one of them may be about to terminate the display.
void TerminateDisplay(EGLDisplay pDisplay, bool bReleaseThread = false);

/// Held while a context is started or stopped: some drivers do not stand a display being terminated on one
/// thread while another one sets up on it. Nests on one thread.
std::unique_lock<std::recursive_mutex> LockDisplays();

/// An initialised display that needs no window system: the default one, else Mesa's surfaceless platform,
/// else the first EGL device. EGL_NO_DISPLAY when none works. End with TerminateDisplay.
EGLDisplay OpenOffscreenDisplay();

/// A context of OpenGL ES 3.1 or later, and a configuration that goes with it; EGL_NO_CONTEXT when there is
/// none.
EGLContext CreateOffscreenContext(EGLDisplay pDisplay, EGLConfig* pConfig);

/// What is current on this thread; to be put back later.
SCurrentContext GetCurrentContext();
void RestoreCurrentContext(const SCurrentContext& rCurrent);
