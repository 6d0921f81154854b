/// \file
/// The engine that draws with OpenGL ES, behind the interface of both.
#pragma once

#include "dewarp/Dewarper.h"

class CCustomGPUDewarper;

/// Forwards every operation to a CCustomGPUDewarperOffscreen. What the processor engine has beside it, a
/// number of threads and exact geometry, is kept and handed back.
///
/// Units, threads and failures as CCustomGPUDewarperOffscreen. Owns: that dewarper, with display and context.
class CGLDewarper final : public CDewarper
{
public:
    CGLDewarper();
    ~CGLDewarper() override;

    EDewarpEngine GetEngine() const override;
    std::string GetEngineText() override;
    bool InitTarget(int nWidth, int nHeight) override;
    bool GetTargetSize(int& nWidth, int& nHeight) override;
    void SetDriverLog(bool bErrors, bool bShaderTexts) override;
    bool SetTexture(SImageProperties* pImage, bool bGain, SQPInfo* pQP,
                    unsigned long long nTimestamp) override;
    bool DrawGLScene(bool bExchangeBuffers) override;
    unsigned char* GetImage(int* pSize, int* pWidth, int* pHeight, int* pStride) override;
    bool DrawTo(const SFrameTarget& rTarget) override;
    void SetViewType(EViewType eView) override;
    EViewType GetViewType() override;
    void SetMountType(EMountType eMount) override;
    EMountType GetMountType() override;
    void SetLensType(ELensType eLens) override;
    ELensType GetLensType() override;
    ELensType GetLensInForce() override;
    void SetInterpolationType(EInterpolationType eType) override;
    EInterpolationType GetInterpolationType() override;
    void SetWireFrame(bool bEnable) override;
    void SetYUVparams(EYUVSpace eSpace, EYUVRange eRange) override;
    void SetMountTilt(float fDegrees) override;
    float GetMountTilt() override;
    void SetStrictTiltLimits(bool bStrict) override;
    bool GetStrictTiltLimits() override;
    void SetRotation(int nDegrees) override;
    int GetRotation() override;
    void SetFlip(bool bHorizontal, bool bVertical) override;
    void GetFlip(bool& bHorizontal, bool& bVertical) override;
    void SetGains(float fLuma, float fChroma) override;
    void GetGains(float& fLuma, float& fChroma) override;
    void SetYUVLevels(int nLumaMin, int nLumaMax, int nChromaMin) override;
    void GetYUVLevels(int& nLumaMin, int& nLumaMax, int& nChromaMin) override;
    void SetEyeDistance(float fDistance) override;
    float GetEyeDistance() override;
    bool SetLens(const SLens& rLens) override;
    bool SetImageCircle(float fCenterX, float fCenterY, float fRadiusX, float fRadiusY) override;
    bool GetImageCircle(float& fCenterX, float& fCenterY, float& fRadiusX, float& fRadiusY) override;
    bool SetMountOrientation(float fYaw, float fPitch, float fRoll) override;
    void GetMountOrientation(float& fYaw, float& fPitch, float& fRoll) override;
    void SetCleanRim(bool bClean) override;
    bool GetCleanRim() override;
    void SetRoll(float fDegrees) override;
    float GetRoll() override;
    bool SetViewShape(const SViewShape& rShape) override;
    SViewShape GetViewShape() override;
    void AbsolutePTZ(float fPan, float fTilt, float fZoom) override;
    void RelativePTZ(float fPan, float fTilt, float fZoom) override;
    void AnaloguePTZ(float fPan, float fTilt, float fZoom) override;
    void GetPTZAnalog(float& fPan, float& fTilt, float& fZoom) override;
    void GetPTZ(float& fPan, float& fTilt, float& fZoom) override;
    void OnMouseDown(int x, int y) override;
    void OnMouseMove(int x, int y, bool bLockX, bool bLockY) override;
    void OnMouseUp() override;
    void OnMouseWheel(double fDelta) override;
    int SetInputOverlay(unsigned char* pData, int nWidth, int nHeight, int nUnused) override;
    int SetOutputOverlay(unsigned char* pData, int nWidth, int nHeight, int nUnused,
                         std::vector<SGRect> vRects) override;
    void SetMaskPolygons(unsigned char* pData, int nLength) override;
    void SetMaskPolygons(std::vector<SGPolygon> vPolygons) override;
    void SetStrings(unsigned char* pData, int nLength) override;
    void SetStrings(std::vector<SGPUString> vStrings) override;
    bool GetDewarperVersion(int& nMajor, int& nMinor) override;
    int GetFisheyeRadius() override;
    unsigned long long GetLastDisplayedTextureTimestamp() override;
    bool IsDrawRequired() override;
    std::string GetLastErrorText() override;
    SPTZLimits GetViewLimits(EViewType eView, EMountType eMount) override;
    void SetThreadCount(int nThreads) override;
    int GetThreadCount() override;
    int ViewToFrame(const SPointD* pPoints, SPointD* pResults, bool* pValid, int nCount) override;
    int FrameToView(const SPointD* pPoints, SPointD* pResults, bool* pValid, int nCount) override;
    int ViewToDirection(const SPointD* pPoints, SDirection* pResults, bool* pValid, int nCount) override;
    int DirectionToView(const SDirection* pDirections, SPointD* pResults, bool* pValid, int nCount) override;
    int FrameToDirection(const SPointD* pPoints, SDirection* pResults, bool* pValid, int nCount) override;
    bool LookAt(double fFrameX, double fFrameY) override;
    bool LookAtView(double x, double y) override;
    bool SetSampling(ESampling eSampling) override;
    ESampling GetSampling() override;
    void SetMinification(bool bAverage) override;
    bool GetMinification() override;
    bool SetPanes(std::vector<SPane> vPanes) override;
    std::vector<SPane> GetPanes() override;
    bool SetPaneGap(int nPixels, unsigned int nColor) override;
    bool SelectPane(int nPane) override;
    int GetSelectedPane() override;
    bool SetFrame(const SFramePlanes& rFrame, unsigned long long nTimestamp) override;
    using CDewarper::DrawTo;
    using CDewarper::FrameToView;
    using CDewarper::ViewToFrame;

    /// What the driver calls its renderer; empty before InitTarget.
    std::string GetRenderer();

private:
    struct SState;
    CCustomGPUDewarper& Engine();

    const std::unique_ptr<SState> pState;
};
