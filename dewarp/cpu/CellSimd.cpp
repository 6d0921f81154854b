// Which kernels are drawn with.

#include "dewarp/cpu/CellTargets.h"

#include <cstdlib>
#include <cstring>

namespace
{

struct SKernelList
{
    SKernelList()
    {
        int n = 0;
        ap[n++] = &PlainKernels();
        for (const SCellKernels* p : {BaselineKernels(), AVX2Kernels(), AVX512Kernels()}) {
            if (p != nullptr)
                ap[n++] = p;
        }
        pBest = ap[n - 1];
        // For measurements: the named one, or the best that there is.
        const char* const pWish = std::getenv("LUMOR_CPU_TARGET");
        for (int i = 0; pWish != nullptr && i < n; ++i) {
            if (std::strcmp(ap[i]->pName, pWish) == 0)
                pBest = ap[i];
        }
    }

    const SCellKernels* ap[5] = {};
    const SCellKernels* pBest = nullptr;
};

const SKernelList& Kernels()
{
    static const SKernelList sList;
    return sList;
}

} // namespace

const SCellKernels& BestKernels()
{
    return *Kernels().pBest;
}

const SCellKernels* const* ListKernels()
{
    return Kernels().ap;
}
