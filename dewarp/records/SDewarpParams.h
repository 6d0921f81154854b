/// \file
/// View parameters: where the view looks, how the camera hangs, and the size of the input image.
#pragma once

#include "dewarp/records/Enumerations.h"
#include "dewarp/records/SViewShape.h"
#include "platform/Export.h"

#include <memory>

class CCameraOptics;

/// The mount in force of a dewarper whose GL objects were freed: the requested one is applied anew.
inline constexpr EMountType MOUNT_NOT_APPLIED = static_cast<EMountType>(-1);

/// True for a mount that a camera can have.
inline bool IsMountSet(EMountType eMount)
{
    return eMount != MOUNT_UNSET && eMount != MOUNT_NOT_APPLIED;
}

/// Units: degrees, pixels, bytes. The defaults are those of a dewarper that has not been asked anything yet.
struct LUMOR_API SDewarpParams
{
    float fPan = 0.0f;
    float fTilt = 0.0f;
    float fZoom = 180.0f;          ///< field of view
    float fMountTilt = 0.0f;       ///< how far a wall camera looks up
    bool bStrictTiltLimits = true; ///< false: the wall panorama widens its span by the mount tilt
    EMountType eMountType = MOUNT_UNSET;
    EViewType eViewType = VIEW_UNSET;
    ELensType eLensType = LENS_UNSET;
    int nImageWidth = 0;
    int nImageHeight = 0;
    int nImageStride = 0; ///< bytes from one row of the first plane to the next
    float fRoll = 0.0f;   ///< of virtual cameras: positive turns them clockwise as seen from behind
    /// What the host said about its camera; null: known lenses are drawn by their own rules.
    std::shared_ptr<const CCameraOptics> pOptics;
    SViewShape sShape; ///< as the host said

    /// True when the view differs. Lens, image size and stride are left out: their changes travel by flags of
    /// the dewarper. A NaN angle always differs.
    bool operator!=(const SDewarpParams& sOther) const
    {
        return fPan != sOther.fPan || fTilt != sOther.fTilt || fZoom != sOther.fZoom ||
               fMountTilt != sOther.fMountTilt || eMountType != sOther.eMountType ||
               eViewType != sOther.eViewType || bStrictTiltLimits != sOther.bStrictTiltLimits ||
               fRoll != sOther.fRoll || pOptics != sOther.pOptics || !(sShape == sOther.sShape);
    }

    /// Parameters of a pass that draws a flat full-target picture (overlays, masks, strings, copies).
    static SDewarpParams Auxiliary()
    {
        SDewarpParams sParams;
        sParams.eMountType = MOUNT_CEILING;
        sParams.eViewType = VIEW_FISHEYE;
        sParams.eLensType = LENS_UNKNOWN;
        return sParams;
    }
};
