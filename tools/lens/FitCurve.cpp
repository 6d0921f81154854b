#include "lens/FitCurve.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

static const double RADIANS = std::numbers::pi / 180.0;
static const double QUARTER_TURN = 90.0 * RADIANS;

CFitCurve::CFitCurve(const SFitModel& rModel, double fFocal, const std::vector<double>& vCoefficients)
    : m_sModel(rModel), m_fFocal(fFocal)
{
    if (!rModel.IsPolynomial()) {
        m_fMostAngle = 0.5 * MostLensField(rModel.eModel) * RADIANS;
    } else {
        const std::size_t nCount = std::min(vCoefficients.size(), m_aCoefficients.size());
        std::copy_n(vCoefficients.begin(), nCount, m_aCoefficients.begin());
        const double fStep = 0.5 * RADIANS;
        while (m_fMostAngle + fStep < 140.0 * RADIANS && Slope(m_fMostAngle + fStep) > 0.0)
            m_fMostAngle += fStep;
    }
    m_fMostHeight = Height(m_fMostAngle);
}

double CFitCurve::Height(double t) const
{
    if (m_sModel.IsPolynomial()) {
        const double u = t * t / (QUARTER_TURN * QUARTER_TURN);
        const std::array<double, 4>& a = m_aCoefficients;
        return m_fFocal * t * (1.0 + u * (a[0] + u * (a[1] + u * (a[2] + u * a[3]))));
    }
    switch (static_cast<int>(m_sModel.eModel)) {
    case LENS_EQUISOLID:
        return m_fFocal * 2.0 * std::sin(0.5 * t);
    case LENS_STEREOGRAPHIC:
        return m_fFocal * 2.0 * std::tan(0.5 * t);
    case LENS_ORTHOGRAPHIC:
        return m_fFocal * std::sin(t);
    case LENS_RECTILINEAR:
        return m_fFocal * std::tan(t);
    default:
        return m_fFocal * t;
    }
}

double CFitCurve::Slope(double t) const
{
    if (m_sModel.IsPolynomial()) {
        const double u = t * t / (QUARTER_TURN * QUARTER_TURN);
        const std::array<double, 4>& a = m_aCoefficients;
        return m_fFocal * (1.0 + u * (3.0 * a[0] + u * (5.0 * a[1] + u * (7.0 * a[2] + u * 9.0 * a[3]))));
    }
    switch (static_cast<int>(m_sModel.eModel)) {
    case LENS_EQUISOLID:
        return m_fFocal * std::cos(0.5 * t);
    case LENS_STEREOGRAPHIC:
        return m_fFocal / (std::cos(0.5 * t) * std::cos(0.5 * t));
    case LENS_ORTHOGRAPHIC:
        return m_fFocal * std::cos(t);
    case LENS_RECTILINEAR:
        return m_fFocal / (std::cos(t) * std::cos(t));
    default:
        return m_fFocal;
    }
}

/// Newton's steps between bounds that close in.
double CFitCurve::PolynomialAngle(double fHeight) const
{
    double fLow = 0.0;
    double fHigh = m_fMostAngle;
    double t = m_fMostAngle * fHeight / m_fMostHeight;
    for (int i = 0; i < 60; ++i) {
        const double fOff = Height(t) - fHeight;
        (fOff > 0.0 ? fHigh : fLow) = t;
        double fNext = t - fOff / Slope(t);
        if (!(fNext > fLow && fNext < fHigh))
            fNext = 0.5 * (fLow + fHigh);
        if (std::fabs(fNext - t) < 1e-14)
            break;
        t = fNext;
    }
    return t;
}

double CFitCurve::Angle(double fHeight) const
{
    if (!(fHeight > 0.0))
        return 0.0;
    if (!(fHeight < m_fMostHeight))
        return m_fMostAngle;
    if (m_sModel.IsPolynomial())
        return PolynomialAngle(fHeight);
    const double h = fHeight / m_fFocal;
    switch (static_cast<int>(m_sModel.eModel)) {
    case LENS_EQUISOLID:
        return 2.0 * std::asin(0.5 * h);
    case LENS_STEREOGRAPHIC:
        return 2.0 * std::atan(0.5 * h);
    case LENS_ORTHOGRAPHIC:
        return std::asin(h);
    case LENS_RECTILINEAR:
        return std::atan(h);
    default:
        return h;
    }
}

std::array<double, 4> CFitCurve::Radial() const
{
    std::array<double, 4> aRadial{};
    double fUnit = 1.0;
    for (std::size_t i = 0; i < aRadial.size(); ++i) {
        fUnit *= QUARTER_TURN * QUARTER_TURN;
        aRadial[i] = m_aCoefficients[i] / fUnit;
    }
    return aRadial;
}
