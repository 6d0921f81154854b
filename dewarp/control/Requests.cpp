// What was asked for becomes what is in force.

#include "dewarp/control/Control.h"
#include "dewarp/lenses/LensSizes.h"

static bool AreBothFisheyes(EViewType eOne, EViewType eOther)
{
    return (eOne == VIEW_FISHEYE && eOther == VIEW_FISHEYE_CIRCULAR) ||
           (eOne == VIEW_FISHEYE_CIRCULAR && eOther == VIEW_FISHEYE);
}

bool CControl::ApplyMountRequest()
{
    if (!IsMountSet(eRequestedMount) || eRequestedMount == sParams.eMountType)
        return false;
    sParams.eMountType = eRequestedMount;
    bResetPTZ = true;
    return true;
}

bool CControl::ApplyViewRequest()
{
    if (eRequestedView == sParams.eViewType)
        return false;
    bResetPTZ = !AreBothFisheyes(sParams.eViewType, eRequestedView);
    sParams.eViewType = eRequestedView;
    return true;
}

SAppliedRequests CControl::ApplyRequests()
{
    if (!IsMountSet(sParams.eMountType) && !IsMountSet(eRequestedMount))
        eRequestedMount = MOUNT_CEILING;
    ApplyMountRequest();
    if (sParams.eViewType == VIEW_UNSET && eRequestedView == VIEW_UNSET)
        eRequestedView = VIEW_VCAM;
    ApplyViewRequest();
    if (bResetPTZ)
        ApplyDefaultPTZ();
    SAppliedRequests sApplied;
    sApplied.eLensBefore = sParams.eLensType;
    // A position may have been left over by another view, or moved while no view was in force.
    LimitPTZ();
    if (bAbsolutePTZPending)
        ApplyAbsolutePTZ();
    ApplyAnalogPTZ();
    ApplyLensRequest(sApplied);
    return sApplied;
}

SAppliedRequests CControl::ApplyCameraRequests()
{
    if (!IsMountSet(sParams.eMountType) && !IsMountSet(eRequestedMount))
        eRequestedMount = MOUNT_CEILING;
    ApplyMountRequest();
    SAppliedRequests sApplied;
    sApplied.eLensBefore = sParams.eLensType;
    ApplyLensRequest(sApplied);
    return sApplied;
}

void CControl::ApplyDefaultPTZ()
{
    const SPTZ sDefault = View().DefaultPTZ(sParams.eMountType);
    sParams.fPan = sDefault.fPan;
    sParams.fTilt = sDefault.fTilt;
    sParams.fZoom = sDefault.fZoom;
    bResetPTZ = false;
}

void CControl::ApplyAbsolutePTZ()
{
    sParams.fPan = fAbsolutePan;
    sParams.fTilt = fAbsoluteTilt;
    sParams.fZoom = fAbsoluteZoom;
    LimitPTZ();
    bAbsolutePTZPending = false;
    // The requested lens is to be applied again.
    sParams.eLensType = LENS_UNSET;
}

void CControl::ApplyAnalogPTZ()
{
    float fPanSpeed = 0.0f;
    float fTiltSpeed = 0.0f;
    float fZoomSpeed = 0.0f;
    GetPTZAnalog(fPanSpeed, fTiltSpeed, fZoomSpeed);
    if (fPanSpeed == 0.0f && fTiltSpeed == 0.0f && fZoomSpeed == 0.0f)
        return;
    const SPTZ sBefore = Position();
    sParams.fPan -= fPanSpeed * 4.0f;
    sParams.fTilt += fTiltSpeed * 4.0f;
    sParams.fZoom += fZoomSpeed * 4.0f;
    KeepFinite(sBefore);
    LimitPTZ();
}

void CControl::ApplyLensRequest(SAppliedRequests& rApplied)
{
    if (eRequestedLens == LENS_UNSET || eRequestedLens == sParams.eLensType)
        return;
    ELensType eLens = eRequestedLens;
    if (eLens == LENS_AUTO)
        eLens = AutoDetectLensType(sParams.nImageWidth, sParams.nImageHeight);
    if (eLens == sParams.eLensType)
        return;
    sParams.eLensType = eLens;
    // An absolute move only forgot the lens: the meshes still are this lens's.
    rApplied.bNewLens = eLens != rApplied.eLensBefore;
}

void CControl::SetFrame(int nWidth, int nHeight, int nStride, bool bOtherPicture)
{
    if (bOtherPicture)
        bResetPTZ = true;
    sParams.nImageWidth = nWidth;
    sParams.nImageHeight = nHeight;
    sParams.nImageStride = nStride;
}

void CControl::ForgetInForce()
{
    sParams.eViewType = VIEW_UNSET;
    sParams.eMountType = MOUNT_NOT_APPLIED;
}
