#include "dewarp/offscreen/GLDewarper.h"

#include "dewarp/LockScope.h"
#include "dewarp/Rooms.h"
#include "dewarp/offscreen/CustomGPUDewarperOffscreen.h"
#include "dewarp/records/ColourMatrix.h"
#include "dewarp/records/FrameCheck.h"
#include "dewarp/records/PackYUV.h"
#include "platform/MemoryGuard.h"

#include <GLES3/gl31.h>

#include <utility>

namespace
{

/// The dewarper that draws, and what only a class of its own can see of it.
class CEngine final : public CCustomGPUDewarperOffscreen
{
public:
    CReport& Report() { return pRooms->oReport; }
    /// The conversion of the frame that was drawn last.
    SYUV2RGBConversionParams ConversionInForce() const
    {
        SYUV2RGBConversionParams s = sMainShader.sYUV2RGB;
        s.eSpace = static_cast<EYUVSpace>(EffectiveYUVSpace(s.eSpace, nImageYUVSpace));
        s.eRange = static_cast<EYUVRange>(EffectiveYUVRange(s.eRange, nImageYUVRange));
        return s;
    }
};

} // namespace

struct CGLDewarper::SState
{
    CEngine oEngine;
    bool bStarted = false;
    std::string strRenderer;
    int nThreads = 0;

    bool Start()
    {
        if (!bStarted && oEngine.StartGL()) {
            const auto* const pRenderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
            strRenderer = pRenderer != nullptr ? pRenderer : "";
            bStarted = true;
        }
        return bStarted;
    }

    bool Refuse(const std::string& strFault)
    {
        if (!strFault.empty())
            oEngine.Report().Error("%s: %s", "DrawTo", strFault.c_str());
        return !strFault.empty();
    }

    bool DrawTo(const SFrameTarget& rTarget)
    {
        int nWidth = 0;
        int nHeight = 0;
        oEngine.GetTargetWidthHeight(nWidth, nHeight);
        if (Refuse(FindTargetFault(rTarget, nWidth, nHeight)) || !oEngine.DrawGLScene(true))
            return false;
        int nSize = 0;
        int nStride = 0;
        const unsigned char* const pImage = oEngine.GetImage(&nSize, &nWidth, &nHeight, &nStride);
        if (pImage == nullptr)
            return false;
        const std::ptrdiff_t nBefore = static_cast<std::ptrdiff_t>(nHeight + nHeight % 2) * nStride;
        PackPicture(pImage + nBefore, nStride, nWidth, nHeight, YUVWeightsOf(oEngine.ConversionInForce()),
                    rTarget);
        return true;
    }
};

CGLDewarper::CGLDewarper() : pState(std::make_unique<SState>()) {}

CGLDewarper::~CGLDewarper() = default;

EDewarpEngine CGLDewarper::GetEngine() const
{
    return ENGINE_GL;
}

std::string CGLDewarper::GetEngineText()
{
    const std::string strRenderer = GetRenderer();
    return strRenderer.empty() ? "OpenGL ES" : "OpenGL ES, " + strRenderer;
}

std::string CGLDewarper::GetRenderer()
{
    CLockScope oScope(pState->oEngine);
    return pState->strRenderer;
}

bool CGLDewarper::InitTarget(int nWidth, int nHeight)
{
    CLockScope oScope(pState->oEngine);
    if (!pState->oEngine.InitGL(nWidth, nHeight))
        return false;
    return GuardMemory("InitTarget", pState->oEngine.Report(), false, [&] { return pState->Start(); });
}

bool CGLDewarper::GetTargetSize(int& nWidth, int& nHeight)
{
    pState->oEngine.GetTargetWidthHeight(nWidth, nHeight);
    return nWidth > 0 && nHeight > 0;
}

void CGLDewarper::SetDriverLog(bool bErrors, bool bShaderTexts)
{
    pState->oEngine.SetLogGLErrors(bErrors);
    pState->oEngine.SetLogShaderCode(bShaderTexts);
}

bool CGLDewarper::DrawTo(const SFrameTarget& rTarget)
{
    // One lock for all: nobody gets between the check, the frame and its pixels.
    CLockScope oScope(pState->oEngine);
    return GuardMemory("DrawTo", pState->oEngine.Report(), false, [&] { return pState->DrawTo(rTarget); });
}

