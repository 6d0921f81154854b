/// \file
/// The dewarper: takes decoded fisheye frames and draws a corrected view of them with OpenGL ES 3.1.
#pragma once

#include "dewarp/DewarperState.h"
#include "dewarp/lenses/SLens.h"
#include "dewarp/records/SDirection.h"
#include "dewarp/records/SViewShape.h"
#include "platform/Export.h"

struct SPlacedView;
struct STargetShape;

/// Platform-neutral dewarper. A subclass supplies the context, the target and the locking:
/// CCustomGPUDewarperOffscreen (desktops and servers) and CCustomGPUDewarperVela (graphic buffers).
///
/// Fifteen operations are what a host needs, in this order:
///
///     InitGL, StartGL                        of the subclass: target size, context
///     SetViewType, SetMountType, SetLensType what to show, of which camera
///     SetInterpolationType                   how to sample
///     SetMaskPolygons, SetStrings            what to hide, what to write
///     SetTexture, DrawGLScene, GetImage      a frame in, drawn, out
///     AbsolutePTZ, GetPTZ, OnMouseMove       where to look (OnMouseDown before, OnMouseUp after a drag)
///     StopGL                                 of the subclass
///
/// Units: degrees and pixels at every operation.
/// Owns: every record, view object, mesh and GL name it makes. Input planes stay the host's.
/// Thread: control operations on any thread, serialised by Lock and Unlock (empty here: then by the host);
/// DrawGLScene, GetImage, FreeOpenGLObjects and ReinitializeOpenGLObjects on the GL thread, context current.
/// Fails: by results and log lines under the tag "LUMORVIDEOMANAGER_DEWRAP"; nothing throws.
///
/// Control operations store requests; the next DrawGLScene puts them in force. What is drawn follows from the
/// requests, the position in force and the frame alone, never from what was drawn before.
class LUMOR_API CCustomGPUDewarper : public CDewarperState
{
public:
    CCustomGPUDewarper();

    // Virtual operations. Their order is the interface of hosts built earlier: new ones go to the end.
    virtual ~CCustomGPUDewarper();
    /// Records the next frame. The planes must stay valid until it has been drawn; the QP information is
    /// copied (null keeps the previous one). A null image is refused.
    virtual bool SetTexture(SImageProperties* pImage, bool bGain, SQPInfo* pQP,
                            unsigned long long nTimestamp);
    /// Draws one frame into the target. True when a frame was drawn.
    virtual bool DrawGLScene(bool bExchangeBuffers);
    virtual void UploadTexture();
    virtual void SetLensType(ELensType eLens);
    virtual void SetInterpolationType(EInterpolationType eType);
    virtual bool CheckOSDependentDrawGLSceneInitialization();
    virtual bool CheckInitializations();
    virtual bool InitializeScene();
    virtual void GetIBRDecodingParams();
    virtual void GetYUV2RGBConversionParams();
    /// The three texture hooks return true when the platform did the work itself.
    virtual bool OSDependentUploadTexture();
    virtual bool OSDependentBindTextures();
    virtual bool OSDependentUnBindTextures();
    /// Deletes every GL name. The next frame makes what it needs anew.
    virtual void FreeOpenGLObjects();
    /// FreeOpenGLObjects, then fresh view objects.
    virtual void ReinitializeOpenGLObjects();
    virtual void UploadOverlayTexture();
    virtual std::string GetFragShaderDiscardCode();
    virtual std::string GetFragShaderCode();
    virtual std::string GetVertexShaderCode();
    virtual bool SetCurrentRenderingContext(void** ppContext);
    /// Target size in pixels; 0 and 0 and false when there is none.
    virtual bool GetTargetWidthHeight(int& nWidth, int& nHeight);
    virtual void ExchangeOpenglFrontBackBuffers(void* pContext);
    virtual void CheckSaveImage(int nWidth, int nHeight);
    virtual void Lock();
    virtual void Unlock();
    virtual bool AdjustPTZ();
    virtual void BindTextures();
    virtual void UnbindTextures();
    virtual bool BindOverlayTextures();
    virtual bool UnbindOverlayTextures();
    virtual void DrawRequired();
    virtual bool InitializeTextures();
    /// Not 0 when the platform wants the main program rebuilt.
    virtual int OSDependentCheckLoadShaders();
    virtual int HandleStrings(int nWidth, int nHeight);
    virtual void IncrementDrawCount();
    virtual void BindDefaultFrameBuffer();
    /// True when row 0 of what the next view is drawn into is the top of the picture.
    virtual bool IsTopDownTarget();
    /// True when the program mirrors the picture as SetFlip asks.
    virtual bool DrawsFlips();

