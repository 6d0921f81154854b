// Parts of the AVX2 kernels: cells whose texels lie within 16 x 16, stepped in 16 bits. Included by CellAVX2.cpp
// alone, inside its anonymous namespace.

const int BLOCK_SIDE = 16;

inline V Words(int n)
{
    return _mm256_set1_epi16(static_cast<short>(n));
}

/// A constant that is read from memory: the compiler would build it anew in every cell.
struct SConstant
{
    alignas(32) std::int16_t an[16];
    operator V() const
    {
        const V* p = reinterpret_cast<const V*>(an);
        asm("" : "+r"(p));
        return *p;
    }
};

constexpr SConstant Sixteen(int n)
{
    const std::int16_t i = static_cast<std::int16_t>(n);
    return {{i, i, i, i, i, i, i, i, i, i, i, i, i, i, i, i}};
}

constexpr SConstant TwiceEight(int a, int b, int c, int d, int e, int f, int g, int h)
{
    SConstant s = {};
    const int an[8] = {a, b, c, d, e, f, g, h};
    for (int i = 0; i < 16; ++i)
        s.an[i] = static_cast<std::int16_t>(an[i % 8]);
    return s;
}

/// Words 2 * PAIR of a half in the low half, the next ones in the high one.
constexpr SConstant TwoOf(int nPair)
{
    SConstant s = {};
    for (int i = 0; i < 16; ++i)
        s.an[i] = static_cast<std::int16_t>(i < 8 ? (4 * nPair + 1) << 8 | 4 * nPair : (4 * nPair + 3) << 8 | (4 * nPair + 2));
    return s;
}

const SConstant BYTE_FACTOR = Sixteen(258);
const SConstant LEVEL = Sixteen(SAMPLE_LEVEL);
const SConstant SIDE_WEIGHTS = Sixteen(255);
const SConstant HALF_POSITION = Sixteen(POSITION_ONE / 2);
const SConstant STAGE_ROWS = Sixteen(0x3E0);
const SConstant STAGE_COLUMNS = Sixteen(0x1E);
const SConstant EVEN = Sixteen(-2);
const SConstant EIGHTHS = TwiceEight(0, 4096, 8192, 12288, 16384, 20480, 24576, 28672);
const SConstant QUARTERS = TwiceEight(0, 8192, 16384, 24576, 0, 8192, 16384, 24576);
const SConstant SIDES = TwiceEight(0x0200, 0x0301, 0x0604, 0x0705, 0x0A08, 0x0B09, 0x0E0C, 0x0F0D);
const SConstant TWO_ROWS[4] = {TwoOf(0), TwoOf(1), TwoOf(2), TwoOf(3)};

inline V Twice(__m128i v)
{
    return _mm256_broadcastsi128_si256(v);
}

/// A share of the way, to the nearest; shares in 32768ths.
inline __m128i Towards8(__m128i vFrom, __m128i vTo, __m128i vShare)
{
    return _mm_add_epi16(vFrom, _mm_mulhrs_epi16(_mm_sub_epi16(vTo, vFrom), vShare));
}

inline V Towards(V vFrom, V vTo, V vShare)
{
    return _mm256_add_epi16(vFrom, _mm256_mulhrs_epi16(_mm256_sub_epi16(vTo, vFrom), vShare));
}

