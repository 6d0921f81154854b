#include "dewarp/lenses/RadialCurve.h"

#include "dewarp/lenses/GivenLens.h"
#include "dewarp/lenses/SLens.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

static const double RADIANS = std::numbers::pi / 180.0;
/// Rays of a calibration that land further out than this, focal lengths, lie in no frame.
static const double MOST_HEIGHT = 20.0;

CRadialCurve::CRadialCurve(const SLens& rLens)
{
    if (rLens.eKind == LENS_KIND_TABLE)
        SetRows(rLens);
    else if (rLens.eKind == LENS_KIND_MODEL)
        SetModel(rLens);
    else
        SetCalibration(rLens);
}

CRadialCurve::CRadialCurve(const SGivenLens& rLens)
{
    m_vAngles = {0.0, 90.0 * RADIANS};
    m_vHeights = {0.0, 90.0};
    if (!rLens.vDomain.empty()) {
        m_vAngles.clear();
        for (const float fDegrees : rLens.vDomain)
            m_vAngles.push_back(static_cast<double>(fDegrees) * RADIANS);
        m_vHeights.assign(rLens.vRange.begin(), rLens.vRange.end());
    }
    CloseAt(90.0 * RADIANS, 1.0);
}

/// Scales heights so that the one at the edge has a value, and goes on beyond.
void CRadialCurve::CloseAt(double fEdge, double fWholeHeight)
{
    m_fEdge = fEdge;
    m_fScale *= fWholeHeight / Inside(fEdge);
    m_fEdgeHeight = fWholeHeight;
    const double fStep = 1e-4;
    // A curve that ends flat must leave its end all the same.
    const double fLeast = 0.25 * fWholeHeight / fEdge;
    m_fBeyond = std::max((fWholeHeight - Inside(fEdge - fStep)) / fStep, fLeast);
}

void CRadialCurve::SetRows(const SLens& rLens)
{
    m_eForm = FORM_CUBIC;
    m_vAngles = rLens.vAngles;
    for (double& rAngle : m_vAngles)
        rAngle *= RADIANS;
    m_vHeights = rLens.vHeights;
    FindSlopes();
    CloseAt(m_vAngles.back(), 1.0);
}

/// Slopes at the rows of a cubic that never falls: those of the parabola through a row and its neighbours, as
/// far as three times the flatter side allows. Fritsch and Carlson, "Monotone piecewise cubic interpolation",
/// 1980.
void CRadialCurve::FindSlopes()
{
    const std::size_t n = m_vAngles.size();
    const auto Secant = [this](std::size_t i) {
        return (m_vHeights[i + 1] - m_vHeights[i]) / (m_vAngles[i + 1] - m_vAngles[i]);
    };
    m_vSlopes.assign(n, Secant(0));
    if (n == 2)
        return;
    for (std::size_t i = 1; i + 1 < n; ++i) {
        const double fBefore = m_vAngles[i] - m_vAngles[i - 1];
        const double fAfter = m_vAngles[i + 1] - m_vAngles[i];
        const double fParabola = (Secant(i - 1) * fAfter + Secant(i) * fBefore) / (fBefore + fAfter);
        m_vSlopes[i] = std::min(fParabola, 3.0 * std::min(Secant(i - 1), Secant(i)));
    }
    // A lens is alike on both sides of its axis, so it does not bend there; the last rows bend on.
    const auto End = [](double fSecant, double fNext, double fWeight) {
        return std::clamp(fSecant + fWeight * (fSecant - fNext), 0.0, 3.0 * fSecant);
    };
    m_vSlopes[0] = End(Secant(0), m_vSlopes[1], 0.5);
    m_vSlopes[n - 1] = End(Secant(n - 2), m_vSlopes[n - 2], 1.0);
}

void CRadialCurve::SetModel(const SLens& rLens)
{
    switch (static_cast<int>(rLens.eModel)) {
    case LENS_EQUISOLID:
        m_eForm = FORM_EQUISOLID;
        break;
    case LENS_STEREOGRAPHIC:
        m_eForm = FORM_STEREOGRAPHIC;
        break;
    case LENS_ORTHOGRAPHIC:
        m_eForm = FORM_ORTHOGRAPHIC;
        break;
    case LENS_RECTILINEAR:
        m_eForm = FORM_RECTILINEAR;
        break;
    default:
        m_vAngles = {0.0, 1.0};
        m_vHeights = {0.0, 1.0};
        break;
    }
    CloseAt(0.5 * rLens.fField * RADIANS, 1.0);
}

