// What to show and how: requests are stored, the rules are the control room's.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/Dewarper.h"
#include "dewarp/LockScope.h"
#include "dewarp/Rooms.h"
#include "dewarp/gl/PictureRequests.h"
#include "dewarp/views/ViewList.h"
#include "platform/MemoryGuard.h"

#include <atomic>

void CCustomGPUDewarper::SetViewType(EViewType eView)
{
    CLockScope oScope(*this);
    pRooms->oPanes.Steered().eRequestedView = eView;
    RequestFrame();
}

EViewType CCustomGPUDewarper::GetViewType()
{
    CLockScope oScope(*this);
    return pRooms->oPanes.Asked().eRequestedView;
}

void CCustomGPUDewarper::SetMountType(EMountType eMount)
{
    CLockScope oScope(*this);
    eRequestedMount = eMount;
    RequestFrame();
}

EMountType CCustomGPUDewarper::GetMountType()
{
    CLockScope oScope(*this);
    return eRequestedMount;
}

void CCustomGPUDewarper::SetLensType(ELensType eLens)
{
    CLockScope oScope(*this);
    eRequestedLens = eLens;
    GuardMemory("SetLensType", pRooms->oReport, false, [&] {
        pRooms->oControl.DropLens();
        return true;
    });
    RequestFrame();
}

ELensType CCustomGPUDewarper::GetLensType()
{
    CLockScope oScope(*this);
    return eRequestedLens;
}

ELensType CCustomGPUDewarper::GetLensInForce()
{
    CLockScope oScope(*this);
    return pRooms->oControl.LensInForce();
}

void CCustomGPUDewarper::SetInterpolationType(EInterpolationType eType)
{
    CLockScope oScope(*this);
    // What is not averaged keeps the type's filter, which is written into the text then.
    if (sMainShader.bMinificationRequested && eInterpolation != eType)
        sMainShader.bForceReload = true;
    eInterpolation = eType;
    RequestFrame();
}

EInterpolationType CCustomGPUDewarper::GetInterpolationType()
{
    CLockScope oScope(*this);
    return eInterpolation;
}

void CCustomGPUDewarper::SetWireFrame(bool bEnable)
{
    CLockScope oScope(*this);
    if (bEnable && !bWireFrame)
        pRooms->oReport.Refuse("%s: OpenGL ES draws no wire frames; it has no effect", "SetWireFrame");
    bWireFrame = bEnable;
    RequestFrame();
}

void CCustomGPUDewarper::SetYUVparams(EYUVSpace eSpace, EYUVRange eRange)
{
    CLockScope oScope(*this);
    SPictureSettings sSettings = RequestedSettings(sMainShader);
    sSettings.SetYUV(eSpace, eRange);
    RequestSettings(sSettings, sMainShader);
    RequestFrame();
}

void CCustomGPUDewarper::SetMountTilt(float fDegrees)
{
    CLockScope oScope(*this);
    if (pRooms->oControl.SetMountTilt(fDegrees))
        RequestFrame();
}

float CCustomGPUDewarper::GetMountTilt()
{
    CLockScope oScope(*this);
    return pParams->fMountTilt;
}

void CCustomGPUDewarper::SetStrictTiltLimits(bool bStrict)
{
    CLockScope oScope(*this);
    pParams->bStrictTiltLimits = bStrict;
    RequestFrame();
}

bool CCustomGPUDewarper::GetStrictTiltLimits()
{
    CLockScope oScope(*this);
    return pParams->bStrictTiltLimits;
}

void CCustomGPUDewarper::SetRotation(int nDegrees)
{
    CLockScope oScope(*this);
    bool bChanged = false;
    if (!pRooms->oControl.SetRotation(nDegrees, bChanged))
        return;
    if (bChanged) {
        bViewSetupRequired = true;
        // A quarter turn exchanges what the flips mirror.
        sMainShader.bForceReload = true;
    }
    RequestFrame();
}

int CCustomGPUDewarper::GetRotation()
{
    CLockScope oScope(*this);
    return nRotation;
}

void CCustomGPUDewarper::SetFlip(bool bHorizontal, bool bVertical)
{
    CLockScope oScope(*this);
    SPictureSettings sSettings = RequestedSettings(sMainShader);
    sSettings.SetFlip(bHorizontal, bVertical);
    RequestSettings(sSettings, sMainShader);
    RequestFrame();
}

void CCustomGPUDewarper::GetFlip(bool& bHorizontal, bool& bVertical)
{
    CLockScope oScope(*this);
    bHorizontal = sMainShader.bFlipHorizontalRequested;
    bVertical = sMainShader.bFlipVerticalRequested;
}

void CCustomGPUDewarper::SetGains(float fLuma, float fChroma)
{
    CLockScope oScope(*this);
    SPictureSettings sSettings = RequestedSettings(sMainShader);
    if (!sSettings.SetGains(fLuma, fChroma, pRooms->oReport))
        return;
    RequestSettings(sSettings, sMainShader);
    RequestFrame();
}