/// Where a cell's texels lie, and its points from there in 16 bits.
template <int STEP> struct SBlock
{
    explicit SBlock(const SCellPoints& p)
    {
        const auto Pair = [&](int j, int i) {
            return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p.pFirst + j * p.nRow + i));
        };
        const auto Single = [&](int j) {
            const __m128i v = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p.pFirst + j * p.nRow + 2));
            return _mm_unpacklo_epi64(v, v);
        };
        const int nRows = CELL_SIDE / STEP + 1;
        __m128i av[3];
        __m128i avLast[3];
        __m128i vLow = av[0] = Pair(0, 0);
        __m128i vHigh = vLow;
        for (int j = 0; j < nRows; ++j) {
            av[j] = Pair(j, 0);
            vLow = _mm_min_epi32(vLow, av[j]);
            vHigh = _mm_max_epi32(vHigh, av[j]);
            if constexpr (STEP != CELL_SIDE) {
                avLast[j] = Single(j);
                vLow = _mm_min_epi32(vLow, avLast[j]);
                vHigh = _mm_max_epi32(vHigh, avLast[j]);
            }
        }
        vLow = _mm_min_epi32(vLow, _mm_shuffle_epi32(vLow, 0x4E));
        vHigh = _mm_max_epi32(vHigh, _mm_shuffle_epi32(vHigh, 0x4E));
        // Even, so that chroma begins with a whole pixel.
        const __m128i vBase = _mm_and_si128(vLow, _mm_set1_epi32(-2 * POSITION_ONE));
        const __m128i vSpan = _mm_sub_epi32(vHigh, vBase);
        bNear = _mm_movemask_epi8(_mm_cmpgt_epi32(vSpan, _mm_set1_epi32((BLOCK_SIDE - 1) * POSITION_ONE - 1))) == 0;
        const long long nBase = _mm_cvtsi128_si64(_mm_srli_epi32(vBase, POSITION_BITS));
        const long long nSpan = _mm_cvtsi128_si64(_mm_srli_epi32(vSpan, POSITION_BITS));
        x = static_cast<int>(nBase);
        y = static_cast<int>(nBase >> 32);
        nRowsNeeded = static_cast<int>(nSpan >> 32) + 2;
        for (int j = 0; j < nRows; ++j)
            av[j] = _mm_sub_epi32(av[j], vBase);
        if constexpr (STEP == CELL_SIDE) {
            vPoints = _mm_packus_epi32(av[0], av[1]);
        } else {
            vPoints = _mm_packus_epi32(av[0], av[1]);
            vPointsBelow = _mm_packus_epi32(av[1], av[2]);
            vLast = _mm_packus_epi32(_mm_sub_epi32(avLast[0], vBase), _mm_sub_epi32(avLast[1], vBase));
            vLastBelow = _mm_packus_epi32(_mm_sub_epi32(avLast[1], vBase), _mm_sub_epi32(avLast[2], vBase));
        }
    }

    int x; ///< first texel
    int y;
    int nRowsNeeded; ///< that are needed
    bool bNear;
    // x, y of two points of a row, and of the two below; then of the last column twice.
    __m128i vPoints;
    __m128i vPointsBelow;
    __m128i vLast;
    __m128i vLastBelow;
};

/// One word of eight, in all.
template <int N> inline __m128i Spread(__m128i v)
{
    return _mm_shuffle_epi8(v, _mm_set1_epi16(static_cast<short>((2 * N + 1) << 8 | 2 * N)));
}

/// One word of eight in the first four, of another vector in the others.
template <int N> inline __m128i SpreadTwo(__m128i a, __m128i b)
{
    return _mm_blend_epi16(Spread<N>(a), Spread<N>(b), 0xF0);
}

/// Positions of a cell's pixels: where its rows begin and how far they go, one row a word, in both halves.
template <int STEP> struct SNearRows;

template <> struct SNearRows<CELL_SIDE>
{
    explicit SNearRows(const SBlock<CELL_SIDE>& b)
    {
        const __m128i vRows = _mm256_castsi256_si128(EIGHTHS);
        const __m128i v = b.vPoints;
        const __m128i x = Towards8(Spread<0>(v), Spread<4>(v), vRows);
        const __m128i y = Towards8(Spread<1>(v), Spread<5>(v), vRows);
        vX = Twice(x);
        vY = Twice(y);
        vAlongX = Twice(_mm_sub_epi16(Towards8(Spread<2>(v), Spread<6>(v), vRows), x));
        vAlongY = Twice(_mm_sub_epi16(Towards8(Spread<3>(v), Spread<7>(v), vRows), y));
    }
    /// Two rows of eight pixels.
    template <int PAIR> void Pair(V& x, V& y) const
    {
        const V vTwo = TWO_ROWS[PAIR];
        const V vColumns = EIGHTHS;
        x = _mm256_add_epi16(_mm256_shuffle_epi8(vX, vTwo),
                             _mm256_mulhrs_epi16(_mm256_shuffle_epi8(vAlongX, vTwo), vColumns));
        y = _mm256_add_epi16(_mm256_shuffle_epi8(vY, vTwo),
                             _mm256_mulhrs_epi16(_mm256_shuffle_epi8(vAlongY, vTwo), vColumns));
    }
    V vX;
    V vY;
    V vAlongX;
    V vAlongY;
};

