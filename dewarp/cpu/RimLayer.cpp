#include "dewarp/cpu/RimLayer.h"

#include "dewarp/cpu/CellKernel.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

/// A place in the frame, in texture coordinates.
struct SPlace
{
    double u;
    double v;
};

/// How much of a pixel lies inside, from its place and from what a step to the right and down shows.
class CCoverage
{
public:
    CCoverage(const SRimCut& rRim, int nWidth, int nHeight)
        : m_rRim(rRim), m_nWidth(nWidth), m_nHeight(nHeight)
    {}

    SPlace PlaceOf(const SGridPoint& p) const
    {
        return {(static_cast<double>(p.x) / POSITION_ONE + 0.5) / m_nWidth,
                (static_cast<double>(p.y) / POSITION_ONE + 0.5) / m_nHeight};
    }

    /// Whether everything between some places lies inside, with a pixel of each to spare: the ellipse and the
    /// frame are convex.
    bool Holds(double fLeft, double fTop, double fRight, double fBottom) const
    {
        if (fLeft < 0.0 || fTop < 0.0 || fRight > 1.0 || fBottom > 1.0)
            return false;
        return Out({fLeft, fTop}) < 0.0 && Out({fRight, fTop}) < 0.0 && Out({fLeft, fBottom}) < 0.0 &&
               Out({fRight, fBottom}) < 0.0;
    }

    double Of(const SPlace& p, const SPlace& rRight, const SPlace& rDown) const
    {
        const double x = (p.u - static_cast<double>(m_rRim.fCenterU)) * static_cast<double>(m_rRim.fInverseU);
        const double y = (p.v - static_cast<double>(m_rRim.fCenterV)) * static_cast<double>(m_rRim.fInverseV);
        const double fLength = std::max(std::hypot(x, y), 1e-9);
        const double fU = x / fLength * static_cast<double>(m_rRim.fInverseU);
        const double fV = y / fLength * static_cast<double>(m_rRim.fInverseV);
        const double fStep = std::hypot(fU * rRight.u + fV * rRight.v, fU * rDown.u + fV * rDown.v);
        return Share(fLength - 1.0, fStep) *
               Share(std::fabs(p.u - 0.5) - 0.5, std::hypot(rRight.u, rDown.u)) *
               Share(std::fabs(p.v - 0.5) - 0.5, std::hypot(rRight.v, rDown.v));
    }

private:
    double Out(const SPlace& p) const
    {
        const double x = (p.u - static_cast<double>(m_rRim.fCenterU)) * static_cast<double>(m_rRim.fInverseU);
        const double y = (p.v - static_cast<double>(m_rRim.fCenterV)) * static_cast<double>(m_rRim.fInverseV);
        return x * x + y * y - 1.0;
    }
    static double Share(double fOut, double fStep)
    {
        return std::clamp(0.5 - fOut / std::max(fStep, 1e-9), 0.0, 1.0);
    }

    const SRimCut& m_rRim;
    int m_nWidth;
    int m_nHeight;
};

/// A step between pixels of a cell: from covered neighbours as far apart as there are.
SPlace StepAlong(const SPlace* pPlaces, std::uint64_t nCovered, int nPixel, int nAt, int nStride)
{
    const auto Has = [&](int nTo) {
        return nTo >= 0 && nTo < CELL_SIDE && (nCovered >> (nPixel + (nTo - nAt) * nStride) & 1) != 0;
    };
    const int nFrom = Has(nAt - 1) ? nAt - 1 : nAt;
    const int nTo = Has(nAt + 1) ? nAt + 1 : nAt;
    if (nFrom == nTo)
        return {0.0, 0.0};
    const SPlace& a = pPlaces[nPixel + (nFrom - nAt) * nStride];
    const SPlace& b = pPlaces[nPixel + (nTo - nAt) * nStride];
    const double f = 1.0 / (nTo - nFrom);
    return {(b.u - a.u) * f, (b.v - a.v) * f};
}

/// Black as opaque as each pixel lies outside; false for a cell that lies inside.
bool FadeCell(const CCoverage& rCoverage, const SGridPoint* pPositions, std::uint64_t nCovered,
              std::uint32_t* pPixels)
{
    SPlace asPlaces[CELL_PIXELS];
    double fLeft = std::numeric_limits<double>::max();
    double fTop = fLeft;
    double fRight = -fLeft;
    double fBottom = -fLeft;
    for (int i = 0; i < CELL_PIXELS; ++i) {
        asPlaces[i] = rCoverage.PlaceOf(pPositions[i]);
        if ((nCovered >> i & 1) == 0)
            continue;
        fLeft = std::min(fLeft, asPlaces[i].u);
        fRight = std::max(fRight, asPlaces[i].u);
        fTop = std::min(fTop, asPlaces[i].v);
        fBottom = std::max(fBottom, asPlaces[i].v);
    }
    const double fRoomU = 0.25 * (fRight - fLeft);
    const double fRoomV = 0.25 * (fBottom - fTop);
    if (rCoverage.Holds(fLeft - fRoomU, fTop - fRoomV, fRight + fRoomU, fBottom + fRoomV))
        return false;
    for (int i = 0; i < CELL_PIXELS; ++i) {
        pPixels[i] = 0;
        if ((nCovered >> i & 1) == 0)
            continue;
        const double fInside = rCoverage.Of(asPlaces[i], StepAlong(asPlaces, nCovered, i, i % CELL_SIDE, 1),
                                            StepAlong(asPlaces, nCovered, i, i / CELL_SIDE, CELL_SIDE));
        pPixels[i] = static_cast<std::uint32_t>(std::lround(255.0 * (1.0 - fInside))) << 24;
    }
    return true;
}

