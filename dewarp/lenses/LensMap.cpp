#include "dewarp/lenses/LensMap.h"

#include "dewarp/lenses/CameraOptics.h"
#include "dewarp/lenses/GivenLens.h"

#include <algorithm>
#include <cmath>
#include <numbers>

static const double DEGREES = 180.0 / std::numbers::pi;

/// The circle's radius where the host named none: a known lens's side of the frame; of others as the sensor's
/// pixels count, or the circle that fits into the frame.
static double OwnRadius(const SCameraOptics& rSaid, ELensType eLens, int nWidth, int nHeight)
{
    if (!rSaid.bOwnLens)
        return static_cast<double>(LensRadius(FindLens(eLens), nWidth, nHeight));
    const SLens& rLens = rSaid.sLens;
    if (rLens.eKind == LENS_KIND_TABLE && rLens.fPixelPitch > 0.0)
        return rLens.vHeights.back() / rLens.fPixelPitch;
    return 0.5 * std::min(nWidth, nHeight);
}

CLensMap::CLensMap(const CCameraOptics* pOptics, ELensType eLens, int nWidth, int nHeight)
    : m_pCurve(pOptics != nullptr ? &pOptics->Curve(eLens) : &CCameraOptics::KnownCurve(eLens)),
      m_nWidth(nWidth), m_nHeight(nHeight)
{
    static const SCameraOptics NOTHING;
    const SCameraOptics& rSaid = pOptics != nullptr ? pOptics->Said() : NOTHING;
    const SImageCircle& rCircle = rSaid.sCircle;
    m_bMirrorX = rSaid.bMirrorX;
    m_bMirrorY = rSaid.bMirrorY;
    if (rSaid.bOwnLens && rSaid.sLens.eKind == LENS_KIND_CALIBRATION) {
        SetCalibration(rSaid.sLens.sCalibration, nWidth, nHeight);
        // A calibration knows its own centre and scale: a circle only says where the light ends.
        m_bOwnRim = rCircle.IsSet();
        if (m_bOwnRim)
            m_sRim = {static_cast<double>(rCircle.fCenterX), static_cast<double>(rCircle.fCenterY),
                      static_cast<double>(rCircle.fRadiusX), static_cast<double>(rCircle.fRadiusY)};
        return;
    }
    Centre(rCircle, OwnRadius(rSaid, eLens, nWidth, nHeight));
    m_sRim = {m_fCenterX, m_fCenterY, m_fScaleX, m_fScaleY};
}

/// Heights at the edge are 1 here.
void CLensMap::Centre(const SImageCircle& rCircle, double fRadius)
{
    const bool bSet = rCircle.IsSet();
    m_fCenterX = bSet ? static_cast<double>(rCircle.fCenterX) : 0.5 * m_nWidth;
    m_fCenterY = bSet ? static_cast<double>(rCircle.fCenterY) : 0.5 * m_nHeight;
    m_fScaleX = bSet ? static_cast<double>(rCircle.fRadiusX) : fRadius;
    m_fScaleY = bSet ? static_cast<double>(rCircle.fRadiusY) : fRadius;
}

void CLensMap::SetCalibration(const SLensCalibration& c, int nWidth, int nHeight)
{
    const double fX = c.nWidth > 0 ? static_cast<double>(nWidth) / c.nWidth : 1.0;
    const double fY = c.nHeight > 0 ? static_cast<double>(nHeight) / c.nHeight : 1.0;
    // Calibrations count from the middle of the first pixel.
    m_fCenterX = (c.fCenterX + 0.5) * fX;
    m_fCenterY = (c.fCenterY + 0.5) * fY;
    m_fScaleX = c.fFocalX * fX;
    m_fScaleY = c.fFocalY * fY;
    m_fSkew = c.fSkew * fX;
    m_fXi = c.fXi;
    m_fRadial1 = c.afRadial[0];
    m_fRadial2 = c.afRadial[1];
    m_fTangential1 = c.afTangential[0];
    m_fTangential2 = c.afTangential[1];
    m_bTangential = c.eModel == CALIBRATION_UNIFIED && (m_fTangential1 != 0.0 || m_fTangential2 != 0.0);
    m_sRim = {m_fCenterX, m_fCenterY, m_fScaleX * m_pCurve->EdgeHeight(), m_fScaleY * m_pCurve->EdgeHeight()};
}

CLensMap::SPlace CLensMap::Distort(const SPlace& p) const
{
    const double r2 = p.x * p.x + p.y * p.y;
    const double fRadial = 1.0 + r2 * (m_fRadial1 + r2 * m_fRadial2);
    return {p.x * fRadial + 2.0 * m_fTangential1 * p.x * p.y + m_fTangential2 * (r2 + 2.0 * p.x * p.x),
            p.y * fRadial + m_fTangential1 * (r2 + 2.0 * p.y * p.y) + 2.0 * m_fTangential2 * p.x * p.y};
}

CLensMap::SPlace CLensMap::Land(double fAngle, double fCos, double fSin) const
{
    if (!m_bTangential) {
        const double h = m_pCurve->Height(fAngle);
        return {h * fCos, h * fSin};
    }
    const double fInside = std::min(fAngle, m_pCurve->Edge());
    const double r = std::sin(fInside) / (std::cos(fInside) + m_fXi);
    const SPlace sLanded = Distort({r * fCos, r * fSin});
    const double f = m_pCurve->Height(fAngle) / m_pCurve->Height(fInside);
    return fAngle > fInside ? SPlace{sLanded.x * f, sLanded.y * f} : sLanded;
}