template <> struct SNearRows<CELL_SIDE / 2>
{
    explicit SNearRows(const SBlock<CELL_SIDE / 2>& b)
    {
        const __m128i vRows = _mm256_castsi256_si128(QUARTERS);
        const __m128i u = b.vPoints;
        const __m128i l = b.vPointsBelow;
        avX[0] = Twice(Towards8(SpreadTwo<0>(u, l), SpreadTwo<4>(u, l), vRows));
        avY[0] = Twice(Towards8(SpreadTwo<1>(u, l), SpreadTwo<5>(u, l), vRows));
        avX[1] = Twice(Towards8(SpreadTwo<2>(u, l), SpreadTwo<6>(u, l), vRows));
        avY[1] = Twice(Towards8(SpreadTwo<3>(u, l), SpreadTwo<7>(u, l), vRows));
        avX[2] = Twice(Towards8(SpreadTwo<0>(b.vLast, b.vLastBelow), SpreadTwo<4>(b.vLast, b.vLastBelow), vRows));
        avY[2] = Twice(Towards8(SpreadTwo<1>(b.vLast, b.vLastBelow), SpreadTwo<5>(b.vLast, b.vLastBelow), vRows));
    }
    template <int PAIR> void Pair(V& x, V& y) const
    {
        const V vTwo = TWO_ROWS[PAIR];
        x = Row(avX, vTwo);
        y = Row(avY, vTwo);
    }
    static V Row(const V (&av)[3], V vTwo)
    {
        const V vColumns = QUARTERS;
        const V vMiddle = _mm256_shuffle_epi8(av[1], vTwo);
        return Towards(_mm256_blend_epi16(_mm256_shuffle_epi8(av[0], vTwo), vMiddle, 0xF0),
                       _mm256_blend_epi16(vMiddle, _mm256_shuffle_epi8(av[2], vTwo), 0xF0), vColumns);
    }
    V avX[3];
    V avY[3];
};

/// A word of each half of a vector in all of that half.
template <int N> inline V SpreadWide(V v)
{
    return _mm256_shuffle_epi8(v, Words((2 * N + 1) << 8 | 2 * N));
}

/// Positions of the 16 chroma places of a cell, row by row, still in full resolution.
inline void ChromaPlacesOf(const SBlock<CELL_SIDE>& b, V& x, V& y)
{
    const V vRows = _mm256_setr_epi64x(0x0800080008000800LL, 0x2800280028002800LL, 0x4800480048004800LL,
                                       0x6800680068006800LL);
    const V vColumns = Twice(_mm_setr_epi16(2048, 10240, 18432, 26624, 2048, 10240, 18432, 26624));
    const V v = Twice(b.vPoints);
    x = Towards(Towards(SpreadWide<0>(v), SpreadWide<4>(v), vRows), Towards(SpreadWide<2>(v), SpreadWide<6>(v), vRows),
                vColumns);
    y = Towards(Towards(SpreadWide<1>(v), SpreadWide<5>(v), vRows), Towards(SpreadWide<3>(v), SpreadWide<7>(v), vRows),
                vColumns);
}

inline void ChromaPlacesOf(const SBlock<CELL_SIDE / 2>& b, V& x, V& y)
{
    // Rows 0 and 1 lie between the upper points, 2 and 3 between the lower ones; columns likewise.
    const V vRows = _mm256_setr_epi64x(0x1000100010001000LL, 0x5000500050005000LL, 0x1000100010001000LL,
                                       0x5000500050005000LL);
    const V vColumns = Twice(_mm_setr_epi16(4096, 20480, 4096, 20480, 4096, 20480, 4096, 20480));
    const V v = _mm256_setr_m128i(b.vPoints, b.vPointsBelow);
    const V w = _mm256_setr_m128i(b.vLast, b.vLastBelow);
    const auto Between = [](V vLeft, V vRight) { return _mm256_blend_epi16(vLeft, vRight, 0xCC); };
    const V x0 = Towards(SpreadWide<0>(v), SpreadWide<4>(v), vRows);
    const V x1 = Towards(SpreadWide<2>(v), SpreadWide<6>(v), vRows);
    const V x2 = Towards(SpreadWide<0>(w), SpreadWide<4>(w), vRows);
    const V y0 = Towards(SpreadWide<1>(v), SpreadWide<5>(v), vRows);
    const V y1 = Towards(SpreadWide<3>(v), SpreadWide<7>(v), vRows);
    const V y2 = Towards(SpreadWide<1>(w), SpreadWide<5>(w), vRows);
    x = Towards(Between(x0, x1), Between(x1, x2), vColumns);
    y = Towards(Between(y0, y1), Between(y1, y2), vColumns);
}

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
        _mm256_store_si256(pTarget++, _mm256_setr_m128i(_mm_unpacklo_epi8(vUpper, vLower), _mm_unpackhi_epi8(vUpper, vLower)));
        vUpper = vLower;
    }
}

