/// \file
/// The meshes that views are drawn with, and what each is built from.
#pragma once

#include "dewarp/records/Enumerations.h"
#include "dewarp/records/SViewShape.h"
#include "platform/Export.h"

#include <memory>

class CCameraOptics;

enum EViewMesh : int
{
    MESH_NONE,
    MESH_FISHEYE,          ///< the whole frame
    MESH_FISHEYE_CIRCULAR, ///< the lens circle
    MESH_VCAM,
    MESH_PANORAMA,
    MESH_PANORAMA_WALL,
    MESH_PANORAMA_DUAL,
    MESH_PANORAMA_TRIPLE,
    MESH_OF_VIEW, ///< one that a single view builds for itself
    MESH_EQUIRECTANGULAR,
    MESH_CYLINDRICAL,
    MESH_PANINI,
};

/// Everything that one mesh depends on; what it does not depend on is 0. A mesh is fresh when it was built
/// for exactly this key. Units: degrees, pixels.
struct LUMOR_API SMeshKey
{
    EViewMesh eMesh = MESH_NONE;
    EViewType eView = VIEW_UNSET; ///< whose it is, for MESH_OF_VIEW
    ELensType eLens = LENS_UNKNOWN;
    int nImageWidth = 0;
    int nImageHeight = 0;
    float fPan = 0.0f;
    float fTilt = 0.0f;
    float fMountTilt = 0.0f;
    bool bStrict = false;
    float fRoll = 0.0f;
    EMountType eMount = MOUNT_UNSET; ///< for meshes about the vertical
    SViewShape sShape;
    std::shared_ptr<const CCameraOptics> pOptics; ///< null: by the known lens's own rules

    /// Angles are the same when their bits are: a NaN equals itself, -0 is not 0.
    bool operator==(const SMeshKey& sOther) const;
};
