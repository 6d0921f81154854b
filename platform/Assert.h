/// \file
/// Stops the program on an impossible state. Name and arguments are those of Android's C library; elsewhere
/// the function is supplied here, weak, so that a program can put its own in its place.
#pragma once

/// Logs and prints "file:line: function: assertion "expression" failed" and aborts.
/// Thread: any.
/// Fails: never returns.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the name is given
extern "C" [[noreturn]] void __assert2(const char* pFile, int nLine, const char* pFunction,
                                       const char* pExpression);
