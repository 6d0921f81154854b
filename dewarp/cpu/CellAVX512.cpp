// Cells by AVX-512 with byte permutes: a cell whose texels fit into 16 x 16 has them in registers, and nothing is
// fetched byte by byte. Other cells, and packed frames, are drawn as by AVX2.

#include "dewarp/cpu/CellTargets.h"

#if defined(__x86_64__)

#include <immintrin.h>

namespace
{

using V = __m512i;

/// Where a cell's texels lie.
struct SBlock
{
    int x; ///< first texel; even
    int y;
    int nRows;   ///< that are needed
    bool bFits; ///< all of them, and those of the chroma, lie inside the tables
};

const int TABLE_SIDE = 16;
const int CHROMA_ROWS = 8;

inline SBlock BlockOf(const SCellJob& rJob, const SCellPoints& p)
{
    const int nLast = CELL_SIDE / p.nStep;
    __m128i vLow = _mm_set1_epi32(1 << 30);
    __m128i vHigh = _mm_set1_epi32(-(1 << 30));
    for (int j = 0; j <= nLast; ++j) {
        for (int i = 0; i <= nLast; ++i) {
            const __m128i v = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p.pFirst + j * p.nRow + i));
            vLow = _mm_min_epi32(vLow, v);
            vHigh = _mm_max_epi32(vHigh, v);
        }
    }
    SBlock s;
    s.x = _mm_cvtsi128_si32(vLow) >> POSITION_BITS & ~1;
    s.y = _mm_extract_epi32(vLow, 1) >> POSITION_BITS & ~1;
    const int nRight = (_mm_cvtsi128_si32(vHigh) >> POSITION_BITS) + 1;
    const int nBottom = (_mm_extract_epi32(vHigh, 1) >> POSITION_BITS) + 1;
    s.bFits = nRight - s.x < TABLE_SIDE && nBottom - s.y < TABLE_SIDE;
    s.nRows = nBottom - s.y + 1;
    s.x = s.x < rJob.nFrameWidth - TABLE_SIDE ? s.x : rJob.nFrameWidth - TABLE_SIDE;
    s.y = s.y < rJob.nFrameHeight - TABLE_SIDE ? s.y : rJob.nFrameHeight - TABLE_SIDE;
    return s;
}

/// Positions of 32 pixels, four rows of eight, within the block: POSITION_BITS of fraction in 16 bits.
struct SPlaces
{
    V x;
    V y;
};

inline V Set(int n)
{
    return _mm512_set1_epi16(static_cast<short>(n));
}

inline V RowsOf(int n0, int n1, int n2, int n3)
{
    return _mm512_set_epi64(0x0001000100010001LL * n3, 0x0001000100010001LL * n3, 0x0001000100010001LL * n2,
                            0x0001000100010001LL * n2, 0x0001000100010001LL * n1, 0x0001000100010001LL * n1,
                            0x0001000100010001LL * n0, 0x0001000100010001LL * n0);
}

inline V ColumnsOf(int n0, int n1, int n2, int n3, int n4, int n5, int n6, int n7)
{
    return _mm512_broadcast_i32x4(
        _mm_setr_epi16(static_cast<short>(n0), static_cast<short>(n1), static_cast<short>(n2),
                       static_cast<short>(n3), static_cast<short>(n4), static_cast<short>(n5),
                       static_cast<short>(n6), static_cast<short>(n7)));
}

/// A share of the way, to the nearest; shares in 32768ths.
inline V Towards(V vFrom, V vTo, V vShare)
{
    return _mm512_add_epi16(vFrom, _mm512_mulhrs_epi16(_mm512_sub_epi16(vTo, vFrom), vShare));
}

/// One value in the left half of a row, another in the right one.
inline V LeftRight(int nLeft, int nRight)
{
    return _mm512_mask_set1_epi16(Set(nLeft), 0xF0F0F0F0U, static_cast<short>(nRight));
}

