#include "tests/cpu/PathDrawing.h"

#include "dewarp/cpu/WorkerPool.h"
#include "dewarp/records/FrameCheck.h"
#include "dewarp/records/Mirrors.h"
#include "dewarp/views/ViewList.h"

#include <algorithm>
#include <cstring>

namespace
{

bool IsYUV(int nFormat)
{
    return nFormat == IMAGE_FORMAT_NV12 || nFormat == IMAGE_FORMAT_NV21 || nFormat == IMAGE_FORMAT_YUV420P;
}

template <class T, std::size_t N>
T OneOf(std::mt19937& rRandom, const T (&aChoices)[N])
{
    return aChoices[rRandom() % N];
}

int Between(std::mt19937& rRandom, int nLow, int nHigh)
{
    return nLow + static_cast<int>(rRandom() % static_cast<unsigned int>(nHigh - nLow + 1));
}

void ChooseView(std::mt19937& rRandom, SPathCase& rCase)
{
    static const EViewType VIEWS[] = {VIEW_VCAM,          VIEW_PANORAMA_QUARTER, VIEW_FISHEYE,
                                      VIEW_PANORAMA_FULL, VIEW_PANORAMA_HALF,    VIEW_PANORAMA_DUAL,
                                      VIEW_VCAM_QUAD,     VIEW_PANORAMA_TRIPLE,  VIEW_FISHEYE_CIRCULAR};
    static const EMountType MOUNTS[] = {MOUNT_CEILING, MOUNT_WALL, MOUNT_FLOOR};
    static const ELensType LENSES[] = {LENS_DSL419, LENS_DSL215, LENS_DSL239, LENS_DSL418, LENS_UNKNOWN};
    SDewarpParams& p = rCase.sParams;
    p.eViewType = OneOf(rRandom, VIEWS);
    p.eMountType = OneOf(rRandom, MOUNTS);
    p.eLensType = OneOf(rRandom, LENSES);
    p.fPan = static_cast<float>(Between(rRandom, -360, 360)) * 0.5f;
    p.fTilt = static_cast<float>(Between(rRandom, -180, 360)) * 0.5f;
    p.fZoom = static_cast<float>(Between(rRandom, 20, 360)) * 0.5f;
    p.fMountTilt = rRandom() % 3 == 0 ? static_cast<float>(Between(rRandom, -40, 40)) : 0.0f;
    p.bStrictTiltLimits = rRandom() % 2 == 0;
    rCase.nRotation = rRandom() % 4 == 0 ? Between(rRandom, 0, 3) * 90 : 0;
    rCase.fEyeDistance = rRandom() % 4 == 0 ? 0.5f : 0.0f;
    rCase.sPicture.SetFlip(rRandom() % 4 == 0, rRandom() % 4 == 0);
}

} // namespace

SPathCase RandomCase(std::mt19937& rRandom)
{
    static const int FORMATS[] = {IMAGE_FORMAT_NV12,   IMAGE_FORMAT_YUV420P, IMAGE_FORMAT_RGB24,
                                  IMAGE_FORMAT_RGBA32, IMAGE_FORMAT_NV21,    IMAGE_FORMAT_BGR24,
                                  IMAGE_FORMAT_GRAY8,  IMAGE_FORMAT_BGRA32,  IMAGE_FORMAT_NV12,
                                  IMAGE_FORMAT_YUV420P};
    static const int SIZES[] = {32, 34, 48, 64, 100, 160, 254, 400, 640, 2, 3, 5, 31, 33, 97, 255};
    static const EImageFormat TARGETS[] = {IMAGE_FORMAT_BGRA32, IMAGE_FORMAT_NV12, IMAGE_FORMAT_YUV420P,
                                           IMAGE_FORMAT_RGBA32};
    SPathCase s;
    ChooseView(rRandom, s);
    s.sParams.nImageWidth = OneOf(rRandom, SIZES);
    s.sParams.nImageHeight = rRandom() % 3 == 0 ? OneOf(rRandom, SIZES) : s.sParams.nImageWidth;
    s.nFormat = OneOf(rRandom, FORMATS);
    s.nPad = rRandom() % 2 == 0 ? Between(rRandom, 1, 70) : 0;
    s.bLinear = rRandom() % 3 != 0;
    s.sPicture.SetYUV(static_cast<EYUVSpace>(Between(rRandom, YUV_SPACE_BT601, YUV_SPACE_BT601_SCALED)),
                      rRandom() % 2 == 0 ? YUV_RANGE_LIMITED : YUV_RANGE_FULL);
    s.nTargetWidth = Between(rRandom, 1, 210);
    s.nTargetHeight = Between(rRandom, 1, 130);
    s.eTarget = OneOf(rRandom, TARGETS);
    // What has red and blue is packed by other means.
    const bool bGrayIsYUV = s.nFormat == IMAGE_FORMAT_GRAY8 && s.sPicture.sYUV2RGB.eRange == YUV_RANGE_FULL;
    if (!IsYUV(s.nFormat) && !bGrayIsYUV && IsYUV(s.eTarget))
        s.eTarget = IMAGE_FORMAT_BGRA32;
    s.nTargetPad = rRandom() % 2 == 0 ? Between(rRandom, 1, 40) : 0;
    s.nSeed = static_cast<unsigned int>(rRandom());
    CReport oReport("test");
    CControl oControl(oReport);
    oControl.sParams = s.sParams;
    oControl.LimitPTZ();
    s.sParams = oControl.sParams;
    return s;
}