bool CLensMap::ToFrame(const SDirection& d, double& x, double& y) const
{
    const bool bSeen = Unmirrored({m_bMirrorX ? -d.x : d.x, m_bMirrorY ? -d.y : d.y, d.z}, x, y);
    x = m_bMirrorX ? m_nWidth - x : x;
    y = m_bMirrorY ? m_nHeight - y : y;
    return bSeen;
}

bool CLensMap::Unmirrored(const SDirection& d, double& x, double& y) const
{
    const double fAcross = std::hypot(d.x, d.y);
    const double fAngle = std::atan2(fAcross, d.z);
    const bool bAxis = !(fAcross > 0.0);
    // Straight behind the camera there is no azimuth: any will do.
    const SPlace s = Land(fAngle, bAxis ? 1.0 : d.x / fAcross, bAxis ? 0.0 : -d.y / fAcross);
    x = m_fCenterX + m_fScaleX * s.x + m_fSkew * s.y;
    y = m_fCenterY + m_fScaleY * s.y;
    return fAngle <= m_pCurve->Edge() && IsLit(x, y);
}

bool CLensMap::IsLit(double x, double y) const
{
    return !m_bOwnRim || std::hypot((x - m_sRim.fCenterX) / m_sRim.fRadiusX,
                                    (y - m_sRim.fCenterY) / m_sRim.fRadiusY) <= 1.0;
}

/// Newton's steps. False when they lead nowhere.
bool CLensMap::Undistort(const SPlace& rLanded, SPlace& rPlain) const
{
    rPlain = rLanded;
    for (int i = 0; i < 50; ++i) {
        const SPlace f = Distort(rPlain);
        const double dx = rLanded.x - f.x;
        const double dy = rLanded.y - f.y;
        if (std::hypot(dx, dy) < 1e-14)
            return true;
        const double e = 1e-7;
        const SPlace a = Distort({rPlain.x + e, rPlain.y});
        const SPlace b = Distort({rPlain.x, rPlain.y + e});
        const double xx = (a.x - f.x) / e;
        const double yx = (a.y - f.y) / e;
        const double xy = (b.x - f.x) / e;
        const double yy = (b.y - f.y) / e;
        const double fDet = xx * yy - xy * yx;
        if (!(std::fabs(fDet) > 1e-12))
            return false;
        rPlain.x += (dx * yy - dy * xy) / fDet;
        rPlain.y += (dy * xx - dx * yx) / fDet;
    }
    const SPlace f = Distort(rPlain);
    return std::hypot(rLanded.x - f.x, rLanded.y - f.y) < 1e-9;
}

bool CLensMap::ToDirection(double x, double y, SDirection& rDirection) const
{
    x = m_bMirrorX ? m_nWidth - x : x;
    y = m_bMirrorY ? m_nHeight - y : y;
    SPlace s = {0.0, (y - m_fCenterY) / m_fScaleY};
    s.x = (x - m_fCenterX - m_fSkew * s.y) / m_fScaleX;
    double fAngle = 0.0;
    if (m_bTangential) {
        SPlace sPlain = {0.0, 0.0};
        if (!std::isfinite(s.x) || !std::isfinite(s.y) || !Undistort(s, sPlain))
            return false;
        s = sPlain;
        const double r2 = s.x * s.x + s.y * s.y;
        const double fRoot = 1.0 + (1.0 - m_fXi * m_fXi) * r2;
        if (!(fRoot >= 0.0))
            return false;
        const double fLength = (m_fXi + std::sqrt(fRoot)) / (1.0 + r2);
        fAngle = std::atan2(fLength * std::sqrt(r2), fLength - m_fXi);
        if (!(fAngle <= m_pCurve->Edge()))
            return false;
    } else if (!m_pCurve->Angle(std::hypot(s.x, s.y), fAngle)) {
        return false;
    }
    const double fLength = std::hypot(s.x, s.y);
    const double f = fLength > 0.0 ? std::sin(fAngle) / fLength : 0.0;
    rDirection = {m_bMirrorX ? -f * s.x : f * s.x, m_bMirrorY ? f * s.y : -f * s.y, std::cos(fAngle)};
    return IsLit(x, y);
}

SRimEllipse CLensMap::Rim() const
{
    SRimEllipse sRim = m_sRim;
    sRim.fCenterX = m_bMirrorX ? m_nWidth - sRim.fCenterX : sRim.fCenterX;
    sRim.fCenterY = m_bMirrorY ? m_nHeight - sRim.fCenterY : sRim.fCenterY;
    return sRim;
}

double CLensMap::Edge() const
{
    return m_pCurve->Edge();
}

double CLensMap::HalfField() const
{
    const double fEdge = m_pCurve->Edge() * DEGREES;
    if (m_nWidth < 1 || m_nHeight < 1)
        return fEdge;
    // The frame's corners lie farthest from the centre, wherever that is.
    double fMost = 0.0;
    for (int n = 0; n < 4; ++n) {
        SDirection d;
        if (!ToDirection(n % 2 == 0 ? 0.0 : m_nWidth, n < 2 ? 0.0 : m_nHeight, d))
            return fEdge;
        fMost = std::max(fMost, std::acos(std::clamp(d.z, -1.0, 1.0)) * DEGREES);
    }
    return fMost;
}
