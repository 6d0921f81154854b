// One frame: what was asked for is put in force and decided, then carried out.

#include "dewarp/cpu/CPUState.h"

#include "dewarp/cpu/WorkerPool.h"
#include "dewarp/mapping/ViewRules.h"
#include "dewarp/records/PackYUV.h"

#include <algorithm>

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
                     pFunction, nTargetWidth, nTargetHeight, sImage.nWidth, sImage.nHeight);
    return false;
}

/// Requests are put in force, the view is decided, and the grid stands for it.
void CCustomCPUDewarper::SState::PrepareView()
{
    const SMirrors sMirrors = MirrorsOf(sPicture.bFlipHorizontal, sPicture.bFlipVertical, oControl.nRotation);
    oControl.FollowMirrors(sMirrors);
    oControl.ApplyRequests();
    bViewDrawn = true;
    const STargetShape sTarget = {nTargetWidth, nTargetHeight, true};
    if (!IsDecidedFor(sDecision, oControl, sTarget)) {
        bGridBuilt = false;
        DecideView(oControl, sTarget, sDecision);
    }
    sDecision.sPicture = sPicture;
    PrepareMesh();
    const SFrameShape sShape = FrameShapeOf(sDecision);
    if (bGridBuilt && sGridShape == sShape)
        return;
    bGridBuilt = false;
    ++nGridNumber;
    oGrid.Build(sDecision, oMesh, sShape, CountThreads());
    sGridShape = sShape;
    bGridBuilt = true;
}

void CCustomCPUDewarper::SState::PrepareMesh()
{
    if (sMeshBuiltFor == sDecision.sMesh)
        return;
    // Until it is whole the mesh is nobody's: memory may run out on the way.
    sMeshBuiltFor = SMeshKey();
    bGridBuilt = false;
    sDecision.pView->BuildMesh(oGeometry, sDecision.sMesh);
    oMesh.Build(oGeometry, IsFan(sDecision.sMesh));
    sMeshBuiltFor = sDecision.sMesh;
}

bool CCustomCPUDewarper::SState::PrepareLayers(const SFrameTarget& rTarget, const char* pFunction)
{
    SLayerPlace sPlace;
    sPlace.sFormat.bYUV = IsYUVTarget(rTarget);
    sPlace.sFormat.bRedFirst = rTarget.eFormat == IMAGE_FORMAT_RGBA32;
    sPlace.sFormat.nYUVSpace = EffectiveYUVSpace(sPicture.sYUV2RGB.eSpace, sImage.eYUVSpace);
    sPlace.sFormat.nYUVRange = EffectiveYUVRange(sPicture.sYUV2RGB.eRange, sImage.eYUVRange);
    sPlace.bLinear = sPicture.SamplingInForce(oControl.eInterpolation) != SAMPLING_NEAREST;
    sPlace.nFrameWidth = sImage.nWidth;
    sPlace.nFrameHeight = sImage.nHeight;
    sPlace.nTargetWidth = nTargetWidth;
    sPlace.nTargetHeight = nTargetHeight;
    sPlace.sRim = sDecision.sBands.sRim;
    sPlace.nGridNumber = nGridNumber;
    if (oLayers.Prepare(sPlace, oGrid, CountThreads()))
        return true;
    oReport.Standing(CPU_FAULT_MASKS, "%s: privacy masks are not painted; no frame is shown", pFunction);
    return false;
}

bool CCustomCPUDewarper::SState::DrawView(const SFrameTarget& rTarget, const char* pFunction)
{
    if (!PrepareLayers(rTarget, pFunction))
        return false;
    const ESampling eSampling = sPicture.SamplingInForce(oControl.eInterpolation);
    SFrameColours sColours =
        PrepareColours(sImage, sPicture, eSampling != SAMPLING_NEAREST, sQP.pQP != nullptr ? &sQP : nullptr);
    sColours.sJob.bRedFirst = rTarget.eFormat == IMAGE_FORMAT_RGBA32;
    const CFrameCover oCover = oLayers.Cover();
    const SPlaneSampling sSampling = {eSampling, sPicture.bMinification};
    const CFrameCover* const pCover = oCover.IsEmpty() ? nullptr : &oCover;
    const SFrameJob sJob = {&sColours, &BestKernels(), &oGrid, rTarget, 0, sSampling, pCover};
    const CFrameDraw oDraw(sJob);
    const int nThreadCount = CountThreads();
    oScratch.MakeRoom(nTargetWidth, nThreadCount);
    // From here on nothing can fail: the host's memory gets a whole frame or none.
    for (const SGRect& rRect : oGrid.Remainder())
        oDraw.Clear(rRect);
    CWorkerPool& rPool = CWorkerPool::Shared();
    for (int g = 0; g < oGrid.CountParts(); ++g) {
        const SPartGrid& rGrid = oGrid.Parts()[g];
        const CRunLayer& rLayer = oLayers.InputLayer(g);
        const CRunLayer& rRim = oLayers.RimLayer(g);
        rPool.Run(nThreadCount, rGrid.nRows, [&](int nRow) {
            const int y = rGrid.nOriginY + nRow * CELL_SIDE;
            if (rLayer.HasRows(y, y + CELL_SIDE) || rRim.HasRows(y, y + CELL_SIDE))
                DrawCoveredRow(sJob, rGrid, nRow, rLayer, rRim, oScratch);
            else
                oDraw.DrawCellRow(rGrid, nRow);
        });
    }
    if (oLayers.HasTop()) {
        const int nBand = 32;
        rPool.Run(nThreadCount, (nTargetHeight + nBand - 1) / nBand, [&](int n) {
            oLayers.BlendTop(rTarget, n * nBand, std::min((n + 1) * nBand, nTargetHeight));
        });
    }
    return true;
}

/// Whether the view can be drawn as YUV without a detour over pixels.
bool CCustomCPUDewarper::SState::KeepsYUV() const
{
    switch (sImage.nFormat) {
    case IMAGE_FORMAT_NV12:
    case IMAGE_FORMAT_NV21:
    case IMAGE_FORMAT_YUV420P:
        return true;
    case IMAGE_FORMAT_GRAY8:
        return EffectiveYUVRange(sPicture.sYUV2RGB.eRange, sImage.eYUVRange) == YUV_RANGE_FULL;
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
    const bool bDetour = pTarget != nullptr && IsYUVTarget(*pTarget) && !KeepsYUV();
    if (pTarget == nullptr || bDetour) {
        const SFrameTarget sOwn = OwnTarget();
        nDrawnWidth = 0;
        if (!DrawView(sOwn, pFunction))
            return false;
        nDrawnWidth = nTargetWidth;
        nDrawnHeight = nTargetHeight;
        if (bDetour) {
            SYUV2RGBConversionParams sInForce = sPicture.sYUV2RGB;
            sInForce.eSpace = static_cast<EYUVSpace>(EffectiveYUVSpace(sInForce.eSpace, sImage.eYUVSpace));
            sInForce.eRange = static_cast<EYUVRange>(EffectiveYUVRange(sInForce.eRange, sImage.eYUVRange));
            PackPicture(sOwn.apPlanes[0], sOwn.anStrides[0], nTargetWidth, nTargetHeight,
                        YUVWeightsOf(sInForce), *pTarget);
        }
    } else {
        // The picture is the host's alone.
        nDrawnWidth = 0;
        if (!DrawView(*pTarget, pFunction))
            return false;
    }
    oReport.AllOver();
    oPoints.SetDrawn(sDecision, true);
    oControl.bDrawRequired = false;
    nLastDisplayed = nLastSet;
    return true;
}
