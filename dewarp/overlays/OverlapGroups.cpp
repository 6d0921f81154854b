#include "dewarp/overlays/OverlapGroups.h"

#include "dewarp/records/SGRect.h"

#include <cstddef>

static SGRect DrawnRect(const SGPUString& rString)
{
    return {rString.nDrawnX, rString.nDrawnY, rString.nDrawnW, rString.nDrawnH};
}

void RecomputeOverlapGroups(std::vector<SGPUString>& vStrings)
{
    // Strings that cover nothing overlap nothing: however many there are, they take no time.
    std::vector<SGPUString*> vVisible;
    for (SGPUString& rString : vStrings) {
        rString.nOverlapGroup = 0;
        if (rString.nDrawnW > 0 && rString.nDrawnH > 0)
            vVisible.push_back(&rString);
    }
    int nGroups = 0;
    for (std::size_t i = 0; i < vVisible.size(); ++i) {
        for (std::size_t j = i + 1; j < vVisible.size(); ++j) {
            if (!DrawnRect(*vVisible[i]).Intersect(DrawnRect(*vVisible[j])))
                continue;
            int& rFirst = vVisible[i]->nOverlapGroup;
            int& rSecond = vVisible[j]->nOverlapGroup;
            if (rFirst == 0)
                rFirst = rSecond != 0 ? rSecond : ++nGroups;
            if (rSecond != 0 && rSecond != rFirst) {
                // Two groups meet: they become one.
                const int nOld = rSecond;
                for (SGPUString* pString : vVisible) {
                    if (pString->nOverlapGroup == nOld)
                        pString->nOverlapGroup = rFirst;
                }
            }
            rSecond = rFirst;
        }
    }
}
