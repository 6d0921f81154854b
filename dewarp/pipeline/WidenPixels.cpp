#include "dewarp/pipeline/WidenPixels.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace
{

const std::size_t GROUP = 4; ///< pixels that fill whole words on both sides

std::uint32_t LoadWord(const unsigned char* pBytes)
{
    std::uint32_t nWord = 0;
    std::memcpy(&nWord, pBytes, sizeof nWord);
    return nWord;
}

/// Four pixels: three words become four. The shifts hold where a word's first byte is its lowest.
void WidenGroup(const unsigned char* pFrom, unsigned char* pTo)
{
    const std::uint32_t nOpaque = 0xFF000000u;
    const std::uint32_t a = LoadWord(pFrom);
    const std::uint32_t b = LoadWord(pFrom + 4);
    const std::uint32_t c = LoadWord(pFrom + 8);
    const std::uint32_t anWide[GROUP] = {a | nOpaque, a >> 24 | b << 8 | nOpaque, b >> 16 | c << 16 | nOpaque,
                                         c >> 8 | nOpaque};
    std::memcpy(pTo, anWide, sizeof anWide);
}

void WidenRow(const unsigned char* pFrom, std::size_t nPixels, unsigned char* pTo)
{
    std::size_t i = 0;
    if constexpr (std::endian::native == std::endian::little) {
        for (; i + GROUP <= nPixels; i += GROUP)
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
