/// \file
/// From positions in the frame to pixels of the picture: what every instruction set has to do, and with which
/// numbers. All of it is integer arithmetic; the plain code in CellScalar.cpp is the rule, and whatever is
/// faster gives the same bytes.
///
/// A linear sample of the bytes a, b (right of it), c, d (below) at fractions x, y of POSITION_BITS bits:
///
///     x7 = x * 127, to the nearest of 2048ths       weights 127 - x7 and x7: both fit a signed byte
///     v  = a * (127 - x7) + b * x7, and likewise below; between both by y, to the nearest
///
/// v counts 127 a level (a SAMPLE). A nearest sample is a * 127.
#pragma once

#include "dewarp/cpu/Grid.h"

#include <cstddef>
#include <cstdint>

inline constexpr int SAMPLE_LEVEL = 127;

/// Bytes of one plane of the frame. Owns: nothing.
struct SSamplePlane
{
    const unsigned char* pPixels = nullptr;
    std::ptrdiff_t nStride = 0; ///< bytes
    int nWidth = 0;             ///< pixels
    int nHeight = 0;
    int nPixelBytes = 1;
};

/// Limited to full range and YUV to RGB. Levels count 64 (one level is 64), factors 32768. Whole parts of
/// factors are in the code: luma and chroma once and a part, red and blue once and a part.
struct SColourFactors
{
    bool bLimited = false;
    std::int16_t nLumaMin = 0;
    std::int16_t nLumaPart = 0;   ///< of the luma factor, less 1
    std::int16_t nChromaPart = 0; ///< of the chroma factor, less 1
    std::int16_t nRedV = 0;       ///< less 1
    std::int16_t nGreenU = 0;
    std::int16_t nGreenV = 0;
    std::int16_t nBlueU = 0; ///< less 1
};

/// How the frame's bytes become a pixel.
enum ECellSource : int
{
    SOURCE_GRAY,   ///< one plane, luma alone
    SOURCE_NV,     ///< luma, and a plane of two chroma bytes
    SOURCE_PLANAR, ///< luma, and two planes of chroma
    SOURCE_PACKED, ///< one plane of 3 or 4 bytes a pixel
};

/// What all cells of a frame have in common.
struct SCellJob
{
    ECellSource eSource = SOURCE_GRAY;
    bool bLinear = false;
    SSamplePlane aPlanes[3];
    bool bVFirst = false;      ///< NV21
    int anChannels[4] = {};    ///< packed: byte of red, green, blue and alpha in a pixel; alpha -1: opaque
    bool bPremultiply = false; ///< packed: colours times alpha
    SColourFactors sColours;
    bool bRedFirst = false; ///< pixels are written R, G, B, A; otherwise B, G, R, A
    int nFrameWidth = 0;
    int nFrameHeight = 0;
};

/// Points of a smooth cell: two or three rows of two or three.
struct SCellPoints
{
    const SGridPoint* pFirst = nullptr;
    std::ptrdiff_t nRow = 0; ///< points from one row to the next
    int nStep = CELL_SIDE;   ///< pixels between two points
};

