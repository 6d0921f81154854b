/// \file
/// A direction in space, seen from a camera.
#pragma once

/// x to the right of the frame, y to its top, z along the optical axis, into the scene; of any length but 0.
struct SDirection
{
    double x = 0.0;
    double y = 0.0;
    double z = 1.0;
};
