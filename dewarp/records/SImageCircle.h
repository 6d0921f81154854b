/// \file
/// Where the lens's circle lies in the frame.
#pragma once

/// Units: frame pixels from the top left; halves are the middles of pixels. Radii of 0: the lens's own rule,
/// which puts the circle into the middle of the frame; the centre counts for nothing then.
struct SImageCircle
{
    float fCenterX = 0.0f;
    float fCenterY = 0.0f;
    float fRadiusX = 0.0f;
    float fRadiusY = 0.0f;

    bool IsSet() const { return fRadiusX > 0.0f && fRadiusY > 0.0f; }
    bool operator==(const SImageCircle& sOther) const = default;
};
