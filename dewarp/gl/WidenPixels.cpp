#include "dewarp/gl/WidenPixels.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace
{

// Two pixels a lane; a register of any 64-bit processor.
using VLanes = std::uint64_t __attribute__((vector_size(16)));

const std::size_t GROUP = 4;  ///< pixels at a time
const std::size_t REACH = 14; ///< bytes that a group reads, two of them the next pixel's

std::uint64_t LoadLane(const unsigned char* pBytes)
{
    std::uint64_t nLane = 0;
    std::memcpy(&nLane, pBytes, sizeof nLane);
    return nLane;
}

/// The shifts hold where a lane's first byte is its lowest.
void WidenGroup(const unsigned char* pFrom, unsigned char* pTo)
{
    const VLanes vPairs = {LoadLane(pFrom), LoadLane(pFrom + 6)};
    const VLanes vWide = (vPairs & 0xFFFFFFu) | ((vPairs & 0xFFFFFF000000u) << 8) | 0xFF000000FF000000u;
    std::memcpy(pTo, &vWide, sizeof vWide);
}

void WidenRow(const unsigned char* pFrom, std::size_t nPixels, unsigned char* pTo)
{
    std::size_t i = 0;
    if constexpr (std::endian::native == std::endian::little) {
        for (; 3 * i + REACH <= 3 * nPixels; i += GROUP)
            WidenGroup(pFrom + 3 * i, pTo + 4 * i);
    }
    for (; i < nPixels; ++i) {
        std::memcpy(pTo + 4 * i, pFrom + 3 * i, 3);
        pTo[4 * i + 3] = 255;
    }
}

} // namespace

void WidenPixels(const unsigned char* pFrom, int nRowBytes, int nWidth, int nHeight, unsigned char* pTo)
{
    const std::size_t nPixels = static_cast<std::size_t>(nWidth);
    for (int y = 0; y < nHeight; ++y) {
        WidenRow(pFrom, nPixels, pTo);
        pFrom += nRowBytes;
        pTo += 4 * nPixels;
    }
}
