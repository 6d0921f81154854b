/// \file
/// The kernels that there are, one file each. Inside the room only.
#pragma once

#include "dewarp/cpu/CellKernel.h"

// Null where the processor cannot run them.
const SCellKernels* AVX2Kernels();
const SCellKernels* AVX512Kernels();
/// Sixteen bytes at a time: what every processor of the architecture has.
const SCellKernels* BaselineKernels();

/// Pixels of one smooth cell by the rule.
void PlainPixels(const SCellJob& rJob, const SCellPoints& rPoints, unsigned char* pTarget,
                 std::ptrdiff_t nStride);
/// The greatest y among a cell's points.
std::int32_t LowestRow(const SCellPoints& rPoints);
