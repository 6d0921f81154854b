// Cells by AVX-512 with byte permutes: a cell whose texels fit into 16 x 16 has them in registers, and
// nothing is fetched byte by byte. Other cells, and packed frames, are drawn as by AVX2.

#include "dewarp/cpu/CellTargets.h"

#if defined(__AVX512VBMI__)

#include <immintrin.h>

namespace
{

#include "dewarp/cpu/CellPermute.inc"

template <int STEP, bool LINEAR>
inline void LumaCell(const SCellJob& rJob, const SCellPoints& rPoints, const SBlock& b, unsigned char* p,
                     std::ptrdiff_t nStride)
{
    SPlaces as[2];
    PixelPlaces<STEP>(rPoints, b, as);
    V av[2];
    LumaSamples<LINEAR>(LoadLuma(rJob.aPlanes[0], b), as, av);
    const V v =
        _mm512_packus_epi16(_mm512_mulhrs_epi16(av[0], Set(258)), _mm512_mulhrs_epi16(av[1], Set(258)));
    PutEight(_mm512_castsi512_si128(v), p, p + 4 * nStride);
    PutEight(_mm512_extracti32x4_epi32(v, 1), p + nStride, p + 5 * nStride);
    PutEight(_mm512_extracti32x4_epi32(v, 2), p + 2 * nStride, p + 6 * nStride);
    PutEight(_mm512_extracti32x4_epi32(v, 3), p + 3 * nStride, p + 7 * nStride);
}

/// First chroma texel of a block's table: one before the middle of the block's first pixels.
inline void ChromaOrigin(const SCellJob& rJob, const SBlock& b, int& x, int& y)
{
    const int nMostX = rJob.nFrameWidth / 2 - TABLE_SIDE;
    const int nMostY = rJob.nFrameHeight / 2 - CHROMA_ROWS;
    x = b.x / 2 - 1;
    y = b.y / 2 - 1;
    x = x < 0 ? 0 : x < nMostX ? x : nMostX;
    y = y < 0 ? 0 : y < nMostY ? y : nMostY;
}

/// Rows of 32 bytes: 16 pairs.
inline STable LoadChroma(const SSamplePlane& rPlane, int x, int y)
{
    STable t;
    const unsigned char* p = rPlane.pPixels + y * rPlane.nStride + 2 * x;
    for (int n = 0; n < 4; ++n) {
        const auto Row = [&](int i) {
            return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + (2 * n + i) * rPlane.nStride));
        };
        t.av[n] = _mm512_inserti64x4(_mm512_castsi256_si512(Row(0)), Row(1), 1);
    }
    t.bHalf = false;
    return t;
}

/// From places in the block to places in the chroma table.
inline V Halved(V v, int nShift)
{
    return _mm512_add_epi16(_mm512_srli_epi16(_mm512_add_epi16(v, Set(POSITION_ONE / 2)), 1), Set(nShift));
}

/// Bytes of a pair, in its 16 bits.
inline V PairIndex(V x, V y)
{
    const V v = _mm512_or_si512(_mm512_slli_epi16(_mm512_srli_epi16(y, POSITION_BITS), 5),
                                _mm512_slli_epi16(_mm512_srli_epi16(x, POSITION_BITS), 1));
    return _mm512_add_epi16(_mm512_or_si512(v, _mm512_slli_epi16(v, 8)), Set(256));
}

/// Samples of the first and the second byte of 32 pairs, in the order of their places.
template <bool LINEAR>
inline void PairSamples(const STable& t, V x, V y, V& vFirst, V& vSecond)
{
    if constexpr (!LINEAR) {
        const V vHalf = Set(POSITION_ONE / 2);
        const V v = LookUp(t, PairIndex(_mm512_add_epi16(x, vHalf), _mm512_add_epi16(y, vHalf)));
        vFirst = _mm512_mullo_epi16(_mm512_and_si512(v, Set(255)), Set(SAMPLE_LEVEL));
        vSecond = _mm512_mullo_epi16(_mm512_srli_epi16(v, 8), Set(SAMPLE_LEVEL));
        return;
    }
    const V vIndex = PairIndex(x, y);
    const V a = LookUp(t, vIndex);
    const V b = LookUp(t, _mm512_add_epi8(vIndex, Bytes(2)));
    const V c = LookUp(t, _mm512_add_epi8(vIndex, Bytes(32)));
    const V d = LookUp(t, _mm512_add_epi8(vIndex, Bytes(34)));
    const V x7 = Seven(x);
    const V vPair = _mm512_or_si512(_mm512_sub_epi16(Set(SAMPLE_LEVEL), x7), _mm512_slli_epi16(x7, 8));
    const V vDown = Fraction(y);
    const V vLow = Blend(_mm512_unpacklo_epi8(a, b), _mm512_unpacklo_epi8(c, d),
                         _mm512_unpacklo_epi16(vPair, vPair), _mm512_unpacklo_epi16(vDown, vDown));
    const V vHigh = Blend(_mm512_unpackhi_epi8(a, b), _mm512_unpackhi_epi8(c, d),
                          _mm512_unpackhi_epi16(vPair, vPair), _mm512_unpackhi_epi16(vDown, vDown));
    const V vMask = _mm512_set1_epi32(0xFFFF);
    vFirst = _mm512_packus_epi32(_mm512_and_si512(vLow, vMask), _mm512_and_si512(vHigh, vMask));
    vSecond = _mm512_packus_epi32(_mm512_srli_epi32(vLow, 16), _mm512_srli_epi32(vHigh, 16));
}

