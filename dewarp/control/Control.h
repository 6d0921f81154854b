/// \file
/// What a dewarper was asked for and what is in force, and every operation that changes either.
#pragma once

#include "dewarp/lenses/CameraOptics.h"
#include "dewarp/records/Mirrors.h"
#include "dewarp/records/SDewarpParams.h"
#include "dewarp/records/SGRect.h"
#include "dewarp/views/View.h"
#include "platform/Export.h"
#include "platform/Report.h"

/// The picture that pointer and wheel act on.
struct SDrawnPicture
{
    int nWidth = 0;
    int nHeight = 0;
    int nLeftBand = -1; ///< first column that is drawn; -1: the first
    int nTopBand = -1;  ///< first row that is drawn; -1: the first
};

/// What a frame's requests changed.
struct SAppliedRequests
{
    /// Lens that the meshes were made for before; what is activated for a new view is made for it.
    ELensType eLensBefore = LENS_UNSET;
    bool bNewLens = false; ///< every mesh is another lens's
};

/// Control of one dewarper, whoever draws its frames: requests are stored, and put in force by ApplyRequests
/// when a frame is drawn. Operations that return bool say whether a frame should be drawn.
/// Units: degrees, pixels. Owns: its state. Thread: any, serialised by the host, but for the analogue speeds,
/// which are exchanged whole without a lock. Fails: what cannot be taken is refused with a log line.
class LUMOR_INTERNAL_API CControl
{
public:
    explicit CControl(CReport& rReport) : m_rReport(rReport) {}
    CControl(const CControl&) = delete;
    CControl& operator=(const CControl&) = delete;

    // What to show.
    bool SetMountTilt(float fDegrees);
    /// 0, 90, 180 or 270. bChanged: it is another than before.
    bool SetRotation(int nDegrees, bool& bChanged);
    bool SetEyeDistance(float fDistance);
    bool SetViewShape(const SViewShape& rShape);
    /// Degrees; positive turns virtual cameras clockwise as seen from behind.
    bool SetRoll(float fDegrees);

    // The camera, beyond the number of a known lens. A lens of the host's own stands until a number is asked
    // for.
    bool SetLens(const SLens& rLens);
    void DropLens();
    bool SetImageCircle(const SImageCircle& rCircle);
    bool SetMountOrientation(const SMountOrientation& rOrientation);
    void SetCleanRim(bool bClean);
    /// What the host said; nothing when it said nothing.
    const SCameraOptics& Optics() const;
    /// Where the circle lies: as the host said, or by the lens's own rule. False before a frame was drawn.
    bool CircleInForce(float& fCenterX, float& fCenterY, float& fRadiusX, float& fRadiusY) const;
    ELensType LensInForce() const;
    /// How frames are shown: what counts in their pixels follows.
    void FollowMirrors(const SMirrors& rMirrors);

    // Steering. bInForce: the view in force is the one that is drawn, so its limits count at once.
    bool AbsolutePTZ(float fPan, float fTilt, float fZoom);
    bool RelativePTZ(float fPan, float fTilt, float fZoom, bool bInForce);
    bool AnaloguePTZ(float fPan, float fTilt, float fZoom);
    void GetPTZAnalog(float& fPan, float& fTilt, float& fZoom);
    bool IsMoving();
    void GetPTZ(float& fPan, float& fTilt, float& fZoom) const;
    /// Centres the view in force there. False where it cannot be turned.
    bool LookAt(const SLookTarget& rTarget);
    void OnMouseDown(int x, int y);
    bool OnMouseMove(int x, int y, bool bLockX, bool bLockY, const SDrawnPicture& rPicture, bool bInForce);
    void OnMouseUp();
    bool OnMouseWheel(double fDelta, bool bInForce);

    // Requests put in force.
    /// The requested mount, and the view it makes of a panorama. True when it is another.
    bool ApplyMountRequest();
    /// The requested view. True when it is another.
    bool ApplyViewRequest();
    /// Everything that was asked for, in order: mount, view, position, speeds, lens.
    SAppliedRequests ApplyRequests();
    /// Those that concern the camera alone, mount and lens: its one view is not shown.
    SAppliedRequests ApplyCameraRequests();
    /// A new frame's size and format: a position that belongs to another picture is given up.
    void SetFrame(int nWidth, int nHeight, int nStride, bool bOtherPicture);
    /// Forgets what is in force: the requests are applied anew with the next frame.
    void ForgetInForce();

    /// The view in force.
    const CView& View() const { return FindViewInForce(sParams); }
    /// Brings the position in force inside the limits of the view in force.
    void LimitPTZ();

    // State. Names are those of the dewarper's members.
    SDewarpParams sParams; ///< in force
    EViewType eRequestedView = VIEW_UNSET;
    EMountType eRequestedMount = MOUNT_UNSET;
    ELensType eRequestedLens = LENS_UNSET;
    EInterpolationType eInterpolation = INTERPOLATION_NEAREST;
    bool bWireFrame = false;
    int nRotation = 0;
    float fEyeDistance = 0.0f; ///< radii of the sphere
    bool bResetPTZ = true;
    bool bAbsolutePTZPending = false;
    float fAbsolutePan = 0.0f;
    float fAbsoluteTilt = 0.0f;
    float fAbsoluteZoom = 0.0f;
    float fAnalogSpeed[3] = {0.0f, 0.0f, 0.0f};
    SGPoint sMouseAnchor;
    bool bMouseDown = false;
    bool bDrawRequired = false;

private:
    static const CView& FindViewInForce(const SDewarpParams& rParams);
    /// Limits a move to finite angles: a view without a size must not lose its position.
    void KeepFinite(const SPTZ& rBefore);
    SPTZ Position() const { return {sParams.fPan, sParams.fTilt, sParams.fZoom}; }
    bool HasMoved(const SPTZ& rBefore) const;
    void ApplyDefaultPTZ();
    void ApplyAbsolutePTZ();
    void ApplyAnalogPTZ();
    void ApplyLensRequest(SAppliedRequests& rApplied);
    void PutOptics(const SCameraOptics& rOptics);

    CReport& m_rReport;
};

/// Brings a position inside a view's limits: whole turns are taken away first, so that one that has gone
/// round often ends where it points to. Doing it twice changes nothing.
void LimitPosition(const CView& rView, SDewarpParams& rParams);

/// The same angle in [0, 360). Infinity and NaN stay.
float WrapAngle(float fAngle);
