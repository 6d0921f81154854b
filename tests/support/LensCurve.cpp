#include "tests/support/LensCurve.h"

#include "dewarp/tables/LensDistortion.h"

#include <algorithm>

static constexpr int ANGLE_STEPS = 4800; // of heights up to 1.2

CLensCurve::CLensCurve(int nLensType)
{
    switch (nLensType) {
    case 215:
        m_pDomain = LENS_DISTORTION::fDomainForDSL215;
        m_pRange = LENS_DISTORTION::fRangeForDSL215;
        m_nCount = 86;
        break;
    case 239:
        m_pDomain = LENS_DISTORTION::fDomainForDSL239;
        m_pRange = LENS_DISTORTION::fRangeForDSL239;
        m_nCount = 101;
        break;
    case 418:
        m_pDomain = LENS_DISTORTION::fDomainForDSL418;
        m_pRange = LENS_DISTORTION::fRangeForDSL418;
        m_nCount = 101;
        break;
    case 419:
        m_pDomain = LENS_DISTORTION::fDomainForDSL419;
        m_pRange = LENS_DISTORTION::fRangeForDSL419;
        m_nCount = 91;
        break;
    default:
        break;
    }
    m_fHeight90 = Sample(90.0);
    for (int i = 0; i <= ANGLE_STEPS; ++i) {
        double fLow = 0.0;
        double fHigh = 120.0;
        for (int k = 0; k < 48; ++k) {
            const double fMiddle = 0.5 * (fLow + fHigh);
            (Height(fMiddle) < 1.2 * i / ANGLE_STEPS ? fLow : fHigh) = fMiddle;
        }
        m_vAngles.push_back(0.5 * (fLow + fHigh));
    }
}

double CLensCurve::Sample(double fDegrees) const
{
    if (m_nCount == 0)
        return fDegrees / 90.0;
    // Evenly spaced samples.
    const int i =
        std::clamp(1 + static_cast<int>(fDegrees / static_cast<double>(m_pDomain[1])), 1, m_nCount - 1);
    const double fStart = m_pDomain[i - 1];
    const double fShare = (fDegrees - fStart) / (static_cast<double>(m_pDomain[i]) - fStart);
    return static_cast<double>(m_pRange[i - 1]) * (1.0 - fShare) + static_cast<double>(m_pRange[i]) * fShare;
}

double CLensCurve::Height(double fDegrees) const
{
    return Sample(fDegrees) / m_fHeight90;
}

double CLensCurve::Angle(double fHeight) const
{
    const double fStep = std::clamp(fHeight, 0.0, 1.2) * ANGLE_STEPS / 1.2;
    const std::size_t i = std::min(static_cast<std::size_t>(fStep), m_vAngles.size() - 2);
    const double fShare = fStep - static_cast<double>(i);
    return m_vAngles[i] * (1.0 - fShare) + m_vAngles[i + 1] * fShare;
}

double CLensCurve::PanoramaHeight(double fDegrees) const
{
    if (fDegrees >= 90.0)
        return 1.0;
    if (m_nCount == 0)
        return fDegrees / 90.0;
    const double fNormal =
        static_cast<double>(m_pRange[m_nCount - 1]) * 90.0 / static_cast<double>(m_pDomain[m_nCount - 1]);
    return Sample(fDegrees) / fNormal;
}

double CLensCurve::Radius(int nLensType, int nWidth, int nHeight)
{
    if (nLensType == 239)
        return 0.5 * nWidth;
    if (nLensType == 418 || nLensType == 419)
        return 0.5 * nHeight;
    return 0.5 * std::max(nWidth, nHeight);
}