    // What to show.
    void SetViewType(EViewType eView);
    EViewType GetViewType();
    void SetMountType(EMountType eMount);
    EMountType GetMountType();
    ELensType GetLensType();
    EInterpolationType GetInterpolationType();
    /// Stored and handed back to nobody: OpenGL ES draws no lines of a mesh, so it has no effect, which the
    /// log says once when it is asked for.
    void SetWireFrame(bool bEnable);
    void SetYUVparams(EYUVSpace eSpace, EYUVRange eRange);
    /// How far a wall camera looks up, degrees; a value that is not finite is refused with a log line.
    void SetMountTilt(float fDegrees);
    float GetMountTilt();
    /// False lets the wall panorama widen its span by the mount tilt.
    void SetStrictTiltLimits(bool bStrict);
    bool GetStrictTiltLimits();
    /// Clockwise turn of the picture in the flat fisheye views: 0, 90, 180 or 270 degrees; others are refused
    /// with a log line.
    void SetRotation(int nDegrees);
    int GetRotation();
    /// Mirrors the picture left to right, top to bottom.
    void SetFlip(bool bHorizontal, bool bVertical);
    void GetFlip(bool& bHorizontal, bool& bVertical);
    /// Factors on luma and chroma, used while SetTexture's bGain is true.
    void SetGains(float fLuma, float fChroma);
    void GetGains(float& fLuma, float& fChroma);
    /// Levels of the limited range, 0..255. Equal luma levels, which leave no range, are refused with a log
    /// line.
    void SetYUVLevels(int nLumaMin, int nLumaMax, int nChromaMin);
    void GetYUVLevels(int& nLumaMin, int& nLumaMax, int& nChromaMin);
    /// Moves the virtual camera's eye back along its axis, in radii of the sphere: 0 (rectilinear) to 1
    /// (stereographic). Values outside are limited, one that is not a number is refused with a log line.
    void SetEyeDistance(float fDistance);
    float GetEyeDistance();
    // The camera, beyond the number of a known lens. Each is seen with the next frame; what cannot be is
    // refused with a log line and false.
    /// Any lens. It stands until SetLensType is called.
    bool SetLens(const SLens& rLens);
    /// Where the lens's circle lies in the frame, also partly outside: pixels from the top left, halves in
    /// the middles of pixels. The radii are those of 90 degrees for known lenses, of the lens's edge for one
    /// of SetLens; a calibration has a centre and scale of its own, and the circle only says where its light
    /// ends. Radii of 0: the lens's own rule.
    bool SetImageCircle(float fCenterX, float fCenterY, float fRadiusX, float fRadiusY);
    /// Where it lies, by whichever rule; false as long as no frame and lens are known.
    bool GetImageCircle(float& fCenterX, float& fCenterY, float& fRadiusX, float& fRadiusY);
    /// How the body is turned away from where its mount says that it looks, about its own axes, in this
    /// order: yaw to the right, pitch upward, roll clockwise as seen from behind it. All views but the
    /// fisheye follow.
    bool SetMountOrientation(float fYaw, float fPitch, float fRoll);
    void GetMountOrientation(float& fYaw, float& fPitch, float& fRoll);
    /// Ends every view where the light of the lens does: what it does not see is transparent, and colour and
    /// alpha fade together (premultiplied) across one pixel. Always so with a lens, circle or orientation of
    /// the host's; off by default for known lenses, whose views end as they always did.
    void SetCleanRim(bool bClean);
    bool GetCleanRim();
    /// Turns virtual cameras about their axis, positive clockwise as seen from behind.
    void SetRoll(float fDegrees);
    float GetRoll();
    /// Spans and bands of the views that leave a choice; refused with a log line and false outside their
    /// limits.
    bool SetViewShape(const SViewShape& rShape);
    SViewShape GetViewShape();
    /// How the frame is sampled, beyond SetInterpolationType. A value that is not listed is refused with a
    /// log line and false. Where something lies over the frame, masks or an input overlay, no texel under it
    /// counts for what is drawn beside it, but for the one that linear sampling reaches.
    bool SetSampling(ESampling eSampling);
    ESampling GetSampling();
    /// Where the view shrinks the frame, averages each pixel over what it covers of it, with up to 8 x 8
    /// linear samples. Off at first.
    void SetMinification(bool bAverage);
    bool GetMinification();
    void SetLogGLErrors(bool bEnable);
    bool GetLogGLErrors();
    void SetLogShaderCode(bool bEnable);
    bool GetLogShaderCode();

