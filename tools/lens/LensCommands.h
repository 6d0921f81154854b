/// \file
/// lumor-dewarp lens check and lumor-dewarp lens fit.
#pragma once

/// Whether a command line is one of them: its first word is "lens".
bool IsLensCommand(int nArguments, const char* const* ppArguments);
/// Carries it out; tells on stdout. Returns the exit status.
/// Fails: throws CToolError.
int RunLensCommand(int nArguments, const char* const* ppArguments);
