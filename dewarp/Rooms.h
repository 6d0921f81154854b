/// \file
/// Everything that one dewarper is put together from. Inside the library only.
#pragma once

#include "dewarp/control/Panes.h"
#include "dewarp/gl/DriverWatch.h"
#include "dewarp/gl/FrameTextures.h"
#include "dewarp/gl/GPUObjPanorama.h"
#include "dewarp/gl/GPUObjPanoramaMulti.h"
#include "dewarp/gl/GPUObjPanoramaWall.h"
#include "dewarp/gl/GPUObjVCAM.h"
#include "dewarp/gl/InputTextures.h"
#include "dewarp/gl/MaskPass.h"
#include "dewarp/gl/OutputOverlayPass.h"
#include "dewarp/gl/OverlayImages.h"
#include "dewarp/gl/PaneMeshes.h"
#include "dewarp/gl/Programs.h"
#include "dewarp/gl/ReadBack.h"
#include "dewarp/gl/StringPass.h"
#include "dewarp/gl/TextureCopies.h"
#include "dewarp/gl/Textures.h"
#include "dewarp/mapping/PictureMap.h"
#include "dewarp/overlays/MaskList.h"
#include "dewarp/overlays/StringList.h"
#include "dewarp/records/LogTag.h"
#include "platform/Report.h"

#include <atomic>

/// What keeps a frame from being drawn; each is said once as long as it stands.
enum EFrameFault : int
{
    FAULT_NOT_STARTED,
    FAULT_CONTEXT,
    FAULT_NO_FRAME,
    FAULT_NO_TARGET,
    FAULT_PROGRAM,
    FAULT_FRAME_SIZE,
    FAULT_FRAME_PLANES,
    FAULT_MASKS,
    FAULT_NO_TEXT,
};

/// The objects that draw views: seven with a name of their own, and one for all others.
struct SViewObjects
{
    CCGPUObjFisheye oFisheye;
    CCGPUObjFisheye oFisheyeCircular{true};
    CCGPUObjVCAM oVCAM;
    CCGPUObjPanorama oPanorama;
    CCGPUObjPanoramaWall oPanoramaWall;
    CCGPUObjPanoramaDual oPanoramaDual;
    CCGPUObjPanoramaTriple oPanoramaTriple;
    CCGPUObjAnyView oAnyView; ///< draws every other view
};

/// One of each, in the order in which they need each other.
/// Owns: all of it. Thread: see each.
struct SRooms
{
    SRooms();

    CReport oReport{DEWARP_LOG_TAG};
    CControl oControl{oReport};
    CPanes oPanes{oControl, oReport};
    SFrameDecision sDecision;
    CPictureMap oPoints; ///< of the picture that was drawn last
    SMaskList sMasks;
    SStringList sStrings;

    CCustomGPUGeometry oGeometry;
    SShaderProperties sMainShader;
    CDriverWatch oWatch{oReport};
    CPrograms oPrograms{oReport, oWatch};
    CTextures oTextures{oWatch, oControl.eInterpolation};
    CInputTextures oInput{oTextures, oPrograms, oWatch, oControl.sParams, sMainShader.bQPTextures};
    COverlayImages oOverlays{oTextures, oReport};
    CFrameTextures oFrame{oTextures, oWatch};
    SPassTools sTools{oPrograms, oTextures, oFrame, oWatch, oGeometry};
    CTextureCopies oCopies{sTools};
    COutputOverlayPass oOutputOverlay{sTools};
    CMaskPass oMaskPass{sTools};
    CStringPass oStringPass{sTools};
    CReadBack oReadBack{oWatch, oReport};
    SViewObjects sViews;
    CPaneMeshes oPaneMeshes{oGeometry, oWatch};

    bool bProgramTriedAgain = false; ///< the view's program failed, and was tried once more
    SDewarpMatrices sMatrices;       ///< of the view
    SDewarpParams sLastDrawnParams;  ///< of the last projection
    // For the check of threads in debug builds.
    std::atomic<std::size_t> nThreadInside{0}; ///< who holds the lock; 0: nobody
    int nDepthInside = 0;
};
