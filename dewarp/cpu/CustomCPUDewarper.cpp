// What to show and how: requests are stored, the rules are the control room's.

#include "dewarp/cpu/CustomCPUDewarper.h"

#include "dewarp/cpu/CPUState.h"
#include "dewarp/records/FrameCheck.h"
#include "dewarp/views/ViewList.h"
#include "platform/MemoryGuard.h"

#include <atomic>

CCustomCPUDewarper::CCustomCPUDewarper() : pState(std::make_unique<SState>()) {}

CCustomCPUDewarper::~CCustomCPUDewarper() = default;

EDewarpEngine CCustomCPUDewarper::GetEngine() const
{
    return ENGINE_CPU;
}

bool CCustomCPUDewarper::SState::Fail(const char* pFunction, const char* pMessage)
{
    oReport.Error("%s: %s", pFunction, pMessage);
    return false;
}

bool CCustomCPUDewarper::SetTexture(SImageProperties* pImage, bool bGain, SQPInfo* pQP,
                                    unsigned long long nTimestamp)
{
    const CCPULock oLock(pState->oMutex);
    SState& s = *pState;
    const std::string strFault = GuardMemory("SetTexture", s.oReport, std::string("out of memory"),
                                             [&] { return FindFrameFault(pImage, pQP); });
    if (!strFault.empty())
        return s.Fail("SetTexture", strFault.c_str());
    // The only step that can fail comes first: planes and size of a frame belong together.
    if (pQP != nullptr && !GuardMemory("SetTexture", s.oReport, false, [&] {
            s.sQP = *pQP;
            return true;
        }))
        return false;
    SFramePlanes sFrame = PlanesOf(*pImage);
    sFrame.bGain = bGain;
    s.TakeFrame(sFrame, nTimestamp);
    return true;
}

bool CCustomCPUDewarper::SetFrame(const SFramePlanes& rFrame, unsigned long long nTimestamp)
{
    const CCPULock oLock(pState->oMutex);
    SState& s = *pState;
    const std::string strFault = GuardMemory("SetFrame", s.oReport, std::string("out of memory"),
                                             [&] { return FindFrameFault(rFrame); });
    if (!strFault.empty())
        return s.Fail("SetFrame", strFault.c_str());
    s.TakeFrame(rFrame, nTimestamp);
    return true;
}

void CCustomCPUDewarper::SState::TakeFrame(const SFramePlanes& rFrame, unsigned long long nTimestamp)
{
    nLastSet = nTimestamp;
    sPicture.bGain = rFrame.bGain;
    const SDewarpParams& rParams = oControl.sParams;
    const bool bOtherPicture = rFrame.nWidth != rParams.nImageWidth ||
                               rFrame.nHeight != rParams.nImageHeight || rFrame.eFormat != sFrame.eFormat;
    oControl.SetFrame(rFrame.nWidth, rFrame.nHeight, rFrame.anStrides[0], bOtherPicture);
    sFrame = rFrame;
    bHasFrame = true;
    RequestFrame();
}

void CCustomCPUDewarper::SetViewType(EViewType eView)
{
    const CCPULock oLock(pState->oMutex);
    pState->oPanes.Steered().eRequestedView = eView;
    pState->RequestFrame();
}

EViewType CCustomCPUDewarper::GetViewType()
{
    const CCPULock oLock(pState->oMutex);
    return pState->oPanes.Asked().eRequestedView;
}

void CCustomCPUDewarper::SetMountType(EMountType eMount)
{
    const CCPULock oLock(pState->oMutex);
    pState->oControl.eRequestedMount = eMount;
    pState->RequestFrame();
}

EMountType CCustomCPUDewarper::GetMountType()
{
    const CCPULock oLock(pState->oMutex);
    return pState->oControl.eRequestedMount;
}

void CCustomCPUDewarper::SetLensType(ELensType eLens)
{
    const CCPULock oLock(pState->oMutex);
    pState->oControl.eRequestedLens = eLens;
    GuardMemory("SetLensType", pState->oReport, false, [&] {
        pState->oControl.DropLens();
        return true;
    });
    pState->RequestFrame();
}

ELensType CCustomCPUDewarper::GetLensType()
{
    const CCPULock oLock(pState->oMutex);
    return pState->oControl.eRequestedLens;
}

ELensType CCustomCPUDewarper::GetLensInForce()
{
    const CCPULock oLock(pState->oMutex);
    return pState->oControl.LensInForce();
}

void CCustomCPUDewarper::SetInterpolationType(EInterpolationType eType)
{
    const CCPULock oLock(pState->oMutex);
    pState->oControl.eInterpolation = eType;
    pState->RequestFrame();
}

EInterpolationType CCustomCPUDewarper::GetInterpolationType()
{
    const CCPULock oLock(pState->oMutex);
    return pState->oControl.eInterpolation;
}

void CCustomCPUDewarper::SetWireFrame(bool bEnable)
{
    const CCPULock oLock(pState->oMutex);
    if (bEnable && !pState->oControl.bWireFrame)
        pState->oReport.Refuse("%s: no engine draws wire frames; it has no effect", "SetWireFrame");
    pState->oControl.bWireFrame = bEnable;
    pState->RequestFrame();
}

void CCustomCPUDewarper::SetYUVparams(EYUVSpace eSpace, EYUVRange eRange)
{
    const CCPULock oLock(pState->oMutex);
    pState->sPicture.SetYUV(eSpace, eRange);
    pState->RequestFrame();
}