void CGLDewarper::SetThreadCount(int nThreads)
{
    CLockScope oScope(pState->oEngine);
    if (nThreads >= 0)
        pState->nThreads = nThreads;
    else
        pState->oEngine.Report().Refuse("%s: %d is not a number of threads", "SetThreadCount", nThreads);
}

int CGLDewarper::GetThreadCount()
{
    CLockScope oScope(pState->oEngine);
    return pState->nThreads;
}

bool CGLDewarper::SetTexture(SImageProperties* pImage, bool bGain, SQPInfo* pQP,
                             unsigned long long nTimestamp)
{
    return pState->oEngine.SetTexture(pImage, bGain, pQP, nTimestamp);
}

bool CGLDewarper::DrawGLScene(bool bExchangeBuffers)
{
    return pState->oEngine.DrawGLScene(bExchangeBuffers);
}

unsigned char* CGLDewarper::GetImage(int* pSize, int* pWidth, int* pHeight, int* pStride)
{
    return pState->oEngine.GetImage(pSize, pWidth, pHeight, pStride);
}

void CGLDewarper::SetViewType(EViewType eView)
{
    pState->oEngine.SetViewType(eView);
}

EViewType CGLDewarper::GetViewType()
{
    return pState->oEngine.GetViewType();
}

void CGLDewarper::SetMountType(EMountType eMount)
{
    pState->oEngine.SetMountType(eMount);
}

EMountType CGLDewarper::GetMountType()
{
    return pState->oEngine.GetMountType();
}

void CGLDewarper::SetLensType(ELensType eLens)
{
    pState->oEngine.SetLensType(eLens);
}

ELensType CGLDewarper::GetLensType()
{
    return pState->oEngine.GetLensType();
}

ELensType CGLDewarper::GetLensInForce()
{
    return pState->oEngine.GetLensInForce();
}

void CGLDewarper::SetInterpolationType(EInterpolationType eType)
{
    pState->oEngine.SetInterpolationType(eType);
}

EInterpolationType CGLDewarper::GetInterpolationType()
{
    return pState->oEngine.GetInterpolationType();
}

void CGLDewarper::SetWireFrame(bool bEnable)
{
    pState->oEngine.SetWireFrame(bEnable);
}

void CGLDewarper::SetYUVparams(EYUVSpace eSpace, EYUVRange eRange)
{
    pState->oEngine.SetYUVparams(eSpace, eRange);
}

void CGLDewarper::SetMountTilt(float fDegrees)
{
    pState->oEngine.SetMountTilt(fDegrees);
}

float CGLDewarper::GetMountTilt()
{
    return pState->oEngine.GetMountTilt();
}

void CGLDewarper::SetStrictTiltLimits(bool bStrict)
{
    pState->oEngine.SetStrictTiltLimits(bStrict);
}

bool CGLDewarper::GetStrictTiltLimits()
{
    return pState->oEngine.GetStrictTiltLimits();
}

void CGLDewarper::SetRotation(int nDegrees)
{
    pState->oEngine.SetRotation(nDegrees);
}

int CGLDewarper::GetRotation()
{
    return pState->oEngine.GetRotation();
}

void CGLDewarper::SetFlip(bool bHorizontal, bool bVertical)
{
    pState->oEngine.SetFlip(bHorizontal, bVertical);
}

void CGLDewarper::GetFlip(bool& bHorizontal, bool& bVertical)
{
    pState->oEngine.GetFlip(bHorizontal, bVertical);
}

void CGLDewarper::SetGains(float fLuma, float fChroma)
{
    pState->oEngine.SetGains(fLuma, fChroma);
}

void CGLDewarper::GetGains(float& fLuma, float& fChroma)
{
    pState->oEngine.GetGains(fLuma, fChroma);
}

void CGLDewarper::SetYUVLevels(int nLumaMin, int nLumaMax, int nChromaMin)
{
    pState->oEngine.SetYUVLevels(nLumaMin, nLumaMax, nChromaMin);
}

void CGLDewarper::GetYUVLevels(int& nLumaMin, int& nLumaMax, int& nChromaMin)
{
    pState->oEngine.GetYUVLevels(nLumaMin, nLumaMax, nChromaMin);
}

