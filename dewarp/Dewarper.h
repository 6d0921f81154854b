/// \file
/// One dewarper, whichever engine draws: the operations of a host that does not care.
#pragma once

#include "dewarp/lenses/SLens.h"
#include "dewarp/overlays/SGPUString.h"
#include "dewarp/records/Enumerations.h"
#include "dewarp/records/SDirection.h"
#include "dewarp/records/SFramePlanes.h"
#include "dewarp/records/SFrameTarget.h"
#include "dewarp/records/SGRect.h"
#include "dewarp/records/SImageProperties.h"
#include "dewarp/records/SPTZLimits.h"
#include "dewarp/records/SPane.h"
#include "dewarp/records/SPointD.h"
#include "dewarp/records/SQPInfo.h"
#include "dewarp/records/SViewShape.h"
#include "platform/Export.h"

#include <memory>
#include <string>
#include <vector>

/// Who draws.
enum EDewarpEngine : int
{
    ENGINE_AUTO = 0, ///< OpenGL ES where a hardware driver is, the processor otherwise
    ENGINE_GL = 1,
    ENGINE_CPU = 2,
};

/// A dewarper of either engine. Same operations, limits, defaults, results and log lines for both; what each
/// operation means is written at CCustomGPUDewarper.
/// Units: degrees and pixels. Owns: what it makes; planes and targets stay the host's.
/// Thread: control operations on any thread, each locks. DrawGLScene, DrawTo, GetImage, InitTarget and the
/// destructor on one thread with ENGINE_GL (the context is current there), on any with ENGINE_CPU.
/// Fails: by results and log lines; nothing throws.
class LUMOR_API CDewarper
{
public:
    CDewarper() = default;
    CDewarper(const CDewarper&) = delete;
    CDewarper& operator=(const CDewarper&) = delete;

    // Virtual operations. New ones go to the end.
    virtual ~CDewarper() = default;

    /// The engine that draws: never ENGINE_AUTO.
    virtual EDewarpEngine GetEngine() const = 0;
    /// Engine and what it runs on, for a line of text: "processor, AVX2, 2 threads".
    virtual std::string GetEngineText() = 0;
    /// Size of the pictures. Starts what is needed for drawing. False and a log line when it cannot be had.
    virtual bool InitTarget(int nWidth, int nHeight) = 0;

    // A frame in, drawn, out.
    virtual bool SetTexture(SImageProperties* pImage, bool bGain, SQPInfo* pQP,
                            unsigned long long nTimestamp) = 0;
    virtual bool DrawGLScene(bool bExchangeBuffers) = 0;
    virtual unsigned char* GetImage(int* pSize, int* pWidth, int* pHeight, int* pStride) = 0;
    /// Draws a frame straight into the host's memory, in the size of InitTarget: BGRA32, RGBA32, NV12 or
    /// YUV420P. YUV is written in the space and range in force for the input. True when a frame was drawn;
    /// otherwise nothing was written.
    virtual bool DrawTo(const SFrameTarget& rTarget) = 0;
    /// The same into one piece of memory: planes one behind the other, the first plane's rows nStride bytes
    /// apart; chroma rows of NV12 too, those of YUV420P half of it, rounded up.
    bool DrawTo(void* pTarget, int nStride, EImageFormat eFormat);

    // What to show.
    virtual void SetViewType(EViewType eView) = 0;
    virtual EViewType GetViewType() = 0;
    virtual void SetMountType(EMountType eMount) = 0;
    virtual EMountType GetMountType() = 0;
    virtual void SetLensType(ELensType eLens) = 0;
    virtual ELensType GetLensType() = 0;
    virtual ELensType GetLensInForce() = 0;
    virtual void SetInterpolationType(EInterpolationType eType) = 0;
    virtual EInterpolationType GetInterpolationType() = 0;
    virtual void SetWireFrame(bool bEnable) = 0;
    virtual void SetYUVparams(EYUVSpace eSpace, EYUVRange eRange) = 0;
    virtual void SetMountTilt(float fDegrees) = 0;
    virtual float GetMountTilt() = 0;
    virtual void SetStrictTiltLimits(bool bStrict) = 0;
    virtual bool GetStrictTiltLimits() = 0;
    virtual void SetRotation(int nDegrees) = 0;
    virtual int GetRotation() = 0;
    virtual void SetFlip(bool bHorizontal, bool bVertical) = 0;
    virtual void GetFlip(bool& bHorizontal, bool& bVertical) = 0;
    virtual void SetGains(float fLuma, float fChroma) = 0;
    virtual void GetGains(float& fLuma, float& fChroma) = 0;
    virtual void SetYUVLevels(int nLumaMin, int nLumaMax, int nChromaMin) = 0;
    virtual void GetYUVLevels(int& nLumaMin, int& nLumaMax, int& nChromaMin) = 0;
    virtual void SetEyeDistance(float fDistance) = 0;
    virtual float GetEyeDistance() = 0;

