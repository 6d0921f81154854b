// Parts of the AVX2 kernels: cells whose texels lie within 16 x 16, stepped in 16 bits. Included by
// CellAVX2.cpp alone, inside its anonymous namespace.

/// Weights of 16 places, 16 bits each: bytes 127 - x7 and x7.
inline V RightWeights(V x)
{
    const V x7 = _mm256_mulhrs_epi16(_mm256_srli_epi16(_mm256_slli_epi16(x, 5), 1), LEVEL);
    return _mm256_add_epi16(_mm256_mullo_epi16(x7, SIDE_WEIGHTS), LEVEL);
}

/// The fraction downwards in 32768ths.
inline V DownWeights(V y)
{
    return _mm256_srli_epi16(_mm256_slli_epi16(y, 5), 1);
}

/// Four bytes each from eight places.
inline V EightFours(const unsigned char* p, const std::uint16_t* a, const std::uint16_t* b)
{
    const auto Fours = [p](const std::uint16_t* pn) {
        return _mm_unpacklo_epi64(_mm_unpacklo_epi32(_mm_loadu_si32(p + pn[0]), _mm_loadu_si32(p + pn[1])),
                                  _mm_unpacklo_epi32(_mm_loadu_si32(p + pn[2]), _mm_loadu_si32(p + pn[3])));
    };
    return _mm256_setr_m128i(Fours(a), Fours(b));
}

/// Texels of a block with the ones below between them: two bytes a texel, 32 bytes a row.
struct SStage
{
    alignas(32) unsigned char an[BLOCK_SIDE * 32 + 32];
};

inline void StageBlock(const SSamplePlane& rPlane, int x, int y, int nRows, SStage& rStage)
{
    const unsigned char* p = rPlane.pPixels + y * rPlane.nStride + x;
    const std::ptrdiff_t nStride = rPlane.nStride;
    V* pTarget = reinterpret_cast<V*>(rStage.an);
    __m128i vUpper = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    for (int n = nRows - 1; n > 0; --n) {
        p += nStride;
        const __m128i vLower = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        // One store a row: what is fetched later lies in one, and need not wait for it to reach the cache.
        _mm256_store_si256(pTarget++, _mm256_setr_m128i(_mm_unpacklo_epi8(vUpper, vLower),
                                                        _mm_unpackhi_epi8(vUpper, vLower)));
        vUpper = vLower;
    }
}

/// Rows of 16 bytes may be read.
template <int STEP>
inline bool IsStageable(const SCellJob& rJob, const SBlock<STEP>& b)
{
    return b.bNear && b.x <= rJob.nFrameWidth - BLOCK_SIDE;
}

inline V BlendNear(V vUpper, V vLower, V vDown)
{
    return _mm256_add_epi16(vUpper, _mm256_mulhrs_epi16(_mm256_sub_epi16(vLower, vUpper), vDown));
}

/// Bytes of four texels, upper and lower in turns, side by side.
inline V SideBySide(V v)
{
    return _mm256_shuffle_epi8(v, SIDES);
}

inline V StageIndex(V x, V y)
{
    return _mm256_or_si256(_mm256_and_si256(_mm256_srli_epi16(y, POSITION_BITS - 5), STAGE_ROWS),
                           _mm256_and_si256(_mm256_srli_epi16(x, POSITION_BITS - 1), STAGE_COLUMNS));
}

/// A cell on its way. Several are at the same step, so that none waits for what it has just stored.
struct SNearCell
{
    V avX[4]; ///< two rows of eight pixels each
    V avY[4];
    alignas(32) std::uint16_t anIndex[CELL_PIXELS]; ///< in the stage
    SStage sStage;
    int nCell;
};

/// Cells that are on their way together.
const int NEAR_CELLS = 8;

template <int STEP, int PAIR>
inline void PlacePair(const SNearRows<STEP>& rRows, SNearCell& c)
{
    V x;
    V y;
    rRows.template Pair<PAIR>(x, y);
    c.avX[PAIR] = x;
    c.avY[PAIR] = y;
    _mm256_store_si256(reinterpret_cast<V*>(c.anIndex + 16 * PAIR), StageIndex(x, y));
}

