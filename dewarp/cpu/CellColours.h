// Parts of the AVX2 kernels: from samples to pixels. Included by CellAVX2.cpp alone, inside its anonymous
// namespace.

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
inline void PutRowPair(const SCellJob& rJob, V vRed, V vGreen, V vBlue, unsigned char* p,
                       std::ptrdiff_t nStride)
{
    const V vLow = _mm256_or_si256(rJob.bRedFirst ? vRed : vBlue, _mm256_slli_epi16(vGreen, 8));
    const V vHigh =
        _mm256_or_si256(rJob.bRedFirst ? vBlue : vRed, _mm256_set1_epi16(static_cast<short>(0xFF00)));
    const V a = _mm256_unpacklo_epi16(vLow, vHigh);
    const V b = _mm256_unpackhi_epi16(vLow, vHigh);
    _mm256_storeu_si256(reinterpret_cast<V*>(p), _mm256_permute2x128_si256(a, b, 0x20));
    _mm256_storeu_si256(reinterpret_cast<V*>(p + nStride), _mm256_permute2x128_si256(a, b, 0x31));
}

/// Two rows of eight pixels.
template <bool LINEAR>
inline void YUVRows(const SCellJob& rJob, const SPlaces& rUpper, const SPlaces& rLower, unsigned char* p,
                    std::ptrdiff_t nStride)
{
    const V y =
        Joined(SampleBytes<LINEAR>(rJob.aPlanes[0], rUpper), SampleBytes<LINEAR>(rJob.aPlanes[0], rLower));
    if (rJob.eSource == SOURCE_GRAY) {
        const V vByte = _mm256_mulhrs_epi16(y, Factor(258));
        PutPixels(rJob, vByte, vByte, vByte, p, nStride);
        return;
    }
    V avU[2];
    V avV[2];
    SampleChroma<LINEAR>(rJob, Halved(rUpper), avU[0], avV[0]);
    SampleChroma<LINEAR>(rJob, Halved(rLower), avU[1], avV[1]);
    V vRed;
    V vGreen;
    V vBlue;
    ToColours(rJob.sColours, y, Joined(avU[0], avU[1]), Joined(avV[0], avV[1]), vRed, vGreen, vBlue);
    PutPixels(rJob, vRed, vGreen, vBlue, p, nStride);
}

template <int STEP, bool LINEAR>
inline void YUVCell(const SCellJob& rJob, const SCellPoints& rPoints, unsigned char* pTarget,
                    std::ptrdiff_t nStride)
{
    SRows sRows;
    SetRows<STEP>(rPoints, sRows);
    for (int n = 0; n < CELL_SIDE; n += 2)
        YUVRows<LINEAR>(rJob, RowPlaces<STEP>(sRows, n), RowPlaces<STEP>(sRows, n + 1), pTarget + n * nStride,
                        nStride);
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

/// Eight pixels of a packed frame.
inline V PackedRow(const SCellJob& rJob, const SPackedOrders& o, const SPlaces& s)
{
    const SSamplePlane& rPlane = rJob.aPlanes[0];
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
    return _mm256_or_si256(_mm256_permute4x64_epi64(_mm256_packus_epi16(av[0], av[1]), 0xD8), o.vOpaque);
}

template <int STEP>
inline void PackedCell(const SCellJob& rJob, const SPackedOrders& o, const SCellPoints& rPoints,
                       unsigned char* pTarget, std::ptrdiff_t nStride)
{
    SRows sRows;
    SetRows<STEP>(rPoints, sRows);
    for (int n = 0; n < CELL_SIDE; ++n)
        _mm256_storeu_si256(reinterpret_cast<V*>(pTarget + n * nStride),
                            PackedRow(rJob, o, RowPlaces<STEP>(sRows, n)));
}
