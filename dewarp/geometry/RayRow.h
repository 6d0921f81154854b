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

/// Texture coordinate of the rim's distance from the image centre, doubled: 1 reaches the image's edge.
struct SRayScale
{
    float fU;
    float fV;
};

/// Ways to compute a row. All give the same bits where they are available.
enum ERayPath : int
{
    RAY_PATH_LIBRARY,  ///< arctangents one by one from the C library: everywhere
    RAY_PATH_PORTABLE, ///< own arctangents: where the C library's results are reproduced
    RAY_PATH_WIDE,     ///< the same for processors with wider vectors
};

/// The fastest way that is available; found on the first call by comparing a sample with the C library.
ERayPath BestRayPath();

/// Fills fU and fV of the first nRays entries (1 to nMaxRays): a ray's field angle atan2(d, fAxis),
/// d = |(fA, fB)|, is looked up in the table of 92 radii, and the radius is laid out in the ray's direction
/// around the image centre. A ray on the axis (d = 0) takes the centre.
/// Thread: any. Fails: never; the results are finite for finite rays and scales.
void MapRayRow(SRayRow& sRow, int nRays, const float* pTheta2r, const SRayScale& sScale);

/// MapRayRow by a given way, which must be available.
void MapRayRowBy(ERayPath ePath, SRayRow& sRow, int nRays, const float* pTheta2r, const SRayScale& sScale);

/// pAngle[i] = atan2(pY[i], pX[i]) for finite pY[i] >= 0 and pX[i], not both 0, as the ways with own
/// arctangents compute it.
void ComputeFieldAngles(const float* pY, const float* pX, int nCount, float* pAngle);