    // Steering.
    /// Puts the camera there, or moves it by that much, with the next frame; the view's limits hold. A value
    /// that is not a finite number is refused with a log line.
    void AbsolutePTZ(float fPan, float fTilt, float fZoom);
    void RelativePTZ(float fPan, float fTilt, float fZoom);
    /// Speeds a frame, in steps of 4 degrees; they repeat until set to 0. Takes no lock and calls nobody: a
    /// host that draws on demand asks IsDrawRequired, which is true as long as a speed is not 0.
    void AnaloguePTZ(float fPan, float fTilt, float fZoom);
    void GetPTZAnalog(float& fPan, float& fTilt, float& fZoom);
    /// Values in force. The pan comes back in [0, 360) except in the fisheye view.
    void GetPTZ(float& fPan, float& fTilt, float& fZoom);
    void OnMouseDown(int x, int y);
    /// A true lock flag suppresses movement along that axis.
    void OnMouseMove(int x, int y, bool bLockX, bool bLockY);
    void OnMouseUp();
    void OnMouseWheel(double fDelta);

    /// A frame whose planes have strides of their own, as decoders and cameras hand it out: its planes are
    /// used as they are, until the next frame has been drawn. In all else as SetTexture without quantisers. A
    /// frame that cannot be drawn is refused with a log line and false. Any thread.
    bool SetFrame(const SFramePlanes& rFrame, unsigned long long nTimestamp);

    // Several views in one picture.
    /// Up to 16 rectangles of the picture, each with a view of its own; mount, lens, colours, masks and all
    /// else stay the camera's. Later ones lie over earlier ones. An empty list gives the one view back, as it
    /// was. Operations that steer (SetViewType, SetRoll, SetEyeDistance, pan, tilt, zoom, LookAt, mouse) go
    /// to the selected pane: the first one, then the one that the pointer was on last. What is no pane is
    /// refused with a log line and false; one that reaches beyond the picture is left out with a log line.
    bool SetPanes(std::vector<SPane> vPanes);
    /// As they are now: with the views and positions that steering has brought them to.
    std::vector<SPane> GetPanes();
    /// Pixels that panes which touch each other stand apart, and what is seen there and beside them:
    /// 0xRRGGBBAA, in a graphic buffer 0xYYUUVVAA as all colours there. At first none, and nothing (0).
    bool SetPaneGap(int nPixels, unsigned int nColor);
    bool SelectPane(int nPane);
    int GetSelectedPane(); ///< -1 without panes

    // Overlays, masks, text.
    /// Lays an RGBA image over the input picture, before dewarping; null removes it. The last argument is
    /// ignored. 1 success, 0 refused. Privacy masks take the image's place: while there are any, it is kept
    /// out with a log line.
    int SetInputOverlay(unsigned char* pData, int nWidth, int nHeight, int nUnused);
    /// Lays an RGBA image over the result. Rectangles name what changed; none: everything.
    int SetOutputOverlay(unsigned char* pData, int nWidth, int nHeight, int nUnused,
                         std::vector<SGRect> vRects);
    int SetOutputOverlay(unsigned char* pData, int nWidth, int nHeight, int nUnused);
    /// Privacy masks: polygons in pixels of the frame. No frame is shown without all of them. An empty list
    /// removes them, and the image that stands in their place now.
    void SetMaskPolygons(unsigned char* pData, int nLength);
    void SetMaskPolygons(std::vector<SGPolygon> vPolygons);
    void SetStrings(unsigned char* pData, int nLength);
    void SetStrings(std::vector<SGPUString> vStrings);

