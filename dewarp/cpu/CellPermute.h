// Parts of the AVX-512 kernels: where cells lie, and samples by byte permutes. Included by CellAVX512.cpp
// alone, inside its anonymous namespace.

using V = __m512i;

/// Where a cell's texels lie.
struct SBlock
{
    int x; ///< first texel; even
    int y;
    int nRows;  ///< that are needed
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
    return _mm512_broadcast_i32x4(_mm_setr_epi16(
        static_cast<short>(n0), static_cast<short>(n1), static_cast<short>(n2), static_cast<short>(n3),
        static_cast<short>(n4), static_cast<short>(n5), static_cast<short>(n6), static_cast<short>(n7)));
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

template <int STEP>
inline V Places(const std::int32_t* const (&ap)[3][3], int nBase, int nHalf)
{
    const auto At = [&](int j, int i) { return *ap[j][i] - nBase; };
    if constexpr (STEP == CELL_SIDE) {
        const V vRows = nHalf == 0 ? RowsOf(0, 4096, 8192, 12288) : RowsOf(16384, 20480, 24576, 28672);
        const V vColumns = ColumnsOf(0, 4096, 8192, 12288, 16384, 20480, 24576, 28672);
        return Towards(Towards(Set(At(0, 0)), Set(At(1, 0)), vRows),
                       Towards(Set(At(0, 1)), Set(At(1, 1)), vRows), vColumns);
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

template <int STEP>
inline void PixelPlaces(const SCellPoints& p, const SBlock& b, SPlaces (&as)[2])
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
    const auto Row = [&](int n) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + n * rPlane.nStride));
    };
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
template <bool LINEAR>
inline void LumaSamples(const STable& t, const SPlaces (&as)[2], V (&av)[2])
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
