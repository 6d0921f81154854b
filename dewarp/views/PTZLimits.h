/// \file
/// Limits and pointer steps shared by the view objects.
#pragma once

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
    if (fZoom > 180.0f)
        fZoom = 180.0f;
    if (!(fZoom > 5.0f))
        fZoom = 5.0f;
}