void CCustomGPUDewarper::GetGains(float& fLuma, float& fChroma)
{
    CLockScope oScope(*this);
    fLuma = sMainShader.fLumaGainRequested;
    fChroma = sMainShader.fChromaGainRequested;
}

void CCustomGPUDewarper::SetYUVLevels(int nLumaMin, int nLumaMax, int nChromaMin)
{
    CLockScope oScope(*this);
    SPictureSettings sSettings = RequestedSettings(sMainShader);
    if (!sSettings.SetLevels(nLumaMin, nLumaMax, nChromaMin, pRooms->oReport))
        return;
    RequestSettings(sSettings, sMainShader);
    RequestFrame();
}

void CCustomGPUDewarper::GetYUVLevels(int& nLumaMin, int& nLumaMax, int& nChromaMin)
{
    CLockScope oScope(*this);
    nLumaMin = sMainShader.sYUV2RGBRequested.nLumaMin;
    nLumaMax = sMainShader.sYUV2RGBRequested.nLumaMax;
    nChromaMin = sMainShader.sYUV2RGBRequested.nChromaMin;
}

void CCustomGPUDewarper::SetEyeDistance(float fDistance)
{
    CLockScope oScope(*this);
    if (!pRooms->oPanes.Steered().SetEyeDistance(fDistance))
        return;
    bViewSetupRequired = true;
    RequestFrame();
}

float CCustomGPUDewarper::GetEyeDistance()
{
    CLockScope oScope(*this);
    return pRooms->oPanes.Asked().fEyeDistance;
}

bool CCustomGPUDewarper::SetSampling(ESampling eSampling)
{
    CLockScope oScope(*this);
    SPictureSettings sSettings = RequestedSettings(sMainShader);
    if (!sSettings.SetSampling(eSampling, pRooms->oReport))
        return false;
    RequestSettings(sSettings, sMainShader);
    RequestFrame();
    return true;
}

ESampling CCustomGPUDewarper::GetSampling()
{
    CLockScope oScope(*this);
    return sMainShader.eSamplingRequested;
}

void CCustomGPUDewarper::SetMinification(bool bAverage)
{
    CLockScope oScope(*this);
    sMainShader.bMinificationRequested = bAverage;
    RequestFrame();
}

bool CCustomGPUDewarper::GetMinification()
{
    CLockScope oScope(*this);
    return sMainShader.bMinificationRequested;
}

void CCustomGPUDewarper::SetLogGLErrors(bool bEnable)
{
    CLockScope oScope(*this);
    bLogGLErrors = bEnable;
    RequestFrame();
}

bool CCustomGPUDewarper::GetLogGLErrors()
{
    CLockScope oScope(*this);
    return bLogGLErrors;
}

void CCustomGPUDewarper::SetLogShaderCode(bool bEnable)
{
    CLockScope oScope(*this);
    bLogShaderCode = bEnable;
    RequestFrame();
}

bool CCustomGPUDewarper::GetLogShaderCode()
{
    CLockScope oScope(*this);
    return bLogShaderCode;
}

bool CCustomGPUDewarper::GetDewarperVersion(int& nMajor, int& nMinor)
{
    nMajor = 0;
    nMinor = 1;
    return true;
}

int CCustomGPUDewarper::GetFisheyeRadius()
{
    return static_cast<int>(std::atomic_ref<float>(pGeometry->m_fRadius).load(std::memory_order_relaxed));
}

unsigned long long CCustomGPUDewarper::GetLastDisplayedTextureTimestamp()
{
    CLockScope oScope(*this);
    return nLastDisplayedTimestamp;
}

bool CCustomGPUDewarper::IsDrawRequired()
{
    CLockScope oScope(*this);
    return bDrawRequired || pRooms->oPanes.IsMoving();
}

std::string CCustomGPUDewarper::GetLastErrorText()
{
    CLockScope oScope(*this);
    return pRooms->oReport.LastError();
}

SPTZLimits CCustomGPUDewarper::GetViewLimits(EViewType eView, EMountType eMount)
{
    CLockScope oScope(*this);
    SDewarpParams sParams = *pParams;
    sParams.eViewType = eView;
    sParams.eMountType = eMount;
    return FindView(eView, eMount).Limits(sParams);
}

void CCustomGPUDewarper::GetDefaultPTZ(EViewType eView, EMountType eMount, float& fPan, float& fTilt,
                                       float& fZoom)
{
    CDewarper::GetDefaultPTZ(eView, eMount, fPan, fTilt, fZoom);
}

void CCustomGPUDewarper::GetDefaultSize(EViewType eView, EMountType eMount, int nInputWidth, int nInputHeight,
                                        int& nWidth, int& nHeight)
{
    CDewarper::GetDefaultSize(eView, eMount, nInputWidth, nInputHeight, nWidth, nHeight);
}

const char* CCustomGPUDewarper::GetViewName(EViewType eView)
{
    return CDewarper::GetViewName(eView);
}

EViewType CCustomGPUDewarper::FindViewType(const std::string& strName)
{
    return CDewarper::FindViewType(strName);
}

std::vector<std::string> CCustomGPUDewarper::ListViewNames()
{
    return CDewarper::ListViewNames();
}
