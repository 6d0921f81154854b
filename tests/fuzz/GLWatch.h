/// \file
/// What targets with a GL context ask about it. There are two kinds of it: FuzzDriver.cpp, made for speed, in
/// the fuzz programs, and ReplayDriver.cpp, upon the tests' recording layer, where the corpora are replayed.
#pragma once

#include <string>

/// Before an input. Short meshes: only the beginning of a large mesh is drawn, which takes a software
/// renderer a small part of the time.
void BeginGLInput(bool bShortMeshes);

/// The GL errors since the last call, in words; empty: none. That a driver does not know the upload format of
/// BGR is none: the library asks for it that way.
std::string TakeGLErrors();

/// GL names that live.
int LivingGLNames();
