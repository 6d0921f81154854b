/// \file
/// Masks and texts that the benchmarks lay over a view.
#pragma once

#include "dewarp/overlays/SGPUString.h"
#include "dewarp/records/SGRect.h"

#include <vector>

/// Masks like those of a street: some polygons of a dozen points, moved to the right by some pixels of a
/// 1920x1920 frame.
std::vector<SGPolygon> BenchMasks(int nShift);

/// A camera's name and a clock.
std::vector<SGPUString> BenchStrings(int nSecond);
