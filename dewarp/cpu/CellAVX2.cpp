// Cells by AVX2: eight pixels at a time. Positions and weights in registers; the bytes themselves are fetched
// one by one, which takes less time than gather instructions do on the processors that were measured.

#include "dewarp/cpu/CellTargets.h"

#if defined(__x86_64__)

#include <immintrin.h>

#include <cstring>

namespace
{

using V = __m256i;

struct SPlaces
{
    V x;
    V y;
};

/// Lines through the points of a cell: where its rows begin, and how far they go. 32 bits each.
struct SRows
{
    alignas(32) std::int32_t anX[8]; ///< first column
    alignas(32) std::int32_t anY[8];
    alignas(32) std::int32_t anStepX[8]; ///< from the first to the last column, or to the middle one
    alignas(32) std::int32_t anStepY[8];
    alignas(32) std::int32_t anMiddleX[8]; ///< middle column, for points four pixels apart
    alignas(32) std::int32_t anMiddleY[8];
    alignas(32) std::int32_t anRestX[8]; ///< from the middle to the last column
    alignas(32) std::int32_t anRestY[8];
};

inline V Set(std::int32_t n)
{
    return _mm256_set1_epi32(n);
}

inline V Halves(std::int32_t nLow, std::int32_t nHigh)
{
    return _mm256_inserti128_si256(Set(nLow), _mm_set1_epi32(nHigh), 1);
}

/// A part of a distance, to the nearest.
template <int BITS>
inline V Part(V vDistance, V vSteps)
{
    return _mm256_srai_epi32(_mm256_add_epi32(_mm256_mullo_epi32(vDistance, vSteps), Set(1 << (BITS - 1))),
                             BITS);
}

inline V Eight()
{
    return _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
}

inline V TwiceFour()
{
    return _mm256_setr_epi32(0, 1, 2, 3, 0, 1, 2, 3);
}

inline V Load(const std::int32_t* p)
{
    return _mm256_load_si256(reinterpret_cast<const V*>(p));
}

inline void Store(std::int32_t* p, V v)
{
    _mm256_store_si256(reinterpret_cast<V*>(p), v);
}

inline void SetWideRows(const SCellPoints& p, SRows& r)
{
    const SGridPoint* const u = p.pFirst;
    const SGridPoint* const l = u + p.nRow;
    const V vLeftX = _mm256_add_epi32(Set(u[0].x), Part<3>(Set(l[0].x - u[0].x), Eight()));
    const V vLeftY = _mm256_add_epi32(Set(u[0].y), Part<3>(Set(l[0].y - u[0].y), Eight()));
    const V vRightX = _mm256_add_epi32(Set(u[1].x), Part<3>(Set(l[1].x - u[1].x), Eight()));
    const V vRightY = _mm256_add_epi32(Set(u[1].y), Part<3>(Set(l[1].y - u[1].y), Eight()));
    Store(r.anX, vLeftX);
    Store(r.anY, vLeftY);
    Store(r.anStepX, _mm256_sub_epi32(vRightX, vLeftX));
    Store(r.anStepY, _mm256_sub_epi32(vRightY, vLeftY));
}

/// One column of points: its positions at the eight rows.
inline void DenseColumn(const SGridPoint* p, std::ptrdiff_t nRow, V& vX, V& vY)
{
    const SGridPoint& a = p[0];
    const SGridPoint& b = p[nRow];
    const SGridPoint& c = p[2 * nRow];
    vX = _mm256_add_epi32(Halves(a.x, b.x), Part<2>(Halves(b.x - a.x, c.x - b.x), TwiceFour()));
    vY = _mm256_add_epi32(Halves(a.y, b.y), Part<2>(Halves(b.y - a.y, c.y - b.y), TwiceFour()));
}

inline void SetDenseRows(const SCellPoints& p, SRows& r)
{
    V aX[3];
    V aY[3];
    for (int i = 0; i < 3; ++i)
        DenseColumn(p.pFirst + i, p.nRow, aX[i], aY[i]);
    Store(r.anX, aX[0]);
    Store(r.anY, aY[0]);
    Store(r.anStepX, _mm256_sub_epi32(aX[1], aX[0]));
    Store(r.anStepY, _mm256_sub_epi32(aY[1], aY[0]));
    Store(r.anMiddleX, aX[1]);
    Store(r.anMiddleY, aY[1]);
    Store(r.anRestX, _mm256_sub_epi32(aX[2], aX[1]));
    Store(r.anRestY, _mm256_sub_epi32(aY[2], aY[1]));
}

/// Positions of the eight pixels of a row.
template <int STEP>
inline SPlaces RowPlaces(const SRows& r, int n)
{
    if constexpr (STEP == CELL_SIDE) {
        return {_mm256_add_epi32(Set(r.anX[n]), Part<3>(Set(r.anStepX[n]), Eight())),
                _mm256_add_epi32(Set(r.anY[n]), Part<3>(Set(r.anStepY[n]), Eight()))};
    } else {
        return {_mm256_add_epi32(Halves(r.anX[n], r.anMiddleX[n]),
                                 Part<2>(Halves(r.anStepX[n], r.anRestX[n]), TwiceFour())),
                _mm256_add_epi32(Halves(r.anY[n], r.anMiddleY[n]),
                                 Part<2>(Halves(r.anStepY[n], r.anRestY[n]), TwiceFour()))};
    }
}

template <int STEP>
inline void SetRows(const SCellPoints& p, SRows& r)
{
    if constexpr (STEP == CELL_SIDE)
        SetWideRows(p, r);
    else
        SetDenseRows(p, r);
}

/// Positions in half resolution.
inline SPlaces Halved(const SPlaces& p)
{
    const V vHalf = Set(POSITION_ONE / 2);
    return {_mm256_sub_epi32(_mm256_srai_epi32(_mm256_add_epi32(p.x, vHalf), 1), vHalf),
            _mm256_sub_epi32(_mm256_srai_epi32(_mm256_add_epi32(p.y, vHalf), 1), vHalf)};
}

/// Chroma places of two of the four rows: 0 the upper two, 1 the lower two.
template <int STEP>
inline SPlaces ChromaRows(const SCellPoints& p, int n)
{
    const SGridPoint* const u = p.pFirst + (STEP == CELL_SIDE ? 0 : n * p.nRow);
    const SGridPoint* const l = u + p.nRow;
    if constexpr (STEP == CELL_SIDE) {
        const V vAcross = n == 0 ? Halves(1, 5) : Halves(9, 13);
        const V vAlong = _mm256_setr_epi32(1, 5, 9, 13, 1, 5, 9, 13);
        const V vLeftX = _mm256_add_epi32(Set(u[0].x), Part<4>(Set(l[0].x - u[0].x), vAcross));
        const V vLeftY = _mm256_add_epi32(Set(u[0].y), Part<4>(Set(l[0].y - u[0].y), vAcross));
        const V vRightX = _mm256_add_epi32(Set(u[1].x), Part<4>(Set(l[1].x - u[1].x), vAcross));
        const V vRightY = _mm256_add_epi32(Set(u[1].y), Part<4>(Set(l[1].y - u[1].y), vAcross));
        return {_mm256_add_epi32(vLeftX, Part<4>(_mm256_sub_epi32(vRightX, vLeftX), vAlong)),
                _mm256_add_epi32(vLeftY, Part<4>(_mm256_sub_epi32(vRightY, vLeftY), vAlong))};
    } else {
        const auto Columns = [](std::int32_t a, std::int32_t b) {
            return _mm256_setr_epi32(a, a, b, b, a, a, b, b);
        };
        const V vAcross = Halves(1, 5);
        const V vAlong = _mm256_setr_epi32(1, 5, 1, 5, 1, 5, 1, 5);
        const V vLeftX = _mm256_add_epi32(Columns(u[0].x, u[1].x),
                                          Part<3>(Columns(l[0].x - u[0].x, l[1].x - u[1].x), vAcross));
        const V vLeftY = _mm256_add_epi32(Columns(u[0].y, u[1].y),
                                          Part<3>(Columns(l[0].y - u[0].y, l[1].y - u[1].y), vAcross));
        const V vRightX = _mm256_add_epi32(Columns(u[1].x, u[2].x),
                                           Part<3>(Columns(l[1].x - u[1].x, l[2].x - u[2].x), vAcross));
        const V vRightY = _mm256_add_epi32(Columns(u[1].y, u[2].y),
                                           Part<3>(Columns(l[1].y - u[1].y, l[2].y - u[2].y), vAcross));
        return {_mm256_add_epi32(vLeftX, Part<3>(_mm256_sub_epi32(vRightX, vLeftX), vAlong)),
                _mm256_add_epi32(vLeftY, Part<3>(_mm256_sub_epi32(vRightY, vLeftY), vAlong))};
    }
}

/// Weights of a linear sample, in the low half of each 32 bits where they are 16.
struct SWeights
{
    V vAlong;  ///< bytes 127 - x7, x7, twice
    V vAcross; ///< y in 32768ths
};

inline SWeights WeightsOf(const SPlaces& p)
{
    const V vFraction = Set(POSITION_ONE - 1);
    const V x = _mm256_slli_epi32(_mm256_and_si256(p.x, vFraction), 4);
    const V x7 = _mm256_mulhrs_epi16(x, Set(SAMPLE_LEVEL));
    const V vPair = _mm256_add_epi32(_mm256_sub_epi32(_mm256_slli_epi32(x7, 8), x7), Set(SAMPLE_LEVEL));
    return {_mm256_or_si256(vPair, _mm256_slli_epi32(vPair, 16)),
            _mm256_slli_epi32(_mm256_and_si256(p.y, vFraction), 4)};
}

/// From four bytes a pixel (left, right, left below, right below) to samples.
inline V Blend(V vTexels, const SWeights& w)
{
    const V h = _mm256_maddubs_epi16(vTexels, w.vAlong);
    const V d = _mm256_sub_epi16(_mm256_srli_epi32(h, 16), h);
    return _mm256_and_si256(_mm256_add_epi16(h, _mm256_mulhrs_epi16(d, w.vAcross)), Set(0xFFFF));
}

inline V OffsetsOf(const SPlaces& p, const SSamplePlane& rPlane, int nShift)
{
    const V x = _mm256_slli_epi32(_mm256_srai_epi32(p.x, POSITION_BITS), nShift);
    const V y = _mm256_srai_epi32(p.y, POSITION_BITS);
    return _mm256_add_epi32(x, _mm256_mullo_epi32(y, Set(static_cast<std::int32_t>(rPlane.nStride))));
}

inline int Two(const unsigned char* p)
{
    std::uint16_t n;
    std::memcpy(&n, p, sizeof n);
    return n;
}

inline int Four(const unsigned char* p)
{
    std::int32_t n;
    std::memcpy(&n, p, sizeof n);
    return n;
}

/// The four bytes round each of eight places of a plane of single bytes.
inline V FetchBytes(const SSamplePlane& rPlane, const SPlaces& rPlaces)
{
    alignas(32) std::int32_t an[8];
    Store(an, OffsetsOf(rPlaces, rPlane, 0));
    const unsigned char* const p = rPlane.pPixels;
    const unsigned char* const q = p + rPlane.nStride;
    const auto Half = [&](const std::int32_t* pn) {
        __m128i v = _mm_cvtsi32_si128(Two(p + pn[0]));
        v = _mm_insert_epi16(v, Two(q + pn[0]), 1);
        v = _mm_insert_epi16(v, Two(p + pn[1]), 2);
        v = _mm_insert_epi16(v, Two(q + pn[1]), 3);
        v = _mm_insert_epi16(v, Two(p + pn[2]), 4);
        v = _mm_insert_epi16(v, Two(q + pn[2]), 5);
        v = _mm_insert_epi16(v, Two(p + pn[3]), 6);
        return _mm_insert_epi16(v, Two(q + pn[3]), 7);
    };
    return _mm256_inserti128_si256(_mm256_castsi128_si256(Half(an)), Half(an + 4), 1);
}

/// The same of a plane of byte pairs: two results.
inline void FetchPairs(const SSamplePlane& rPlane, const SPlaces& rPlaces, V& vFirst, V& vSecond)
{
    alignas(32) std::int32_t an[8];
    Store(an, OffsetsOf(rPlaces, rPlane, 1));
    const auto Row = [&](const unsigned char* p) {
        const auto Half = [&](const std::int32_t* pn) {
            const __m128i a =
                _mm_unpacklo_epi32(_mm_cvtsi32_si128(Four(p + pn[0])), _mm_cvtsi32_si128(Four(p + pn[1])));
            const __m128i b =
                _mm_unpacklo_epi32(_mm_cvtsi32_si128(Four(p + pn[2])), _mm_cvtsi32_si128(Four(p + pn[3])));
            return _mm_unpacklo_epi64(a, b);
        };
        return _mm256_inserti128_si256(_mm256_castsi128_si256(Half(an)), Half(an + 4), 1);
    };
    // Bytes of a pixel and its neighbour: first and second in turns. Firsts to the front.
    const V vOrder =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 2, 1, 3, 4, 6, 5, 7, 8, 10, 9, 11, 12, 14, 13, 15));
    const V u = _mm256_shuffle_epi8(Row(rPlane.pPixels), vOrder);
    const V l = _mm256_shuffle_epi8(Row(rPlane.pPixels + rPlane.nStride), vOrder);
    vFirst = _mm256_blend_epi16(u, _mm256_slli_epi32(l, 16), 0xAA);
    vSecond = _mm256_blend_epi16(_mm256_srli_epi32(u, 16), l, 0xAA);
}

