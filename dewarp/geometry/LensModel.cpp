/// \file
/// Lens model: fisheye radius, the two lookup tables between field angle and radius, lens detection.
#include "dewarp/CustomGPUGeometry.h"
#include "dewarp/geometry/LensTable.h"
#include "dewarp/geometry/MeshInput.h"
#include "dewarp/tables/LensDistortion.h"
#include "platform/Assert.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <iterator>

/// One radius a degree: 0..90 and a guard entry for the interpolation at 90.
static constexpr int nThetaEntries = 92;

/// A million pixels of radius; images of that size do not exist.
static constexpr int nMaxRadiusSteps = 1 << 20;

template <int nEntries>
static SLensTable MakeTable(const float (&afDomain)[nEntries], const float (&afRange)[nEntries])
{
    return {afDomain, afRange, nEntries};
}

SLensTable FindLensTable(int nLensType)
{
    using namespace LENS_DISTORTION;
    switch (nLensType) {
    case LENS_DSL215:
        return MakeTable(fDomainForDSL215, fRangeForDSL215);
    case LENS_DSL418:
        return MakeTable(fDomainForDSL418, fRangeForDSL418);
    case LENS_DSL419:
        return MakeTable(fDomainForDSL419, fRangeForDSL419);
    case LENS_DSL239:
        return MakeTable(fDomainForDSL239, fRangeForDSL239);
    default:
        return {};
    }
}

void ResampleLensTable(const SLensTable& sTable, float* pMapping)
{
    const float* pDomain = sTable.pDomain;
    const float* pRange = sTable.pRange;
    const int nLast = sTable.nEntries - 1;
    // The last sample scaled to 90 degrees. The radius-to-angle table interpolates around 90 instead: on
    // purpose the two are not exact inverses.
    const float fRim = pRange[nLast] * 90.0f / pDomain[nLast];
    int j = 0;
    for (int i = 0; i < 90; ++i) {
        const float fDegrees = static_cast<float>(i);
        while (j + 1 < nLast && pDomain[j + 1] <= fDegrees)
            ++j;
        const float theta1 = pDomain[j];
        const float theta2 = pDomain[j + 1];
        if (!(theta1 <= fDegrees && theta2 > fDegrees))
            __assert2("dewarp/CustomGPUGeometry", __LINE__,
                      "void CCustomGPUGeometry::GenerateTheta2rMapping(int)", "theta1 <= i && theta2 > i");
        const float fFrom = pRange[j] / fRim;
        const float fTo = pRange[j + 1] / fRim;
        pMapping[i] = fFrom + (fDegrees - theta1) * (fTo - fFrom) / (theta2 - theta1);
    }
}

int CountRadiusSteps(float fRadius)
{
    if (!(fRadius > 0.0f))
        return 0;
    return fRadius < static_cast<float>(nMaxRadiusSteps) ? static_cast<int>(fRadius) : nMaxRadiusSteps;
}

/// Field angle at every whole pixel of the radius.
static void InvertLensTable(const SLensTable& sTable, float fRim, float fRadius, int nSteps, float* pMapping)
{
    const float* pDomain = sTable.pDomain;
    const float* pRange = sTable.pRange;
    int m = 1;
    for (int k = 0; k < nSteps; ++k) {
        const float fHeight = (fRim * static_cast<float>(k)) / fRadius;
        while (m < sTable.nEntries - 1 && pRange[m] <= fHeight)
            ++m;
        pMapping[k] = pDomain[m - 1] +
                      (fHeight - pRange[m - 1]) * (pDomain[m] - pDomain[m - 1]) / (pRange[m] - pRange[m - 1]);
    }
}

float CCustomGPUGeometry::DetermineRadius(int nLensType, int nWidth, int nHeight)
{
    m_nImageWidth = nWidth;
    m_nImageHeight = nHeight;
    int nDiameter = std::max(nWidth, nHeight);
    if (nLensType == LENS_DSL239)
        nDiameter = nWidth;
    else if (nLensType == LENS_DSL418 || nLensType == LENS_DSL419)
        nDiameter = nHeight;
    // Another thread may ask for the radius in pixels while a frame is drawn.
    std::atomic_ref<float>(m_fRadius).store(0.5f * static_cast<float>(nDiameter), std::memory_order_relaxed);
    return m_fRadius;
}

void CCustomGPUGeometry::GenerateTheta2rMapping(int nLensType)
{
    if (nLensType == m_nTheta2rLensType && m_pTheta2rMapping != nullptr && m_fTheta2rRadius == m_fRadius)
        return;
    m_fTheta2rRadius = m_fRadius;
    m_nTheta2rLensType = nLensType;
    delete[] m_pTheta2rMapping;
    m_pTheta2rMapping = nullptr;
    m_pTheta2rMapping = new float[nThetaEntries];
    const SLensTable sTable = FindLensTable(nLensType);
    if (sTable.nEntries > 0) {
        ResampleLensTable(sTable, m_pTheta2rMapping);
    } else {
        for (int i = 0; i < 90; ++i)
            m_pTheta2rMapping[i] = static_cast<float>(i) / 90.0f;
    }
    m_pTheta2rMapping[90] = 1.0f;
    m_pTheta2rMapping[91] = 1.0f;
}

