/// \file
/// The dewarper: takes decoded fisheye frames and draws a corrected view of them with OpenGL ES 3.1.
#pragma once

#include "dewarp/CustomGPUGeometry.h"
#include "dewarp/overlays/SGOverlay.h"
#include "dewarp/overlays/SGPUString.h"
#include "dewarp/records/Enumerations.h"
#include "dewarp/records/SDewarpMatrices.h"
#include "dewarp/records/SDewarpParams.h"
#include "dewarp/records/SGRect.h"
#include "dewarp/records/SImageProperties.h"
#include "dewarp/records/SQPInfo.h"
#include "dewarp/records/SShaderProperties.h"

#include <cstddef>
#include <string>
#include <vector>

class CCGPUObjBase;
class CCGPUObjFisheye;
class CCGPUObjPanorama;
class CCGPUObjPanoramaDual;
class CCGPUObjPanoramaTriple;
class CCGPUObjPanoramaWall;
class CCGPUObjString;
class CCGPUObjVCAM;
struct SDriverTraits;

/// Platform-neutral dewarper. A subclass supplies the context, the target and the locking.
///
/// Units: degrees and pixels at every operation.
/// Owns: every record, view object, mesh and GL name it makes. Input planes stay the host's.
/// Thread: control operations on any thread, serialised by Lock and Unlock (empty here: then by the host);
/// DrawGLScene, GetImage, FreeOpenGLObjects and ReinitializeOpenGLObjects on the GL thread, context current.
/// Fails: by results and log lines under the tag "LUMORVIDEOMANAGER_DEWRAP"; nothing throws.
///
/// Control operations store requests; the next DrawGLScene puts them in force.
/// Data members are open to subclasses, hosts' diagnostics and tests; change them through operations only.
class CCustomGPUDewarper
{
public:
    CCustomGPUDewarper();
    CCustomGPUDewarper(const CCustomGPUDewarper&) = delete;
    CCustomGPUDewarper& operator=(const CCustomGPUDewarper&) = delete;

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

    // What to show.
    void SetViewType(EViewType eView);
    EViewType GetViewType();
    void SetMountType(EMountType eMount);
    EMountType GetMountType();
    ELensType GetLensType();
    EInterpolationType GetInterpolationType();
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
    /// Levels of the limited range, 0..255.
    void SetYUVLevels(int nLumaMin, int nLumaMax, int nChromaMin);
    void GetYUVLevels(int& nLumaMin, int& nLumaMax, int& nChromaMin);
    /// Moves the virtual camera's eye back along its axis, in radii of the sphere: 0 (rectilinear) to 1
    /// (stereographic). Values outside are limited, one that is not a number is refused with a log line.
    void SetEyeDistance(float fDistance);
    float GetEyeDistance();
    void SetLogGLErrors(bool bEnable);
    bool GetLogGLErrors();
    void SetLogShaderCode(bool bEnable);
    bool GetLogShaderCode();

    // Steering.
    void AbsolutePTZ(float fPan, float fTilt, float fZoom);
    void RelativePTZ(float fPan, float fTilt, float fZoom);
    /// Speeds a frame, in steps of 4 degrees; they repeat until set to 0. Takes no lock.
    void AnaloguePTZ(float fPan, float fTilt, float fZoom);
    void GetPTZAnalog(float& fPan, float& fTilt, float& fZoom);
    /// Values in force. The pan comes back in [0, 360) except in the fisheye view.
    void GetPTZ(float& fPan, float& fTilt, float& fZoom);
    void OnMouseDown(int x, int y);
    /// A true lock flag suppresses movement along that axis.
    void OnMouseMove(int x, int y, bool bLockX, bool bLockY);
    void OnMouseUp();
    void OnMouseWheel(double fDelta);

