/// \file
/// Mesh generator: the header that hosts include.
#pragma once

#include "dewarp/geometry/CustomGPUGeometry.h"