template <int STEP>
inline void PlaceNear(const SCellJob& rJob, const SBlock<STEP>& b, SNearCell& c)
{
    const SNearRows<STEP> sRows(b);
    PlacePair<STEP, 0>(sRows, c);
    PlacePair<STEP, 1>(sRows, c);
    PlacePair<STEP, 2>(sRows, c);
    PlacePair<STEP, 3>(sRows, c);
    StageBlock(rJob.aPlanes[0], b.x, b.y, b.nRowsNeeded, c.sStage);
}

/// Luma samples of two rows of eight pixels.
inline V NearSamples(const SNearCell& c, int n)
{
    const std::uint16_t* const pn = c.anIndex + 16 * n;
    const V w = RightWeights(c.avX[n]);
    const V a =
        _mm256_maddubs_epi16(SideBySide(EightFours(c.sStage.an, pn, pn + 8)), _mm256_unpacklo_epi16(w, w));
    const V b = _mm256_maddubs_epi16(SideBySide(EightFours(c.sStage.an, pn + 4, pn + 12)),
                                     _mm256_unpackhi_epi16(w, w));
    // Above in the low half of each 32 bits, below in the high one.
    const V vUpper = _mm256_packus_epi32(_mm256_blend_epi16(a, V(), 0xAA), _mm256_blend_epi16(b, V(), 0xAA));
    const V vLower = _mm256_packus_epi32(_mm256_srli_epi32(a, 16), _mm256_srli_epi32(b, 16));
    return BlendNear(vUpper, vLower, DownWeights(c.avY[n]));
}

/// The first and the third of four rows in the low half, the others in the high one.
inline void PutRowsOfTwo(V v, unsigned char* p, std::ptrdiff_t nStride)
{
    const __m128i vLow = _mm256_castsi256_si128(v);
    const __m128i vHigh = _mm256_extracti128_si256(v, 1);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p), vLow);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p + nStride), vHigh);
    _mm_storeh_pd(reinterpret_cast<double*>(p + 2 * nStride), _mm_castsi128_pd(vLow));
    _mm_storeh_pd(reinterpret_cast<double*>(p + 3 * nStride), _mm_castsi128_pd(vHigh));
}

inline void PutNearLuma(const SNearCell& c, unsigned char* p, std::ptrdiff_t nStride)
{
    for (int n = 0; n < 4; n += 2)
        PutRowsOfTwo(_mm256_packus_epi16(_mm256_mulhrs_epi16(NearSamples(c, n), BYTE_FACTOR),
                                         _mm256_mulhrs_epi16(NearSamples(c, n + 1), BYTE_FACTOR)),
                     p + 2 * n * nStride, nStride);
}

/// From places in a block, in full resolution, to places behind the chroma texel before the block's.
inline V HalvedNear(V v)
{
    const V vHalf = HALF_POSITION;
    return _mm256_add_epi16(_mm256_srli_epi16(_mm256_add_epi16(v, vHalf), 1), vHalf);
}

/// Chroma of 16 places on its way.
struct SNearChroma
{
    V x;
    V y;
    alignas(32) std::uint16_t anOffset[16];
    const unsigned char* pFirst;
    int nCell;
};

inline void PlacePairs(const SSamplePlane& rPlane, const unsigned char* pFirst, V x, V y, SNearChroma& c)
{
    c.x = x;
    c.y = y;
    c.pFirst = pFirst;
    const V vRows =
        _mm256_mullo_epi16(_mm256_srli_epi16(y, POSITION_BITS), Words(static_cast<int>(rPlane.nStride)));
    _mm256_store_si256(
        reinterpret_cast<V*>(c.anOffset),
        _mm256_add_epi16(vRows, _mm256_and_si256(_mm256_srli_epi16(x, POSITION_BITS - 1), EVEN)));
}

