#include "dewarp/cpu/InputLayer.h"

#include "dewarp/cpu/CellKernel.h"
#include "dewarp/cpu/LayerSample.h"
#include "dewarp/cpu/MaskImage.h"
#include "dewarp/cpu/OverlayImage.h"
#include "dewarp/cpu/WorkerPool.h"

#include <limits>
#include <new>

// Cells that are looked at together first: most have nothing over them.
static const int GROUP = 8;

static SCellPoints PointsOf(const SPartGrid& rGrid, int nCol, int nRow)
{
    const int n = rGrid.PointsPerCell();
    return {&rGrid.vPoints[rGrid.PointIndex(nCol * n, nRow * n)], rGrid.nPointCols, rGrid.nStep};
}

/// Samples cells of a grid from a source.
template <class TSource>
class CInputLayer::CSampler
{
public:
    CSampler(const TSource& rSource, bool bLinear, int nFrameWidth, int nFrameHeight)
        : m_rSource(rSource), m_bLinear(bLinear), m_oX(nFrameWidth, rSource.Width()),
          m_oY(nFrameHeight, rSource.Height())
    {}

    /// State of some cells side by side that are smooth or rims: mixed when they are worth a look each.
    std::uint32_t StateOfCells(const SCellPoints& rPoints, int nCells) const
    {
        const SBounds sBounds = BoundsOf(rPoints, nCells);
        SLayerBox sBox;
        return StateOf(sBounds, sBox);
    }

    /// State of a smooth or rim cell; its 64 samples where it is mixed.
    std::uint32_t SampleSmooth(const SCellPoints& rPoints, std::uint32_t* pSamples) const
    {
        const SBounds sBounds = BoundsOf(rPoints, 1);
        SLayerBox sBox;
        const std::uint32_t nState = StateOf(sBounds, sBox);
        if (nState == LAYER_STATE_MIXED) {
            SGridPoint asPositions[CELL_PIXELS];
            PixelPositions(rPoints, asPositions);
            Sample(asPositions, CELL_PIXELS, sBox, pSamples);
        }
        return nState;
    }

    /// Likewise an exact cell; where only a part of it is covered, it counts as mixed.
    std::uint32_t SampleExact(const SExactCell& rCell, std::uint32_t* pSamples) const
    {
        SBounds sBounds;
        SGridPoint asAll[CELL_PIXELS];
        ExactPositions(rCell, asAll);
        SGridPoint asPositions[CELL_PIXELS];
        int anPlaces[CELL_PIXELS];
        int n = 0;
        for (int i = 0; i < CELL_PIXELS; ++i) {
            pSamples[i] = 0;
            if ((rCell.nCovered >> i & 1) == 0)
                continue;
            sBounds.Add(asAll[i]);
            asPositions[n] = asAll[i];
            anPlaces[n++] = i;
        }
        SLayerBox sBox;
        const std::uint32_t nState = n > 0 ? StateOf(sBounds, sBox) : 0;
        if (nState == 0 || (nState != LAYER_STATE_MIXED && n == CELL_PIXELS))
            return nState;
        std::uint32_t anSamples[CELL_PIXELS];
        if (nState != LAYER_STATE_MIXED)
            std::fill_n(anSamples, n, nState);
        else
            Sample(asPositions, n, sBox, anSamples);
        for (int i = 0; i < n; ++i)
            pSamples[anPlaces[i]] = anSamples[i];
        return LAYER_STATE_MIXED;
    }

private:
    struct SBounds
    {
        std::int32_t nLeft = std::numeric_limits<std::int32_t>::max();
        std::int32_t nTop = std::numeric_limits<std::int32_t>::max();
        std::int32_t nRight = std::numeric_limits<std::int32_t>::min();
        std::int32_t nBottom = std::numeric_limits<std::int32_t>::min();

        void Add(const SGridPoint& rPoint)
        {
            nLeft = std::min(nLeft, rPoint.x);
            nTop = std::min(nTop, rPoint.y);
            nRight = std::max(nRight, rPoint.x);
            nBottom = std::max(nBottom, rPoint.y);
        }
        void Grow(std::int32_t n)
        {
            nLeft -= n;
            nTop -= n;
            nRight += n;
            nBottom += n;
        }
    };

    static SBounds BoundsOf(const SCellPoints& rPoints, int nCells)
    {
        SBounds sBounds;
        const int nPerCell = CELL_SIDE / rPoints.nStep;
        for (int y = 0; y <= nPerCell; ++y)
            for (int x = 0; x <= nCells * nPerCell; ++x)
                sBounds.Add(rPoints.pFirst[y * rPoints.nRow + x]);
        // Interpolation rounds twice.
        sBounds.Grow(2);
        return sBounds;
    }

