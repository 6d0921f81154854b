#include "dewarp/overlays/StringList.h"

#include "platform/Report.h"

#include <algorithm>
#include <cstddef>

static std::ptrdiff_t Length(const std::vector<SGPUString>& vStrings)
{
    return static_cast<std::ptrdiff_t>(vStrings.size());
}

void SStringList::Set(const std::vector<SGPUString>& vNew, CReport& rReport)
{
    // A list of its own until it is whole.
    std::vector<SGPUString> vNext(vStrings.begin(),
                                  vStrings.begin() + std::min(Length(vStrings), Length(vNew)));
    vNext.resize(vNew.size());
    int nTooHigh = 0;
    for (std::size_t i = 0; i < vNew.size(); ++i) {
        vNext[i] = vNew[i];
        nTooHigh += vNew[i].nHeight > MOST_TEXT_HEIGHT ? 1 : 0;
    }
    vStrings.swap(vNext);
    bStringsChanged = true;
    if (nTooHigh > 0)
        rReport.Refuse("%s: %d of %zu texts are higher than %d pixels and are not drawn", "SetStrings",
                       nTooHigh, vNew.size(), MOST_TEXT_HEIGHT);
}
