// Parts of the AVX2 kernels: where near cells lie, and the positions of their pixels in 16 bits. Included by
// CellAVX2.cpp alone, inside its anonymous namespace.

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
        s.an[i] = static_cast<std::int16_t>(i < 8 ? (4 * nPair + 1) << 8 | 4 * nPair
                                                  : (4 * nPair + 3) << 8 | (4 * nPair + 2));
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
template <int STEP>
struct SBlock
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
        bNear = _mm_movemask_epi8(
                    _mm_cmpgt_epi32(vSpan, _mm_set1_epi32((BLOCK_SIDE - 1) * POSITION_ONE - 1))) == 0;
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
template <int N>
inline __m128i Spread(__m128i v)
{
    return _mm_shuffle_epi8(v, _mm_set1_epi16(static_cast<short>((2 * N + 1) << 8 | 2 * N)));
}

/// One word of eight in the first four, of another vector in the others.
template <int N>
inline __m128i SpreadTwo(__m128i a, __m128i b)
{
    return _mm_blend_epi16(Spread<N>(a), Spread<N>(b), 0xF0);
}

/// Positions of a cell's pixels: where its rows begin and how far they go, one row a word, in both halves.
template <int STEP>
struct SNearRows;

template <>
struct SNearRows<CELL_SIDE>
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
    template <int PAIR>
    void Pair(V& x, V& y) const
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

template <>
struct SNearRows<CELL_SIDE / 2>
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
        avX[2] =
            Twice(Towards8(SpreadTwo<0>(b.vLast, b.vLastBelow), SpreadTwo<4>(b.vLast, b.vLastBelow), vRows));
        avY[2] =
            Twice(Towards8(SpreadTwo<1>(b.vLast, b.vLastBelow), SpreadTwo<5>(b.vLast, b.vLastBelow), vRows));
    }
    template <int PAIR>
    void Pair(V& x, V& y) const
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
template <int N>
inline V SpreadWide(V v)
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
    x = Towards(Towards(SpreadWide<0>(v), SpreadWide<4>(v), vRows),
                Towards(SpreadWide<2>(v), SpreadWide<6>(v), vRows), vColumns);
    y = Towards(Towards(SpreadWide<1>(v), SpreadWide<5>(v), vRows),
                Towards(SpreadWide<3>(v), SpreadWide<7>(v), vRows), vColumns);
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
