// Control operations: what the host asks for, stored until the next frame.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/pipeline/LockScope.h"
#include "dewarp/records/LogTag.h"

#include <android/log.h>

#include <atomic>
#include <cmath>

namespace
{

// The eye stays a hair inside the sphere's far pole: at a distance of exactly 1 the point straight ahead lies
// on the far plane, where rounding may cut it away.
const float MAX_EYE_DISTANCE = 0.9999f;

/// Refuses a value that is not a finite number.
bool IsUsable(float fValue, const char* pFunction)
{
    if (std::isfinite(fValue))
        return true;
    __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG, "%s: value is not a finite number", pFunction);
    return false;
}

} // namespace

void CCustomGPUDewarper::SetViewType(EViewType eView)
{
    CLockScope oScope(*this);
    eRequestedView = eView;
    DrawRequired();
}

EViewType CCustomGPUDewarper::GetViewType()
{
    CLockScope oScope(*this);
    return eRequestedView;
}

void CCustomGPUDewarper::SetMountType(EMountType eMount)
{
    CLockScope oScope(*this);
    eRequestedMount = eMount;
    DrawRequired();
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
    DrawRequired();
}

ELensType CCustomGPUDewarper::GetLensType()
{
    CLockScope oScope(*this);
    return eRequestedLens;
}

void CCustomGPUDewarper::SetInterpolationType(EInterpolationType eType)
{
    CLockScope oScope(*this);
    eInterpolation = eType;
    DrawRequired();
}

EInterpolationType CCustomGPUDewarper::GetInterpolationType()
{
    CLockScope oScope(*this);
    return eInterpolation;
}

void CCustomGPUDewarper::SetWireFrame(bool bEnable)
{
    CLockScope oScope(*this);
    bWireFrame = bEnable;
    DrawRequired();
}

void CCustomGPUDewarper::SetYUVparams(EYUVSpace eSpace, EYUVRange eRange)
{
    CLockScope oScope(*this);
    sMainShader.sYUV2RGBRequested.eSpace = eSpace;
    sMainShader.sYUV2RGBRequested.eRange = eRange;
    DrawRequired();
}

void CCustomGPUDewarper::SetMountTilt(float fDegrees)
{
    CLockScope oScope(*this);
    if (!IsUsable(fDegrees, "SetMountTilt"))
        return;
    pParams->fMountTilt = fDegrees;
    DrawRequired();
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
    DrawRequired();
}

bool CCustomGPUDewarper::GetStrictTiltLimits()
{
    CLockScope oScope(*this);
    return pParams->bStrictTiltLimits;
}

void CCustomGPUDewarper::SetRotation(int nDegrees)
{
    CLockScope oScope(*this);
    if (nDegrees != 0 && nDegrees != 90 && nDegrees != 180 && nDegrees != 270) {
        __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG, "%s: %d is not 0, 90, 180 or 270 degrees",
                            "SetRotation", nDegrees);
        return;
    }
    if (nDegrees != nRotation) {
        nRotation = nDegrees;
        bViewSetupRequired = true;
        // A quarter turn exchanges what the flips mirror.
        sMainShader.bForceReload = true;
    }
    DrawRequired();
}

int CCustomGPUDewarper::GetRotation()
{
    CLockScope oScope(*this);
    return nRotation;
}

void CCustomGPUDewarper::SetFlip(bool bHorizontal, bool bVertical)
{
    CLockScope oScope(*this);
    sMainShader.bFlipHorizontalRequested = bHorizontal;
    sMainShader.bFlipVerticalRequested = bVertical;
    DrawRequired();
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
    if (!IsUsable(fLuma, "SetGains") || !IsUsable(fChroma, "SetGains"))
        return;
    sMainShader.fLumaGainRequested = fLuma;
    sMainShader.fChromaGainRequested = fChroma;
    DrawRequired();
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
    sMainShader.sYUV2RGBRequested.nLumaMin = nLumaMin;
    sMainShader.sYUV2RGBRequested.nLumaMax = nLumaMax;
    sMainShader.sYUV2RGBRequested.nChromaMin = nChromaMin;
    DrawRequired();
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
    if (std::isnan(fDistance)) {
        __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG, "%s: value is not a number", "SetEyeDistance");
        return;
    }
    fEyeDistance = fDistance > 0.0f ? std::fmin(fDistance, MAX_EYE_DISTANCE) : 0.0f;
    bViewSetupRequired = true;
    DrawRequired();
}

float CCustomGPUDewarper::GetEyeDistance()
{
    CLockScope oScope(*this);
    return fEyeDistance;
}

void CCustomGPUDewarper::SetLogGLErrors(bool bEnable)
{
    CLockScope oScope(*this);
    bLogGLErrors = bEnable;
    DrawRequired();
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
    DrawRequired();
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