/// Eight samples of single bytes; nearest ones likewise.
template <bool LINEAR>
inline V SampleBytes(const SSamplePlane& rPlane, const SPlaces& rPlaces)
{
    if constexpr (LINEAR)
        return Blend(FetchBytes(rPlane, rPlaces), WeightsOf(rPlaces));
    alignas(32) std::int32_t an[8];
    const V vHalf = Set(POSITION_ONE / 2);
    Store(an, OffsetsOf({_mm256_add_epi32(rPlaces.x, vHalf), _mm256_add_epi32(rPlaces.y, vHalf)}, rPlane, 0));
    const unsigned char* const p = rPlane.pPixels;
    const V v =
        _mm256_setr_epi32(p[an[0]], p[an[1]], p[an[2]], p[an[3]], p[an[4]], p[an[5]], p[an[6]], p[an[7]]);
    return _mm256_mullo_epi16(v, Set(SAMPLE_LEVEL));
}

/// Eight samples of both chroma channels.
template <bool LINEAR>
inline void SampleChroma(const SCellJob& rJob, const SPlaces& rPlaces, V& vU, V& vV)
{
    if (rJob.eSource == SOURCE_PLANAR) {
        vU = SampleBytes<LINEAR>(rJob.aPlanes[1], rPlaces);
        vV = SampleBytes<LINEAR>(rJob.aPlanes[2], rPlaces);
        return;
    }
    V vFirst;
    V vSecond;
    if constexpr (LINEAR) {
        const SWeights sWeights = WeightsOf(rPlaces);
        FetchPairs(rJob.aPlanes[1], rPlaces, vFirst, vSecond);
        vFirst = Blend(vFirst, sWeights);
        vSecond = Blend(vSecond, sWeights);
    } else {
        alignas(32) std::int32_t an[8];
        const V vHalf = Set(POSITION_ONE / 2);
        Store(an, OffsetsOf({_mm256_add_epi32(rPlaces.x, vHalf), _mm256_add_epi32(rPlaces.y, vHalf)},
                            rJob.aPlanes[1], 1));
        const unsigned char* const p = rJob.aPlanes[1].pPixels;
        const V v = _mm256_setr_epi32(Two(p + an[0]), Two(p + an[1]), Two(p + an[2]), Two(p + an[3]),
                                      Two(p + an[4]), Two(p + an[5]), Two(p + an[6]), Two(p + an[7]));
        vFirst = _mm256_mullo_epi16(_mm256_and_si256(v, Set(255)), Set(SAMPLE_LEVEL));
        vSecond = _mm256_mullo_epi16(_mm256_srli_epi32(v, 8), Set(SAMPLE_LEVEL));
    }
    vU = rJob.bVFirst ? vSecond : vFirst;
    vV = rJob.bVFirst ? vFirst : vSecond;
}