    // Steering.
    virtual void AbsolutePTZ(float fPan, float fTilt, float fZoom) = 0;
    virtual void RelativePTZ(float fPan, float fTilt, float fZoom) = 0;
    virtual void AnaloguePTZ(float fPan, float fTilt, float fZoom) = 0;
    virtual void GetPTZAnalog(float& fPan, float& fTilt, float& fZoom) = 0;
    virtual void GetPTZ(float& fPan, float& fTilt, float& fZoom) = 0;
    virtual void OnMouseDown(int x, int y) = 0;
    virtual void OnMouseMove(int x, int y, bool bLockX, bool bLockY) = 0;
    virtual void OnMouseUp() = 0;
    virtual void OnMouseWheel(double fDelta) = 0;

    // Overlays, masks, text.
    virtual int SetInputOverlay(unsigned char* pData, int nWidth, int nHeight, int nUnused) = 0;
    virtual int SetOutputOverlay(unsigned char* pData, int nWidth, int nHeight, int nUnused,
                                 std::vector<SGRect> vRects) = 0;
    virtual void SetMaskPolygons(unsigned char* pData, int nLength) = 0;
    virtual void SetMaskPolygons(std::vector<SGPolygon> vPolygons) = 0;
    virtual void SetStrings(unsigned char* pData, int nLength) = 0;
    virtual void SetStrings(std::vector<SGPUString> vStrings) = 0;

    // Questions.
    virtual bool GetDewarperVersion(int& nMajor, int& nMinor) = 0;
    virtual int GetFisheyeRadius() = 0;
    virtual unsigned long long GetLastDisplayedTextureTimestamp() = 0;
    virtual bool IsDrawRequired() = 0;
    virtual std::string GetLastErrorText() = 0;
    virtual SPTZLimits GetViewLimits(EViewType eView, EMountType eMount) = 0;

    // Of the processor engine; ENGINE_GL keeps the value and draws as ever.
    /// Threads that draw one frame: 0 one a core, 1 the caller's alone. Negative counts are refused with a
    /// log line.
    virtual void SetThreadCount(int nThreads) = 0;
    virtual int GetThreadCount() = 0;

    /// Size of the pictures, as InitTarget has taken it; 0 and 0 and false before.
    virtual bool GetTargetSize(int& nWidth, int& nHeight);
    /// Logs what the driver finds wrong, and the texts of the shaders that it gets. ENGINE_CPU has neither.
    virtual void SetDriverLog(bool bErrors, bool bShaderTexts);

    // The camera, beyond the number of a known lens.
    virtual bool SetLens(const SLens& rLens) = 0;
    virtual bool SetImageCircle(float fCenterX, float fCenterY, float fRadiusX, float fRadiusY) = 0;
    virtual bool GetImageCircle(float& fCenterX, float& fCenterY, float& fRadiusX, float& fRadiusY) = 0;
    virtual bool SetMountOrientation(float fYaw, float fPitch, float fRoll) = 0;
    virtual void GetMountOrientation(float& fYaw, float& fPitch, float& fRoll) = 0;
    virtual void SetCleanRim(bool bClean) = 0;
    virtual bool GetCleanRim() = 0;
    virtual void SetRoll(float fDegrees) = 0;
    virtual float GetRoll() = 0;
    virtual bool SetViewShape(const SViewShape& rShape) = 0;
    virtual SViewShape GetViewShape() = 0;