void CGLDewarper::SetEyeDistance(float fDistance)
{
    pState->oEngine.SetEyeDistance(fDistance);
}

float CGLDewarper::GetEyeDistance()
{
    return pState->oEngine.GetEyeDistance();
}

void CGLDewarper::AbsolutePTZ(float fPan, float fTilt, float fZoom)
{
    pState->oEngine.AbsolutePTZ(fPan, fTilt, fZoom);
}

void CGLDewarper::RelativePTZ(float fPan, float fTilt, float fZoom)
{
    pState->oEngine.RelativePTZ(fPan, fTilt, fZoom);
}

void CGLDewarper::AnaloguePTZ(float fPan, float fTilt, float fZoom)
{
    pState->oEngine.AnaloguePTZ(fPan, fTilt, fZoom);
}

void CGLDewarper::GetPTZAnalog(float& fPan, float& fTilt, float& fZoom)
{
    pState->oEngine.GetPTZAnalog(fPan, fTilt, fZoom);
}

void CGLDewarper::GetPTZ(float& fPan, float& fTilt, float& fZoom)
{
    pState->oEngine.GetPTZ(fPan, fTilt, fZoom);
}

void CGLDewarper::OnMouseDown(int x, int y)
{
    pState->oEngine.OnMouseDown(x, y);
}

void CGLDewarper::OnMouseMove(int x, int y, bool bLockX, bool bLockY)
{
    pState->oEngine.OnMouseMove(x, y, bLockX, bLockY);
}

void CGLDewarper::OnMouseUp()
{
    pState->oEngine.OnMouseUp();
}

void CGLDewarper::OnMouseWheel(double fDelta)
{
    pState->oEngine.OnMouseWheel(fDelta);
}

int CGLDewarper::SetInputOverlay(unsigned char* pData, int nWidth, int nHeight, int nUnused)
{
    return pState->oEngine.SetInputOverlay(pData, nWidth, nHeight, nUnused);
}

bool CGLDewarper::GetDewarperVersion(int& nMajor, int& nMinor)
{
    return pState->oEngine.GetDewarperVersion(nMajor, nMinor);
}

int CGLDewarper::GetFisheyeRadius()
{
    return pState->oEngine.GetFisheyeRadius();
}

unsigned long long CGLDewarper::GetLastDisplayedTextureTimestamp()
{
    return pState->oEngine.GetLastDisplayedTextureTimestamp();
}

bool CGLDewarper::IsDrawRequired()
{
    return pState->oEngine.IsDrawRequired();
}

std::string CGLDewarper::GetLastErrorText()
{
    return pState->oEngine.GetLastErrorText();
}

SPTZLimits CGLDewarper::GetViewLimits(EViewType eView, EMountType eMount)
{
    return pState->oEngine.GetViewLimits(eView, eMount);
}

void CGLDewarper::SetMaskPolygons(unsigned char* pData, int nLength)
{
    pState->oEngine.SetMaskPolygons(pData, nLength);
}

void CGLDewarper::SetMaskPolygons(std::vector<SGPolygon> vPolygons)
{
    pState->oEngine.SetMaskPolygons(std::move(vPolygons));
}

void CGLDewarper::SetStrings(unsigned char* pData, int nLength)
{
    pState->oEngine.SetStrings(pData, nLength);
}

void CGLDewarper::SetStrings(std::vector<SGPUString> vStrings)
{
    pState->oEngine.SetStrings(std::move(vStrings));
}

int CGLDewarper::SetOutputOverlay(unsigned char* pData, int nWidth, int nHeight, int nUnused,
                                  std::vector<SGRect> vRects)
{
    return pState->oEngine.SetOutputOverlay(pData, nWidth, nHeight, nUnused, std::move(vRects));
}

int CGLDewarper::ViewToFrame(const SPointD* pPoints, SPointD* pResults, bool* pValid, int nCount)
{
    return pState->oEngine.ViewToFrame(pPoints, pResults, pValid, nCount);
}

int CGLDewarper::FrameToView(const SPointD* pPoints, SPointD* pResults, bool* pValid, int nCount)
{
    return pState->oEngine.FrameToView(pPoints, pResults, pValid, nCount);
}
