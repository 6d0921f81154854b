/// \file
/// One lens's measured projection, as the lens model reads it. Inside the library only.
#pragma once

/// Field angles in degrees and image heights, both rising strictly from 0; no entries for an unknown lens.
struct SLensTable
{
    const float* pDomain = nullptr;
    const float* pRange = nullptr;
    int nEntries = 0;
};

/// The table of a lens number.
SLensTable FindLensTable(int nLensType);

/// Image heights at 0, 1, ... 89 degrees, in parts of the height at 90, into pMapping. Stops the program when
/// the table does not bracket one of these angles.
void ResampleLensTable(const SLensTable& sTable, float* pMapping);

/// Entries of the radius-to-angle table before its two end entries: the whole pixels of the radius, 0 for a
/// radius that is not positive. Limited, so that an absurd image size does not take all memory.
int CountRadiusSteps(float fRadius);
