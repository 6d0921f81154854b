#include "PlainMeshes.h"

#include "dewarp/tables/LensDistortion.h"

#include <cmath>
#include <cstddef>

namespace
{

constexpr float PI = 3.1415927f;

struct SPoint
{
    float x, y, z, u, v;
};

struct SGrid
{
    SGrid(int nGridRows, int nGridCols)
        : nRows(nGridRows), nCols(nGridCols),
          vPoints(static_cast<std::size_t>(nGridRows) * static_cast<std::size_t>(nGridCols))
    {}
    SPoint& At(int r, int c)
    {
        return vPoints[static_cast<std::size_t>(r) * static_cast<std::size_t>(nCols) +
                       static_cast<std::size_t>(c)];
    }
    int nRows, nCols;
    std::vector<SPoint> vPoints;
};

struct STable
{
    const float* pDomain;
    const float* pRange;
    int n;
};

} // namespace

static STable TableOf(int nLensType)
{
    using namespace LENS_DISTORTION;
    if (nLensType == 215)
        return {fDomainForDSL215, fRangeForDSL215, 86};
    if (nLensType == 418)
        return {fDomainForDSL418, fRangeForDSL418, 101};
    if (nLensType == 419)
        return {fDomainForDSL419, fRangeForDSL419, 91};
    if (nLensType == 239)
        return {fDomainForDSL239, fRangeForDSL239, 101};
    return {nullptr, nullptr, 0};
}

float PlainRadius(int nLensType, int nWidth, int nHeight)
{
    int nSide = nWidth >= nHeight ? nWidth : nHeight;
    if (nLensType == 239)
        nSide = nWidth;
    if (nLensType == 418 || nLensType == 419)
        nSide = nHeight;
    return 0.5f * static_cast<float>(nSide);
}

/// The radius in halves of the image height.
static float HalfHeights(int nLensType, int nWidth, int nHeight)
{
    const int nHalfHeight = nHeight / 2;
    return PlainRadius(nLensType, nWidth, nHeight) / static_cast<float>(nHalfHeight);
}

std::vector<float> PlainTheta2r(int nLensType)
{
    const STable t = TableOf(nLensType);
    std::vector<float> v(92, 1.0f);
    for (int i = 0; i < 90; ++i) {
        const float a = static_cast<float>(i);
        if (t.n == 0) {
            v[static_cast<std::size_t>(i)] = a / 90.0f;
            continue;
        }
        const float r90 = t.pRange[t.n - 1] * 90.0f / t.pDomain[t.n - 1];
        int j = 0;
        while (t.pDomain[j + 1] <= a)
            ++j;
        v[static_cast<std::size_t>(i)] = t.pRange[j] / r90 + (a - t.pDomain[j]) *
                                                                 (t.pRange[j + 1] / r90 - t.pRange[j] / r90) /
                                                                 (t.pDomain[j + 1] - t.pDomain[j]);
    }
    return v;
}

std::vector<float> PlainR2Theta(int nLensType, float fRadius)
{
    const STable t = TableOf(nLensType);
    const int nRadius = static_cast<int>(fRadius);
    std::vector<float> v(static_cast<std::size_t>(nRadius) + 2);
    float fEnd = 90.0f;
    float r90 = 0.0f;
    if (t.n > 0 && t.pDomain[t.n - 1] > 90.0f) {
        int m = t.n - 2;
        while (!(t.pDomain[m] <= 90.0f))
            --m;
        r90 = t.pRange[m] +
              (t.pRange[m + 1] - t.pRange[m]) * (90.0f - t.pDomain[m]) / (t.pDomain[m + 1] - t.pDomain[m]);
    } else if (t.n > 0) {
        r90 = t.pRange[t.n - 1];
        fEnd = t.pDomain[t.n - 1];
    }
    for (int k = 0; static_cast<float>(k) < fRadius; ++k) {
        float& fEntry = v[static_cast<std::size_t>(k)];
        if (t.n == 0) {
            fEntry = static_cast<float>(k) / fRadius * 90.0f;
            continue;
        }
        const float h = (r90 * static_cast<float>(k)) / fRadius;
        int m = 1;
        while (m < t.n - 1 && !(t.pRange[m] > h))
            ++m;
        fEntry = t.pDomain[m - 1] +
                 (h - t.pRange[m - 1]) * (t.pDomain[m] - t.pDomain[m - 1]) / (t.pRange[m] - t.pRange[m - 1]);
    }
    v[static_cast<std::size_t>(nRadius)] = fEnd;
    v[static_cast<std::size_t>(nRadius) + 1] = fEnd;
    return v;
}

static float Lookup(const std::vector<float>& vTable, float t)
{
    if (t > 90.0f)
        t = 90.0f;
    if (!(t > 0.0f))
        t = 0.0f;
    const int i = static_cast<int>(t);
    const float* p = vTable.data() + i;
    return p[0] + (p[1] - p[0]) * (t - static_cast<float>(i));
}

