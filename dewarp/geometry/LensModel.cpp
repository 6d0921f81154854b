/// \file
/// The generator's side of the lens: fisheye radius, the two lookup tables, pixels to directions.
#include "dewarp/geometry/LensModel.h"

#include "dewarp/geometry/CustomGPUGeometry.h"
#include "dewarp/geometry/MeshInput.h"
#include "platform/Assert.h"

#include <atomic>
#include <cmath>
#include <cstddef>

void FillTheta2r(const SGivenLens& rLens, float* pTheta2r)
{
    if (!FillAngleToRadius(rLens, pTheta2r))
        __assert2("dewarp/CustomGPUGeometry", __LINE__,
                  "void CCustomGPUGeometry::GenerateTheta2rMapping(int)", "theta1 <= i && theta2 > i");
}

float CCustomGPUGeometry::DetermineRadius(int nLensType, int nWidth, int nHeight)
{
    m_nImageWidth = nWidth;
    m_nImageHeight = nHeight;
    // Another thread may ask for the radius in pixels while a frame is drawn.
    std::atomic_ref<float>(m_fRadius).store(LensRadius(FindLens(nLensType), nWidth, nHeight),
                                            std::memory_order_relaxed);
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
    m_pTheta2rMapping = new float[nAngleEntries];
    FillTheta2r(FindLens(nLensType), m_pTheta2rMapping);
}

void CCustomGPUGeometry::GenerateR2ThetaMapping(int nLensType)
{
    if (nLensType == m_nR2ThetaLensType && m_pR2ThetaMapping != nullptr && m_fR2ThetaRadius == m_fRadius)
        return;
    m_nR2ThetaLensType = nLensType;
    m_fR2ThetaRadius = m_fRadius;
    delete[] m_pR2ThetaMapping;
    m_pR2ThetaMapping = nullptr;
    m_pR2ThetaMapping = new float[static_cast<std::size_t>(CountRadiusSteps(m_fRadius)) + 2];
    FillRadiusToAngle(FindLens(nLensType), m_fRadius, m_pR2ThetaMapping);
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