/// Samples of both chroma channels at 16 places: each vector has U and V in turns, of the places whose
/// weights lie in the low and in the high halves of each 128 bits.
inline void NearPairs(const SSamplePlane& rPlane, const SNearChroma& c, V& vLow, V& vHigh)
{
    const unsigned char* const p = c.pFirst;
    const unsigned char* const q = p + rPlane.nStride;
    const std::uint16_t* const pn = c.anOffset;
    const V w = RightWeights(c.x);
    const V d = DownWeights(c.y);
    const V wl = _mm256_unpacklo_epi16(w, w);
    const V wh = _mm256_unpackhi_epi16(w, w);
    vLow = BlendNear(_mm256_maddubs_epi16(SideBySide(EightFours(p, pn, pn + 8)), wl),
                     _mm256_maddubs_epi16(SideBySide(EightFours(q, pn, pn + 8)), wl),
                     _mm256_unpacklo_epi16(d, d));
    vHigh = BlendNear(_mm256_maddubs_epi16(SideBySide(EightFours(p, pn + 4, pn + 12)), wh),
                      _mm256_maddubs_epi16(SideBySide(EightFours(q, pn + 4, pn + 12)), wh),
                      _mm256_unpackhi_epi16(d, d));
}

/// Offsets of a block's chroma fit 16 bits.
inline bool HasNearChroma(const SCellJob& rJob)
{
    return rJob.eSource == SOURCE_NV && rJob.aPlanes[1].nStride <= 5000;
}

template <int STEP>
inline const unsigned char* FirstPair(const SSamplePlane& rPlane, const SBlock<STEP>& b)
{
    return rPlane.pPixels + (b.y / 2 - 1) * rPlane.nStride + 2 * (b.x / 2 - 1);
}

template <int STEP>
inline void PlaceChroma(const SCellJob& rJob, const SBlock<STEP>& b, SNearChroma& c)
{
    V x;
    V y;
    ChromaPlacesOf(b, x, y);
    PlacePairs(rJob.aPlanes[1], FirstPair(rJob.aPlanes[1], b), HalvedNear(x), HalvedNear(y), c);
}

inline void PutNearChroma(const SCellJob& rJob, const SNearChroma& c, unsigned char* const* pp,
                          const std::ptrdiff_t* pStrides)
{
    V vLow;
    V vHigh;
    NearPairs(rJob.aPlanes[1], c, vLow, vHigh);
    V v =
        _mm256_packus_epi16(_mm256_mulhrs_epi16(vLow, BYTE_FACTOR), _mm256_mulhrs_epi16(vHigh, BYTE_FACTOR));
    if (rJob.bVFirst)
        v = _mm256_or_si256(_mm256_srli_epi16(v, 8), _mm256_slli_epi16(v, 8));
    if (pp[1] == nullptr) {
        PutEights(v, pp[0], pStrides[0]);
        return;
    }
    // U to the front of each row, V behind.
    alignas(32) std::int32_t an[8];
    Store(an,
          _mm256_shuffle_epi8(v, Twice(_mm_setr_epi8(0, 2, 4, 6, 1, 3, 5, 7, 8, 10, 12, 14, 9, 11, 13, 15))));
    for (int n = 0; n < 4; ++n) {
        std::memcpy(pp[0] + n * pStrides[0], &an[2 * n], 4);
        std::memcpy(pp[1] + n * pStrides[1], &an[2 * n + 1], 4);
    }
}

/// Pixels of two rows.
inline void PutNearPixels(const SCellJob& rJob, V vLuma, const SNearChroma& rChroma, unsigned char* p,
                          std::ptrdiff_t nStride)
{
    V vLow;
    V vHigh;
    NearPairs(rJob.aPlanes[1], rChroma, vLow, vHigh);
    const V vFirst =
        _mm256_packus_epi32(_mm256_blend_epi16(vLow, V(), 0xAA), _mm256_blend_epi16(vHigh, V(), 0xAA));
    const V vSecond = _mm256_packus_epi32(_mm256_srli_epi32(vLow, 16), _mm256_srli_epi32(vHigh, 16));
    V vRed;
    V vGreen;
    V vBlue;
    ToColours(rJob.sColours, vLuma, rJob.bVFirst ? vSecond : vFirst, rJob.bVFirst ? vFirst : vSecond, vRed,
              vGreen, vBlue);
    PutRowPair(rJob, vRed, vGreen, vBlue, p, nStride);
}
