#include "dewarp/cpu/FrameLayers.h"

#include "dewarp/cpu/OutputLayer.h"

#include <algorithm>

int CFrameLayers::SetInputOverlay(const unsigned char* pData, int nWidth, int nHeight, CReport& rReport)
{
    ++m_nInputNumber;
    const int nResult = m_oInputImage.Set(pData, nWidth, nHeight, {}, rReport);
    if (nResult != 0)
        sMasks.PlaceTaken();
    return nResult;
}

int CFrameLayers::SetOutputOverlay(const unsigned char* pData, int nWidth, int nHeight,
                                   const std::vector<SGRect>& vRects, CReport& rReport)
{
    m_bOutputStale = true;
    return m_oOutputImage.Set(pData, nWidth, nHeight, vRects, rReport);
}

bool CFrameLayers::Prepare(const SLayerPlace& rPlace)
{
    // The top lies in the target: frame and grid are nothing to it.
    const bool bOtherTarget = m_sPlace.nTargetWidth != rPlace.nTargetWidth ||
                              m_sPlace.nTargetHeight != rPlace.nTargetHeight ||
                              !(m_sPlace.sFormat == rPlace.sFormat);
    m_bTextStale = m_bTextStale || sStrings.bStringsChanged || bOtherTarget;
    m_bOutputStale = m_bOutputStale || bOtherTarget || m_sPlace.bLinear != rPlace.bLinear;
    if (!PaintMasks(rPlace))
        return false;
    if (m_bTextStale) {
        m_oText.Build(sStrings.vStrings, rPlace.nTargetWidth, rPlace.nTargetHeight, rPlace.sFormat);
        m_bTextStale = false;
        sStrings.bStringsChanged = false;
    }
    if (m_bOutputStale) {
        if (!m_oOutputImage.IsEmpty())
            BuildOutputLayer(m_oOutputImage, rPlace.nTargetWidth, rPlace.nTargetHeight, rPlace.bLinear,
                             rPlace.sFormat, m_oOutput);
        m_bOutputStale = false;
    }
    m_sPlace = rPlace;
    return true;
}

/// Masks count in pixels of the frame: one of another size gets them painted anew. What could not be painted
/// is tried again.
bool CFrameLayers::PaintMasks(const SLayerPlace& rPlace)
{
    if (sMasks.vMaskPolygons.empty()) {
        if (sMasks.bEmptied) {
            m_oInputImage = COverlayImage();
            m_oMasks = CMaskImage();
            sMasks.PlaceTaken();
            ++m_nInputNumber;
        }
        sMasks.bMaskPolygonsChanged = false;
        return true;
    }
    const bool bPainted = !sMasks.bMaskPolygonsChanged && m_oMasks.Width() == rPlace.nFrameWidth &&
                          m_oMasks.Height() == rPlace.nFrameHeight;
    if (bPainted)
        return true;
    sMasks.bMaskPolygonsChanged = true;
    ++m_nInputNumber;
    m_oInputImage = COverlayImage();
    if (!m_oMasks.Paint(sMasks.vMaskPolygons, rPlace.nFrameWidth, rPlace.nFrameHeight))
        return false;
    sMasks.bMaskPolygonsChanged = false;
    return true;
}

void CFrameLayers::BuildInput(const SLayerPlace& rPlace, const CViewGrid& rGrid, int nThreads,
                              CInputLayer& rLayer) const
{
    rLayer.Clear();
    const bool bMasks = !sMasks.vMaskPolygons.empty();
    if (bMasks && !m_oMasks.IsEmpty())
        rLayer.Build(rGrid, m_oMasks, rPlace.bLinear, rPlace.nFrameWidth, rPlace.nFrameHeight, rPlace.sFormat,
                     nThreads);
    else if (!bMasks && !m_oInputImage.IsEmpty())
        rLayer.Build(rGrid, m_oInputImage, rPlace.bLinear, rPlace.nFrameWidth, rPlace.nFrameHeight,
                     rPlace.sFormat, nThreads);
}

void CViewLayers::Prepare(const SLayerPlace& rPlace, const CFrameLayers& rLayers, const CViewGrid& rGrid,
                          int nThreads)
{
    const bool bOtherPlace = !(m_sPlace == rPlace);
    if (!bOtherPlace && m_nInputNumber == rLayers.InputNumber())
        return;
    // Until both are whole they stand for nothing: memory may run out on the way.
    m_nInputNumber = 0;
    rLayers.BuildInput(rPlace, rGrid, nThreads, m_oInput);
    if (bOtherPlace)
        m_oRim.Build(rGrid, rPlace.sRim, rPlace.nFrameWidth, rPlace.nFrameHeight, rPlace.sFormat);
    m_sPlace = rPlace;
    m_nInputNumber = rLayers.InputNumber();
}

/// Takes the transparency away from some pixels.
static void MakeOpaque(unsigned char* pPixels, int nPixels)
{
    for (int n = 0; n < nPixels; ++n)
        pPixels[4 * n + 3] = 255;
}

void CFrameLayers::BlendTop(const SFrameTarget& t, int nFirstRow, int nEndRow) const
{
    const bool bOutput = !m_oOutputImage.IsEmpty();
    if (m_sPlace.sFormat.bYUV) {
        m_oText.BlendYUV(t, nFirstRow, nEndRow);
        if (bOutput)
            m_oOutput.BlendYUV(t, nFirstRow, nEndRow);
        return;
    }
    m_oText.BlendPixels(t.apPlanes[0], t.anStrides[0], nFirstRow, nEndRow);
    if (bOutput)
        m_oOutput.BlendPixels(t.apPlanes[0], t.anStrides[0], nFirstRow, nEndRow, false);
    const auto Row = [&](int y) { return t.apPlanes[0] + static_cast<std::ptrdiff_t>(y) * t.anStrides[0]; };
    for (int y = nFirstRow; bOutput && y < nEndRow; ++y)
        MakeOpaque(Row(y), m_sPlace.nTargetWidth);
    for (const SGRect& r : m_oText.OpaqueRects()) {
        for (int y = std::max(r.y, nFirstRow); !bOutput && y < std::min(r.y + r.height, nEndRow); ++y)
            MakeOpaque(Row(y) + std::ptrdiff_t{4} * r.x, r.width);
    }
}

std::size_t CFrameLayers::CountBytes() const
{
    return m_oInputImage.CountBytes() + m_oOutputImage.CountBytes() + m_oMasks.CountBytes() +
           m_oText.CountBytes() + m_oOutput.CountBytes();
}
