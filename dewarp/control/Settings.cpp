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

/// Whether a value is 0, or lies within bounds.
static bool IsChoice(float fValue, float fLow, float fHigh)
{
    return fValue == 0.0f || (fValue >= fLow && fValue <= fHigh);
}

bool CControl::SetViewShape(const SViewShape& rShape)
{
    const SViewShape& s = rShape;
    if (!AreUsable({s.fSpanX, s.fSpanY, s.fBandUpper, s.fBandLower}, "SetViewShape", m_rReport))
        return false;
    if (!IsChoice(s.fSpanX, 10.0f, 360.0f) || !IsChoice(s.fSpanY, 10.0f, 180.0f)) {
        m_rReport.Refuse("%s: a span of %g x %g degrees is outside 10 x 10 to 360 x 180", "SetViewShape",
                         static_cast<double>(s.fSpanX), static_cast<double>(s.fSpanY));
        return false;
    }
    const bool bNoBand = s.fBandUpper == 0.0f && s.fBandLower == 0.0f;
    if (!bNoBand &&
        !(s.fBandLower >= 0.0f && s.fBandUpper <= 170.0f && s.fBandUpper >= s.fBandLower + 5.0f)) {
        m_rReport.Refuse("%s: a band from %g to %g degrees off the axis is none", "SetViewShape",
                         static_cast<double>(s.fBandUpper), static_cast<double>(s.fBandLower));
        return false;
    }
    sParams.sShape = s;
    return true;
}