inline V Factor(std::int16_t n)
{
    return _mm512_set1_epi16(n);
}

inline V Clamped(V v, int nLow, int nHigh)
{
    return _mm512_max_epi16(_mm512_min_epi16(v, Set(nHigh)), Set(nLow));
}

/// Colours of 32 samples, a byte in 16 bits each.
inline void ToColours(const SColourFactors& c, V y, V u, V v, V& vRed, V& vGreen, V& vBlue)
{
    y = _mm512_mulhrs_epi16(y, Set(16513));
    u = _mm512_sub_epi16(_mm512_mulhrs_epi16(u, Set(16513)), Set(8160));
    v = _mm512_sub_epi16(_mm512_mulhrs_epi16(v, Set(16513)), Set(8160));
    if (c.bLimited) {
        y = _mm512_sub_epi16(y, Factor(c.nLumaMin));
        y = Clamped(_mm512_add_epi16(y, _mm512_mulhrs_epi16(y, Factor(c.nLumaPart))), 0, 16320);
        u = Clamped(_mm512_add_epi16(u, _mm512_mulhrs_epi16(u, Factor(c.nChromaPart))), -8160, 8160);
        v = Clamped(_mm512_add_epi16(v, _mm512_mulhrs_epi16(v, Factor(c.nChromaPart))), -8160, 8160);
    }
    const auto Byte = [](V n) { return Clamped(_mm512_srai_epi16(_mm512_add_epi16(n, Set(32)), 6), 0, 255); };
    vRed = Byte(_mm512_add_epi16(_mm512_add_epi16(y, v), _mm512_mulhrs_epi16(v, Factor(c.nRedV))));
    vGreen = Byte(_mm512_sub_epi16(_mm512_sub_epi16(y, _mm512_mulhrs_epi16(u, Factor(c.nGreenU))),
                                   _mm512_mulhrs_epi16(v, Factor(c.nGreenV))));
    vBlue = Byte(_mm512_add_epi16(_mm512_add_epi16(y, u), _mm512_mulhrs_epi16(u, Factor(c.nBlueU))));
}

/// Four rows of pixels.
inline void PutRows(const SCellJob& rJob, V vRed, V vGreen, V vBlue, unsigned char* p, std::ptrdiff_t nStride)
{
    const V vLow = _mm512_or_si512(rJob.bRedFirst ? vRed : vBlue, _mm512_slli_epi16(vGreen, 8));
    const V vHigh = _mm512_or_si512(rJob.bRedFirst ? vBlue : vRed, Set(0xFF00));
    const V a = _mm512_unpacklo_epi16(vLow, vHigh); // left halves of the rows
    const V b = _mm512_unpackhi_epi16(vLow, vHigh);
    const V vUpper = _mm512_permutex2var_epi64(a, _mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11), b);
    const V vLower = _mm512_permutex2var_epi64(a, _mm512_setr_epi64(4, 5, 12, 13, 6, 7, 14, 15), b);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), _mm512_castsi512_si256(vUpper));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p + nStride), _mm512_extracti64x4_epi64(vUpper, 1));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p + 2 * nStride), _mm512_castsi512_si256(vLower));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p + 3 * nStride), _mm512_extracti64x4_epi64(vLower, 1));
}

template <int STEP, bool LINEAR>
inline void YUVCell(const SCellJob& rJob, const SCellPoints& rPoints, const SBlock& b, unsigned char* p,
                    std::ptrdiff_t nStride)
{
    SPlaces as[2];
    PixelPlaces<STEP>(rPoints, b, as);
    V avLuma[2];
    LumaSamples<LINEAR>(LoadLuma(rJob.aPlanes[0], b), as, avLuma);
    int x = 0;
    int y = 0;
    ChromaOrigin(rJob, b, x, y);
    const STable sTable = LoadChroma(rJob.aPlanes[1], x, y);
    const int nX = (b.x / 2 - x) * POSITION_ONE - POSITION_ONE / 2;
    const int nY = (b.y / 2 - y) * POSITION_ONE - POSITION_ONE / 2;
    for (int n = 0; n < 2; ++n) {
        V vFirst;
        V vSecond;
        PairSamples<LINEAR>(sTable, Halved(as[n].x, nX), Halved(as[n].y, nY), vFirst, vSecond);
        V vRed;
        V vGreen;
        V vBlue;
        ToColours(rJob.sColours, avLuma[n], rJob.bVFirst ? vSecond : vFirst, rJob.bVFirst ? vFirst : vSecond,
                  vRed, vGreen, vBlue);
        PutRows(rJob, vRed, vGreen, vBlue, p + 4 * n * nStride, nStride);
    }
}