    std::uint32_t StateOf(const SBounds& rBounds, SLayerBox& rBox) const
    {
        TexelsBetween(m_oX(rBounds.nLeft), m_oX(rBounds.nRight), m_bLinear, m_rSource.Width(), rBox.x0,
                      rBox.x1);
        TexelsBetween(m_oY(rBounds.nTop), m_oY(rBounds.nBottom), m_bLinear, m_rSource.Height(), rBox.y0,
                      rBox.y1);
        std::uint32_t nColour = 0;
        switch (m_rSource.Classify(rBox.x0, rBox.y0, rBox.x1, rBox.y1, nColour)) {
        case LAYER_NONE:
            return 0;
        case LAYER_SOLID:
            return nColour;
        default:
            return LAYER_STATE_MIXED;
        }
    }

    void Sample(SGridPoint* pPositions, int nPositions, const SLayerBox& rBox, std::uint32_t* pSamples) const
    {
        for (int i = 0; i < nPositions; ++i)
            pPositions[i] = {m_oX(pPositions[i].x), m_oY(pPositions[i].y)};
        SampleBox(m_rSource, rBox, pPositions, nPositions, m_bLinear, pSamples);
    }

    const TSource& m_rSource;
    bool m_bLinear;
    CLayerScale m_oX;
    CLayerScale m_oY;
};

template <class TSource>
void CInputLayer::Build(const CViewGrid& rGrid, const TSource& rSource, bool bLinear, int nFrameWidth,
                        int nFrameHeight, const SLayerFormat& rFormat, int nThreads)
{
    m_nParts = 0;
    const auto nParts = static_cast<std::size_t>(rGrid.CountParts());
    if (m_vLayers.size() < nParts)
        m_vLayers.resize(nParts);
    if (rSource.IsEmpty() || nFrameWidth < 1 || nFrameHeight < 1)
        return;
    const CSampler<TSource> oSampler(rSource, bLinear, nFrameWidth, nFrameHeight);
    for (std::size_t i = 0; i < nParts; ++i)
        BuildPart(rGrid.Parts()[i], oSampler, rFormat, nThreads, m_vLayers[i]);
    m_nParts = rGrid.CountParts();
}

template <class TSource>
void CInputLayer::BuildPart(const SPartGrid& rGrid, const CSampler<TSource>& rSampler,
                            const SLayerFormat& rFormat, int nThreads, CRunLayer& rLayer)
{
    const int nStrips = nThreads < 2 ? 1 : std::min(4 * nThreads, std::max(rGrid.nRows, 1));
    if (m_vStrips.size() < static_cast<std::size_t>(nStrips))
        m_vStrips.resize(static_cast<std::size_t>(nStrips));
    rLayer.Begin(rFormat);
    CWorkerPool::Shared().Run(nThreads, nStrips, [&](int nStrip) {
        SStrip& rStrip = m_vStrips[static_cast<std::size_t>(nStrip)];
        CRunLayer& rInto = nStrips == 1 ? rLayer : rStrip.oLayer;
        rStrip.bLacksMemory = false;
        try {
            rInto.Begin(rFormat);
            const auto Row = [&](int n) { return static_cast<int>(std::int64_t{rGrid.nRows} * n / nStrips); };
            FillStrip(rGrid, rSampler, Row(nStrip), Row(nStrip + 1), rStrip, rInto);
            rInto.Finish();
        } catch (const std::bad_alloc&) {
            rStrip.bLacksMemory = true;
        }
    });
    for (std::size_t i = 0; i < static_cast<std::size_t>(nStrips); ++i) {
        if (m_vStrips[i].bLacksMemory)
            throw std::bad_alloc();
        if (nStrips > 1)
            rLayer.Append(m_vStrips[i].oLayer);
    }
}

template <class TSource>
void CInputLayer::FillStrip(const SPartGrid& rGrid, const CSampler<TSource>& rSampler, int nFirst, int nEnd,
                            SStrip& rStrip, CRunLayer& rLayer)
{
    rStrip.vPixels.resize(static_cast<std::size_t>(rGrid.nCols) * CELL_PIXELS);
    rStrip.vStates.resize(static_cast<std::size_t>(rGrid.nCols));
    for (int nRow = nFirst; nRow < nEnd; ++nRow) {
        int nExact = rGrid.vFirstExact[static_cast<std::size_t>(nRow)];
        std::uint32_t nAny = 0;
        for (int nCol = 0; nCol < rGrid.nCols; nCol += GROUP) {
            const int nCells = std::min(GROUP, rGrid.nCols - nCol);
            const unsigned char* const pKinds = rGrid.vKinds.data() + rGrid.CellIndex(nCol, nRow);
            const bool bTogether = std::all_of(pKinds, pKinds + nCells, [](unsigned char nKind) {
                return nKind == CELL_SMOOTH || nKind == CELL_RIM;
            });
            std::uint32_t nState = LAYER_STATE_MIXED;
            if (bTogether)
                nState = rSampler.StateOfCells(PointsOf(rGrid, nCol, nRow), nCells);
            std::fill_n(rStrip.vStates.begin() + nCol, nCells, nState);
            for (int i = nCol; nState == LAYER_STATE_MIXED && i < nCol + nCells; ++i)
                SampleCell(rGrid, rSampler, nRow, i, nExact, rStrip);
            for (int i = nCol; i < nCol + nCells; ++i)
                nAny |= rStrip.vStates[static_cast<std::size_t>(i)];
        }
        if (nAny != 0)
            AddRows(rGrid, nRow, rStrip, rLayer);
    }
}

