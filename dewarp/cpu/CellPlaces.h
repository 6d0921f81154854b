// Parts of the AVX2 kernels: positions of a cell's pixels in 32 bits, and their samples wherever they lie.
// Included by CellAVX2.cpp alone, inside its anonymous namespace.

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
