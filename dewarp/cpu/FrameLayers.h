/// \file
/// All that lies over a frame of the processor engine, built when it changes.
#pragma once

#include "dewarp/cpu/FrameCover.h"
#include "dewarp/cpu/InputLayer.h"
#include "dewarp/cpu/MaskImage.h"
#include "dewarp/cpu/OverlayImage.h"
#include "dewarp/cpu/RimLayer.h"
#include "dewarp/cpu/TextLayer.h"
#include "dewarp/overlays/MaskList.h"
#include "dewarp/overlays/StringList.h"

class CReport;

/// What layers are built for.
struct SLayerPlace
{
    SLayerFormat sFormat;
    bool bLinear = false;
    int nFrameWidth = 0;
    int nFrameHeight = 0;
    int nTargetWidth = 0;
    int nTargetHeight = 0;
    SRimCut sRim;
    unsigned int nGridNumber = 0; ///< which grid: another number, another grid

    bool operator==(const SLayerPlace& sOther) const = default;
};

/// Holds masks, overlays and text as the host gave them, and their layers. Masks take the place of the input
/// overlay.
/// Owns: all of it. Thread: any, serialised by the host; rows may be blended on several threads at once.
/// Fails: by result; throws for lack of memory. After either, nothing may be shown until a later call
/// succeeds.
class CFrameLayers
{
public:
    int SetInputOverlay(const unsigned char* pData, int nWidth, int nHeight, CReport& rReport);
    int SetOutputOverlay(const unsigned char* pData, int nWidth, int nHeight,
                         const std::vector<SGRect>& vRects, CReport& rReport);

    /// Who has the input overlay's place is settled, and what lies over the picture stands for that place.
    /// False: a mask would stay open.
    bool Prepare(const SLayerPlace& rPlace);
    /// What lies over the frame as a grid shows it.
    void BuildInput(const SLayerPlace& rPlace, const CViewGrid& rGrid, int nThreads,
                    CInputLayer& rLayer) const;
    /// Another number: something else lies over the frame.
    unsigned int InputNumber() const { return m_nInputNumber; }
    /// Which texels of the frame something lies over.
    CFrameCover Cover() const
    {
        const bool bMasks = !sMasks.vMaskPolygons.empty();
        return {bMasks ? &m_oMasks : nullptr, bMasks ? nullptr : &m_oInputImage};
    }
    /// Whether something lies over the picture as a whole.
    bool HasTop() const { return !m_oText.IsEmpty() || !m_oOutputImage.IsEmpty(); }
    /// Lays text and output overlay over rows of a finished picture; the first one is even.
    void BlendTop(const SFrameTarget& rTarget, int nFirstRow, int nEndRow) const;
    std::size_t CountBytes() const;

    SMaskList sMasks;
    SStringList sStrings;

private:
    bool PaintMasks(const SLayerPlace& rPlace);

    COverlayImage m_oInputImage;
    COverlayImage m_oOutputImage;
    CMaskImage m_oMasks;
    CTextLayer m_oText;
    CRunLayer m_oOutput;
    SLayerPlace m_sPlace; ///< what the layers stand for
    unsigned int m_nInputNumber = 1;
    bool m_bOutputStale = true;
    bool m_bTextStale = true;
};

/// What lies over the frame, and where its light ends, as one view shows them.
/// Owns: both layers. Thread and failures: as CFrameLayers.
class CViewLayers
{
public:
    void Prepare(const SLayerPlace& rPlace, const CFrameLayers& rLayers, const CViewGrid& rGrid,
                 int nThreads);
    /// Lays over the rows of one part what lies over the frame.
    const CRunLayer& InputLayer(int nPart) const { return m_oInput.Layer(nPart); }
    /// Ends one part where the light of the lens does.
    const CRunLayer& RimLayer(int nPart) const { return m_oRim.Layer(nPart); }
    std::size_t CountBytes() const { return m_oInput.CountBytes() + m_oRim.CountBytes(); }

private:
    CInputLayer m_oInput;
    CRimLayer m_oRim;
    SLayerPlace m_sPlace; ///< what they stand for
    unsigned int m_nInputNumber = 0;
};