void CCustomCPUDewarper::SetMountTilt(float fDegrees)
{
    const CCPULock oLock(pState->oMutex);
    if (pState->oControl.SetMountTilt(fDegrees))
        pState->RequestFrame();
}

float CCustomCPUDewarper::GetMountTilt()
{
    const CCPULock oLock(pState->oMutex);
    return pState->oControl.sParams.fMountTilt;
}

void CCustomCPUDewarper::SetStrictTiltLimits(bool bStrict)
{
    const CCPULock oLock(pState->oMutex);
    pState->oControl.sParams.bStrictTiltLimits = bStrict;
    pState->RequestFrame();
}

bool CCustomCPUDewarper::GetStrictTiltLimits()
{
    const CCPULock oLock(pState->oMutex);
    return pState->oControl.sParams.bStrictTiltLimits;
}

void CCustomCPUDewarper::SetRotation(int nDegrees)
{
    const CCPULock oLock(pState->oMutex);
    bool bChanged = false;
    if (pState->oControl.SetRotation(nDegrees, bChanged))
        pState->RequestFrame();
}

int CCustomCPUDewarper::GetRotation()
{
    const CCPULock oLock(pState->oMutex);
    return pState->oControl.nRotation;
}

void CCustomCPUDewarper::SetFlip(bool bHorizontal, bool bVertical)
{
    const CCPULock oLock(pState->oMutex);
    pState->sPicture.SetFlip(bHorizontal, bVertical);
    pState->RequestFrame();
}

void CCustomCPUDewarper::GetFlip(bool& bHorizontal, bool& bVertical)
{
    const CCPULock oLock(pState->oMutex);
    bHorizontal = pState->sPicture.bFlipHorizontal;
    bVertical = pState->sPicture.bFlipVertical;
}

void CCustomCPUDewarper::SetGains(float fLuma, float fChroma)
{
    const CCPULock oLock(pState->oMutex);
    if (pState->sPicture.SetGains(fLuma, fChroma, pState->oReport))
        pState->RequestFrame();
}

void CCustomCPUDewarper::GetGains(float& fLuma, float& fChroma)
{
    const CCPULock oLock(pState->oMutex);
    fLuma = pState->sPicture.fLumaGain;
    fChroma = pState->sPicture.fChromaGain;
}

void CCustomCPUDewarper::SetYUVLevels(int nLumaMin, int nLumaMax, int nChromaMin)
{
    const CCPULock oLock(pState->oMutex);
    if (pState->sPicture.SetLevels(nLumaMin, nLumaMax, nChromaMin, pState->oReport))
        pState->RequestFrame();
}

void CCustomCPUDewarper::GetYUVLevels(int& nLumaMin, int& nLumaMax, int& nChromaMin)
{
    const CCPULock oLock(pState->oMutex);
    nLumaMin = pState->sPicture.sYUV2RGB.nLumaMin;
    nLumaMax = pState->sPicture.sYUV2RGB.nLumaMax;
    nChromaMin = pState->sPicture.sYUV2RGB.nChromaMin;
}

void CCustomCPUDewarper::SetEyeDistance(float fDistance)
{
    const CCPULock oLock(pState->oMutex);
    if (pState->oPanes.Steered().SetEyeDistance(fDistance))
        pState->RequestFrame();
}

float CCustomCPUDewarper::GetEyeDistance()
{
    const CCPULock oLock(pState->oMutex);
    return pState->oPanes.Asked().fEyeDistance;
}

bool CCustomCPUDewarper::GetDewarperVersion(int& nMajor, int& nMinor)
{
    nMajor = 0;
    nMinor = 1;
    return true;
}

int CCustomCPUDewarper::GetFisheyeRadius()
{
    const CCPULock oLock(pState->oMutex);
    return static_cast<int>(pState->oGeometry.m_fRadius);
}

unsigned long long CCustomCPUDewarper::GetLastDisplayedTextureTimestamp()
{
    const CCPULock oLock(pState->oMutex);
    return pState->nLastDisplayed;
}

bool CCustomCPUDewarper::IsDrawRequired()
{
    const CCPULock oLock(pState->oMutex);
    return pState->oControl.bDrawRequired || pState->oPanes.IsMoving();
}

std::string CCustomCPUDewarper::GetLastErrorText()
{
    const CCPULock oLock(pState->oMutex);
    return pState->oReport.LastError();
}

SPTZLimits CCustomCPUDewarper::GetViewLimits(EViewType eView, EMountType eMount)
{
    const CCPULock oLock(pState->oMutex);
    SDewarpParams sParams = pState->oControl.sParams;
    sParams.eViewType = eView;
    sParams.eMountType = eMount;
    return FindView(eView, eMount).Limits(sParams);
}

void CCustomCPUDewarper::SetThreadCount(int nThreads)
{
    const CCPULock oLock(pState->oMutex);
    if (nThreads < 0)
        pState->oReport.Refuse("%s: %d is not a number of threads", "SetThreadCount", nThreads);
    else
        pState->nThreads = nThreads;
}

void CCustomCPUDewarper::SetExactGeometry(bool bExact)
{
    const CCPULock oLock(pState->oMutex);
    if (pState->bExactGeometry == bExact)
        return;
    pState->bExactGeometry = bExact;
    pState->oControl.bDrawRequired = true;
}

bool CCustomCPUDewarper::GetExactGeometry()
{
    const CCPULock oLock(pState->oMutex);
    return pState->bExactGeometry;
}

int CCustomCPUDewarper::GetThreadCount()
{
    const CCPULock oLock(pState->oMutex);
    return pState->nThreads;
}