std::string SPathCase::Words() const
{
    return "view " + std::to_string(sParams.eViewType) + ", mount " + std::to_string(sParams.eMountType) +
           ", lens " + std::to_string(sParams.eLensType) + " at " + std::to_string(sParams.fPan) + ", " +
           std::to_string(sParams.fTilt) + ", " + std::to_string(sParams.fZoom) + ", frame of format " +
           std::to_string(nFormat) + ", " + std::to_string(sParams.nImageWidth) + " x " +
           std::to_string(sParams.nImageHeight) + " and " + std::to_string(nPad) + " bytes, " +
           (bLinear ? "linear" : "nearest") + ", rotation " + std::to_string(nRotation) +
           (sPicture.bFlipHorizontal ? " h" : "") + (sPicture.bFlipVertical ? " v" : "") +
           ", target of format " + std::to_string(eTarget) + ", " + std::to_string(nTargetWidth) + " x " +
           std::to_string(nTargetHeight) + " and " + std::to_string(nTargetPad) + " bytes";
}

CPathTarget::CPathTarget(const SPathCase& rCase, bool bAtEnd)
{
    const int nHalfWidth = (rCase.nTargetWidth + 1) / 2;
    const int nHalfHeight = (rCase.nTargetHeight + 1) / 2;
    m_sTarget.eFormat = rCase.eTarget;
    m_anRows[0] = rCase.nTargetHeight;
    m_anRowBytes[0] = rCase.nTargetWidth * (IsYUV(rCase.eTarget) ? 1 : 4);
    if (rCase.eTarget == IMAGE_FORMAT_NV12) {
        m_anRows[1] = nHalfHeight;
        m_anRowBytes[1] = 2 * nHalfWidth;
    } else if (rCase.eTarget == IMAGE_FORMAT_YUV420P) {
        m_anRows[1] = m_anRows[2] = nHalfHeight;
        m_anRowBytes[1] = m_anRowBytes[2] = nHalfWidth;
    }
    for (int i = 0; i < 3 && m_anRows[i] > 0; ++i) {
        m_sTarget.anStrides[i] = m_anRowBytes[i] + rCase.nTargetPad;
        const std::size_t nBytes =
            static_cast<std::size_t>(m_anRows[i] - 1) * static_cast<std::size_t>(m_sTarget.anStrides[i]) +
            static_cast<std::size_t>(m_anRowBytes[i]);
        m_aPlanes[i] = CGuardedBytes(nBytes, bAtEnd);
        std::memset(m_aPlanes[i].Data(), BESIDE, nBytes);
        m_sTarget.apPlanes[i] = m_aPlanes[i].Data();
    }
}

std::vector<unsigned char> CPathTarget::Bytes()
{
    std::vector<unsigned char> vBytes;
    for (CGuardedBytes& rPlane : m_aPlanes)
        vBytes.insert(vBytes.end(), rPlane.Data(), rPlane.Data() + rPlane.Size());
    return vBytes;
}

bool CPathTarget::IsUntouchedBeside()
{
    for (int i = 0; i < 3; ++i)
        for (int y = 0; y + 1 < m_anRows[i]; ++y) {
            const unsigned char* const pRow =
                m_aPlanes[i].Data() + static_cast<std::ptrdiff_t>(y) * m_sTarget.anStrides[i];
            if (!std::all_of(pRow + m_anRowBytes[i], pRow + m_sTarget.anStrides[i],
                             [](unsigned char n) { return n == BESIDE; }))
                return false;
        }
    return true;
}

CPathDrawing::CPathDrawing(const SPathCase& rCase, CGuardedFrame& rFrame, int nThreads)
{
    CReport oReport("test");
    CControl oControl(oReport);
    oControl.sParams = rCase.sParams;
    oControl.nRotation = rCase.nRotation;
    oControl.fEyeDistance = rCase.fEyeDistance;
    DecideView(oControl, {rCase.nTargetWidth, rCase.nTargetHeight, true}, m_sDecision);
    m_sDecision.sPicture = rCase.sPicture;
    m_sDecision.pView->BuildMesh(m_oGeometry, m_sDecision.sMesh);
    m_oMesh.Build(m_oGeometry, m_sDecision.sMesh.eMesh == MESH_FISHEYE_CIRCULAR);
    const SMirrors sMirrors =
        MirrorsOf(rCase.sPicture.bFlipHorizontal, rCase.sPicture.bFlipVertical, rCase.nRotation);
    m_oGrid.Build(m_sDecision, m_oMesh,
                  {rCase.sParams.nImageWidth, rCase.sParams.nImageHeight, sMirrors.bX, sMirrors.bY},
                  nThreads);
    m_sColours = PrepareColours(PlanesOf(*rFrame.Image()), rCase.sPicture, rCase.bLinear, nullptr);
    m_sColours.sJob.bRedFirst = rCase.eTarget == IMAGE_FORMAT_RGBA32;
}

void CPathDrawing::Draw(const SCellKernels& rKernels, int nThreads, const SFrameTarget& rTarget)
{
    const SFrameJob sJob = {&m_sColours, &rKernels, &m_oGrid, rTarget, 0};
    const CFrameDraw oDraw(sJob);
    for (const SGRect& rRect : m_oGrid.Remainder())
        oDraw.Clear(rRect);
    for (int g = 0; g < m_oGrid.CountParts(); ++g) {
        const SPartGrid& rGrid = m_oGrid.Parts()[g];
        CWorkerPool::Shared().Run(nThreads, rGrid.nRows, [&](int nRow) { oDraw.DrawCellRow(rGrid, nRow); });
    }
}