/// Two rows of samples as 16 bits each: the first halves of both in the low part.
inline V Joined(V vUpper, V vLower)
{
    return _mm256_packus_epi32(vUpper, vLower);
}

/// Samples of four rows, joined by two, as bytes; each row lies in eight bytes.
inline V ToBytes(V vUpper, V vLower)
{
    const V vFactor = _mm256_set1_epi16(258);
    const V v =
        _mm256_packus_epi16(_mm256_mulhrs_epi16(vUpper, vFactor), _mm256_mulhrs_epi16(vLower, vFactor));
    return _mm256_permutevar8x32_epi32(v, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
}

inline void PutEights(V v, unsigned char* p, std::ptrdiff_t nStride)
{
    const __m128i a = _mm256_castsi256_si128(v);
    const __m128i b = _mm256_extracti128_si256(v, 1);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p), a);
    _mm_storeh_pd(reinterpret_cast<double*>(p + nStride), _mm_castsi128_pd(a));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p + 2 * nStride), b);
    _mm_storeh_pd(reinterpret_cast<double*>(p + 3 * nStride), _mm_castsi128_pd(b));
}

template <int STEP, bool LINEAR>
inline void LumaCell(const SCellJob& rJob, const SCellPoints& rPoints, unsigned char* pTarget,
                     std::ptrdiff_t nStride)
{
    SRows sRows;
    SetRows<STEP>(rPoints, sRows);
    for (int n = 0; n < CELL_SIDE; n += 4) {
        V av[4];
        for (int i = 0; i < 4; ++i)
            av[i] = SampleBytes<LINEAR>(rJob.aPlanes[0], RowPlaces<STEP>(sRows, n + i));
        PutEights(ToBytes(Joined(av[0], av[1]), Joined(av[2], av[3])), pTarget + n * nStride, nStride);
    }
}

