// Cells by AVX2: eight pixels at a time. Positions and weights in registers; the bytes themselves are fetched
// one by one, which takes less time than gather instructions do on the processors that were measured.

#include "dewarp/cpu/CellTargets.h"

#if defined(__AVX2__)

#include <immintrin.h>

#include <cstring>

namespace
{

#include "dewarp/cpu/CellPlaces.inc"

#include "dewarp/cpu/CellFar.inc"

#include "dewarp/cpu/CellColours.inc"

#include "dewarp/cpu/CellNearPlaces.inc"

#include "dewarp/cpu/CellNear.inc"

#include "dewarp/cpu/CellLines.inc"

#include "dewarp/cpu/CellLineSamples.inc"

#include "dewarp/cpu/CellLinePixels.inc"

#include "dewarp/cpu/CellExact.inc"

#include "dewarp/cpu/CellNearPacked.inc"

/// Cells that are on their way together: the places of some are found while others wait for theirs.
const int NEAR_CELLS = 8;

inline SCellPoints Next(const SCellPoints& p, int nCell)
{
    return {p.pFirst + nCell * (CELL_SIDE / p.nStep), p.nRow, p.nStep};
}

/// Takes cells of a run from nCell on until as many are near as fit in a group: rPlace(block, place in the
/// group) for each, rFar(points, cell) for those that it refuses. Returns how many are in the group.
template <int STEP, bool LINEAR, class TPlaced, class FPlace, class FFar>
inline int FillGroup(const SCellPoints& rPoints, int& nCell, int nCells, TPlaced (&as)[NEAR_CELLS],
                     FPlace&& rPlace, FFar&& rFar)
{
    int nNear = 0;
    for (; nCell < nCells && nNear < NEAR_CELLS; ++nCell) {
        const SCellPoints s = Next(rPoints, nCell);
        const SBlock<STEP> b(s, LINEAR ? 0 : POSITION_ONE / 2);
        as[nNear].nCell = nCell;
        if (b.bNear && rPlace(b, as[nNear]))
            ++nNear;
        else
            rFar(s, nCell);
    }
    return nNear;
}

template <int STEP, bool LINEAR>
void LumaCells(const SCellJob& rJob, const SCellPoints& rPoints, int nCells, unsigned char* pTarget,
               std::ptrdiff_t nStride)
{
    const SSamplePlane& rPlane = rJob.aPlanes[0];
    const bool bNear = rPlane.nStride <= MOST_STRIDE;
    SLines as[NEAR_CELLS];
    for (int n = 0; n < nCells;) {
        const int nNear = FillGroup<STEP, LINEAR>(
            rPoints, n, nCells, as,
            [&](const SBlock<STEP>& b, SLines& s) { return bNear && SetLumaLines(rPlane, b, s); },
            [&](const SCellPoints& s, int nCell) {
                LumaCell<STEP, LINEAR>(rJob, s, pTarget + nCell * CELL_SIDE, nStride);
            });
        for (int i = 0; i < nNear; ++i)
            PutLineLuma<LINEAR>(as[i], rPlane.nStride, pTarget + as[i].nCell * CELL_SIDE, nStride);
    }
}

/// Where the chroma of each cell of a run belongs.
struct SChromaTargets
{
    struct SOne
    {
        unsigned char* ap[2];
    };

    explicit SChromaTargets(unsigned char* const* ppTargets) : ppFirst(ppTargets) {}
    SOne Of(int nCell) const
    {
        if (ppFirst[1] == nullptr)
            return {{ppFirst[0] + nCell * CELL_SIDE, nullptr}};
        return {{ppFirst[0] + nCell * CELL_SIDE / 2, ppFirst[1] + nCell * CELL_SIDE / 2}};
    }

