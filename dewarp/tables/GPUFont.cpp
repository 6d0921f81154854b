#include "dewarp/tables/GPUFont.h"

const int GPU_FONT::nW = 608;
const int GPU_FONT::nH = 384;
const int GPU_FONT::nCols = 16;
const int GPU_FONT::nRows = 6;
