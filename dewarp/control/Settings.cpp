// Settings with a rule of their own.

#include "dewarp/control/Control.h"
#include "dewarp/control/Refusals.h"

#include <cmath>

// The eye stays a hair inside the sphere's far pole: at a distance of exactly 1 the point straight ahead lies
// on the far plane, where rounding may cut it away.
static const float MAX_EYE_DISTANCE = 0.9999f;

bool CControl::SetMountTilt(float fDegrees)
{
    if (!AreUsable({fDegrees}, "SetMountTilt", m_rReport))
        return false;
    sParams.fMountTilt = fDegrees;
    return true;
}

bool CControl::SetRotation(int nDegrees, bool& bChanged)
{
    bChanged = false;
    if (nDegrees != 0 && nDegrees != 90 && nDegrees != 180 && nDegrees != 270) {
        m_rReport.Refuse("%s: %d is not 0, 90, 180 or 270 degrees", "SetRotation", nDegrees);
        return false;
    }
    bChanged = nDegrees != nRotation;
    nRotation = nDegrees;
    return true;
}

bool CControl::SetEyeDistance(float fDistance)
{
    if (std::isnan(fDistance)) {
        m_rReport.Refuse("%s: value is not a number", "SetEyeDistance");
        return false;
    }
    fEyeDistance = fDistance > 0.0f ? std::fmin(fDistance, MAX_EYE_DISTANCE) : 0.0f;
    return true;
}