template <int STEP, bool LINEAR>
inline void ChromaCell(const SCellJob& rJob, const SCellPoints& rPoints, unsigned char* const* ppTargets,
                       const std::ptrdiff_t* pStrides)
{
    V avU[2];
    V avV[2];
    for (int n = 0; n < 2; ++n)
        SampleChroma<LINEAR>(rJob, Halved(ChromaRows<STEP>(rPoints, n)), avU[n], avV[n]);
    // Low part: rows 0 and 2; high part: rows 1 and 3; U, then V, of four places each.
    const V vFactor = _mm256_set1_epi16(258);
    const V u = _mm256_mulhrs_epi16(Joined(avU[0], avU[1]), vFactor);
    const V v = _mm256_mulhrs_epi16(Joined(avV[0], avV[1]), vFactor);
    if (ppTargets[1] == nullptr) {
        const V uv = _mm256_or_si256(u, _mm256_slli_epi16(v, 8));
        const __m128i a = _mm256_castsi256_si128(uv);
        const __m128i b = _mm256_extracti128_si256(uv, 1);
        unsigned char* const p = ppTargets[0];
        _mm_storel_epi64(reinterpret_cast<__m128i*>(p), a);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(p + pStrides[0]), b);
        _mm_storeh_pd(reinterpret_cast<double*>(p + 2 * pStrides[0]), _mm_castsi128_pd(a));
        _mm_storeh_pd(reinterpret_cast<double*>(p + 3 * pStrides[0]), _mm_castsi128_pd(b));
        return;
    }
    alignas(32) std::int32_t an[8];
    Store(an, _mm256_packus_epi16(u, v));
    static const int ROWS[4] = {0, 4, 1, 5};
    for (int n = 0; n < 4; ++n) {
        std::memcpy(ppTargets[0] + n * pStrides[0], &an[ROWS[n]], 4);
        std::memcpy(ppTargets[1] + n * pStrides[1], &an[ROWS[n] + 2], 4);
    }
}

