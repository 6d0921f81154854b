// The loops of a grid's making by AVX2: four points at a time in double precision, the same operations in the
// same order.

#include "dewarp/cpu/GridLoops.h"

#if defined(__AVX2__)

#include <immintrin.h>

namespace
{

#include "dewarp/cpu/GridLoops.inc"

/// The nearest positions of four, as PositionAt has them.
inline __m128i Nearest(__m256d v)
{
    const double fFarthest = 32000.0 * POSITION_ONE;
    const __m256d vLimited =
        _mm256_min_pd(_mm256_max_pd(v, _mm256_set1_pd(-fFarthest)), _mm256_set1_pd(fFarthest));
    return _mm_sub_epi32(_mm256_cvttpd_epi32(_mm256_add_pd(vLimited, _mm256_set1_pd(fFarthest + 0.5))),
                         _mm_set1_epi32(static_cast<int>(fFarthest)));
}

inline __m256d Along(double f, double fSlope, __m256d x)
{
    return _mm256_add_pd(_mm256_set1_pd(f), _mm256_mul_pd(_mm256_set1_pd(fSlope), x));
}

void FillTriangle(const SScreenTriangle& t, const SPointWindow& w)
{
    const __m128i vLanes = _mm_setr_epi32(0, 1, 2, 3);
    ForRows(t, w, [&](double dx, double dy, int nPoints, SGridPoint* pPoints) {
        const double fU = t.sU.f + t.sU.fY * dy;
        const double fV = t.sV.f + t.sV.fY * dy;
        const double fW = t.sW.f + t.sW.fY * dy;
        for (int n = 0; n < nPoints; n += 4) {
            const __m128i vNumbers = _mm_add_epi32(_mm_set1_epi32(n), vLanes);
            const __m256d x = _mm256_add_pd(
                _mm256_set1_pd(dx), _mm256_cvtepi32_pd(_mm_mullo_epi32(vNumbers, _mm_set1_epi32(w.nStep))));
            __m256d u = Along(fU, t.sU.fX, x);
            __m256d v = Along(fV, t.sV.fX, x);
            if (!t.bFlat) {
                const __m256d f = _mm256_div_pd(_mm256_set1_pd(1.0), Along(fW, t.sW.fX, x));
                u = _mm256_mul_pd(u, f);
                v = _mm256_mul_pd(v, f);
            }
            const __m128i vX = Nearest(u);
            const __m128i vY = Nearest(v);
            int* const p = reinterpret_cast<int*>(pPoints + n);
            const __m128i vLow = _mm_unpacklo_epi32(vX, vY);
            const __m128i vHigh = _mm_unpackhi_epi32(vX, vY);
            const __m128i vThere = _mm_cmpgt_epi32(_mm_set1_epi32(nPoints), vNumbers);
            _mm_maskstore_epi32(p, _mm_unpacklo_epi32(vThere, vThere), vLow);
            _mm_maskstore_epi32(p + 4, _mm_unpackhi_epi32(vThere, vThere), vHigh);
        }
    });
}

} // namespace

const SGridLoops* AVX2GridLoops()
{
    static const SGridLoops sLoops = {FillTriangle, FindBends, FindPlain};
    return __builtin_cpu_supports("avx2") ? &sLoops : nullptr;
}

#else

const SGridLoops* AVX2GridLoops()
{
    return nullptr;
}

#endif
