/// \file
/// The processor engine: the same pictures without a GPU.
#pragma once

#include "dewarp/Dewarper.h"

/// Draws on the processor what CCustomGPUDewarper draws with GL: one decision, the same meshes, colours,
/// masks, overlays and texts. Needs no EGL and no OpenGL ES library.
///
/// Units: degrees and pixels. Owns: what it makes; planes and targets stay the host's and are read and
/// written while DrawGLScene or DrawTo runs. Thread: every operation on any thread; each locks. Frames are
/// drawn by the caller's thread and a pool that all dewarpers of a process share. Fails: by results and log
/// lines under the tag "LUMORVIDEOMANAGER_DEWRAP"; nothing throws.
class LUMOR_API CCustomCPUDewarper final : public CDewarper
{
public:
    CCustomCPUDewarper();
    ~CCustomCPUDewarper() override;

    EDewarpEngine GetEngine() const override;
    std::string GetEngineText() override;
    bool InitTarget(int nWidth, int nHeight) override;
    bool GetTargetSize(int& nWidth, int& nHeight) override;
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
    /// Takes what each pixel shows from the view's definition and the lens instead of from the view's mesh:
    /// at most 0.01 frame pixels from the optics, without the mesh's 0.16 on average and without the pixel
    /// that virtual cameras stand beside it. Off at first: then pictures are those of the GL engine. A view
    /// costs more to move. Where a point is shown is told by the mesh either way. Thread: any. Fails: never.
    void SetExactGeometry(bool bExact);
    bool GetExactGeometry();
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

private:
    struct SState;
    const std::unique_ptr<SState> pState;
};
