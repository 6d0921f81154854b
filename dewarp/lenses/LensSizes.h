/// \file
/// Lenses of cameras that are known by the size of their frames.
#pragma once

#include "dewarp/records/Enumerations.h"
#include "platform/Export.h"

/// Lens model that the frame size stands for; LENS_UNKNOWN when no known sensor has that size.
/// Units: pixels. Thread: any. Fails: never.
LUMOR_API ELensType AutoDetectLensType(int nWidth, int nHeight);