static void Append(SPlainMesh& sMesh, const SPoint& s)
{
    float* pVertex = sMesh.vVertices.data() + 3 * sMesh.nCount;
    float* pTexCoord = sMesh.vTexCoords.data() + 2 * sMesh.nCount;
    pVertex[0] = s.x;
    pVertex[1] = s.y;
    pVertex[2] = s.z;
    pTexCoord[0] = s.u;
    pTexCoord[1] = s.v;
    ++sMesh.nCount;
}

static void Triangulate(SGrid& sGrid, int nCols, SPlainMesh& sMesh)
{
    for (int c = 0; c + 1 < nCols; ++c) {
        for (int r = 0; r + 1 < sGrid.nRows; ++r) {
            Append(sMesh, sGrid.At(r, c));
            Append(sMesh, sGrid.At(r + 1, c));
            Append(sMesh, sGrid.At(r + 1, c + 1));
            Append(sMesh, sGrid.At(r + 1, c + 1));
            Append(sMesh, sGrid.At(r, c + 1));
            Append(sMesh, sGrid.At(r, c));
        }
    }
}

static void Clear(SPlainMesh& sMesh, std::size_t nVertices, float fAspect)
{
    sMesh.vVertices.resize(3 * nVertices);
    sMesh.vTexCoords.resize(2 * nVertices);
    sMesh.nCount = 0;
    sMesh.fAspect = fAspect;
}

static float Clamp(float f, float fBound)
{
    if (f > fBound)
        return fBound;
    return f < -fBound ? -fBound : f;
}

void PlainCircularFisheye(int nLensType, int nWidth, int nHeight, SPlainMesh& sMesh)
{
    const float a = static_cast<float>(nWidth) / static_cast<float>(nHeight);
    const float R = PlainRadius(nLensType, nWidth, nHeight);
    Clear(sMesh, 182, a);
    Append(sMesh, {0.0f, 0.0f, 0.0f, 0.5f, 0.5f});
    const float s = 2.0f * (R * 1.02f) / static_cast<float>(nHeight);
    for (int k = 0; k <= 180; ++k) {
        const float t = static_cast<float>(2 * k) * PI / 180.0f;
        const float x = Clamp(s * std::cos(t), a);
        const float y = Clamp(s * std::sin(t), 1.0f);
        Append(sMesh, {x, y, 0.0f, x / a * 0.5f + 0.5f, 0.5f - y * 0.5f});
    }
}

void PlainPanorama(int nLensType, int nWidth, int nHeight, SPlainMesh& sMesh)
{
    const float a = static_cast<float>(nWidth) / static_cast<float>(nHeight);
    const float k = HalfHeights(nLensType, nWidth, nHeight);
    const std::vector<float> vTable = PlainTheta2r(nLensType);
    SGrid sGrid(21, 143);
    for (int c = 0; c < 143; ++c) {
        for (int i = 0; i < 21; ++i) {
            const float phi = static_cast<float>(c) * 6.2831855f / 142.0f + PI;
            const float sp = std::sin(phi) / a;
            const float cp = std::cos(phi);
            const float rho = k * Lookup(vTable, (static_cast<float>(i) * (-0.56f) / 20.0f + 1.0f) * 90.0f);
            const float x = -14.285715f - static_cast<float>(c) * (-14.285715f) / 142.0f;
            const float y = static_cast<float>(i) * (-0.1f) + 1.0f;
            sGrid.At(i, c) = {x, y, 0.0f, sp * (-0.5f) * rho + 0.5f, 0.5f - cp * (-0.5f) * rho};
        }
    }
    Clear(sMesh, 34080, 7.142857f);
    Triangulate(sGrid, 143, sMesh);
    Triangulate(sGrid, 143, sMesh);
    for (std::size_t n = 17040; n < 34080; ++n)
        sMesh.vVertices[3 * n] += 14.285715f;
}

/// Texture coordinate of a ray (A and B in the image plane, fAxis along the optical axis).
static void MapRay(float A, float B, float fAxis, const std::vector<float>& vTable, float k, float a,
                   SPoint& s)
{
    const float d = std::sqrt(B * B + A * A);
    const float t = std::atan2(d, fAxis) * 90.0f / 1.5707964f;
    const float q = Lookup(vTable, t);
    s.u = 0.5f;
    s.v = 0.5f;
    if (d != 0.0f) {
        s.u = (k / a * (B * q / d) + 1.0f) * 0.5f;
        s.v = (k * (A * q / d) + 1.0f) * 0.5f;
    }
}

static void MapStripPoint(int c, float e, float rho, const std::vector<float>& vTable, float k, float a,
                          SPoint& s)
{
    const float cr = std::cos(rho);
    const float sr = std::sin(rho);
    float alpha = static_cast<float>(c < 38 ? c : c - 38) * (-PI) / 74.0f;
    if (c >= 38)
        alpha = alpha - 1.5707964f;
    const float se = std::sin(e);
    const float ce = std::cos(e);
    const float A = cr * ce - sr * (se * std::cos(alpha));
    const float B = -(se * std::cos(alpha) * cr) - sr * ce;
    MapRay(A, B, -(se * std::sin(alpha)), vTable, k, a, s);
}