    unsigned char* const* ppFirst;
};

template <bool LINEAR, int STEP>
inline void PlaceChromaOf(const SCellJob& rJob, const SBlock<STEP>& b, SNearChroma& c)
{
    if constexpr (LINEAR)
        PlaceChroma(rJob, b, c);
    else
        PlaceNearestChroma(rJob, b, c);
}

template <bool LINEAR>
inline void PutChromaOf(const SCellJob& rJob, const SNearChroma& c, unsigned char* const* pp,
                        const std::ptrdiff_t* pStrides)
{
    if constexpr (LINEAR)
        PutNearChroma(rJob, c, pp, pStrides);
    else
        PutNearestChroma(rJob, c, pp, pStrides);
}

template <int STEP, bool LINEAR>
void ChromaCells(const SCellJob& rJob, const SCellPoints& rPoints, int nCells,
                 unsigned char* const* ppTargets, const std::ptrdiff_t* pStrides)
{
    const bool bNear = HasNearChroma(rJob);
    SNearChroma as[NEAR_CELLS];
    const SChromaTargets sTargets(ppTargets);
    for (int n = 0; n < nCells;) {
        const int nNear = FillGroup<STEP, LINEAR>(
            rPoints, n, nCells, as,
            [&](const SBlock<STEP>& b, SNearChroma& c) {
                if (bNear)
                    PlaceChromaOf<LINEAR>(rJob, b, c);
                return bNear;
            },
            [&](const SCellPoints& s, int nCell) {
                ChromaCell<STEP, LINEAR>(rJob, s, sTargets.Of(nCell).ap, pStrides);
            });
        for (int i = 0; i < nNear; ++i)
            PutChromaOf<LINEAR>(rJob, as[i], sTargets.Of(as[i].nCell).ap, pStrides);
    }
}

/// A cell's lines of luma and places of chroma.
struct SNearPlanes
{
    SLines sLuma;
    SNearChroma sChroma;
    int nCell;
};

template <int STEP, bool LINEAR>
void PlaneCells(const SCellJob& rJob, const SCellPoints& rPoints, int nCells, unsigned char* pTarget,
                std::ptrdiff_t nStride, unsigned char* const* ppTargets, const std::ptrdiff_t* pStrides)
{
    const SSamplePlane& rPlane = rJob.aPlanes[0];
    SNearPlanes as[NEAR_CELLS];
    const SChromaTargets sTargets(ppTargets);
    for (int n = 0; n < nCells;) {
        const int nNear = FillGroup<STEP, LINEAR>(
            rPoints, n, nCells, as,
            [&](const SBlock<STEP>& b, SNearPlanes& s) {
                if (!SetLumaLines(rPlane, b, s.sLuma))
                    return false;
                PlaceChromaOf<LINEAR>(rJob, b, s.sChroma);
                return true;
            },
            [&](const SCellPoints& s, int nCell) {
                LumaCell<STEP, LINEAR>(rJob, s, pTarget + nCell * CELL_SIDE, nStride);
                ChromaCell<STEP, LINEAR>(rJob, s, sTargets.Of(nCell).ap, pStrides);
            });
        for (int i = 0; i < nNear; ++i) {
            PutLineLuma<LINEAR>(as[i].sLuma, rPlane.nStride, pTarget + as[i].nCell * CELL_SIDE, nStride);
            PutChromaOf<LINEAR>(rJob, as[i].sChroma, sTargets.Of(as[i].nCell).ap, pStrides);
        }
    }
}

template <int STEP, bool LINEAR>
void YUVCells(const SCellJob& rJob, const SCellPoints& rPoints, int nCells, unsigned char* pTarget,
              std::ptrdiff_t nStride)
{
    const bool bNear = LINEAR && HasChromaLines(rJob);
    SPixelLines as[NEAR_CELLS];
    for (int n = 0; n < nCells;) {
        const int nNear = FillGroup<STEP, LINEAR>(
            rPoints, n, nCells, as,
            [&](const SBlock<STEP>& b, SPixelLines& s) { return bNear && SetPixelLines(rJob, b, s); },
            [&](const SCellPoints& s, int nCell) {
                YUVCell<STEP, LINEAR>(rJob, s, pTarget + std::ptrdiff_t{nCell} * 32, nStride);
            });
        for (int i = 0; i < nNear; ++i)
            PutPixelLines(rJob, as[i], pTarget + std::ptrdiff_t{as[i].nCell} * 32, nStride);
    }
}

template <int STEP>
void PackedCells(const SCellJob& rJob, const SCellPoints& rPoints, int nCells, unsigned char* pTarget,
                 std::ptrdiff_t nStride)
{
    const SPackedOrders sOrders = OrdersOf(rJob);
    const bool bNear = HasNearPixels(rJob);
    for (int n = 0; n < nCells; ++n) {
        const SCellPoints sPoints = Next(rPoints, n);
        const SBlock<STEP> b(sPoints, 0);
        if (bNear && b.bNear) {
            NearPackedCell(rJob, sOrders, b, pTarget + std::ptrdiff_t{n} * 32, nStride);
            continue;
        }
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

void Planes(const SCellJob& rJob, const SCellPoints& p, int nCells, unsigned char* pTarget,
            std::ptrdiff_t nStride, unsigned char* const* ppTargets, const std::ptrdiff_t* pStrides)
{
    if (HasNearChroma(rJob) && rJob.aPlanes[0].nStride <= MOST_STRIDE) {
        const auto pCells = p.nStep == CELL_SIDE
                                ? (rJob.bLinear ? PlaneCells<8, true> : PlaneCells<8, false>)
                                : (rJob.bLinear ? PlaneCells<4, true> : PlaneCells<4, false>);
        pCells(rJob, p, nCells, pTarget, nStride, ppTargets, pStrides);
        return;
    }
    Luma(rJob, p, nCells, pTarget, nStride);
    Chroma(rJob, p, nCells, ppTargets, pStrides);
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

/// Eight positions from memory.
inline SPlaces LoadPlaces(const SGridPoint* p)
{
    const __m256 a = _mm256_loadu_ps(reinterpret_cast<const float*>(p));
    const __m256 b = _mm256_loadu_ps(reinterpret_cast<const float*>(p + 4));
    return {_mm256_permute4x64_epi64(_mm256_castps_si256(_mm256_shuffle_ps(a, b, 0x88)), 0xD8),
            _mm256_permute4x64_epi64(_mm256_castps_si256(_mm256_shuffle_ps(a, b, 0xDD)), 0xD8)};
}

void LumaAt(const SCellJob& rJob, const SGridPoint* pPoints, unsigned char* pLuma)
{
    for (int n = 0; n < CELL_SIDE; n += 4) {
        V av[4];
        for (int i = 0; i < 4; ++i) {
            const SPlaces s = LoadPlaces(pPoints + (n + i) * CELL_SIDE);
            av[i] =
                rJob.bLinear ? SampleBytes<true>(rJob.aPlanes[0], s) : SampleBytes<false>(rJob.aPlanes[0], s);
        }
        PutEights(ToBytes(Joined(av[0], av[1]), Joined(av[2], av[3])), pLuma + n * CELL_SIDE, CELL_SIDE);
    }
}

void ChromaAt(const SCellJob& rJob, const SGridPoint* pPlaces, unsigned char* pPairs)
{
    const SPlaces as[2] = {LoadPlaces(pPlaces), LoadPlaces(pPlaces + 8)};
    unsigned char* const ap[2] = {pPairs, nullptr};
    const std::ptrdiff_t anStrides[2] = {8, 0};
    if (rJob.bLinear)
        ChromaAtPlaces<true>(rJob, as, ap, anStrides);
    else
        ChromaAtPlaces<false>(rJob, as, ap, anStrides);
}

void PixelsAt(const SCellJob& rJob, const SGridPoint* pPoints, std::uint32_t* pPixels)
{
    unsigned char* const p = reinterpret_cast<unsigned char*>(pPixels);
    if (rJob.eSource == SOURCE_PACKED) {
        const SPackedOrders sOrders = OrdersOf(rJob);
        for (int n = 0; n < CELL_SIDE; ++n)
            _mm256_storeu_si256(reinterpret_cast<V*>(p + n * 32),
                                PackedRow(rJob, sOrders, LoadPlaces(pPoints + n * CELL_SIDE)));
        return;
    }
    for (int n = 0; n < CELL_SIDE; n += 2) {
        const SPlaces sUpper = LoadPlaces(pPoints + n * CELL_SIDE);
        const SPlaces sLower = LoadPlaces(pPoints + (n + 1) * CELL_SIDE);
        if (rJob.bLinear)
            YUVRows<true>(rJob, sUpper, sLower, p + n * 32, 32);
        else
            YUVRows<false>(rJob, sUpper, sLower, p + n * 32, 32);
    }
}

} // namespace

const SCellKernels* AVX2Kernels()
{
    static const SCellKernels sKernels = {"AVX2",   Luma,     Chroma,    Planes,      Pixels,    LumaAt,
                                          ChromaAt, PixelsAt, LumaLines, ChromaLines, PixelLines};
    return __builtin_cpu_supports("avx2") ? &sKernels : nullptr;
}

#else

const SCellKernels* AVX2Kernels()
{
    return nullptr;
}

#endif