/// Draws runs of smooth cells, linear filter, into 8 rows of the target. Each entry may be null: then cell by
/// cell, by the rule.
struct SCellKernels
{
    const char* pName = "";
    /// Luma bytes.
    void (*pLuma)(const SCellJob& rJob, const SCellPoints& rPoints, int nCells, unsigned char* pTarget,
                  std::ptrdiff_t nStride) = nullptr;
    /// Chroma of 4 x 4 places a cell: U and V in turns into the first target, or into one each where there
    /// are two.
    void (*pChroma)(const SCellJob& rJob, const SCellPoints& rPoints, int nCells,
                    unsigned char* const* ppTargets, const std::ptrdiff_t* pStrides) = nullptr;
    /// Both at once; null: one after the other.
    void (*pPlanes)(const SCellJob& rJob, const SCellPoints& rPoints, int nCells, unsigned char* pTarget,
                    std::ptrdiff_t nStride, unsigned char* const* ppTargets,
                    const std::ptrdiff_t* pStrides) = nullptr;
    /// Pixels of 4 bytes.
    void (*pPixels)(const SCellJob& rJob, const SCellPoints& rPoints, int nCells, unsigned char* pTarget,
                    std::ptrdiff_t nStride) = nullptr;
    // One cell of positions of its own, all of which lie inside the frame as those of smooth cells do; packed
    // frames of 3 bytes: not in its last two rows.
    void (*pLumaAt)(const SCellJob& rJob, const SGridPoint* pPoints, unsigned char* pLuma) = nullptr;
    /// 16 places; U and V in turns.
    void (*pChromaAt)(const SCellJob& rJob, const SGridPoint* pPlaces, unsigned char* pPairs) = nullptr;
    void (*pPixelsAt)(const SCellJob& rJob, const SGridPoint* pPoints, std::uint32_t* pPixels) = nullptr;
    // One cell of positions of its own, in lines.
    void (*pLumaLines)(const SCellJob& rJob, const SExactLines& rLines, unsigned char* pTarget,
                       std::ptrdiff_t nStride) = nullptr;
    /// Targets as those of pChroma.
    void (*pChromaLines)(const SCellJob& rJob, const SExactLines& rLines, unsigned char* const* ppTargets,
                         const std::ptrdiff_t* pStrides) = nullptr;
    void (*pPixelLines)(const SCellJob& rJob, const SExactLines& rLines, unsigned char* pTarget,
                        std::ptrdiff_t nStride) = nullptr;
};

/// The plain code alone.
const SCellKernels& PlainKernels();
/// The fastest that this processor runs, decided once.
const SCellKernels& BestKernels();
/// All that this processor runs, the plain one first; ends with null.
const SCellKernels* const* ListKernels();

// --- the rule ---

/// Position in half resolution.
inline std::int32_t ChromaPosition(std::int32_t nPosition, int nSize)
{
    // The middle of a chroma pixel lies between two luma pixels.
    const std::int64_t n = std::int64_t{nPosition} + POSITION_ONE / 2;
    if (nSize % 2 == 0)
        return static_cast<std::int32_t>(n >> 1) - POSITION_ONE / 2;
    const std::int64_t nScaled = n * (nSize / 2);
    const std::int64_t nWhole = nScaled >= 0 ? nScaled / nSize : -((-nScaled + nSize - 1) / nSize);
    return static_cast<std::int32_t>(nWhole) - POSITION_ONE / 2;
}

/// Positions of the 64 pixels of a smooth cell.
void PixelPositions(const SCellPoints& rPoints, SGridPoint* pPositions);
/// Positions, in full resolution, of the 16 chroma places of a smooth cell: the middles of 2 x 2 pixels.
void ChromaPlaces(const SCellPoints& rPoints, SGridPoint* pPositions);

/// One sample of one byte of a plane.
int SampleAt(const SSamplePlane& rPlane, int nByte, std::int32_t x, std::int32_t y, bool bLinear);

/// A sample as a byte.
inline int SampleByte(int nSample)
{
    return (nSample * 258 + 16384) >> 15;
}

/// Luma, U and V of a position, as samples.
struct SYUVSample
{
    int y = 0;
    int u = 0;
    int v = 0;
};
SYUVSample SampleYUV(const SCellJob& rJob, const SGridPoint& rPoint);

/// Red in the lowest byte, then green, blue, alpha.
std::uint32_t ConvertYUV(const SColourFactors& rColours, const SYUVSample& rSample);
/// A pixel of a packed frame likewise.
std::uint32_t SamplePacked(const SCellJob& rJob, const SGridPoint& rPoint);
/// The same from samples of red, green, blue and alpha.
std::uint32_t PackSamples(const SCellJob& rJob, const int* pSamples);
/// A pixel of any frame likewise.
std::uint32_t PlainPixel(const SCellJob& rJob, const SGridPoint& rPoint);
/// The same from samples; of a frame that is not packed.
std::uint32_t PlainPixel(const SCellJob& rJob, const SYUVSample& rSample);
/// Bytes of a pixel in the job's order.
inline std::uint32_t Ordered(const SCellJob& rJob, std::uint32_t nRGBA)
{
    return rJob.bRedFirst ? nRGBA
                          : (nRGBA & 0xFF00FF00U) | (nRGBA >> 16 & 0xFFU) | (nRGBA << 16 & 0x00FF0000U);
}