    // Where is that? Asked about the picture that was drawn last, as it was drawn: through the view's mesh,
    // its parts, flips and bars. Points are pixels from the top left corner of the picture or the frame,
    // pixel centres at halves. Any thread; no GL call, no context. The first question after a view has
    // changed takes the time that making a mesh takes.
    /// Points of the frame that are shown at points of the picture; returns how many there are. Where nothing
    /// is drawn, and before anything was, the result is not a number, and pValid (null: not wanted) false.
    /// Points and results may be one array. A view that reaches beyond the frame shows the frame's edge
    /// there: its points lie beside the frame, where the view would have them.
    virtual int ViewToFrame(const SPointD* pPoints, SPointD* pResults, bool* pValid, int nCount);
    /// Points of the picture at which points of the frame are shown: the other way. Of several places that
    /// show one the result is the one that is drawn first.
    virtual int FrameToView(const SPointD* pPoints, SPointD* pResults, bool* pValid, int nCount);
    /// The same for one point: false, and the results as they were, where there is nothing.
    bool ViewToFrame(double x, double y, double& fFrameX, double& fFrameY);
    bool FrameToView(double fFrameX, double fFrameY, double& x, double& y);
    /// What points of the picture, or of the frame, look at, and where a direction is seen in the picture:
    /// directions as the mount counts them, an orientation of the body taken out. Results of frames and
    /// pictures as above; a direction that is none is not a number.
    virtual int ViewToDirection(const SPointD* pPoints, SDirection* pResults, bool* pValid, int nCount);
    virtual int DirectionToView(const SDirection* pDirections, SPointD* pResults, bool* pValid, int nCount);
    virtual int FrameToDirection(const SPointD* pPoints, SDirection* pResults, bool* pValid, int nCount);
    bool ViewToDirection(double x, double y, SDirection& rDirection);
    bool DirectionToView(const SDirection& rDirection, double& x, double& y);
    bool FrameToDirection(double fFrameX, double fFrameY, SDirection& rDirection);
    /// Centres the view at a point of the frame, or of the picture that was drawn last, with the next frame;
    /// as far as its limits allow. False where there is nothing, and in views that have no middle to turn
    /// there.
    virtual bool LookAt(double fFrameX, double fFrameY);
    virtual bool LookAtView(double x, double y);

    // How the frame is sampled, beyond SetInterpolationType. Where something lies over the frame, masks or an
    // input overlay, no texel under it counts for what is drawn beside it, but for the one that linear
    // sampling reaches.
    /// Sharper kernels for views that enlarge the frame. A value that is not listed is refused with a log
    /// line and false.
    virtual bool SetSampling(ESampling eSampling) = 0;
    virtual ESampling GetSampling() = 0;
    /// Where the view shrinks the frame, averages each pixel over what it covers of it, with up to 8 x 8
    /// linear samples: fine patterns and edges no longer sparkle. Off at first.
    virtual void SetMinification(bool bAverage) = 0;
    virtual bool GetMinification() = 0;

    // Several views in one picture.
    /// Up to 16 rectangles of the picture, each with a view of its own; mount, lens, colours, masks and all
    /// else stay the camera's. Later ones lie over earlier ones. An empty list gives the one view back, as it
    /// was. Operations that steer (SetViewType, SetRoll, SetEyeDistance, pan, tilt, zoom, LookAt, mouse) go
    /// to the selected pane: the first one, then the one that the pointer was on last. What is no pane is
    /// refused with a log line and false; one that reaches beyond the picture is left out with a log line.
    virtual bool SetPanes(std::vector<SPane> vPanes) = 0;
    /// As they are now: with the views and positions that steering has brought them to.
    virtual std::vector<SPane> GetPanes() = 0;
    /// Pixels that panes which touch each other stand apart, and what is seen there and beside them:
    /// 0xRRGGBBAA. At first none, and nothing (0).
    virtual bool SetPaneGap(int nPixels, unsigned int nColor) = 0;
    virtual bool SelectPane(int nPane) = 0;
    virtual int GetSelectedPane() = 0; ///< -1 without panes

    /// A frame whose planes have strides of their own, as decoders and cameras hand it out: its planes are
    /// used as they are, until the next frame has been drawn. In all else as SetTexture without quantisers. A
    /// frame that cannot be drawn is refused with a log line and false.
    virtual bool SetFrame(const SFramePlanes& rFrame, unsigned long long nTimestamp) = 0;

    // What a host would have to guess.
    /// Where a view starts on a mount.
    static void GetDefaultPTZ(EViewType eView, EMountType eMount, float& fPan, float& fTilt, float& fZoom);
    /// A size in which a view shows all it has, without bars, for frames of an input size; width to height is
    /// the aspect the view prefers.
    static void GetDefaultSize(EViewType eView, EMountType eMount, int nInputWidth, int nInputHeight,
                               int& nWidth, int& nHeight);
    /// The same for a view of another span or band.
    static void GetDefaultSize(EViewType eView, EMountType eMount, const SViewShape& rShape, int nInputWidth,
                               int nInputHeight, int& nWidth, int& nHeight);
    /// Views by name, as command lines and files write them: null and VIEW_UNSET for those there are not.
    static const char* GetViewName(EViewType eView);
    static EViewType FindViewType(const std::string& strName);
    /// Names of all views, in the order in which people list them.
    static std::vector<std::string> ListViewNames();
};

/// A dewarper for pictures of a size. ENGINE_AUTO gives one of ENGINE_GL where a hardware driver is, of
/// ENGINE_CPU otherwise. Null, with a log line, when that engine cannot be had here: ENGINE_GL without a
/// driver. Thread: any; for ENGINE_GL the one that draws.
LUMOR_API std::unique_ptr<CDewarper> CreateDewarper(EDewarpEngine eEngine, int nWidth, int nHeight);
