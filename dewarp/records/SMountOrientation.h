/// \file
/// How a camera's body is turned away from where its mount says that it looks.
#pragma once

/// Turns of the body about its own axes, in this order. Units: degrees.
struct SMountOrientation
{
    float fYaw = 0.0f;   ///< positive: it looks to the right
    float fPitch = 0.0f; ///< positive: it looks up, to the top of its picture
    float fRoll = 0.0f;  ///< positive: clockwise as seen from behind it

    bool operator==(const SMountOrientation& sOther) const = default;
};
