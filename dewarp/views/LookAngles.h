/// \file
/// Angles of directions, as the views count pan and tilt. Inside the room only.
#pragma once

#include "dewarp/records/SDirection.h"

#include <cmath>
#include <numbers>

inline constexpr double DEGREES = 180.0 / std::numbers::pi;

/// Degrees from the top of the frame to its right.
inline double BearingOf(const SDirection& d)
{
    return std::atan2(d.x, d.y) * DEGREES;
}

/// Degrees off the optical axis.
inline double OffAxis(const SDirection& d)
{
    return std::atan2(std::hypot(d.x, d.y), d.z) * DEGREES;
}

/// Degrees from the axis to the right, and above it, for an axis that lies level.
inline double SideOf(const SDirection& d)
{
    return std::atan2(d.x, d.z) * DEGREES;
}

inline double HeightOf(const SDirection& d)
{
    return std::atan2(d.y, std::hypot(d.x, d.z)) * DEGREES;
}
