#include "dewarp/cpu/CellTargets.h"
const SCellKernels* BaselineKernels()
{
    return nullptr;
}
