/// \file
/// Stops the program on an impossible state. The name and arguments are those of Android's C library; the
/// Linux side supplies the function, weak, so that a host can put its own in its place.
#pragma once

extern "C" [[noreturn]] void __assert2(const char* pFile, int nLine, const char* pFunction,
                                       const char* pExpression);