static void FillStrips(int nLensType, float fRotation, float fElevation, int nWidth, int nHeight,
                       float fShift, SGrid& sGrid)
{
    const float a = static_cast<float>(nWidth) / static_cast<float>(nHeight);
    const float k = HalfHeights(nLensType, nWidth, nHeight);
    const std::vector<float> vTable = PlainTheta2r(nLensType);
    const float rho = fRotation * (-PI) / 180.0f;
    for (int r = 0; r < 31; ++r) {
        const float e = fElevation * PI / 180.0f + 0.9424778f + static_cast<float>(r) * 0.0418879f;
        const float g = static_cast<float>(r) * 0.026666667f - 0.4f;
        for (int c = 0; c < 76; ++c) {
            SPoint& s = sGrid.At(r, c);
            MapStripPoint(c, e, rho, vTable, k, a, s);
            s.z = 0.0f;
            s.x = c < 38 ? g - fShift : fShift - g;
            s.y = c < 38 ? -(static_cast<float>(c) * 0.027027028f - 1.0f) - 0.5f
                         : static_cast<float>(c - 38) * 0.027027028f - 0.5f;
        }
    }
}

void PlainDualPanorama(int nLensType, float fRotation, float fElevation, int nWidth, int nHeight,
                       SPlainMesh& sMesh)
{
    SGrid sGrid(31, 76);
    FillStrips(nLensType, fRotation, fElevation, nWidth, nHeight, 0.4f, sGrid);
    Clear(sMesh, 13500, 2.5f);
    Triangulate(sGrid, 76, sMesh);
}

void PlainTriplePanorama(int nLensType, float fRotation, float fElevation, int nWidth, int nHeight,
                         SPlainMesh& sMesh)
{
    SGrid sGrid(31, 76);
    FillStrips(nLensType, fRotation, fElevation, nWidth, nHeight, 0.8f, sGrid);
    Clear(sMesh, 20160, 2.5f);
    Triangulate(sGrid, 76, sMesh);
    const float a = static_cast<float>(nWidth) / static_cast<float>(nHeight);
    const float k = HalfHeights(nLensType, nWidth, nHeight);
    const std::vector<float> vTable = PlainTheta2r(nLensType);
    const float rho = fRotation * (-PI) / 180.0f + 1.5707964f;
    for (int r = 0; r < 31; ++r) {
        for (int c = 0; c < 38; ++c) {
            SPoint& s = sGrid.At(r, c);
            s.x += 0.8f;
            if (fElevation != 0.0f) {
                MapStripPoint(c, 0.9424778f + static_cast<float>(r) * 0.0418879f, rho, vTable, k, a, s);
            } else {
                const float u = s.u;
                s.u = 0.5f - (s.v - 0.5f) / a;
                s.v = a * (u - 0.5f) + 0.5f;
            }
        }
    }
    Triangulate(sGrid, 38, sMesh);
}

void PlainPanoramaWall(int nLensType, float fTilt, float fRotation, bool bFixedSpan, int nWidth, int nHeight,
                       SPlainMesh& sMesh)
{
    const float a = static_cast<float>(nWidth) / static_cast<float>(nHeight);
    const float k = HalfHeights(nLensType, nWidth, nHeight);
    const std::vector<float> vTable = PlainTheta2r(nLensType);
    const float tau = fTilt * PI / 180.0f;
    const float rho = fRotation * (-PI) / 180.0f;
    float fColumnStart = 0.0f;
    float fColumnStep = -0.034906585f;
    float fRowStart = 0.0f;
    float fRowStep = 0.034906585f;
    if (!bFixedSpan) {
        fColumnStart = std::fabs(fTilt) * PI / 180.0f;
        fColumnStep = -((std::fabs(2.0f * fTilt) + 180.0f) * PI / 180.0f) / 90.0f;
        fRowStep = (2.0f * std::fabs(tau) + PI) / 90.0f;
        fRowStart = tau > 0.0f ? -2.0f * tau : 0.0f;
    }
    SGrid sGrid(91, 91);
    for (int r = 0; r < 91; ++r) {
        for (int c = 0; c < 91; ++c) {
            const float beta = fColumnStart + fColumnStep * static_cast<float>(c);
            const float e = fRowStart + fRowStep * static_cast<float>(r);
            const float se = std::sin(e);
            const float ce = std::cos(e);
            const float c1 = std::cos(tau);
            const float s1 = std::sin(tau);
            const float c2 = std::cos(rho);
            const float s2 = std::sin(rho);
            const float P = c1 * ce - s1 * se * std::sin(beta);
            const float Q = s1 * ce + c1 * se * std::sin(beta);
            const float A = c2 * P - s2 * se * std::cos(beta);
            const float B = -(se * std::cos(beta) * c2) - s2 * P;
            SPoint& s = sGrid.At(r, c);
            MapRay(A, B, -Q, vTable, k, a, s);
            s.x = static_cast<float>(c) * 0.022222223f - 1.0f;
            s.y = 2.0f * static_cast<float>(r) / 90.0f - 1.0f;
            s.z = Q;
        }
    }
    Clear(sMesh, 48600, 2.5f);
    Triangulate(sGrid, 91, sMesh);
}
