/// \file
/// Limits and pointer steps shared by the views.
#pragma once

#include <cmath>

/// Zoom of the views that have one, degrees.
inline constexpr float LEAST_ZOOM = 5.0f;
inline constexpr float MOST_ZOOM = 180.0f;
/// Zoom of the views that have none.
inline constexpr float FIXED_ZOOM = 180.0f;

/// Pixels from one pointer position to another, on one axis; the difference of any two ints fits.
inline float DragPixels(int nFrom, int nTo)
{
    return static_cast<float>(static_cast<long long>(nTo) - nFrom);
}

/// A value strictly beyond a bound becomes that bound; NaN stays.
inline void LimitAngle(float& fAngle, float fLow, float fHigh)
{
    if (fAngle > fHigh)
        fAngle = fHigh;
    else if (fAngle < fLow)
        fAngle = fLow;
}

/// Zoom of the views that have one: above 5, up to 180 degrees. NaN becomes 5.
inline void LimitZoom(float& fZoom)
{
    if (fZoom > MOST_ZOOM)
        fZoom = MOST_ZOOM;
    if (!(fZoom > LEAST_ZOOM))
        fZoom = LEAST_ZOOM;
}

/// Takes whole turns away from an angle of a turn or more: what is left lies within a turn either way. Exact,
/// so a view shows the same; an angle that grows without end would lose its places behind the point instead.
inline float WithoutTurns(float fAngle)
{
    return std::fabs(fAngle) < 360.0f ? fAngle : std::fmod(fAngle, 360.0f);
}
