/// \file
/// What the meshes make of their arguments. Legal arguments pass unchanged; the rest becomes something that
/// keeps every array index and every vertex sound. Inside the library only.
#pragma once

#include <cmath>

static constexpr float fPi = 3.1415927f;
static constexpr float fHalfPi = 1.5707964f;

/// The angle itself, or 0 for a NaN, an infinity and what is too large for the arithmetic that follows.
inline float UsableAngle(float fDegrees)
{
    return std::fabs(fDegrees) <= 1e30f ? fDegrees : 0.0f;
}

/// Width to height; 1 for an image without pixels.
inline float ImageAspect(int nWidth, int nHeight)
{
    if (nWidth == 0 || nHeight == 0)
        return 1.0f;
    return static_cast<float>(nWidth) / static_cast<float>(nHeight);
}

/// Fisheye radius as a fraction of half the image height; 0 when the image has no half height, which puts
/// every texture coordinate at the image centre.
inline float RadiusScale(float fRadius, int nHeight)
{
    const int nHalfHeight = nHeight / 2;
    const float fScale = nHalfHeight == 0 ? 0.0f : fRadius / static_cast<float>(nHalfHeight);
    return std::isfinite(fScale) ? fScale : 0.0f;
}

/// Normalised image height at a field angle, from the table of 92 radii, one a degree. Angles are limited to
/// 0..90 degrees; a NaN counts as 0.
inline float LookupRadius(const float* pTheta2r, float fDegrees)
{
    if (!(fDegrees > 0.0f))
        fDegrees = 0.0f;
    if (fDegrees > 90.0f)
        fDegrees = 90.0f;
    const int i = static_cast<int>(fDegrees);
    return pTheta2r[i] + (pTheta2r[i + 1] - pTheta2r[i]) * (fDegrees - static_cast<float>(i));
}