/// One cell's state, and its samples where it has different ones; rExact counts exact cells.
template <class TSource>
void CInputLayer::SampleCell(const SPartGrid& rGrid, const CSampler<TSource>& rSampler, int nRow, int nCol,
                             int& rExact, SStrip& rStrip)
{
    std::uint32_t anSamples[CELL_PIXELS];
    std::uint32_t& rState = rStrip.vStates[static_cast<std::size_t>(nCol)];
    const auto eKind = static_cast<ECellKind>(rGrid.vKinds[rGrid.CellIndex(nCol, nRow)]);
    if (eKind == CELL_EXACT)
        rState = rSampler.SampleExact(rGrid.vExact[static_cast<std::size_t>(rExact++)], anSamples);
    else
        rState = eKind == CELL_EMPTY ? 0 : rSampler.SampleSmooth(PointsOf(rGrid, nCol, nRow), anSamples);
    if (rState != LAYER_STATE_MIXED)
        return;
    std::uint32_t* pRow = rStrip.vPixels.data() + nCol * CELL_SIDE;
    for (int y = 0; y < CELL_SIDE; ++y, pRow += rGrid.nCols * CELL_SIDE)
        std::copy_n(anSamples + y * CELL_SIDE, CELL_SIDE, pRow);
}

/// Adds the rows of a row of cells, as far as they belong to the part.
void CInputLayer::AddRows(const SPartGrid& rGrid, int nRow, const SStrip& rStrip, CRunLayer& rLayer)
{
    const int nLeft = rGrid.sRect.x;
    const int nRight = rGrid.sRect.x + rGrid.sRect.width;
    const int nBottom = rGrid.sRect.y + rGrid.sRect.height;
    for (int i = 0; i < CELL_SIDE; ++i) {
        const int y = rGrid.nOriginY + nRow * CELL_SIDE + i;
        if (y < rGrid.sRect.y || y >= nBottom)
            continue;
        const std::uint32_t* const pRow =
            rStrip.vPixels.data() + static_cast<std::ptrdiff_t>(i) * rGrid.nCols * CELL_SIDE;
        int nCol = 0;
        while (nCol < rGrid.nCols) {
            const std::uint32_t nState = rStrip.vStates[static_cast<std::size_t>(nCol)];
            int nEnd = nCol + 1;
            while (nEnd < rGrid.nCols && rStrip.vStates[static_cast<std::size_t>(nEnd)] == nState)
                ++nEnd;
            const int x0 = std::max(rGrid.nOriginX + nCol * CELL_SIDE, nLeft);
            const int x1 = std::min(rGrid.nOriginX + nEnd * CELL_SIDE, nRight);
            if (nState == LAYER_STATE_MIXED && x0 < x1)
                rLayer.AddRow(y, x0, pRow + (x0 - rGrid.nOriginX), x1 - x0);
            else if (nState != 0 && x0 < x1)
                rLayer.AddRun(y, x0, x1 - x0, nState);
            nCol = nEnd;
        }
    }
}

bool CInputLayer::IsEmpty() const
{
    for (int i = 0; i < m_nParts; ++i) {
        if (!Held(i).IsEmpty())
            return false;
    }
    return true;
}

std::size_t CInputLayer::CountBytes() const
{
    std::size_t nBytes = 0;
    for (const CRunLayer& rLayer : m_vLayers)
        nBytes += rLayer.CountBytes();
    for (const SStrip& rStrip : m_vStrips)
        nBytes += rStrip.oLayer.CountBytes() + (rStrip.vPixels.capacity() + rStrip.vStates.capacity()) * 4;
    return nBytes;
}

template void CInputLayer::Build(const CViewGrid&, const CMaskImage&, bool, int, int, const SLayerFormat&,
                                 int);
template void CInputLayer::Build(const CViewGrid&, const COverlayImage&, bool, int, int, const SLayerFormat&,
                                 int);
