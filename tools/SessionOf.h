/// \file
/// What sessions share whose dewarpers have the same operations under one name, but no common base.
#pragma once

#include "Notes.h"
#include "PaneOptions.h"
#include "Session.h"
#include "ToolError.h"

#include "dewarp/Dewarper.h"

#include <algorithm>
#include <array>
#include <cstddef>

/// A session of one kind of dewarper. The options must outlive it.
template <class TDewarper>
class CSessionOf : public CDewarpSession
{
public:
    void DrawFirst(SFrame& sFrame, SOverlays& sOverlays) final;
    void Draw(SFrame& sFrame) final;
    std::vector<std::string> GetNotes() override;
    SViewMap GetMap(const SPicture& rPicture) override;

protected:
    explicit CSessionOf(const SToolOptions& sOptions) : m_sOptions(sOptions) {}
    virtual TDewarper& GetDewarper() = 0;
    /// Of the pictures; false where it is not known.
    virtual bool GetSize(int& /*nWidth*/, int& /*nHeight*/) { return false; }
    /// Hands the frame to the dewarper.
    virtual void GiveFrame(SFrame& sFrame) = 0;
    /// Draws the frame that was handed over last.
    virtual void DrawGiven();
    /// Brings colours into the form that the dewarper mixes.
    virtual void PrepareOverlays(const SFrame& /*sFrame*/, SOverlays& /*sOverlays*/) {}
    /// The same for one, 0xRRGGBBAA.
    virtual unsigned int ColorForDewarper(unsigned int nColor) const { return nColor; }
    /// " (what went wrong last)", or nothing when nothing has.
    std::string GetReason();
    [[noreturn]] void ThrowUndrawn();

    const SToolOptions& m_sOptions;

private:
    void ApplyView();
    void ApplyCamera();
    bool ShowsAnything();
    void ApplyPTZ();
    void ApplyOverlays(SOverlays& sOverlays);
};

template <class TDewarper>
std::string CSessionOf<TDewarper>::GetReason()
{
    const std::string strError = GetDewarper().GetLastErrorText();
    return strError.empty() ? "" : " (" + strError + ")";
}

template <class TDewarper>
void CSessionOf<TDewarper>::ThrowUndrawn()
{
    ThrowFailure("the frame could not be drawn" + GetReason() + "; --verbose shows the whole log");
}

/// Lens, circle and how the body hangs.
template <class TDewarper>
void CSessionOf<TDewarper>::ApplyCamera()
{
    TDewarper& rDewarper = GetDewarper();
    rDewarper.SetLensType(m_sOptions.eLens);
    if (m_sOptions.oLens && !rDewarper.SetLens(*m_sOptions.oLens))
        ThrowFailure("the lens cannot be drawn with" + GetReason());
    if (m_sOptions.oCircle) {
        const SCircle& c = *m_sOptions.oCircle;
        if (!rDewarper.SetImageCircle(c.fCenterX, c.fCenterY, c.fRadiusX, c.fRadiusY))
            ThrowFailure("the circle was refused" + GetReason());
    }
    if (m_sOptions.oOrientation) {
        const SOrientation& o = *m_sOptions.oOrientation;
        rDewarper.SetMountOrientation(o.fYaw, o.fPitch, o.fRoll);
    }
    rDewarper.SetCleanRim(m_sOptions.bCleanRim);
    rDewarper.SetRoll(m_sOptions.oRoll.value_or(0.0f));
    if (!rDewarper.SetViewShape(m_sOptions.sShape))
        ThrowFailure("span or band were refused" + GetReason());
}

template <class TDewarper>
void CSessionOf<TDewarper>::ApplyView()
{
    TDewarper& rDewarper = GetDewarper();
    rDewarper.SetViewType(m_sOptions.eView);
    rDewarper.SetMountType(m_sOptions.eMount);
    ApplyCamera();
    rDewarper.SetInterpolationType(m_sOptions.eInterpolation);
    rDewarper.SetSampling(m_sOptions.eSampling);
    rDewarper.SetMinification(m_sOptions.bMinification);
    rDewarper.SetYUVparams(m_sOptions.oYUVSpace.value_or(YUV_SPACE_AUTO),
                           m_sOptions.oYUVRange.value_or(YUV_RANGE_AUTO));
    rDewarper.SetFlip(m_sOptions.bFlipHorizontal, m_sOptions.bFlipVertical);
    rDewarper.SetStrictTiltLimits(m_sOptions.bStrictTilt);
    rDewarper.SetMountTilt(m_sOptions.oMountTilt.value_or(0.0f));
    const auto IsFlatPane = [](const SPane& rPane) { return IsFlatView(rPane.eView); };
    const bool bFlat = m_sOptions.vPanes.empty()
                           ? IsFlatView(m_sOptions.eView)
                           : std::any_of(m_sOptions.vPanes.begin(), m_sOptions.vPanes.end(), IsFlatPane);
    if (m_sOptions.oRotation && bFlat)
        rDewarper.SetRotation(*m_sOptions.oRotation);
    if (m_sOptions.oGains)
        rDewarper.SetGains(m_sOptions.oGains->fLuma, m_sOptions.oGains->fChroma);
    if (m_sOptions.oEyeDistance)
        rDewarper.SetEyeDistance(*m_sOptions.oEyeDistance);
}