void CCustomGPUGeometry::GenerateR2ThetaMapping(int nLensType)
{
    if (nLensType == m_nR2ThetaLensType && m_pR2ThetaMapping != nullptr && m_fR2ThetaRadius == m_fRadius)
        return;
    m_nR2ThetaLensType = nLensType;
    m_fR2ThetaRadius = m_fRadius;
    delete[] m_pR2ThetaMapping;
    m_pR2ThetaMapping = nullptr;
    const int nSteps = CountRadiusSteps(m_fRadius);
    m_pR2ThetaMapping = new float[static_cast<std::size_t>(nSteps) + 2];
    const SLensTable sTable = FindLensTable(nLensType);
    float fEnd = 90.0f;
    if (sTable.nEntries == 0) {
        for (int k = 0; k < nSteps; ++k)
            m_pR2ThetaMapping[k] = static_cast<float>(k) / m_fRadius * 90.0f;
    } else {
        const float* pDomain = sTable.pDomain;
        const float* pRange = sTable.pRange;
        int m = sTable.nEntries - 1;
        float fRim = pRange[m];
        if (pDomain[m] > 90.0f) {
            do
                --m;
            while (pDomain[m] > 90.0f);
            fRim = pRange[m] +
                   (pRange[m + 1] - pRange[m]) * (90.0f - pDomain[m]) / (pDomain[m + 1] - pDomain[m]);
        } else {
            fEnd = pDomain[m];
        }
        InvertLensTable(sTable, fRim, m_fRadius, nSteps, m_pR2ThetaMapping);
    }
    m_pR2ThetaMapping[nSteps] = fEnd;
    m_pR2ThetaMapping[nSteps + 1] = fEnd;
}

void CCustomGPUGeometry::Fisheye2Sphere(float x, float y, float& fX, float& fY, float& fZ) const
{
    const float fDistance = std::sqrt(x * x + y * y);
    if (m_pR2ThetaMapping == nullptr || !std::isfinite(fDistance)) {
        fX = 0.0f;
        fY = 0.0f;
        fZ = 1.0f;
        return;
    }
    // Beyond the table every angle is the end angle, so the last interval serves all larger distances.
    const int nLast = CountRadiusSteps(m_fR2ThetaRadius);
    const int k = fDistance < static_cast<float>(nLast) ? static_cast<int>(fDistance) : nLast;
    const float fPart = k < nLast ? fDistance - static_cast<float>(k) : fDistance - std::floor(fDistance);
    const float fTheta =
        (m_pR2ThetaMapping[k + 1] * fPart + m_pR2ThetaMapping[k] * (1.0f - fPart)) * fPi / 180.0f;
    const float fPhi = std::atan2(y, x);
    fX = std::sin(fTheta) * std::cos(fPhi);
    fY = std::sin(fTheta) * std::sin(fPhi);
    fZ = std::cos(fTheta);
}

/// Frame size that a camera with a known lens delivers.
struct SLensSize
{
    int nWidth;
    int nHeight;
    ELensType eLens;
};

static constexpr SLensSize LENS_SIZES[] = {
    {1056, 960, LENS_DSL215},  {2144, 1944, LENS_DSL215}, {1488, 1360, LENS_DSL215},
    {528, 480, LENS_DSL215},   {1056, 992, LENS_DSL419},  {2080, 1960, LENS_DSL419},
    {1472, 1384, LENS_DSL419}, {544, 512, LENS_DSL419},   {2528, 2376, LENS_DSL419},
    {3200, 3000, LENS_DSL419}, {3360, 3000, LENS_DSL239}, {2240, 2000, LENS_DSL239},
    {1568, 1400, LENS_DSL239}, {1120, 1000, LENS_DSL239}, {672, 600, LENS_DSL239},
    {2992, 2992, LENS_DSL419}, {2800, 2800, LENS_DSL419}, {2304, 2304, LENS_DSL419},
    {1920, 1920, LENS_DSL419}, {512, 512, LENS_DSL419},   {1440, 1440, LENS_DSL419},
    {992, 992, LENS_DSL419},
};

ELensType AutoDetectLensType(int nWidth, int nHeight)
{
    const SLensSize* pFound =
        std::find_if(std::begin(LENS_SIZES), std::end(LENS_SIZES), [&](const SLensSize& sSize) {
            return sSize.nWidth == nWidth && sSize.nHeight == nHeight;
        });
    return pFound == std::end(LENS_SIZES) ? LENS_UNKNOWN : pFound->eLens;
}
