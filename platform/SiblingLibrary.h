/// \file
/// Functions of a library that need not be there.
#pragma once

/// An exported function: of what the process has loaded for everybody already; else of a library that lies
/// beside this one; else of one that the system finds by its name. What was loaded stays.
/// \param pLibrary name without ending and version: "libother"
/// Thread: any. Fails: with null.
void* FindSiblingFunction(const char* pLibrary, const char* pFunction);

/// How the names of shared libraries of this version end here: ".so.0" and the like.
const char* SharedLibraryEnding();