void CRadialCurve::SetCalibration(const SLens& rLens)
{
    const SLensCalibration& c = rLens.sCalibration;
    m_eForm = c.eModel == CALIBRATION_UNIFIED ? FORM_UNIFIED : FORM_POLYNOMIAL;
    std::copy(std::begin(c.afRadial), std::end(c.afRadial), m_aRadial.begin());
    m_fXi = c.fXi;
    FindEdge(c.fField > 0.0 ? 0.5 * c.fField * RADIANS : std::numbers::pi);
    if (m_fEdge > 0.0)
        CloseAt(m_fEdge, Inside(m_fEdge));
}

/// The last angle up to which a calibration's heights rise.
void CRadialCurve::FindEdge(double fMost)
{
    const double fStep = 0.05 * RADIANS;
    double fHeight = 0.0;
    m_fEdge = 0.0;
    for (int i = 1; m_fEdge < fMost; ++i) {
        const double fAngle = std::min(i * fStep, fMost);
        const double fNext = Inside(fAngle);
        if (!(fNext > fHeight) || !(fNext < MOST_HEIGHT) ||
            (m_eForm == FORM_UNIFIED && std::cos(fAngle) + m_fXi <= 0.0))
            break;
        fHeight = fNext;
        m_fEdge = fAngle;
    }
}

double CRadialCurve::Between(double fAngle) const
{
    const auto it = std::upper_bound(m_vAngles.begin() + 1, m_vAngles.end() - 1, fAngle);
    const std::size_t n = static_cast<std::size_t>(it - m_vAngles.begin());
    const double fSpan = m_vAngles[n] - m_vAngles[n - 1];
    const double t = (fAngle - m_vAngles[n - 1]) / fSpan;
    const double h0 = m_vHeights[n - 1];
    const double h1 = m_vHeights[n];
    if (m_eForm != FORM_CUBIC)
        return h0 * (1.0 - t) + h1 * t;
    const double s = 1.0 - t;
    return h0 * s * s * (1.0 + 2.0 * t) + h1 * t * t * (3.0 - 2.0 * t) +
           fSpan * t * s * (m_vSlopes[n - 1] * s - m_vSlopes[n] * t);
}

double CRadialCurve::Inside(double fAngle) const
{
    const double t2 = fAngle * fAngle;
    const std::array<double, 4>& k = m_aRadial;
    switch (m_eForm) {
    case FORM_EQUISOLID:
        return m_fScale * std::sin(0.5 * fAngle);
    case FORM_STEREOGRAPHIC:
        return m_fScale * std::tan(0.5 * fAngle);
    case FORM_ORTHOGRAPHIC:
        return m_fScale * std::sin(fAngle);
    case FORM_RECTILINEAR:
        return m_fScale * std::tan(fAngle);
    case FORM_POLYNOMIAL:
        return m_fScale * fAngle * (1.0 + t2 * (k[0] + t2 * (k[1] + t2 * (k[2] + t2 * k[3]))));
    case FORM_UNIFIED: {
        const double r = std::sin(fAngle) / (std::cos(fAngle) + m_fXi);
        return m_fScale * r * (1.0 + r * r * (k[0] + r * r * k[1]));
    }
    default:
        return m_fScale * Between(fAngle);
    }
}

double CRadialCurve::Height(double fAngle) const
{
    return fAngle <= m_fEdge ? Inside(fAngle) : m_fEdgeHeight + m_fBeyond * (fAngle - m_fEdge);
}

/// Newton's steps between two bounds that close in, halved where a step would leave them.
bool CRadialCurve::Angle(double fHeight, double& rAngle) const
{
    double fLow = 0.0;
    double fHigh = m_fEdge;
    rAngle = m_fEdge;
    if (!(fHeight < m_fEdgeHeight))
        return fHeight == m_fEdgeHeight;
    if (!(fHeight > 0.0)) {
        rAngle = 0.0;
        return fHeight == 0.0;
    }
    double fAngle = m_fEdge * fHeight / m_fEdgeHeight;
    for (int i = 0; i < 100 && fHigh - fLow > 1e-15; ++i) {
        const double fOff = Inside(fAngle) - fHeight;
        if (fOff == 0.0)
            break;
        (fOff > 0.0 ? fHigh : fLow) = fAngle;
        const double fStep = 1e-6;
        const double fSlope = (Inside(fAngle + fStep) - Inside(fAngle - fStep)) / (2.0 * fStep);
        double fNext = fAngle - fOff / fSlope;
        if (!(fNext > fLow && fNext < fHigh))
            fNext = 0.5 * (fLow + fHigh);
        if (std::fabs(fNext - fAngle) < 1e-15)
            break;
        fAngle = fNext;
    }
    rAngle = fAngle;
    return true;
}
