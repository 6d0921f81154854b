#include "dewarp/cpu/ScratchRows.h"

#include "dewarp/cpu/RunLayer.h"

#include <algorithm>
#include <bit>
#include <cstring>

void CScratchRows::MakeRoom(int nTargetWidth, int nThreads)
{
    m_nWidth = nTargetWidth + CELL_SIDE;
    m_nRoomBytes = static_cast<std::size_t>(m_nWidth) * CELL_SIDE * 4;
    const std::size_t nBytes = m_nRoomBytes * static_cast<std::size_t>(nThreads);
    if (m_vBytes.size() < nBytes)
        m_vBytes.resize(nBytes);
}

SFrameTarget CScratchRows::Take(EImageFormat eFormat, int& nRoom)
{
    std::uint64_t nTaken = m_nTaken.load(std::memory_order_relaxed);
    do {
        nRoom = std::countr_one(nTaken);
    } while (!m_nTaken.compare_exchange_weak(nTaken, nTaken | std::uint64_t{1} << nRoom,
                                             std::memory_order_acquire));
    SFrameTarget sTarget;
    sTarget.eFormat = eFormat;
    unsigned char* const p = m_vBytes.data() + m_nRoomBytes * static_cast<std::size_t>(nRoom);
    const bool bPixels = eFormat != IMAGE_FORMAT_NV12 && eFormat != IMAGE_FORMAT_YUV420P;
    for (int i = 0; i < (bPixels ? 1 : 3); ++i) {
        sTarget.apPlanes[i] = p + static_cast<std::ptrdiff_t>(m_nWidth) * CELL_SIDE * i;
        sTarget.anStrides[i] = bPixels ? 4 * m_nWidth : m_nWidth;
    }
    return sTarget;
}

/// Copies columns of rows, the first of which is nFirst in the picture and 0 in the scratch.
static void CopyRows(const SFrameTarget& rFrom, const SFrameTarget& rTo, int nPlane, int nScratchRow,
                     int nFirst, int nEnd, std::ptrdiff_t nColumnBytes, std::size_t nBytes)
{
    for (int y = nFirst; y < nEnd; ++y)
        std::memcpy(rTo.apPlanes[nPlane] + static_cast<std::ptrdiff_t>(y) * rTo.anStrides[nPlane] +
                        nColumnBytes,
                    rFrom.apPlanes[nPlane] +
                        static_cast<std::ptrdiff_t>(y - nScratchRow) * rFrom.anStrides[nPlane] + nColumnBytes,
                    nBytes);
}

/// A layer's rows count from the picture's first one.
static SFrameTarget Raised(const SFrameTarget& rRows, int nFirstRow)
{
    SFrameTarget sTarget = rRows;
    for (int i = 0; i < 3; ++i) {
        const int nRow = i == 0 ? nFirstRow : nFirstRow / 2;
        if (sTarget.apPlanes[i] != nullptr)
            sTarget.apPlanes[i] -= static_cast<std::ptrdiff_t>(nRow) * sTarget.anStrides[i];
    }
    return sTarget;
}

void DrawCoveredRow(const SFrameJob& rJob, const SPartGrid& rGrid, int nRow, const CRunLayer& rLayer,
                    const CRunLayer& rRim, CScratchRows& rScratch)
{
    const SGRect& r = rGrid.sRect;
    const SFrameTarget& t = rJob.sTarget;
    const int nTop = rGrid.nOriginY + nRow * CELL_SIDE;
    const int nFirst = std::max(nTop, r.y);
    const int nEnd = std::min(nTop + CELL_SIDE, r.y + r.height);
    int nRoom = 0;
    SFrameJob sRows = rJob;
    sRows.sTarget = rScratch.Take(t.eFormat, nRoom);
    sRows.nFirstRow = nTop;
    const CFrameDraw oDraw(sRows);
    oDraw.DrawCellRow(rGrid, nRow);
    const SFrameTarget sLayered = Raised(sRows.sTarget, nTop);
    const std::size_t nWidth = static_cast<std::size_t>(r.width);
    if (t.eFormat != IMAGE_FORMAT_NV12 && t.eFormat != IMAGE_FORMAT_YUV420P) {
        rLayer.BlendPixels(sLayered.apPlanes[0], sLayered.anStrides[0], nFirst, nEnd,
                           rJob.pColours->sJob.bPremultiply);
        rRim.FadePixels(sLayered.apPlanes[0], sLayered.anStrides[0], nFirst, nEnd);
        CopyRows(sRows.sTarget, t, 0, nTop, nFirst, nEnd, std::ptrdiff_t{4} * r.x, nWidth * 4);
    } else {
        rLayer.BlendYUV(sLayered, nTop, nEnd);
        rRim.BlendYUV(sLayered, nTop, nEnd);
        CopyRows(sRows.sTarget, t, 0, nTop, nFirst, nEnd, r.x, nWidth);
        // Places that another part has begun are its own.
        const int nPlaceX = r.x / 2 + (oDraw.IsShared(rGrid, r.x - 1, r.y) ? r.x % 2 : 0);
        const int nPlaceY = nFirst / 2 + (nFirst % 2 != 0 && oDraw.IsShared(rGrid, r.x, r.y - 1) ? 1 : 0);
        const std::size_t nPlaces = static_cast<std::size_t>((r.x + r.width + 1) / 2 - nPlaceX);
        const int nPlaneBytes = t.eFormat == IMAGE_FORMAT_NV12 ? 2 : 1;
        for (int i = 1; i <= 3 - nPlaneBytes; ++i)
            CopyRows(sRows.sTarget, t, i, nTop / 2, nPlaceY, (nEnd + 1) / 2,
                     std::ptrdiff_t{nPlaneBytes} * nPlaceX, nPlaces * static_cast<std::size_t>(nPlaneBytes));
    }
    rScratch.GiveBack(nRoom);
}
