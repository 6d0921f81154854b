// Parts of the AVX2 kernels: samples of pixels wherever they lie, fetched one by one. Included by
// CellAVX2.cpp alone, inside its anonymous namespace.

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

/// Chroma of 16 places in full resolution, two rows of four in each.
template <bool LINEAR>
inline void ChromaAtPlaces(const SCellJob& rJob, const SPlaces (&as)[2], unsigned char* const* ppTargets,
                           const std::ptrdiff_t* pStrides)
{
    V avU[2];
    V avV[2];
    for (int n = 0; n < 2; ++n)
        SampleChroma<LINEAR>(rJob, Halved(as[n]), avU[n], avV[n]);
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

template <int STEP, bool LINEAR>
inline void ChromaCell(const SCellJob& rJob, const SCellPoints& rPoints, unsigned char* const* ppTargets,
                       const std::ptrdiff_t* pStrides)
{
    const SPlaces as[2] = {ChromaRows<STEP>(rPoints, 0), ChromaRows<STEP>(rPoints, 1)};
    ChromaAtPlaces<LINEAR>(rJob, as, ppTargets, pStrides);
}