inline V Factor(std::int16_t n)
{
    return _mm256_set1_epi16(n);
}

inline V Clamped(V v, int nLow, int nHigh)
{
    return _mm256_max_epi16(_mm256_min_epi16(v, _mm256_set1_epi16(static_cast<short>(nHigh))),
                            _mm256_set1_epi16(static_cast<short>(nLow)));
}

/// Sixteen samples to bytes of red, green and blue in 16 bits each.
inline void ToColours(const SColourFactors& c, V y, V u, V v, V& vRed, V& vGreen, V& vBlue)
{
    const V vLevels = Factor(16513);
    const V vHalf = Factor(8160);
    y = _mm256_mulhrs_epi16(y, vLevels);
    u = _mm256_sub_epi16(_mm256_mulhrs_epi16(u, vLevels), vHalf);
    v = _mm256_sub_epi16(_mm256_mulhrs_epi16(v, vLevels), vHalf);
    if (c.bLimited) {
        y = _mm256_sub_epi16(y, Factor(c.nLumaMin));
        y = Clamped(_mm256_add_epi16(y, _mm256_mulhrs_epi16(y, Factor(c.nLumaPart))), 0, 16320);
        u = Clamped(_mm256_add_epi16(u, _mm256_mulhrs_epi16(u, Factor(c.nChromaPart))), -8160, 8160);
        v = Clamped(_mm256_add_epi16(v, _mm256_mulhrs_epi16(v, Factor(c.nChromaPart))), -8160, 8160);
    }
    const V vRound = Factor(32);
    const auto Byte = [&](V n) { return Clamped(_mm256_srai_epi16(_mm256_add_epi16(n, vRound), 6), 0, 255); };
    vRed = Byte(_mm256_add_epi16(_mm256_add_epi16(y, v), _mm256_mulhrs_epi16(v, Factor(c.nRedV))));
    vGreen = Byte(_mm256_sub_epi16(_mm256_sub_epi16(y, _mm256_mulhrs_epi16(u, Factor(c.nGreenU))),
                                   _mm256_mulhrs_epi16(v, Factor(c.nGreenV))));
    vBlue = Byte(_mm256_add_epi16(_mm256_add_epi16(y, u), _mm256_mulhrs_epi16(u, Factor(c.nBlueU))));
}

/// Two rows of pixels from 16 bits a channel.
inline void PutPixels(const SCellJob& rJob, V vRed, V vGreen, V vBlue, unsigned char* p,
                      std::ptrdiff_t nStride)
{
    const V vLow = _mm256_or_si256(rJob.bRedFirst ? vRed : vBlue, _mm256_slli_epi16(vGreen, 8));
    const V vHigh =
        _mm256_or_si256(rJob.bRedFirst ? vBlue : vRed, _mm256_set1_epi16(static_cast<short>(0xFF00)));
    _mm256_storeu_si256(reinterpret_cast<V*>(p), _mm256_unpacklo_epi16(vLow, vHigh));
    _mm256_storeu_si256(reinterpret_cast<V*>(p + nStride), _mm256_unpackhi_epi16(vLow, vHigh));
}

/// Two rows of pixels whose channels lie row by row in the two halves.
inline void PutRowPair(const SCellJob& rJob, V vRed, V vGreen, V vBlue, unsigned char* p, std::ptrdiff_t nStride)
{
    const V vLow = _mm256_or_si256(rJob.bRedFirst ? vRed : vBlue, _mm256_slli_epi16(vGreen, 8));
    const V vHigh =
        _mm256_or_si256(rJob.bRedFirst ? vBlue : vRed, _mm256_set1_epi16(static_cast<short>(0xFF00)));
    const V a = _mm256_unpacklo_epi16(vLow, vHigh);
    const V b = _mm256_unpackhi_epi16(vLow, vHigh);
    _mm256_storeu_si256(reinterpret_cast<V*>(p), _mm256_permute2x128_si256(a, b, 0x20));
    _mm256_storeu_si256(reinterpret_cast<V*>(p + nStride), _mm256_permute2x128_si256(a, b, 0x31));
}

#include "dewarp/cpu/CellNear.h"

