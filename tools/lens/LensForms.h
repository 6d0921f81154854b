/// \file
/// The two forms of lens files: the tool's own, and that of calibration programs.
#pragma once

#include "LensFile.h"

class CLensKeys;

/// Both: Thread: any. Fails: throws CToolError (EXIT_FAILED) with the file, the key and what is expected. The
/// lens has not been looked at as a whole yet.
SLensFile ReadOwnForm(const CLensKeys& rKeys);
/// What OpenCV's programs write, and ROS, which has the same keys in other words.
SLensFile ReadProgramForm(const CLensKeys& rKeys);
/// Whether there is a camera matrix, by any of its names.
bool IsProgramForm(const CLensKeys& rKeys);