    // Overlays, masks, text.
    /// Lays an RGBA image over the input picture, before dewarping; null removes it. The last argument is
    /// ignored. 1 success, 0 refused.
    int SetInputOverlay(unsigned char* pData, int nWidth, int nHeight, int nUnused);
    /// Lays an RGBA image over the result. Rectangles name what changed; none: everything.
    int SetOutputOverlay(unsigned char* pData, int nWidth, int nHeight, int nUnused,
                         std::vector<SGRect> vRects);
    int SetOutputOverlay(unsigned char* pData, int nWidth, int nHeight, int nUnused);
    void SetMaskPolygons(unsigned char* pData, int nLength);
    void SetMaskPolygons(std::vector<SGPolygon> vPolygons);
    void SetStrings(unsigned char* pData, int nLength);
    void SetStrings(std::vector<SGPUString> vStrings);

    // Results.
    /// BGRA rows of the drawn frame. They start *pSize rounded up to an even number of rows after the
    /// returned pointer; the memory before them is the caller's to use. Same buffer at every call; null when
    /// nothing was drawn yet. GL thread.
    unsigned char* GetImage(int* pSize, int* pWidth, int* pHeight, int* pStride);
    bool GetDewarperVersion(int& nMajor, int& nMinor);
    int GetFisheyeRadius();
    unsigned long long GetLastDisplayedTextureTimestamp();

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

    // State, in the order of the object.
    void* pRenderingContext = nullptr;
    SShaderProperties sMainShader;
    bool bSceneInitialized = false;
    SGPoint* pMouseAnchor; ///< position of the last mouse event
    bool bMouseDown = false;
    bool bWireFrame = false;
    CCustomGPUGeometry* pGeometry;
    SDewarpParams* pParams; ///< in force
    SDewarpMatrices* pMatrices;
    SDewarpParams* pLastDrawnParams;
    unsigned int nTextureY = 0;
    unsigned int nTextureUV = 0;
    unsigned int nTextureU = 0;
    unsigned int nTextureV = 0;
    unsigned int nTextureQP = 0;
    unsigned int nTextureMBType = 0;
    unsigned int nTextureRGB = 0;
    unsigned int nFrameBuffer = 0;    ///< the passes that draw into a texture
    unsigned int nFrameTexture = 0;   ///< unit 6: the view, before strings and output overlay
    unsigned int nFrameTexture2 = 0;  ///< unit 9: its copy
    unsigned int nMaskTextureA = 0;   ///< unit 10
    unsigned int nMaskTextureB = 0;   ///< unit 11
    unsigned int nStringTextureA = 0; ///< unit 12
    unsigned int nStringTextureB = 0; ///< unit 13
    unsigned int nFontTexture = 0;    ///< unit 8
    unsigned char* pInputPlanes[3] = {nullptr, nullptr, nullptr}; ///< the host's, of the last SetTexture
    bool bTexturesNeedInit = false;                               ///< the input size or format changed
    bool bTextureUpload = false;                                  ///< a frame waits to be uploaded
    EInterpolationType eInterpolation = INTERPOLATION_NEAREST;
    ELensType eRequestedLens = LENS_UNSET;
    EViewType eRequestedView = VIEW_UNSET;
    EMountType eRequestedMount = MOUNT_UNSET;
    int nImageFormat = 0; ///< EImageFormat
    int nRotation = 0;
    bool bViewSetupRequired = false; ///< the projection must be computed anew
    bool bShadersLoaded = false;
    bool bLogShaderCode = false;
    unsigned int nDrawCount = 0;
    SQPInfo* pQPInfo;
    int nEffectiveYUVSpace = 1;
    int nEffectiveYUVRange = 1;
    int nImageYUVSpace = 5; ///< 5 and 3 lie outside the named values: they count as 1 and 1
    int nImageYUVRange = 3;
    CCGPUObjFisheye* pFisheye = nullptr;
    CCGPUObjFisheye* pFisheyeCircular = nullptr;
    CCGPUObjVCAM* pVCAM = nullptr;
    CCGPUObjPanorama* pPanorama = nullptr;
    CCGPUObjPanoramaWall* pPanoramaWall = nullptr;
    CCGPUObjPanoramaDual* pPanoramaDual = nullptr;
    CCGPUObjPanoramaTriple* pPanoramaTriple = nullptr;
    CCGPUObjString* pStringObject = nullptr;
    CCGPUObjBase* pRequestedViewObject = nullptr;
    CCGPUObjBase* pActiveViewObject = nullptr;
    CCGPUObjBase* pBoundViewObject = nullptr; ///< whose buffers were bound last
    unsigned char* pReadBack = nullptr;
    std::size_t nReadBackCapacity = 0;
    std::vector<SGPolygon> vMaskPolygons;
    bool bMaskPolygonsChanged = false;
    CCGPUObjFisheye* pAuxFisheye = nullptr;  ///< full-target quad of the output overlay
    CCGPUObjFisheye* pAuxFisheye2 = nullptr; ///< full-target quad of the texture copies
    float fAnalogSpeed[3] = {0.0f, 0.0f, 0.0f};
    bool bResetPTZ = true;
    bool bResetObjects = false;
    bool bDrawRequired = false;
    bool bAbsolutePTZPending = false;
    float fAbsolutePan = 0.0f;
    float fAbsoluteTilt = 0.0f;
    float fAbsoluteZoom = 0.0f;
    SGOverlay sInputOverlay;
    SGOverlay sOutputOverlay;
    SShaderProperties sOutputOverlayShader;
    SShaderProperties sStringShader;
    SShaderProperties sStringCompositeShader;
    SShaderProperties sMaskShader;
    SShaderProperties sTextureToScreenShader;
    SShaderProperties sTextureToTextureShader;
    SDewarpMatrices* pOutputOverlayMatrices; ///< the auxiliary passes' own, all identity
    SDewarpMatrices* pStringMatrices;
    SDewarpMatrices* pMaskMatrices;
    SDewarpMatrices* pTextureCopyMatrices;
    SDewarpParams* pOutputOverlayParams;
    SDewarpParams* pStringParams;
    SDewarpParams* pMaskParams;
    SDewarpParams* pTextureCopyParams;
    std::vector<SGPUString> vStrings;
    bool bStringsChanged = false;
    int anTextureUnitSize[16][2] = {}; ///< width and height last given to GenerateTexture on each unit
    unsigned long long nLastSetTimestamp = 0;
    unsigned long long nLastDisplayedTimestamp = 0;
    bool bLogGLErrors = false;

protected:
    /// How red and blue of a BGR frame find their places.
    enum ERedBlueUpload
    {
        RED_BLUE_UNDECIDED, ///< no such frame was uploaded to this texture yet
        RED_BLUE_BY_FORMAT, ///< the driver takes the BGR format
        RED_BLUE_BY_SWIZZLE ///< the driver does not; the texture exchanges the channels when it is sampled
    };

