/// \file
/// Texture coordinates of one grid row of rays. Inside the library only.
#pragma once

/// Rays of one row, component by component so that the processor takes several at a time. fA and fB span the
/// plane of the image, fAxis is the part along the optical axis. Entries past a row's rays are zero.
struct SRayRow
{
    static constexpr int nMaxRays = 96;
    float fA[nMaxRays] = {};
    float fB[nMaxRays] = {};
    float fAxis[nMaxRays] = {};
    float fU[nMaxRays] = {};
    float fV[nMaxRays] = {};
};

/// Fills fU and fV of the first nRays entries (nRays at most nMaxRays): a ray's field angle atan2(d, fAxis),
/// d = |(fA, fB)|, is looked up in the table of 92 radii, and the radius is laid out in the ray's direction,
/// scaled by fScaleU and fScaleV, around the image centre. A ray on the axis (d = 0) takes the centre.
/// Units: texture coordinates 0..1; scales 1 for half an image side.
/// Thread: any. Fails: never; the results are finite for finite rays and scales.
void MapRayRow(SRayRow& sRow, int nRays, const float* pTheta2r, float fScaleU, float fScaleV);

/// pAngle[i] = atan2(pY[i], pX[i]) for pY[i] >= 0 (not both 0), each the very float that the C library's
/// function returns. Where the library is known to use the common single-precision method, several are
/// computed at a time.
void FieldAngles(const float* pY, const float* pX, int nCount, float* pAngle);

/// True when FieldAngles may compute by itself: the first call compares a sample with the C library.
bool HasOwnFieldAngles();

/// The method itself, whatever the C library does. Only for FieldAngles and its tests.
void ComputeFieldAngles(const float* pY, const float* pX, int nCount, float* pAngle);