    // Results.
    /// BGRA rows of the drawn frame. They start *pSize rounded up to an even number of rows after the
    /// returned pointer; the memory before them is the caller's to use. Same buffer at every call. It is the
    /// frame that was drawn last, in its size; null when there is none: nothing was drawn yet, GL was stopped
    /// since, or the last frame failed half way. GL thread.
    unsigned char* GetImage(int* pSize, int* pWidth, int* pHeight, int* pStride);
    bool GetDewarperVersion(int& nMajor, int& nMinor);
    int GetFisheyeRadius();
    unsigned long long GetLastDisplayedTextureTimestamp();
    /// True when a request waits for a frame, or a speed moves the view.
    bool IsDrawRequired();
    /// What went wrong last with this dewarper, as the log said it; empty when nothing has.
    std::string GetLastErrorText();
    /// The lens that the picture is drawn with: what LENS_AUTO found; LENS_UNSET before the first frame,
    /// LENS_OWN for a lens of SetLens.
    ELensType GetLensInForce();

    // Where is that? Asked about the picture that was drawn last, as it was drawn: through the view's mesh,
    // its parts, flips and bars. Points are pixels from the top left corner of the picture or the frame,
    // pixel centres at halves. Any thread; no GL call. The first question after a view has changed takes the
    // time that making a mesh takes.
    /// Points of the frame that are shown at points of the picture; returns how many there are. Where nothing
    /// is drawn, and before anything was, the result is not a number, and pValid (null: not wanted) false.
    /// Points and results may be one array. A view that reaches beyond the frame shows the frame's edge
    /// there: its points lie beside the frame, where the view would have them.
    int ViewToFrame(const SPointD* pPoints, SPointD* pResults, bool* pValid, int nCount);
    /// Points of the picture at which points of the frame are shown: the other way. Of several places that
    /// show one the result is the one that is drawn first.
    int FrameToView(const SPointD* pPoints, SPointD* pResults, bool* pValid, int nCount);
    /// The same for one point: false, and the results as they were, where there is nothing.
    bool ViewToFrame(double x, double y, double& fFrameX, double& fFrameY);
    bool FrameToView(double fFrameX, double fFrameY, double& x, double& y);
    /// What points of the picture, or of the frame, look at, and where a direction is seen in the picture:
    /// directions as the mount counts them, an orientation of the body taken out. Results of frames and
    /// pictures as above; a direction that is none is not a number.
    int ViewToDirection(const SPointD* pPoints, SDirection* pResults, bool* pValid, int nCount);
    int DirectionToView(const SDirection* pDirections, SPointD* pResults, bool* pValid, int nCount);
    int FrameToDirection(const SPointD* pPoints, SDirection* pResults, bool* pValid, int nCount);
    bool ViewToDirection(double x, double y, SDirection& rDirection);
    bool DirectionToView(const SDirection& rDirection, double& x, double& y);
    bool FrameToDirection(double fFrameX, double fFrameY, SDirection& rDirection);
    /// Centres the view at a point of the frame, or of the picture that was drawn last, with the next frame;
    /// as far as its limits allow. False where there is nothing, and in views that have no middle to turn
    /// there.
    bool LookAt(double fFrameX, double fFrameY);
    bool LookAtView(double x, double y);