/// Whether a block's chroma fits into its table: the block's rows, one before them and half of them.
inline bool ChromaFits(const SBlock& b)
{
    return b.bFits && b.nRows <= 2 * (CHROMA_ROWS - 2);
}

inline SCellPoints Next(const SCellPoints& p, int nCell)
{
    return {p.pFirst + nCell * (CELL_SIDE / p.nStep), p.nRow, p.nStep};
}

template <int STEP, bool LINEAR>
void LumaCells(const SCellJob& rJob, const SCellPoints& rPoints, int nCells, unsigned char* pTarget,
               std::ptrdiff_t nStride)
{
    for (int n = 0; n < nCells; ++n) {
        const SCellPoints s = Next(rPoints, n);
        const SBlock b = BlockOf(rJob, s);
        if (b.bFits)
            LumaCell<STEP, LINEAR>(rJob, s, b, pTarget + n * CELL_SIDE, nStride);
        else
            AVX2Kernels()->pLuma(rJob, s, 1, pTarget + n * CELL_SIDE, nStride);
    }
}

template <int STEP, bool LINEAR>
void YUVCells(const SCellJob& rJob, const SCellPoints& rPoints, int nCells, unsigned char* pTarget,
              std::ptrdiff_t nStride)
{
    for (int n = 0; n < nCells; ++n) {
        const SCellPoints s = Next(rPoints, n);
        const SBlock b = BlockOf(rJob, s);
        if (ChromaFits(b))
            YUVCell<STEP, LINEAR>(rJob, s, b, pTarget + std::ptrdiff_t{n} * 32, nStride);
        else
            AVX2Kernels()->pPixels(rJob, s, 1, pTarget + std::ptrdiff_t{n} * 32, nStride);
    }
}

void Luma(const SCellJob& rJob, const SCellPoints& p, int nCells, unsigned char* pTarget,
          std::ptrdiff_t nStride)
{
    const auto pCells = p.nStep == CELL_SIDE ? (rJob.bLinear ? LumaCells<8, true> : LumaCells<8, false>)
                                             : (rJob.bLinear ? LumaCells<4, true> : LumaCells<4, false>);
    pCells(rJob, p, nCells, pTarget, nStride);
}

/// Sixteen places a cell are too few for these registers.
void Chroma(const SCellJob& rJob, const SCellPoints& p, int nCells, unsigned char* const* ppTargets,
            const std::ptrdiff_t* pStrides)
{
    AVX2Kernels()->pChroma(rJob, p, nCells, ppTargets, pStrides);
}

void Pixels(const SCellJob& rJob, const SCellPoints& p, int nCells, unsigned char* pTarget,
            std::ptrdiff_t nStride)
{
    if (rJob.eSource != SOURCE_NV) {
        AVX2Kernels()->pPixels(rJob, p, nCells, pTarget, nStride);
        return;
    }
    const auto pCells = p.nStep == CELL_SIDE ? (rJob.bLinear ? YUVCells<8, true> : YUVCells<8, false>)
                                             : (rJob.bLinear ? YUVCells<4, true> : YUVCells<4, false>);
    pCells(rJob, p, nCells, pTarget, nStride);
}

} // namespace

const SCellKernels* AVX512Kernels()
{
    static const SCellKernels* const pNarrow = AVX2Kernels();
    static const SCellKernels sKernels = pNarrow == nullptr ? SCellKernels()
                                                            : SCellKernels{"AVX-512",
                                                                           Luma,
                                                                           Chroma,
                                                                           nullptr,
                                                                           Pixels,
                                                                           pNarrow->pLumaAt,
                                                                           pNarrow->pChromaAt,
                                                                           pNarrow->pPixelsAt,
                                                                           pNarrow->pLumaLines,
                                                                           pNarrow->pChromaLines,
                                                                           pNarrow->pPixelLines};
    const bool bHas = pNarrow != nullptr && __builtin_cpu_supports("avx512f") &&
                      __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl") &&
                      __builtin_cpu_supports("avx512vbmi");
    return bHas ? &sKernels : nullptr;
}

#else

const SCellKernels* AVX512Kernels()
{
    return nullptr;
}

#endif
