// One frame: what was asked for is put in force and decided, then carried out.

#include "dewarp/cpu/CPUState.h"

#include "dewarp/cpu/PaneGround.h"
#include "dewarp/cpu/WorkerPool.h"
#include "dewarp/records/PackYUV.h"

#include <algorithm>
#include <span>

static bool IsYUVTarget(const SFrameTarget& rTarget)
{
    return rTarget.eFormat == IMAGE_FORMAT_NV12 || rTarget.eFormat == IMAGE_FORMAT_YUV420P;
}

int CCustomCPUDewarper::SState::CountThreads() const
{
    return std::min(nThreads == 0 ? CWorkerPool::CountCores() : nThreads, MOST_DRAWING_THREADS);
}

bool CCustomCPUDewarper::SState::HasFrameAndTarget(const char* pFunction)
{
    if (!bHasFrame) {
        oReport.Standing(CPU_FAULT_NO_FRAME, "%s: no frame was handed over yet", pFunction);
        return false;
    }
    if (nTargetWidth > 0)
        return true;
    oReport.Standing(CPU_FAULT_NO_TARGET, "%s: the target (%d x %d) or the frame (%d x %d) has no size",
                     pFunction, nTargetWidth, nTargetHeight, sFrame.nWidth, sFrame.nHeight);
    return false;
}

/// Requests are put in force, the views are decided, and their grids stand for them.
void CCustomCPUDewarper::SState::PrepareView()
{
    const SMirrors sMirrors = MirrorsOf(sPicture.bFlipHorizontal, sPicture.bFlipVertical, oControl.nRotation);
    oControl.FollowMirrors(sMirrors);
    const STargetShape sTarget = {nTargetWidth, nTargetHeight, true};
    if (oPanes.IsSet()) {
        oPanes.Decide(sTarget, sPicture);
        PreparePanes();
        return;
    }
    oPoints.MakeRoom(1);
    oControl.ApplyRequests();
    bViewDrawn = true;
    if (!IsDecidedFor(sDecision, oControl, sTarget))
        DecideView(oControl, sTarget, sDecision);
    sDecision.sPicture = sPicture;
    oView.Prepare(sDecision, oGeometry, nullptr, bExactGeometry, CountThreads());
}

void CCustomCPUDewarper::SState::PreparePanes()
{
    const std::span<const SPlacedView> oViews = oPanes.Views();
    oPoints.MakeRoom(oViews.size());
    while (vPaneViews.size() < oViews.size())
        vPaneViews.push_back(std::make_unique<CViewDraw>());
    for (std::size_t n = 0; n < oViews.size(); ++n) {
        const SFrameDecision& d = *oViews[n].pDecision;
        const auto pOther =
            std::find_if(vPaneViews.begin(), vPaneViews.end(),
                         [&](const std::unique_ptr<CViewDraw>& p) { return p->HasMesh(d.sMesh); });
        vPaneViews[n]->Prepare(d, oGeometry, pOther == vPaneViews.end() ? nullptr : pOther->get(),
                               bExactGeometry, CountThreads());
    }
}

SYUV2RGBConversionParams CCustomCPUDewarper::SState::ColoursInForce() const
{
    SYUV2RGBConversionParams sInForce = sPicture.sYUV2RGB;
    sInForce.eSpace = static_cast<EYUVSpace>(EffectiveYUVSpace(sInForce.eSpace, sFrame.eYUVSpace));
    sInForce.eRange = static_cast<EYUVRange>(EffectiveYUVRange(sInForce.eRange, sFrame.eYUVRange));
    return sInForce;
}

SLayerPlace CCustomCPUDewarper::SState::LayerPlaceOf(const SFrameTarget& rTarget) const
{
    SLayerPlace sPlace;
    sPlace.sFormat.bYUV = IsYUVTarget(rTarget);
    sPlace.sFormat.bRedFirst = rTarget.eFormat == IMAGE_FORMAT_RGBA32;
    sPlace.sFormat.nYUVSpace = ColoursInForce().eSpace;
    sPlace.sFormat.nYUVRange = ColoursInForce().eRange;
    sPlace.bLinear = sPicture.SamplingInForce(oControl.eInterpolation) != SAMPLING_NEAREST;
    sPlace.nFrameWidth = sFrame.nWidth;
    sPlace.nFrameHeight = sFrame.nHeight;
    sPlace.nTargetWidth = nTargetWidth;
    sPlace.nTargetHeight = nTargetHeight;
    return sPlace;
}

bool CCustomCPUDewarper::SState::PrepareLayers(const SFrameTarget& rTarget, const char* pFunction)
{
    const SLayerPlace sPlace = LayerPlaceOf(rTarget);
    if (!oLayers.Prepare(sPlace)) {
        oReport.Standing(CPU_FAULT_MASKS, "%s: privacy masks are not painted; no frame is shown", pFunction);
        return false;
    }
    if (!oPanes.IsSet()) {
        oView.PrepareLayers(sPlace, oLayers, CountThreads());
        return true;
    }
    for (std::size_t n = 0; n < oPanes.Views().size(); ++n)
        vPaneViews[n]->PrepareLayers(sPlace, oLayers, CountThreads());
    return true;
}