    // Named steps of DrawGLScene; false: the frame cannot be drawn.
    bool DrawFrame(bool bExchangeBuffers);
    void RequestEverything();
    bool LacksDriverMemory();
    void GiveUpFrameObjects();
    bool PrepareTarget(int& nWidth, int& nHeight);
    bool ApplyRequests(int nWidth, int nHeight);
    void ApplyDefaultPTZ();
    void ActivateRequestedObject();
    ELensType ApplyAbsolutePTZ();
    void ApplyAnalogPTZ();
    void ApplyLensRequest(ELensType eMeshLens);
    bool ApplyMaskRequest(int nWidth, int nHeight);
    bool SetUpProjection(int nWidth, int nHeight);
    void UpdateWallMesh();
    void ComputeProjection(int nWidth, int nHeight);
    void UploadMVP();
    void BindFrameTarget(int nWidth, int nHeight);
    void DrawView(int nWidth, int nHeight);
    void DrawCompositionPasses(int nWidth, int nHeight);
    void FinishFrame();
    /// True when strings or an output overlay image send the view through the intermediate texture.
    bool NeedsFrameTexture() const;
    static bool HasImage(const SGOverlay& rOverlay);
    /// Makes the framebuffer of the texture passes, if there is none, and binds it.
    void PrepareFrameBuffer();
    void ReadPixels(int nWidth, int nHeight, unsigned char* pPixels);