/// Whether a cell between grid points lies inside as a whole, told by its points alone: most do.
bool LiesInside(const CCoverage& rCoverage, const SCellPoints& rPoints)
{
    const int nPerCell = CELL_SIDE / rPoints.nStep;
    SGridPoint sLow = rPoints.pFirst[0];
    SGridPoint sHigh = sLow;
    for (int y = 0; y <= nPerCell; ++y) {
        for (int x = 0; x <= nPerCell; ++x) {
            const SGridPoint& p = rPoints.pFirst[y * rPoints.nRow + x];
            sLow = {std::min(sLow.x, p.x), std::min(sLow.y, p.y)};
            sHigh = {std::max(sHigh.x, p.x), std::max(sHigh.y, p.y)};
        }
    }
    const SPlace sFirst = rCoverage.PlaceOf(sLow);
    const SPlace sLast = rCoverage.PlaceOf(sHigh);
    const double fRoomU = 0.25 * (sLast.u - sFirst.u);
    const double fRoomV = 0.25 * (sLast.v - sFirst.v);
    return rCoverage.Holds(sFirst.u - fRoomU, sFirst.v - fRoomV, sLast.u + fRoomU, sLast.v + fRoomV);
}

/// The cells of one row of cells, whose pixels stand side by side in rows.
bool FadeRow(const SPartGrid& rGrid, int nRow, const CCoverage& rCoverage, std::uint32_t* pPixels)
{
    bool bAny = false;
    int nExact = rGrid.vFirstExact[static_cast<std::size_t>(nRow)];
    const int nPerCell = rGrid.PointsPerCell();
    for (int nCol = 0; nCol < rGrid.nCols; ++nCol) {
        SGridPoint asPositions[CELL_PIXELS];
        std::uint64_t nCovered = ~std::uint64_t{0};
        const unsigned char nKind = rGrid.vKinds[rGrid.CellIndex(nCol, nRow)];
        if (nKind == CELL_EMPTY)
            continue;
        if (nKind == CELL_EXACT) {
            const SExactCell& rCell = rGrid.vExact[static_cast<std::size_t>(nExact++)];
            nCovered = rCell.nCovered;
            ExactPositions(rCell, asPositions);
        } else {
            const SCellPoints sPoints = {&rGrid.vPoints[rGrid.PointIndex(nCol * nPerCell, nRow * nPerCell)],
                                         rGrid.nPointCols, rGrid.nStep};
            if (LiesInside(rCoverage, sPoints))
                continue;
            PixelPositions(sPoints, asPositions);
        }
        std::uint32_t anCell[CELL_PIXELS];
        if (!FadeCell(rCoverage, asPositions, nCovered, anCell))
            continue;
        bAny = true;
        for (int y = 0; y < CELL_SIDE; ++y)
            std::copy_n(anCell + y * CELL_SIDE, CELL_SIDE,
                        pPixels + static_cast<std::ptrdiff_t>(y) * rGrid.nCols * CELL_SIDE +
                            nCol * CELL_SIDE);
    }
    return bAny;
}

} // namespace

void CRimLayer::Build(const CViewGrid& rGrid, const SRimCut& rRim, int nFrameWidth, int nFrameHeight,
                      const SLayerFormat& rFormat)
{
    m_nParts = 0;
    if (!rRim.IsSet() || nFrameWidth < 1 || nFrameHeight < 1)
        return;
    if (m_vLayers.size() < static_cast<std::size_t>(rGrid.CountParts()))
        m_vLayers.resize(static_cast<std::size_t>(rGrid.CountParts()));
    const CCoverage oCoverage(rRim, nFrameWidth, nFrameHeight);
    for (int n = 0; n < rGrid.CountParts(); ++n) {
        const SPartGrid& rPart = rGrid.Parts()[n];
        CRunLayer& rLayer = m_vLayers[static_cast<std::size_t>(n)];
        const SGRect& r = rPart.sRect;
        const std::ptrdiff_t nStride = static_cast<std::ptrdiff_t>(rPart.nCols) * CELL_SIDE;
        rLayer.Begin(rFormat);
        for (int nRow = 0; nRow < rPart.nRows; ++nRow) {
            m_vPixels.assign(static_cast<std::size_t>(nStride * CELL_SIDE), 0);
            if (!FadeRow(rPart, nRow, oCoverage, m_vPixels.data()))
                continue;
            for (int i = 0; i < CELL_SIDE; ++i) {
                const int y = rPart.nOriginY + nRow * CELL_SIDE + i;
                if (y >= r.y && y < r.y + r.height)
                    rLayer.AddRow(y, r.x, m_vPixels.data() + i * nStride + (r.x - rPart.nOriginX), r.width);
            }
        }
        rLayer.Finish();
    }
    m_nParts = rGrid.CountParts();
}

std::size_t CRimLayer::CountBytes() const
{
    std::size_t nBytes = m_vPixels.capacity() * 4;
    for (const CRunLayer& rLayer : m_vLayers)
        nBytes += rLayer.CountBytes();
    return nBytes;
}