/// Rows of 16 bytes may be read.
template <int STEP> inline bool IsStageable(const SCellJob& rJob, const SBlock<STEP>& b)
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

template <int STEP, int PAIR> inline void PlacePair(const SNearRows<STEP>& rRows, SNearCell& c)
{
    V x;
    V y;
    rRows.template Pair<PAIR>(x, y);
    c.avX[PAIR] = x;
    c.avY[PAIR] = y;
    _mm256_store_si256(reinterpret_cast<V*>(c.anIndex + 16 * PAIR), StageIndex(x, y));
}

template <int STEP> inline void PlaceNear(const SCellJob& rJob, const SBlock<STEP>& b, SNearCell& c)
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
    const V a = _mm256_maddubs_epi16(SideBySide(EightFours(c.sStage.an, pn, pn + 8)), _mm256_unpacklo_epi16(w, w));
    const V b = _mm256_maddubs_epi16(SideBySide(EightFours(c.sStage.an, pn + 4, pn + 12)), _mm256_unpackhi_epi16(w, w));
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
    const V vRows = _mm256_mullo_epi16(_mm256_srli_epi16(y, POSITION_BITS), Words(static_cast<int>(rPlane.nStride)));
    _mm256_store_si256(reinterpret_cast<V*>(c.anOffset),
                       _mm256_add_epi16(vRows, _mm256_and_si256(_mm256_srli_epi16(x, POSITION_BITS - 1), EVEN)));
}

/// Samples of both chroma channels at 16 places: each vector has U and V in turns, of the places whose weights lie
/// in the low and in the high halves of each 128 bits.
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
                     _mm256_maddubs_epi16(SideBySide(EightFours(q, pn, pn + 8)), wl), _mm256_unpacklo_epi16(d, d));
    vHigh = BlendNear(_mm256_maddubs_epi16(SideBySide(EightFours(p, pn + 4, pn + 12)), wh),
                      _mm256_maddubs_epi16(SideBySide(EightFours(q, pn + 4, pn + 12)), wh), _mm256_unpackhi_epi16(d, d));
}

/// Offsets of a block's chroma fit 16 bits.
inline bool HasNearChroma(const SCellJob& rJob)
{
    return rJob.eSource == SOURCE_NV && rJob.aPlanes[1].nStride <= 5000;
}

template <int STEP> inline const unsigned char* FirstPair(const SSamplePlane& rPlane, const SBlock<STEP>& b)
{
    return rPlane.pPixels + (b.y / 2 - 1) * rPlane.nStride + 2 * (b.x / 2 - 1);
}

template <int STEP> inline void PlaceChroma(const SCellJob& rJob, const SBlock<STEP>& b, SNearChroma& c)
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
    V v = _mm256_packus_epi16(_mm256_mulhrs_epi16(vLow, BYTE_FACTOR), _mm256_mulhrs_epi16(vHigh, BYTE_FACTOR));
    if (rJob.bVFirst)
        v = _mm256_or_si256(_mm256_srli_epi16(v, 8), _mm256_slli_epi16(v, 8));
    if (pp[1] == nullptr) {
        PutEights(v, pp[0], pStrides[0]);
        return;
    }
    // U to the front of each row, V behind.
    alignas(32) std::int32_t an[8];
    Store(an, _mm256_shuffle_epi8(v, Twice(_mm_setr_epi8(0, 2, 4, 6, 1, 3, 5, 7, 8, 10, 12, 14, 9, 11, 13, 15))));
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
    const V vFirst = _mm256_packus_epi32(_mm256_blend_epi16(vLow, V(), 0xAA), _mm256_blend_epi16(vHigh, V(), 0xAA));
    const V vSecond = _mm256_packus_epi32(_mm256_srli_epi32(vLow, 16), _mm256_srli_epi32(vHigh, 16));
    V vRed;
    V vGreen;
    V vBlue;
    ToColours(rJob.sColours, vLuma, rJob.bVFirst ? vSecond : vFirst, rJob.bVFirst ? vFirst : vSecond, vRed, vGreen,
              vBlue);
    PutRowPair(rJob, vRed, vGreen, vBlue, p, nStride);
}
