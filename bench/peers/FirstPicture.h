/// \file
/// Time from the start of a process to its first view.
#pragma once

#include <string>

/// Makes the named contender ("lumor", "v360" or "OpenCV") in this process and prints the milliseconds up to
/// its first view in memory. False for another name.
bool PrintFirstPicture(const std::string& strContender);

/// Starts processes that do so, in turn, and prints the medians. pProgram: this program's file.
void ComparePrograms(const std::string& strProgram, int nRounds);