template <int STEP> inline V Places(const std::int32_t* const (&ap)[3][3], int nBase, int nHalf)
{
    const auto At = [&](int j, int i) { return *ap[j][i] - nBase; };
    if constexpr (STEP == CELL_SIDE) {
        const V vRows = nHalf == 0 ? RowsOf(0, 4096, 8192, 12288) : RowsOf(16384, 20480, 24576, 28672);
        const V vColumns = ColumnsOf(0, 4096, 8192, 12288, 16384, 20480, 24576, 28672);
        return Towards(Towards(Set(At(0, 0)), Set(At(1, 0)), vRows), Towards(Set(At(0, 1)), Set(At(1, 1)), vRows),
                       vColumns);
    } else {
        const V vRows = RowsOf(0, 8192, 16384, 24576);
        const V vColumns = ColumnsOf(0, 8192, 16384, 24576, 0, 8192, 16384, 24576);
        const int j = nHalf;
        return Towards(Towards(LeftRight(At(j, 0), At(j, 1)), LeftRight(At(j + 1, 0), At(j + 1, 1)), vRows),
                       Towards(LeftRight(At(j, 1), At(j, 2)), LeftRight(At(j + 1, 1), At(j + 1, 2)), vRows),
                       vColumns);
    }
}

/// Where the points' coordinates are.
struct SCorners
{
    explicit SCorners(const SCellPoints& p)
    {
        const int nLast = CELL_SIDE / p.nStep;
        for (int j = 0; j <= nLast; ++j) {
            for (int i = 0; i <= nLast; ++i) {
                apX[j][i] = &p.pFirst[j * p.nRow + i].x;
                apY[j][i] = &p.pFirst[j * p.nRow + i].y;
            }
        }
    }
    const std::int32_t* apX[3][3] = {};
    const std::int32_t* apY[3][3] = {};
};

template <int STEP> inline void PixelPlaces(const SCellPoints& p, const SBlock& b, SPlaces (&as)[2])
{
    const SCorners c(p);
    for (int n = 0; n < 2; ++n)
        as[n] = {Places<STEP>(c.apX, b.x * POSITION_ONE, n), Places<STEP>(c.apY, b.y * POSITION_ONE, n)};
}

/// 256 bytes to look up in.
struct STable
{
    V av[4];
    bool bHalf; ///< only the first half is needed
};

inline STable LoadLuma(const SSamplePlane& rPlane, const SBlock& b)
{
    STable t;
    const unsigned char* p = rPlane.pPixels + b.y * rPlane.nStride + b.x;
    const auto Row = [&](int n) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + n * rPlane.nStride)); };
    const auto Rows = [&](int n) {
        const V v = _mm512_inserti32x4(_mm512_castsi128_si512(Row(n)), Row(n + 1), 1);
        return _mm512_inserti32x4(_mm512_inserti32x4(v, Row(n + 2), 2), Row(n + 3), 3);
    };
    t.bHalf = b.nRows <= 8;
    t.av[0] = Rows(0);
    t.av[1] = Rows(4);
    if (t.bHalf)
        return t;
    t.av[2] = Rows(8);
    t.av[3] = Rows(12);
    return t;
}

inline V LookUp(const STable& t, V vIndex)
{
    const V vLow = _mm512_permutex2var_epi8(t.av[0], vIndex, t.av[1]);
    if (t.bHalf)
        return vLow;
    return _mm512_mask_blend_epi8(_mm512_movepi8_mask(vIndex), vLow,
                                  _mm512_permutex2var_epi8(t.av[2], vIndex, t.av[3]));
}

inline V Bytes(int n)
{
    return _mm512_set1_epi8(static_cast<char>(n));
}

/// Weights of two rows of lanes: bytes to the right, and 16 bits downwards.
struct SWeights
{
    V vRight[2]; ///< 127 - x7 and x7 in turns
    V vDown[2];
};

inline V Seven(V vPlaces)
{
    return _mm512_mulhrs_epi16(_mm512_slli_epi16(_mm512_and_si512(vPlaces, Set(POSITION_ONE - 1)), 4),
                               Set(SAMPLE_LEVEL));
}

inline V Fraction(V vPlaces)
{
    return _mm512_slli_epi16(_mm512_and_si512(vPlaces, Set(POSITION_ONE - 1)), 4);
}

/// A linear sample: left and right bytes above and below.
inline V Blend(V vUpper, V vLower, V vRight, V vDown)
{
    const V u = _mm512_maddubs_epi16(vUpper, vRight);
    const V l = _mm512_maddubs_epi16(vLower, vRight);
    return _mm512_add_epi16(u, _mm512_mulhrs_epi16(_mm512_sub_epi16(l, u), vDown));
}

