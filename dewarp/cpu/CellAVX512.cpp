#include "dewarp/cpu/CellTargets.h"
const SCellKernels* AVX512Kernels()
{
    return nullptr;
}
