/// \file
/// How the core comes by the engine that draws with OpenGL ES, which it does not link.
#pragma once

#include "platform/Export.h"

class CDewarper;

/// A started dewarper for pictures of a size; the caller deletes it. bOnlyHardware: null, without a log line,
/// where no driver is or the one there is draws on the processor. Thread: the one that draws; the context is
/// current there afterwards. Fails: with null and a log line.
extern "C" LUMOR_INTERNAL_API CDewarper* lumor_dewarp_make_gl_dewarper(int nWidth, int nHeight,
                                                                       bool bOnlyHardware);

using FMakeGLDewarper = CDewarper* (*)(int nWidth, int nHeight, bool bOnlyHardware);

/// That function: linked, where the parts are one library; else of the library that the process has, or that
/// lies beside the core. Thread: any. Fails: with null where there is none, or it lacks what it needs.
FMakeGLDewarper FindGLEngine();