template <int STEP, bool LINEAR>
inline void YUVCell(const SCellJob& rJob, const SCellPoints& rPoints, unsigned char* pTarget,
                    std::ptrdiff_t nStride)
{
    SRows sRows;
    SetRows<STEP>(rPoints, sRows);
    for (int n = 0; n < CELL_SIDE; n += 2) {
        const SPlaces sUpper = RowPlaces<STEP>(sRows, n);
        const SPlaces sLower = RowPlaces<STEP>(sRows, n + 1);
        const V y = Joined(SampleBytes<LINEAR>(rJob.aPlanes[0], sUpper),
                           SampleBytes<LINEAR>(rJob.aPlanes[0], sLower));
        unsigned char* const p = pTarget + n * nStride;
        if (rJob.eSource == SOURCE_GRAY) {
            const V vByte = _mm256_mulhrs_epi16(y, Factor(258));
            PutPixels(rJob, vByte, vByte, vByte, p, nStride);
            continue;
        }
        V avU[2];
        V avV[2];
        SampleChroma<LINEAR>(rJob, Halved(sUpper), avU[0], avV[0]);
        SampleChroma<LINEAR>(rJob, Halved(sLower), avU[1], avV[1]);
        V vRed;
        V vGreen;
        V vBlue;
        ToColours(rJob.sColours, y, Joined(avU[0], avU[1]), Joined(avV[0], avV[1]), vRed, vGreen, vBlue);
        PutPixels(rJob, vRed, vGreen, vBlue, p, nStride);
    }
}

/// What a packed frame's pixels go through.
struct SPackedOrders
{
    V vPairs;  ///< two neighbours, channel by channel; alpha of its own or none
    V vOutput; ///< from samples' bytes, 16 bits each, to the target's order
    V vOpaque; ///< added to pixels without alpha
    bool bPremultiply;
};

inline SPackedOrders OrdersOf(const SCellJob& rJob)
{
    alignas(16) signed char anPairs[16];
    const int nBytes = rJob.aPlanes[0].nPixelBytes;
    for (int nPixel = 0; nPixel < 2; ++nPixel) {
        for (int i = 0; i < 4; ++i) {
            const int nChannel = rJob.anChannels[rJob.bRedFirst || i == 1 || i == 3 ? i : 2 - i];
            for (int nNext = 0; nNext < 2; ++nNext)
                anPairs[nPixel * 8 + i * 2 + nNext] =
                    static_cast<signed char>(nChannel < 0 ? -128 : nPixel * 8 + nNext * nBytes + nChannel);
        }
    }
    SPackedOrders s;
    s.vPairs = _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(anPairs)));
    s.vOutput = V();
    s.vOpaque = Set(rJob.anChannels[3] < 0 ? static_cast<std::int32_t>(0xFF000000U) : 0);
    s.bPremultiply = rJob.bPremultiply;
    return s;
}

inline V EightBytes(const unsigned char* a, const unsigned char* b, const unsigned char* c,
                    const unsigned char* d)
{
    const auto Two8 = [](const unsigned char* p, const unsigned char* q) {
        return _mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)),
                                  _mm_loadl_epi64(reinterpret_cast<const __m128i*>(q)));
    };
    return _mm256_inserti128_si256(_mm256_castsi128_si256(Two8(a, b)), Two8(c, d), 1);
}

/// Four linear samples, a channel in 16 bits.
inline V PackedSamples(const SSamplePlane& rPlane, const SPackedOrders& o, const std::int32_t* pn, V vAlong,
                       V vAcross)
{
    const unsigned char* const p = rPlane.pPixels;
    const unsigned char* const q = p + rPlane.nStride;
    const V u = _mm256_shuffle_epi8(EightBytes(p + pn[0], p + pn[1], p + pn[2], p + pn[3]), o.vPairs);
    const V l = _mm256_shuffle_epi8(EightBytes(q + pn[0], q + pn[1], q + pn[2], q + pn[3]), o.vPairs);
    const V hu = _mm256_maddubs_epi16(u, vAlong);
    const V hl = _mm256_maddubs_epi16(l, vAlong);
    return _mm256_add_epi16(hu, _mm256_mulhrs_epi16(_mm256_sub_epi16(hl, hu), vAcross));
}

/// Colours times alpha: bytes in 16 bits each.
inline V Premultiplied(V v)
{
    const V vSpread = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(6, 7, 6, 7, 6, 7, -128, -128, 14, 15, 14, 15, 14, 15, -128, -128));
    const V vAlpha = _mm256_or_si256(_mm256_shuffle_epi8(v, vSpread), _mm256_set1_epi64x(255LL << 48));
    const V n = _mm256_add_epi16(_mm256_mullo_epi16(v, vAlpha), _mm256_set1_epi16(128));
    return _mm256_srli_epi16(_mm256_add_epi16(n, _mm256_srli_epi16(n, 8)), 8);
}

