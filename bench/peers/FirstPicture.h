/// \file
/// Time from the start of a process to its first view.
#pragma once

#include "bench/peers/Report.h"

#include <string>

/// Makes the named contender in this process and prints the milliseconds up to its first view in memory:
/// "processor", "lumor" (OpenGL), "v360" or "OpenCV". False for another name.
bool PrintFirstPicture(const std::string& strContender);

/// Starts processes that do so, in turn, and prints the medians. strProgram: this program's file.
SPeerReport ComparePrograms(const std::string& strProgram, int nRounds);
/// "1920x1920 NV12/yuv420p to 1920x1080, first view of a process".
std::string FirstPictureTitle();