bool CCustomCPUDewarper::SState::DrawViews(const SFrameTarget& rTarget, const char* pFunction)
{
    if (!PrepareLayers(rTarget, pFunction))
        return false;
    const ESampling eSampling = sPicture.SamplingInForce(oControl.eInterpolation);
    SFrameColours sColours =
        PrepareColours(sFrame, sPicture, eSampling != SAMPLING_NEAREST, sQP.pQP != nullptr ? &sQP : nullptr);
    sColours.sJob.bRedFirst = rTarget.eFormat == IMAGE_FORMAT_RGBA32;
    const CFrameCover oCover = oLayers.Cover();
    const SPlaneSampling sSampling = {eSampling, sPicture.bMinification};
    const CFrameCover* const pCover = oCover.IsEmpty() ? nullptr : &oCover;
    const int nThreadCount = CountThreads();
    oScratch.MakeRoom(nTargetWidth, nThreadCount);
    const auto Draw = [&](const CViewDraw& rView, const SFrameTarget& rPart) {
        rView.Draw({&sColours, &BestKernels(), &rView.Grid(), rPart, 0, sSampling, pCover}, oScratch,
                   nThreadCount);
    };
    // From here on nothing can fail: the host's memory gets a whole frame or none.
    if (!oPanes.IsSet()) {
        Draw(oView, rTarget);
    } else {
        const CPaneGround oGround(rTarget, oPanes.GapColor(), ColoursInForce().eSpace,
                                  ColoursInForce().eRange);
        oGround.Fill({0, 0, nTargetWidth, nTargetHeight});
        for (std::size_t n = 0; n < oPanes.Views().size(); ++n) {
            const SPlacedView& rView = oPanes.Views()[n];
            // What fills its ground leaves nothing of it to see.
            if (rView.sGround.width != rView.sPlace.width || rView.sGround.height != rView.sPlace.height)
                oGround.Fill(rView.sGround);
            Draw(*vPaneViews[n], PartOf(rTarget, rView.sPlace));
        }
    }
    if (oLayers.HasTop()) {
        const int nBand = 32;
        CWorkerPool::Shared().Run(nThreadCount, (nTargetHeight + nBand - 1) / nBand, [&](int n) {
            oLayers.BlendTop(rTarget, n * nBand, std::min((n + 1) * nBand, nTargetHeight));
        });
    }
    return true;
}

/// Whether the view can be drawn as YUV without a detour over pixels.
bool CCustomCPUDewarper::SState::KeepsYUV() const
{
    switch (sFrame.eFormat) {
    case IMAGE_FORMAT_NV12:
    case IMAGE_FORMAT_NV21:
    case IMAGE_FORMAT_YUV420P:
        return true;
    case IMAGE_FORMAT_GRAY8:
        return EffectiveYUVRange(sPicture.sYUV2RGB.eRange, sFrame.eYUVRange) == YUV_RANGE_FULL;
    default:
        return false;
    }
}

SFrameTarget CCustomCPUDewarper::SState::OwnTarget()
{
    const std::size_t nStride = static_cast<std::size_t>(nTargetWidth) * 4;
    const std::size_t nHalf = static_cast<std::size_t>(nTargetHeight + nTargetHeight % 2) * nStride;
    if (nBufferSize < 2 * nHalf) {
        nBufferSize = 0;
        nDrawnWidth = 0;
        pBuffer.reset();
        pBuffer = std::make_unique_for_overwrite<unsigned char[]>(2 * nHalf);
        nBufferSize = 2 * nHalf;
    }
    SFrameTarget sTarget;
    sTarget.apPlanes[0] = pBuffer.get() + nHalf;
    sTarget.anStrides[0] = static_cast<int>(nStride);
    return sTarget;
}

bool CCustomCPUDewarper::SState::Draw(const SFrameTarget* pTarget, const char* pFunction)
{
    if (!HasFrameAndTarget(pFunction))
        return false;
    PrepareView();
    // Chroma that two panes share is that of the finished picture.
    const bool bDetour = pTarget != nullptr && IsYUVTarget(*pTarget) &&
                         (!KeepsYUV() || SharesChroma(oPanes.Views(), nTargetWidth, nTargetHeight));
    if (pTarget == nullptr || bDetour) {
        const SFrameTarget sOwn = OwnTarget();
        nDrawnWidth = 0;
        if (!DrawViews(sOwn, pFunction))
            return false;
        nDrawnWidth = nTargetWidth;
        nDrawnHeight = nTargetHeight;
        if (bDetour) {
            PackPicture(sOwn.apPlanes[0], sOwn.anStrides[0], nTargetWidth, nTargetHeight,
                        YUVWeightsOf(ColoursInForce()), *pTarget);
        }
    } else {
        // The picture is the host's alone.
        nDrawnWidth = 0;
        if (!DrawViews(*pTarget, pFunction))
            return false;
    }
    oReport.AllOver();
    if (oPanes.IsSet())
        oPoints.SetDrawn(oPanes.Views(), true);
    else
        oPoints.SetDrawn(sDecision, true);
    oControl.bDrawRequired = false;
    nLastDisplayed = nLastSet;
    return true;
}
