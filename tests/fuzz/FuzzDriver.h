/// \file
/// The two halves of the layer between the library and its driver in the fuzz programs: contexts and names
/// (FuzzDriver.cpp), programs (FuzzPrograms.cpp).
#pragma once

#include <EGL/egl.h>

/// Programs belong to a context: from now on those of this one are handed out.
void UseProgramsOf(EGLContext pContext);

/// Programs and shaders that the library has not deleted.
int LivingPrograms();