template <int STEP>
inline void PackedCell(const SCellJob& rJob, const SPackedOrders& o, const SCellPoints& rPoints,
                       unsigned char* pTarget, std::ptrdiff_t nStride)
{
    SRows sRows;
    SetRows<STEP>(rPoints, sRows);
    const SSamplePlane& rPlane = rJob.aPlanes[0];
    for (int n = 0; n < CELL_SIDE; ++n) {
        const SPlaces s = RowPlaces<STEP>(sRows, n);
        alignas(32) std::int32_t an[8];
        const V x = _mm256_mullo_epi32(_mm256_srai_epi32(s.x, POSITION_BITS), Set(rPlane.nPixelBytes));
        const V y = _mm256_srai_epi32(s.y, POSITION_BITS);
        Store(an, _mm256_add_epi32(x, _mm256_mullo_epi32(y, Set(static_cast<std::int32_t>(rPlane.nStride)))));
        const SWeights w = WeightsOf(s);
        const V vAcross = _mm256_or_si256(w.vAcross, _mm256_slli_epi32(w.vAcross, 16));
        V av[2];
        for (int i = 0; i < 2; ++i) {
            const V vTwice = _mm256_add_epi32(_mm256_setr_epi32(0, 0, 1, 1, 2, 2, 3, 3), Set(4 * i));
            av[i] = PackedSamples(rPlane, o, an + 4 * i, _mm256_permutevar8x32_epi32(w.vAlong, vTwice),
                                  _mm256_permutevar8x32_epi32(vAcross, vTwice));
            av[i] = _mm256_mulhrs_epi16(av[i], _mm256_set1_epi16(258));
            if (o.bPremultiply)
                av[i] = Premultiplied(av[i]);
        }
        const V vBytes = _mm256_permute4x64_epi64(_mm256_packus_epi16(av[0], av[1]), 0xD8);
        _mm256_storeu_si256(reinterpret_cast<V*>(pTarget + n * nStride), _mm256_or_si256(vBytes, o.vOpaque));
    }
}

inline SCellPoints Next(const SCellPoints& p, int nCell)
{
    return {p.pFirst + nCell * (CELL_SIDE / p.nStep), p.nRow, p.nStep};
}

/// Takes cells of a run from nCell on until as many are near as fit in a group: rNear(block, place in the group,
/// cell) for those that rUsable(block) says, rFar(points, cell) for the others. Returns how many are in the group.
template <int STEP, class FUsable, class FNear, class FFar>
inline int FillGroup(const SCellPoints& rPoints, int& nCell, int nCells, FUsable&& rUsable, FNear&& rNear, FFar&& rFar)
{
    int nNear = 0;
    for (; nCell < nCells && nNear < NEAR_CELLS; ++nCell) {
        const SCellPoints s = Next(rPoints, nCell);
        const SBlock<STEP> b(s);
        if (rUsable(b))
            rNear(b, nNear++, nCell);
        else
            rFar(s, nCell);
    }
    return nNear;
}

template <int STEP, bool LINEAR>
void LumaCells(const SCellJob& rJob, const SCellPoints& rPoints, int nCells, unsigned char* pTarget,
               std::ptrdiff_t nStride)
{
    SNearCell as[NEAR_CELLS];
    for (int n = 0; n < nCells;) {
        const int nNear = FillGroup<STEP>(
            rPoints, n, nCells, [&](const SBlock<STEP>& b) { return LINEAR && IsStageable(rJob, b); },
            [&](const SBlock<STEP>& b, int i, int nCell) {
                as[i].nCell = nCell;
                PlaceNear(rJob, b, as[i]);
            },
            [&](const SCellPoints& s, int nCell) {
                LumaCell<STEP, LINEAR>(rJob, s, pTarget + nCell * CELL_SIDE, nStride);
            });
        for (int i = 0; i < nNear; ++i)
            PutNearLuma(as[i], pTarget + as[i].nCell * CELL_SIDE, nStride);
    }
}

template <int STEP, bool LINEAR>
void ChromaCells(const SCellJob& rJob, const SCellPoints& rPoints, int nCells, unsigned char* const* ppTargets,
                 const std::ptrdiff_t* pStrides)
{
    const bool bTogether = ppTargets[1] == nullptr;
    const bool bNear = LINEAR && HasNearChroma(rJob);
    SNearChroma as[NEAR_CELLS];
    unsigned char* ap[2] = {};
    const auto Target = [&](int n) {
        ap[0] = ppTargets[0] + n * (bTogether ? 8 : 4);
        ap[1] = bTogether ? nullptr : ppTargets[1] + n * 4;
        return ap;
    };
    for (int n = 0; n < nCells;) {
        const int nNear = FillGroup<STEP>(
            rPoints, n, nCells, [&](const SBlock<STEP>& b) { return bNear && b.bNear; },
            [&](const SBlock<STEP>& b, int i, int nCell) {
                as[i].nCell = nCell;
                PlaceChroma(rJob, b, as[i]);
            },
            [&](const SCellPoints& s, int nCell) { ChromaCell<STEP, LINEAR>(rJob, s, Target(nCell), pStrides); });
        for (int i = 0; i < nNear; ++i)
            PutNearChroma(rJob, as[i], Target(as[i].nCell), pStrides);
    }
}