/// Where the view starts, unless the options say otherwise.
template <class TDewarper>
void CSessionOf<TDewarper>::ApplyPTZ()
{
    float fPan = 0.0f;
    float fTilt = 0.0f;
    float fZoom = 0.0f;
    if (!m_sOptions.vPanes.empty()) {
        GetDewarper().SetPaneGap(m_sOptions.nPaneGap, ColorForDewarper(m_sOptions.nPaneGapColor));
        if (!GetDewarper().SetPanes(m_sOptions.vPanes))
            ThrowFailure("the panes were refused" + GetReason());
        return;
    }
    CDewarper::GetDefaultPTZ(m_sOptions.eView, m_sOptions.eMount, fPan, fTilt, fZoom);
    GetDewarper().AbsolutePTZ(m_sOptions.oPan.value_or(fPan), m_sOptions.oTilt.value_or(fTilt),
                              m_sOptions.oZoom.value_or(fZoom));
}

/// Hands everything to the dewarper, which copies it.
template <class TDewarper>
void CSessionOf<TDewarper>::ApplyOverlays(SOverlays& sOverlays)
{
    TDewarper& rDewarper = GetDewarper();
    if (sOverlays.oInput) {
        SFrame& sFrame = *sOverlays.oInput;
        if (rDewarper.SetInputOverlay(sFrame.avPlanes[0].data(), sFrame.nWidth, sFrame.nHeight, 0) != 1)
            ThrowFailure("the input overlay was refused; --verbose shows why");
    }
    if (sOverlays.oOutput) {
        SFrame& sFrame = *sOverlays.oOutput;
        if (rDewarper.SetOutputOverlay(sFrame.avPlanes[0].data(), sFrame.nWidth, sFrame.nHeight, 0, {}) != 1)
            ThrowFailure("the output overlay was refused; --verbose shows why");
    }
    if (!sOverlays.vMasks.empty())
        rDewarper.SetMaskPolygons(sOverlays.vMasks);
    if (!sOverlays.vTexts.empty())
        rDewarper.SetStrings(sOverlays.vTexts);
}

template <class TDewarper>
void CSessionOf<TDewarper>::DrawFirst(SFrame& sFrame, SOverlays& sOverlays)
{
    ApplyView();
    PrepareOverlays(sFrame, sOverlays);
    ApplyOverlays(sOverlays);
    GiveFrame(sFrame);
    // Only now: a frame of a new size puts the view back to where it starts. Given before the first drawing
    // the position needs no second one, for the library tells every view's start without having drawn it.
    ApplyPTZ();
    DrawGiven();
}

template <class TDewarper>
void CSessionOf<TDewarper>::Draw(SFrame& sFrame)
{
    GiveFrame(sFrame);
    DrawGiven();
}

template <class TDewarper>
void CSessionOf<TDewarper>::DrawGiven()
{
    if (!GetDewarper().DrawGLScene(true))
        ThrowUndrawn();
}

/// Whether a described camera sees some of the view, looked for at 16 x 16 places.
template <class TDewarper>
bool CSessionOf<TDewarper>::ShowsAnything()
{
    int nWidth = 0;
    int nHeight = 0;
    const bool bDescribed = m_sOptions.oLens || m_sOptions.oCircle || m_sOptions.oOrientation;
    if (!bDescribed || !GetSize(nWidth, nHeight))
        return true;
    const int nSide = 16;
    for (int nRow = 0; nRow < nSide; ++nRow) {
        std::array<SPointD, nSide> aPoints;
        for (int nCol = 0; nCol < nSide; ++nCol)
            aPoints[static_cast<std::size_t>(nCol)] = {(nCol + 0.5) / nSide * nWidth,
                                                       (nRow + 0.5) / nSide * nHeight};
        if (GetDewarper().ViewToFrame(aPoints.data(), aPoints.data(), nullptr, nSide) > 0)
            return true;
    }
    return false;
}

template <class TDewarper>
std::vector<std::string> CSessionOf<TDewarper>::GetNotes()
{
    float fPan = 0.0f;
    float fTilt = 0.0f;
    float fZoom = 0.0f;
    GetDewarper().GetPTZ(fPan, fTilt, fZoom);
    std::vector<std::string> vNotes = m_sOptions.vPanes.empty()
                                          ? ListLimitedPTZ(m_sOptions, fPan, fTilt, fZoom)
                                          : ListLimitedPanes(m_sOptions, GetDewarper().GetPanes());
    if (!ShowsAnything())
        vNotes.emplace_back(
            "nothing of this view lies in the light of the lens; check --lens, --circle and where it looks");
    if (m_sOptions.oThreads && GetEngine() == ENGINE_GL)
        vNotes.emplace_back("--threads has no effect: OpenGL ES draws");
    return vNotes;
}

template <class TDewarper>
SViewMap CSessionOf<TDewarper>::GetMap(const SPicture& rPicture)
{
    SViewMap sMap;
    sMap.nWidth = rPicture.nWidth;
    sMap.nHeight = rPicture.nHeight;
    std::vector<SPointD> vPoints(static_cast<std::size_t>(rPicture.nWidth));
    for (int y = 0; y < rPicture.nHeight; ++y) {
        for (int x = 0; x < rPicture.nWidth; ++x)
            vPoints[static_cast<std::size_t>(x)] = {x + 0.5, y + 0.5};
        GetDewarper().ViewToFrame(vPoints.data(), vPoints.data(), nullptr, rPicture.nWidth);
        for (const SPointD& rPoint : vPoints) {
            sMap.vX.push_back(static_cast<float>(rPoint.x - 0.5));
            sMap.vY.push_back(static_cast<float>(rPoint.y - 0.5));
        }
    }
    return sMap;
}
