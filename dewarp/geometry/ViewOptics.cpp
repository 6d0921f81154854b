#include "dewarp/geometry/ViewOptics.h"

#include "dewarp/lenses/SLens.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace
{

const double RADIANS = std::numbers::pi / 180.0;
/// Width of one turn of the panorama's band, whose height is 2.
const double BAND_WIDTH = 100.0 / 7.0;
/// Width of a strip of the dual and triple panoramas, and what it spans.
const double STRIP_WIDTH = 0.8;
const double STRIP_FIRST = 54.0; ///< degrees off the axis
const double STRIP_SPAN = 72.0;

/// Height of an angle, between the lens's rows next to it.
double HeightAt(const SLens& rLens, double fDegrees)
{
    if (rLens.vDomain.empty())
        return fDegrees;
    const auto it = std::upper_bound(rLens.vDomain.begin() + 1, rLens.vDomain.end() - 1, fDegrees,
                                     [](double f, float fRow) { return f < static_cast<double>(fRow); });
    const std::size_t n = static_cast<std::size_t>(it - rLens.vDomain.begin());
    const double fFirst = static_cast<double>(rLens.vDomain[n - 1]);
    const double fShare = (fDegrees - fFirst) / (static_cast<double>(rLens.vDomain[n]) - fFirst);
    return static_cast<double>(rLens.vRange[n - 1]) * (1.0 - fShare) +
           static_cast<double>(rLens.vRange[n]) * fShare;
}

} // namespace

CViewOptics::CViewOptics(const SMeshKey& rKey)
    : m_sKey(rKey), m_pLens(&FindLens(rKey.eLens)),
      m_fRadius(static_cast<double>(LensRadius(*m_pLens, rKey.nImageWidth, rKey.nImageHeight))),
      m_fRimHeight(HeightAt(*m_pLens, 90.0))
{}

bool CViewOptics::HasDirections() const
{
    switch (m_sKey.eMesh) {
    case MESH_VCAM:
    case MESH_PANORAMA:
    case MESH_PANORAMA_WALL:
    case MESH_PANORAMA_DUAL:
    case MESH_PANORAMA_TRIPLE:
        return true;
    default:
        return false;
    }
}

/// A band of bearings, a turn wide; its rows run from 90 to 39.6 degrees off the axis.
CViewOptics::SDirection CViewOptics::OfStrip(double x, double y) const
{
    const double fBearing = 2.0 * std::numbers::pi * x / BAND_WIDTH;
    const double fAngle = 90.0 * (1.0 - 0.28 * (1.0 - y)) * RADIANS;
    return {std::sin(fAngle) * std::sin(fBearing), std::sin(fAngle) * std::cos(fBearing), std::cos(fAngle)};
}

/// Rays of a camera that hangs under a ceiling or on a wall, turned about the optical axis.
CViewOptics::SDirection CViewOptics::Turned(double fDown, double fSide, double fAhead, double fDegrees) const
{
    const double c = std::cos(fDegrees * RADIANS);
    const double s = std::sin(fDegrees * RADIANS);
    return {-fSide * c - s * fDown, -(c * fDown - s * fSide), fAhead};
}

/// Strips of 90 degrees of azimuth; the middle one of three follows no tilt and stands a quarter further.
CViewOptics::SDirection CViewOptics::OfStrips(double x, double y) const
{
    const bool bTriple = m_sKey.eMesh == MESH_PANORAMA_TRIPLE;
    const double fEdge = STRIP_WIDTH * (bTriple ? 1.5 : 1.0);
    const bool bMiddle = bTriple && std::fabs(x) <= STRIP_WIDTH / 2;
    const bool bLeft = bMiddle || x < 0.0;
    const double fAcross = (bMiddle ? x + STRIP_WIDTH / 2 : fEdge - std::fabs(x)) / STRIP_WIDTH;
    const double fAzimuth = (bLeft ? (y - 0.5) * 90.0 : (-0.5 - y) * 90.0 - 90.0) * RADIANS;
    const double fTilt = bMiddle ? 0.0 : static_cast<double>(m_sKey.fTilt);
    const double fElevation = (STRIP_FIRST + STRIP_SPAN * fAcross + fTilt) * RADIANS;
    const double fOut = std::sin(fElevation);
    return Turned(std::cos(fElevation), fOut * std::cos(fAzimuth), -fOut * std::sin(fAzimuth),
                  (bMiddle ? 90.0 : 0.0) - static_cast<double>(m_sKey.fPan));
}

/// The half-sphere before an inclined camera: columns are azimuth, rows elevation. An inclination widens
/// both, so that the inclined half-sphere stays inside, unless limits are strict.
CViewOptics::SDirection CViewOptics::OfWall(double x, double y) const
{
    const double fTau = static_cast<double>(m_sKey.fMountTilt);
    const bool bWide = !m_sKey.bStrict;
    const double fSpan = 180.0 + (bWide ? 2.0 * std::fabs(fTau) : 0.0);
    const double fAzimuth = ((bWide ? std::fabs(fTau) : 0.0) - fSpan * 0.5 * (x + 1.0)) * RADIANS;
    const double fElevation = ((bWide && fTau > 0.0 ? -2.0 * fTau : 0.0) + fSpan * 0.5 * (y + 1.0)) * RADIANS;
    const double fDown = std::cos(fElevation);
    const double fAhead = -std::sin(fElevation) * std::sin(fAzimuth);
    const double c = std::cos(fTau * RADIANS);
    const double s = std::sin(fTau * RADIANS);
    return Turned(c * fDown + s * fAhead, std::sin(fElevation) * std::cos(fAzimuth), c * fAhead - s * fDown,
                  -static_cast<double>(m_sKey.fPan));
}

void CViewOptics::At(double x, double y, double z, double& u, double& v) const
{
    SDirection d = {x, y, -z};
    if (m_sKey.eMesh == MESH_PANORAMA)
        d = OfStrip(x, y);
    else if (m_sKey.eMesh == MESH_PANORAMA_WALL)
        d = OfWall(x, y);
    else if (m_sKey.eMesh != MESH_VCAM)
        d = OfStrips(x, y);
    const double fAcross = std::hypot(d.x, d.y);
    const double fAngle = std::min(std::atan2(fAcross, d.z) / RADIANS, 90.0);
    const double fDistance = m_fRadius * HeightAt(*m_pLens, fAngle) / m_fRimHeight;
    const double f = fAcross > 0.0 ? fDistance / fAcross : 0.0;
    u = 0.5 + f * d.x / m_sKey.nImageWidth;
    v = 0.5 - f * d.y / m_sKey.nImageHeight;
}