inline V IndexOf(V x, V y)
{
    return _mm512_or_si512(_mm512_and_si512(_mm512_srli_epi16(y, POSITION_BITS - 4), Set(0xF0)),
                           _mm512_srli_epi16(x, POSITION_BITS));
}

/// Samples of 64 pixels: 16 bits each, four rows in each vector.
template <bool LINEAR> inline void LumaSamples(const STable& t, const SPlaces (&as)[2], V (&av)[2])
{
    if constexpr (!LINEAR) {
        const V vHalf = Set(POSITION_ONE / 2);
        V avIndex[2];
        for (int n = 0; n < 2; ++n)
            avIndex[n] = IndexOf(_mm512_add_epi16(as[n].x, vHalf), _mm512_add_epi16(as[n].y, vHalf));
        const V v = LookUp(t, _mm512_packus_epi16(avIndex[0], avIndex[1]));
        av[0] = _mm512_mullo_epi16(_mm512_unpacklo_epi8(v, V()), Set(SAMPLE_LEVEL));
        av[1] = _mm512_mullo_epi16(_mm512_unpackhi_epi8(v, V()), Set(SAMPLE_LEVEL));
        return;
    }
    const V vIndex = _mm512_packus_epi16(IndexOf(as[0].x, as[0].y), IndexOf(as[1].x, as[1].y));
    const V x7 = _mm512_packus_epi16(Seven(as[0].x), Seven(as[1].x));
    const V vRest = _mm512_sub_epi8(Bytes(SAMPLE_LEVEL), x7);
    const V a = LookUp(t, vIndex);
    const V b = LookUp(t, _mm512_add_epi8(vIndex, Bytes(1)));
    const V c = LookUp(t, _mm512_add_epi8(vIndex, Bytes(TABLE_SIDE)));
    const V d = LookUp(t, _mm512_add_epi8(vIndex, Bytes(TABLE_SIDE + 1)));
    av[0] = Blend(_mm512_unpacklo_epi8(a, b), _mm512_unpacklo_epi8(c, d), _mm512_unpacklo_epi8(vRest, x7),
                  Fraction(as[0].y));
    av[1] = Blend(_mm512_unpackhi_epi8(a, b), _mm512_unpackhi_epi8(c, d), _mm512_unpackhi_epi8(vRest, x7),
                  Fraction(as[1].y));
}

inline void PutEight(__m128i v, unsigned char* p, unsigned char* q)
{
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p), v);
    _mm_storeh_pd(reinterpret_cast<double*>(q), _mm_castsi128_pd(v));
}

template <int STEP, bool LINEAR>
inline void LumaCell(const SCellJob& rJob, const SCellPoints& rPoints, const SBlock& b, unsigned char* p,
                     std::ptrdiff_t nStride)
{
    SPlaces as[2];
    PixelPlaces<STEP>(rPoints, b, as);
    V av[2];
    LumaSamples<LINEAR>(LoadLuma(rJob.aPlanes[0], b), as, av);
    const V v = _mm512_packus_epi16(_mm512_mulhrs_epi16(av[0], Set(258)), _mm512_mulhrs_epi16(av[1], Set(258)));
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
template <bool LINEAR> inline void PairSamples(const STable& t, V x, V y, V& vFirst, V& vSecond)
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
    const V vLow = Blend(_mm512_unpacklo_epi8(a, b), _mm512_unpacklo_epi8(c, d), _mm512_unpacklo_epi16(vPair, vPair),
                         _mm512_unpacklo_epi16(vDown, vDown));
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
        ToColours(rJob.sColours, avLuma[n], rJob.bVFirst ? vSecond : vFirst, rJob.bVFirst ? vFirst : vSecond, vRed,
                  vGreen, vBlue);
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

void Luma(const SCellJob& rJob, const SCellPoints& p, int nCells, unsigned char* pTarget, std::ptrdiff_t nStride)
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

void Pixels(const SCellJob& rJob, const SCellPoints& p, int nCells, unsigned char* pTarget, std::ptrdiff_t nStride)
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
    static const SCellKernels sKernels = {"AVX-512", Luma, Chroma, Pixels};
    const bool bHas = AVX2Kernels() != nullptr && __builtin_cpu_supports("avx512f") &&
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
