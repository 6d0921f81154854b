// What the host says about its camera.

#include "dewarp/control/Control.h"
#include "dewarp/control/Refusals.h"
#include "dewarp/lenses/LensMap.h"

#include <cmath>

/// Pixels; no frame is so large that its circle would be farther away, or larger.
static const float MOST_PIXELS = 1e6f;

const SCameraOptics& CControl::Optics() const
{
    static const SCameraOptics NOTHING;
    return sParams.pOptics != nullptr ? sParams.pOptics->Said() : NOTHING;
}

/// Views and meshes are made anew for another one, so the same is not put in force twice.
void CControl::PutOptics(const SCameraOptics& rOptics)
{
    if (rOptics.SaysNothing())
        sParams.pOptics.reset();
    else if (sParams.pOptics == nullptr || !(sParams.pOptics->Said() == rOptics))
        sParams.pOptics = std::make_shared<const CCameraOptics>(rOptics);
}

bool CControl::SetLens(const SLens& rLens)
{
    const std::string strFault = FindLensFault(rLens);
    if (!strFault.empty()) {
        m_rReport.Refuse("%s: %s", "SetLens", strFault.c_str());
        return false;
    }
    SCameraOptics sOptics = Optics();
    sOptics.bOwnLens = true;
    sOptics.sLens = rLens;
    PutOptics(sOptics);
    return true;
}

void CControl::DropLens()
{
    if (!Optics().bOwnLens)
        return;
    SCameraOptics sOptics = Optics();
    sOptics.bOwnLens = false;
    sOptics.sLens = SLens();
    PutOptics(sOptics);
}

bool CControl::SetImageCircle(const SImageCircle& rCircle)
{
    const SImageCircle& c = rCircle;
    if (!AreUsable({c.fCenterX, c.fCenterY, c.fRadiusX, c.fRadiusY}, "SetImageCircle", m_rReport))
        return false;
    const bool bNone = c.fRadiusX == 0.0f && c.fRadiusY == 0.0f;
    if (!bNone && !(c.fRadiusX >= 1.0f && c.fRadiusY >= 1.0f)) {
        m_rReport.Refuse("%s: radii of %g and %g pixels are no circle's", "SetImageCircle",
                         static_cast<double>(c.fRadiusX), static_cast<double>(c.fRadiusY));
        return false;
    }
    if (std::fabs(c.fCenterX) > MOST_PIXELS || std::fabs(c.fCenterY) > MOST_PIXELS ||
        c.fRadiusX > MOST_PIXELS || c.fRadiusY > MOST_PIXELS) {
        m_rReport.Refuse("%s: the circle lies out of reach", "SetImageCircle");
        return false;
    }
    SCameraOptics sOptics = Optics();
    sOptics.sCircle = bNone ? SImageCircle() : c;
    PutOptics(sOptics);
    return true;
}

bool CControl::SetMountOrientation(const SMountOrientation& rOrientation)
{
    const SMountOrientation& o = rOrientation;
    if (!AreUsable({o.fYaw, o.fPitch, o.fRoll}, "SetMountOrientation", m_rReport))
        return false;
    SCameraOptics sOptics = Optics();
    sOptics.sOrientation = {std::fmod(o.fYaw, 360.0f), std::fmod(o.fPitch, 360.0f),
                            std::fmod(o.fRoll, 360.0f)};
    PutOptics(sOptics);
    return true;
}

void CControl::SetCleanRim(bool bClean)
{
    SCameraOptics sOptics = Optics();
    sOptics.bCleanRim = bClean;
    PutOptics(sOptics);
}

void CControl::FollowMirrors(const SMirrors& rMirrors)
{
    if (sParams.pOptics == nullptr)
        return;
    const SCameraOptics& rSaid = sParams.pOptics->Said();
    if (rSaid.bMirrorX == rMirrors.bX && rSaid.bMirrorY == rMirrors.bY)
        return;
    SCameraOptics sOptics = rSaid;
    sOptics.bMirrorX = rMirrors.bX;
    sOptics.bMirrorY = rMirrors.bY;
    PutOptics(sOptics);
}

bool CControl::SetRoll(float fDegrees)
{
    if (!AreUsable({fDegrees}, "SetRoll", m_rReport))
        return false;
    sParams.fRoll = std::fmod(fDegrees, 360.0f);
    return true;
}

ELensType CControl::LensInForce() const
{
    return Optics().bOwnLens ? LENS_OWN : sParams.eLensType;
}

bool CControl::CircleInForce(float& fCenterX, float& fCenterY, float& fRadiusX, float& fRadiusY) const
{
    const SCameraOptics& rSaid = Optics();
    const bool bLens = rSaid.bOwnLens || sParams.eLensType != LENS_UNSET;
    if (!rSaid.sCircle.IsSet() && (sParams.nImageWidth < 1 || !bLens))
        return false;
    const SRimEllipse sRim =
        CLensMap(sParams.pOptics.get(), sParams.eLensType, sParams.nImageWidth, sParams.nImageHeight)
            .FrameRim();
    fCenterX = static_cast<float>(sRim.fCenterX);
    fCenterY = static_cast<float>(sRim.fCenterY);
    fRadiusX = static_cast<float>(sRim.fRadiusX);
    fRadiusY = static_cast<float>(sRim.fRadiusY);
    return true;
}
