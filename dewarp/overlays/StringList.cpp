#include "dewarp/overlays/StringList.h"

#include "platform/Report.h"

void SStringList::Set(const std::vector<SGPUString>& vNew, CReport& rReport)
{
    bStringsChanged = true;
    vStrings.resize(vNew.size());
    int nTooHigh = 0;
    for (std::size_t i = 0; i < vNew.size(); ++i) {
        vStrings[i] = vNew[i];
        nTooHigh += vNew[i].nHeight > MOST_TEXT_HEIGHT ? 1 : 0;
    }
    if (nTooHigh > 0)
        rReport.Refuse("%s: %d of %zu texts are higher than %d pixels and are not drawn", "SetStrings",
                       nTooHigh, vNew.size(), MOST_TEXT_HEIGHT);
}