    void CreateViewObjects();
    void DeleteViewObjects();
    void FreeTextures();
    /// Forgets every GL name without touching GL: their context is gone.
    void ForgetGLNames();

    // Input planes.
    struct SPlaneUpload;
    int ListPlanes(SPlaneUpload* pPlanes);
    bool TexturesMissing();
    bool FitsTexture();
    bool FitsTexture(int nWidth, int nHeight);
    bool UploadPlanes();
    void UploadPlane(const SPlaneUpload& rPlane, bool bCreate);
    void UploadRedBlue(const SPlaneUpload& rPlane, unsigned char* pPixels, int nRowLength);
    void UploadWidened(const SPlaneUpload& rPlane);
    void PreferRGBA(const SPlaneUpload& rPlane, unsigned char* pPixels, int nRowLength);
    unsigned char* RepackRows(const SPlaneUpload& rPlane, int& nRowBytes);
    void CreateQPTextures();
    void UploadQPTextures();

    // Programs.
    bool CheckMainProgram();
    void SetFormatSamplers();
    bool CompileShader(unsigned int& nShader, unsigned int nKind, const std::string& strText,
                       const char* pMessage);
    const SDriverTraits& DriverTraits();
    int PrepareTextureCopy(SShaderProperties& sShader, const char* pVertexText, const char* pFragmentText,
                           int nWidth, int nHeight);
    void BindCopySource(const SShaderProperties& rShader, int nUnit, unsigned int nTexture);
    void DrawTextureCopy(SShaderProperties& sShader);

    // Overlays.
    void ReleaseOverlayTexture(SGOverlay& sOverlay);
    void ParkOverlayTexture(SGOverlay& sOverlay);
    void DropOversizedOverlays();
    void UploadOverlay(SGOverlay& sOverlay);
    int PrepareOutputOverlayProgram();
    int PrepareMaskProgram(int nWidth, int nHeight);
    void PrepareMaskTextures(int nWidth, int nHeight);
    void PaintMaskPolygon(const SGPolygon& rPolygon);
    void PrepareInputOverlayForMasks(int nWidth, int nHeight);
    int PrepareStringProgram(int nWidth, int nHeight, bool& bFullRedraw);
    void PrepareFontTexture();
    bool PrepareStringTextures(int nWidth, int nHeight);
    int PrepareStringCompositeProgram();
    void DeleteParkedTextures();

    /// Limits a move to finite angles: a view without a size must not lose its position.
    void KeepFinitePTZ(float fPan, float fTilt, float fZoom);

    /// The target holds YUV; a subclass whose target holds plain colours clears it.
    bool bYUVOutput = true;
    SDriverTraits* pDriverTraits; ///< of the context in use, asked for when first needed
    ERedBlueUpload eRedBlueUpload = RED_BLUE_UNDECIDED;
    int nMaxTextureSize = 0; ///< of the context in use; 0: not asked for yet
    bool bReadBGRA = true;   ///< the driver reads back BGRA; else RGBA is exchanged here
    bool bReadBGRAProven = false;
    bool bStringsToTexture = false;     ///< the string programs were made to draw into a texture
    bool bFrameInTextures = false;      ///< the input textures hold a whole frame
    bool bUploadDecided = false;        ///< a plane went up as it is: the driver's likes were considered
    bool bWidenPixels = false;          ///< frames of 3 bytes a pixel go up as RGBA
    std::vector<unsigned char> vRepack; ///< a plane's rows in a form the driver takes
    std::vector<unsigned int> vParkedTextures; ///< to be deleted on the GL thread
    float fEyeDistance = 0.0f;
    bool bObjectsMade = false;       ///< GL objects were made since the driver was last asked for errors
    bool bDriverMemoryLacks = false; ///< for an object of this frame
    unsigned int nErrorOfFrame = 0;  ///< GL error that was taken before the end of the frame
};
