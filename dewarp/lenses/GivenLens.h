/// \file
/// A lens as a value: how far from the image centre a ray lands, and what follows from it.
#pragma once

#include "dewarp/records/Enumerations.h"

#include <cstddef>
#include <span>
#include <string>

/// The side of the frame that the circle of 90 degrees fills.
enum ELensRadiusRule : int
{
    LENS_RADIUS_LARGER_SIDE,
    LENS_RADIUS_WIDTH,
    LENS_RADIUS_HEIGHT,
};

/// Field angles in degrees from the optical axis against image heights, both rising strictly from 0; no rows
/// at all for the ideal equidistant lens. Only ratios of heights count, whatever their unit.
/// Owns: nothing; the rows must outlive it.
struct SGivenLens
{
    ELensType eType = LENS_UNKNOWN;
    std::span<const float> vDomain; ///< angles
    std::span<const float> vRange;  ///< heights, as many as angles
    ELensRadiusRule eRadiusRule = LENS_RADIUS_LARGER_SIDE;
    /// The circle leaves the image at top and bottom: panoramas discard texture rows outside 0..1.
    bool bClipRows = false;
};

/// Entries of the angle-to-radius table: one a degree, 0 to 90, and a guard for the interpolation at 90.
inline constexpr std::size_t nAngleEntries = 92;

/// The lens of a lens number; for a number without one the ideal equidistant lens.
/// Thread: any. Fails: never.
const SGivenLens& FindLens(int nLensType);

/// All lenses that FindLens knows. Thread: any. Fails: never.
std::span<const SGivenLens> KnownLenses();

/// What is wrong with a lens, in words; empty when it can be drawn with: its rows start at 0, rise strictly,
/// are finite and reach 90 degrees, so that every angle up to there lies between two of them.
/// Every lens that does not come from KnownLenses must pass here first.
/// Thread: any. Fails: never.
std::string FindLensFault(const SGivenLens& rLens);

/// Radius in pixels of the circle of 90 degrees in a frame. Thread: any. Fails: never.
float LensRadius(const SGivenLens& rLens, int nWidth, int nHeight);

/// Height at 90 degrees, between the rows next to it; 90 for the ideal lens, whose height is the angle.
/// Thread: any. Fails: never for a lens without fault.
float LensRimHeight(const SGivenLens& rLens);

/// Writes nAngleEntries radii to pTable: heights at 0, 1, ... 89 degrees in parts of the height at 90, then 1
/// twice.
/// Thread: any.
/// Fails: false when an angle does not lie between two rows; never for a lens without fault.
bool FillAngleToRadius(const SGivenLens& rLens, float* pTable);

/// Entries of the radius-to-angle table before its two end entries: the whole pixels of the radius, 0 for a
/// radius that is not positive. Limited, so that an absurd image size does not take all memory.
int CountRadiusSteps(float fRadius);

/// Writes CountRadiusSteps(fRadius) + 2 field angles in degrees to pTable, one a pixel from the image centre;
/// the last two are the end angle.
/// Thread: any. Fails: never for a lens without fault.
void FillRadiusToAngle(const SGivenLens& rLens, float fRadius, float* pTable);