    // What a host would have to guess.
    /// How far pan, tilt and zoom go in a view on a mount, with the mount tilt and its strictness as they
    /// are.
    SPTZLimits GetViewLimits(EViewType eView, EMountType eMount);
    /// Where a view starts on a mount.
    static void GetDefaultPTZ(EViewType eView, EMountType eMount, float& fPan, float& fTilt, float& fZoom);
    /// A size in which a view shows all it has, without bars, for frames of an input size; width to height is
    /// the aspect the view prefers.
    static void GetDefaultSize(EViewType eView, EMountType eMount, int nInputWidth, int nInputHeight,
                               int& nWidth, int& nHeight);
    /// Views by name, as command lines and files write them: null and VIEW_UNSET for those there are not.
    static const char* GetViewName(EViewType eView);
    static EViewType FindViewType(const std::string& strName);
    /// Names of all views, in the order in which people list them.
    static std::vector<std::string> ListViewNames();

    // Steps of a frame, on the GL thread.
    void CheckViewTypeRequest();
    void CheckMountTypeRequest();
    void ResetCustomGPUObjects();
    void CheckPTZ();
    int CheckLoadShaders();
    int LoadShaderPrograms(SShaderProperties& sShader);
    void FreeProgramAndShaders();
    /// (Re)creates a texture on a unit (GL_TEXTURE0 .. GL_TEXTURE15; others are ignored). nRowLength is in
    /// pixels.
    void GenerateTexture(unsigned int& nTexture, unsigned int nUnit, unsigned int nFormat, int nWidth,
                         int nHeight, int nRowLength, unsigned char* pPixels);
    void UpdateTexture(unsigned int& nTexture, unsigned int nUnit, unsigned int nFormat, int nWidth,
                       int nHeight, int nRowLength, unsigned char* pPixels);
    void SetInterpolation();
    int HandleTextureToScreen(int nWidth, int nHeight, int nSource);
    int HandleTextureToTexture(int nWidth, int nHeight, int nSource);
    int HandleOutputOverlay(int nWidth, int nHeight);
    int SetOverlay(SGOverlay& sOverlay, unsigned char* pData, int nWidth, int nHeight, int nUnused,
                   unsigned int nTextureUnit, std::vector<SGRect> vRects);
    int MaskPolygonsToInputOverlay();
    int UpdateStringOverlay(int nWidth, int nHeight);

protected:
    friend class CLockScope;

    // Named steps of DrawGLScene, in their order; false: the frame cannot be drawn.
    bool DrawFrame(bool bExchangeBuffers);
    bool PrepareTarget(STargetShape& rTarget);
    void DecideLayers();
    bool PrepareView(const STargetShape& rTarget);
    bool PreparePanes(const STargetShape& rTarget);
    void TakePictureSettings();
    bool Decide(const STargetShape& rTarget);
    bool CheckMainProgram();
    void ActivateView(bool bNewLens, ELensType eLensBefore);
    bool PaintMasks(const STargetShape& rTarget);
    void SetUpProjection();
    bool HasFrame();
    /// Says so when the frame is larger than the driver's textures.
    void SayIfTooLarge();
    void BindFrameTarget(const STargetShape& rTarget);
    bool AreMasksShown();
    void DrawView(const STargetShape& rTarget);
    bool DrawPanes(const STargetShape& rTarget);
    bool DrawPane(const SPlacedView& rPane, const STargetShape& rTarget);
    void DrawCompositionPasses(int nWidth, int nHeight);
    void FinishFrame(const STargetShape& rTarget);
    /// Asks for all that a frame can build.
    void RequestEverything();
    /// Ends a frame that the driver had no memory for.
    void GiveUpFrameObjects();

    void CreateViewObjects();
    /// The object that draws the view in force.
    CCGPUObjBase* ObjectInForce();
    void DeleteViewObjects();
    void FreeTextures();
    /// Forgets every GL name without touching GL: their context is gone.
    void ForgetGLNames();
    /// True when strings or an output overlay image send the view through the intermediate texture.
    bool NeedsFrameTexture() const;
    /// The active view object is the one of the view in force: its limits count at once.
    bool IsViewDrawn() const;
    /// Something was asked for that a frame is to show.
    void RequestFrame();
    /// The statements that end the view at the lens's rim, if it has one.
    std::string GetFragShaderRimCode();
    void EnterLocked();
    void LeaveLocked();
};
