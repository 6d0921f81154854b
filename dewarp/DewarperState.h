/// \file
/// The dewarper's state by its names.
#pragma once

#include "dewarp/CustomGPUGeometry.h"
#include "dewarp/gl/SGOverlay.h"
#include "dewarp/gl/SShaderProperties.h"
#include "dewarp/overlays/SGPUString.h"
#include "dewarp/records/Enumerations.h"
#include "dewarp/records/SDewarpMatrices.h"
#include "dewarp/records/SDewarpParams.h"
#include "dewarp/records/SFramePlanes.h"
#include "dewarp/records/SGRect.h"
#include "dewarp/records/SImageProperties.h"
#include "dewarp/records/SPTZLimits.h"
#include "dewarp/records/SPane.h"
#include "dewarp/records/SPointD.h"
#include "dewarp/records/SQPInfo.h"
#include "platform/Export.h"

#include <cstddef>
#include <memory>
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
struct SRooms;

/// What the rooms of the library hold for one dewarper, under the names that hosts and their diagnostics
/// know. Each value lives in one room; a reference here shows it. Change them through the dewarper's
/// operations only. Owns: the rooms. Thread: as the dewarper.
class LUMOR_API CDewarperState
{
public:
    CDewarperState(const CDewarperState&) = delete;
    CDewarperState& operator=(const CDewarperState&) = delete;

protected:
    CDewarperState();
    ~CDewarperState();

    const std::unique_ptr<SRooms> pRooms;

public:
    void* pRenderingContext = nullptr;
    SShaderProperties& sMainShader;
    bool bSceneInitialized = false;
    SGPoint* const pMouseAnchor; ///< position of the last mouse event
    bool& bMouseDown;
    bool& bWireFrame;
    CCustomGPUGeometry* const pGeometry;
    SDewarpParams* const pParams; ///< in force
    SDewarpMatrices* const pMatrices;
    SDewarpParams* const pLastDrawnParams;
    unsigned int& nTextureY;
    unsigned int& nTextureUV;
    unsigned int& nTextureU;
    unsigned int& nTextureV;
    unsigned int& nTextureQP;
    unsigned int& nTextureMBType;
    unsigned int& nTextureRGB;
    unsigned int& nFrameBuffer;        ///< the passes that draw into a texture
    unsigned int& nFrameTexture;       ///< unit 6: the view, before strings and output overlay
    unsigned int& nFrameTexture2;      ///< unit 9: its copy
    unsigned int& nMaskTextureA;       ///< unit 10
    unsigned int& nMaskTextureB;       ///< unit 11
    unsigned int& nStringTextureA;     ///< unit 12
    unsigned int& nStringTextureB;     ///< unit 13
    unsigned int& nFontTexture;        ///< unit 8
    unsigned char* (&pInputPlanes)[3]; ///< the host's, of the last SetTexture
    bool& bTexturesNeedInit;           ///< the input size or format changed
    bool& bTextureUpload;              ///< a frame waits to be uploaded
    EInterpolationType& eInterpolation;
    ELensType& eRequestedLens;
    EViewType& eRequestedView;
    EMountType& eRequestedMount;
    int& nImageFormat; ///< EImageFormat
    int& nRotation;
    bool bViewSetupRequired = false; ///< the projection must be computed anew
    bool bShadersLoaded = false;
    bool& bLogShaderCode;
    unsigned int nDrawCount = 0;
    SQPInfo* const pQPInfo;
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
    CCGPUObjString* const pStringObject;
    CCGPUObjBase* pRequestedViewObject = nullptr;
    CCGPUObjBase* pActiveViewObject = nullptr;
    CCGPUObjBase* pBoundViewObject = nullptr; ///< whose buffers were bound last
    unsigned char*& pReadBack;
    std::size_t& nReadBackCapacity;
    std::vector<SGPolygon>& vMaskPolygons;
    bool& bMaskPolygonsChanged;
    CCGPUObjFisheye* const pAuxFisheye;  ///< full-target quad of the output overlay
    CCGPUObjFisheye* const pAuxFisheye2; ///< full-target quad of the texture copies
    float (&fAnalogSpeed)[3];
    bool& bResetPTZ;
    bool bResetObjects = false;
    bool& bDrawRequired;
    bool& bAbsolutePTZPending;
    float& fAbsolutePan;
    float& fAbsoluteTilt;
    float& fAbsoluteZoom;
    SGOverlay& sInputOverlay;
    SGOverlay& sOutputOverlay;
    SShaderProperties& sOutputOverlayShader;
    SShaderProperties& sStringShader;
    SShaderProperties& sStringCompositeShader;
    SShaderProperties& sMaskShader;
    SShaderProperties& sTextureToScreenShader;
    SShaderProperties& sTextureToTextureShader;
    SDewarpMatrices* const pOutputOverlayMatrices; ///< the auxiliary passes' own, all identity
    SDewarpMatrices* const pStringMatrices;
    SDewarpMatrices* const pMaskMatrices;
    SDewarpMatrices* const pTextureCopyMatrices;
    SDewarpParams* const pOutputOverlayParams;
    SDewarpParams* const pStringParams;
    SDewarpParams* const pMaskParams;
    SDewarpParams* const pTextureCopyParams;
    std::vector<SGPUString>& vStrings;
    bool& bStringsChanged;
    int (&anTextureUnitSize)[16][2]; ///< width and height last given to GenerateTexture on each unit
    unsigned long long nLastSetTimestamp = 0;
    unsigned long long nLastDisplayedTimestamp = 0;
    bool bLogGLErrors = false;
};