template <int STEP, bool LINEAR>
void YUVCells(const SCellJob& rJob, const SCellPoints& rPoints, int nCells, unsigned char* pTarget,
              std::ptrdiff_t nStride)
{
    const bool bNear = LINEAR && HasNearChroma(rJob);
    SNearCell as[NEAR_CELLS];
    SNearChroma asChroma[4 * NEAR_CELLS];
    for (int n = 0; n < nCells;) {
        const int nNear = FillGroup<STEP>(
            rPoints, n, nCells, [&](const SBlock<STEP>& b) { return bNear && IsStageable(rJob, b); },
            [&](const SBlock<STEP>& b, int i, int nCell) {
                as[i].nCell = nCell;
                PlaceNear(rJob, b, as[i]);
                for (int k = 0; k < 4; ++k)
                    PlacePairs(rJob.aPlanes[1], FirstPair(rJob.aPlanes[1], b), HalvedNear(as[i].avX[k]),
                               HalvedNear(as[i].avY[k]), asChroma[4 * i + k]);
            },
            [&](const SCellPoints& s, int nCell) {
                YUVCell<STEP, LINEAR>(rJob, s, pTarget + std::ptrdiff_t{nCell} * 32, nStride);
            });
        for (int i = 0; i < nNear; ++i) {
            for (int k = 0; k < 4; ++k)
                PutNearPixels(rJob, NearSamples(as[i], k), asChroma[4 * i + k],
                              pTarget + std::ptrdiff_t{as[i].nCell} * 32 + 2 * k * nStride, nStride);
        }
    }
}

template <int STEP>
void PackedCells(const SCellJob& rJob, const SCellPoints& rPoints, int nCells, unsigned char* pTarget,
                 std::ptrdiff_t nStride)
{
    const SPackedOrders sOrders = OrdersOf(rJob);
    for (int n = 0; n < nCells; ++n) {
        const SCellPoints sPoints = Next(rPoints, n);
        // Three bytes a pixel are fetched by eight: not at the frame's very end.
        if (rJob.aPlanes[0].nPixelBytes == 3 && LowestRow(sPoints) >= (rJob.nFrameHeight - 2)
                                                                          << POSITION_BITS)
            PlainPixels(rJob, sPoints, pTarget + std::ptrdiff_t{n} * 32, nStride);
        else
            PackedCell<STEP>(rJob, sOrders, sPoints, pTarget + std::ptrdiff_t{n} * 32, nStride);
    }
}

void Luma(const SCellJob& rJob, const SCellPoints& p, int nCells, unsigned char* pTarget,
          std::ptrdiff_t nStride)
{
    const auto pCells = p.nStep == CELL_SIDE ? (rJob.bLinear ? LumaCells<8, true> : LumaCells<8, false>)
                                             : (rJob.bLinear ? LumaCells<4, true> : LumaCells<4, false>);
    pCells(rJob, p, nCells, pTarget, nStride);
}

void Chroma(const SCellJob& rJob, const SCellPoints& p, int nCells, unsigned char* const* ppTargets,
            const std::ptrdiff_t* pStrides)
{
    const auto pCells = p.nStep == CELL_SIDE ? (rJob.bLinear ? ChromaCells<8, true> : ChromaCells<8, false>)
                                             : (rJob.bLinear ? ChromaCells<4, true> : ChromaCells<4, false>);
    pCells(rJob, p, nCells, ppTargets, pStrides);
}

void Pixels(const SCellJob& rJob, const SCellPoints& p, int nCells, unsigned char* pTarget,
            std::ptrdiff_t nStride)
{
    const bool bWide = p.nStep == CELL_SIDE;
    if (rJob.eSource != SOURCE_PACKED) {
        const auto pCells = bWide ? (rJob.bLinear ? YUVCells<8, true> : YUVCells<8, false>)
                                  : (rJob.bLinear ? YUVCells<4, true> : YUVCells<4, false>);
        pCells(rJob, p, nCells, pTarget, nStride);
        return;
    }
    if (!rJob.bLinear) {
        for (int n = 0; n < nCells; ++n)
            PlainPixels(rJob, {p.pFirst + n * (CELL_SIDE / p.nStep), p.nRow, p.nStep},
                        pTarget + std::ptrdiff_t{n} * 32, nStride);
        return;
    }
    (bWide ? PackedCells<8> : PackedCells<4>)(rJob, p, nCells, pTarget, nStride);
}

} // namespace

const SCellKernels* AVX2Kernels()
{
    static const SCellKernels sKernels = {"AVX2", Luma, Chroma, Pixels};
    return __builtin_cpu_supports("avx2") ? &sKernels : nullptr;
}

#else

const SCellKernels* AVX2Kernels()
{
    return nullptr;
}

#endif
