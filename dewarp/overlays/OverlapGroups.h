/// \file
/// Which strings share pixels.
#pragma once

#include "dewarp/overlays/SGPUString.h"
#include "platform/Export.h"

#include <vector>

/// Gives strings whose drawn rectangles overlap, directly or through others, one number other than 0, and all
/// others 0. Thread: any, serialised by the host. Fails: may throw for lack of memory.
LUMOR_INTERNAL_API void RecomputeOverlapGroups(std::vector<SGPUString>& vStrings);
