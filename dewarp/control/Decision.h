/// \file
/// What one frame is to show: the end of deciding and the beginning of drawing.
#pragma once

#include "dewarp/control/SPictureSettings.h"
#include "dewarp/records/SDewarpMatrices.h"
#include "dewarp/views/View.h"
#include "platform/Export.h"

class CControl;

/// Where a frame is drawn.
struct STargetShape
{
    int nWidth = 0;
    int nHeight = 0;
    bool bTopDown = false; ///< row 0 is the top of the picture

    bool operator==(const STargetShape& sOther) const = default;
};

/// What lies over a view. Text and an output overlay send it through a texture of its own.
struct SLayers
{
    bool bMasks = false;        ///< privacy masks, painted into the input overlay
    bool bInputOverlay = false; ///< the masks or the host's image over the input
    bool bText = false;
    bool bOutputOverlay = false;

    bool NeedsTexture() const { return bText || bOutputOverlay; }
};

/// Everything that follows from the state in force and the target; whoever draws carries it out. It holds
/// nothing of frames before: the same state and target give the same record.
/// Units: degrees, pixels. Owns: nothing.
struct SFrameDecision
{
    // What it was decided from.
    SDewarpParams sParams;
    STargetShape sTarget;
    int nRotation = 0;
    float fEyeDistance = 0.0f;

    const CView* pView = nullptr; ///< null: nothing was decided yet
    SMeshKey sMesh;               ///< the mesh to draw
    float fMeshAspect = 1.0f;
    float fImageAspect = 1.0f; ///< of the input as it is shown
    SDewarpMatrices sMatrices;
    SClipBands sBands;
    SViewPart aParts[MAX_VIEW_PARTS];
    int nParts = 0;
    SPictureSettings sPicture;
    SLayers sLayers;
};

/// One of several views in a picture. Owns: nothing.
struct SPlacedView
{
    SGRect
        sGround;   ///< pixels of the target that belong to it, from the top; later ones lie over earlier ones
    SGRect sPlace; ///< those that it is drawn in
    const SFrameDecision* pDecision = nullptr; ///< of a target as large as the place
};

/// True when a decision's view part was made from just this state and target.
LUMOR_INTERNAL_API bool IsDecidedFor(const SFrameDecision& rDecision, const CControl& rControl,
                                     const STargetShape& rTarget);

/// Decides view, mesh, matrices, parts and bands. Picture settings and layers are left as they are.
/// Thread: any, serialised by the host. Touches no GL. Fails: never; sizes must be above 0.
LUMOR_INTERNAL_API void DecideView(const CControl& rControl, const STargetShape& rTarget,
                                   SFrameDecision& rDecision);

/// Width to height of the input as it is shown: of the turned picture at a quarter turn.
LUMOR_INTERNAL_API float ShownImageAspect(const SDewarpParams& rParams, int nRotation);
