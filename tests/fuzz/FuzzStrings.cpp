// Bytes to strings and back.
#include "FuzzSupport.h"

#include "dewarp/overlays/StringFormat.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

// Length of the whole records and their number, counted without the parser.
static std::size_t WholeBytes(const std::uint8_t* pData, std::size_t nSize, std::size_t& nRecords)
{
    std::size_t nOffset = 0;
    nRecords = 0;
    while (nSize - nOffset >= 2) {
        const std::size_t nCharacters = pData[nOffset] * 256U + pData[nOffset + 1];
        if (nSize - nOffset < 16 + nCharacters)
            break;
        nOffset += 16 + nCharacters;
        ++nRecords;
    }
    return nOffset;
}

static void CheckString(const SGPUString& sString)
{
    Require(sString.nHeight >= 0 && sString.nHeight <= 0xFFFF, "unsigned height");
    for (const int nChoice : {sString.nHAlign, sString.nVAlign, sString.nHRef, sString.nVRef})
        Require(nChoice >= 0 && nChoice <= 0xFF, "unsigned alignments");
    for (const int nDrawn : {sString.nDrawnX, sString.nDrawnY, sString.nDrawnW, sString.nDrawnH})
        Require(nDrawn == 0, "nothing drawn yet");
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize)
{
    if (nSize > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        return 0;
    const CFuzzInput oInput;
    std::size_t nRecords = 0;
    const std::size_t nWhole = WholeBytes(pData, nSize, nRecords);
    const std::vector<SGPUString> vStrings = ParseStrings(pData, static_cast<int>(nSize));
    Require(vStrings.size() == nRecords, "every whole record is read");
    const std::vector<unsigned char> vBytes = BuildStrings(vStrings);
    Require(vBytes.size() == nWhole && std::equal(vBytes.begin(), vBytes.end(), pData), "same bytes again");
    std::for_each(vStrings.begin(), vStrings.end(), CheckString);
    return 0;
}
