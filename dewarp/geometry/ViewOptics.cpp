#include "dewarp/geometry/ViewOptics.h"

#include "dewarp/geometry/OpticsMesh.h"
#include "dewarp/lenses/CameraOptics.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace
{

const double RADIANS = std::numbers::pi / 180.0;
/// Degrees off the axis where known lenses end.
const double RIM_ANGLE = 90.0;
/// Width of a strip of the dual and triple panoramas, and what it spans.
const double STRIP_WIDTH = 0.8;
const double STRIP_FIRST = 54.0; ///< degrees off the axis
const double STRIP_SPAN = 72.0;

} // namespace

/// Half of what a lens shows, degrees; known ones count as half-spheres, wherever the frame cuts them.
static double LensHalfField(const CCameraOptics* pOptics, const CLensMap& rLens)
{
    return pOptics != nullptr && pOptics->Said().bOwnLens ? rLens.HalfField() : RIM_ANGLE;
}

static SMountOrientation OrientationOf(const SMeshKey& rKey)
{
    return rKey.pOptics != nullptr ? rKey.pOptics->Said().sOrientation : SMountOrientation();
}

CViewOptics::CViewOptics(const SMeshKey& rKey)
    : m_sKey(rKey), m_oLens(rKey.pOptics.get(), rKey.eLens, rKey.nImageWidth, rKey.nImageHeight),
      m_oBody(OrientationOf(rKey)), m_oSurface(rKey),
      m_fWallSpan(2.0 * std::max(RIM_ANGLE, LensHalfField(rKey.pOptics.get(), m_oLens)))
{}

static CLensMap LensOf(const SDewarpParams& rParams)
{
    return CLensMap(rParams.pOptics.get(), rParams.eLensType, rParams.nImageWidth, rParams.nImageHeight);
}

double HalfFieldOf(const SDewarpParams& rParams)
{
    if (rParams.pOptics == nullptr)
        return RIM_ANGLE;
    const double fLean = CBodyTurn(rParams.pOptics->Said().sOrientation).Lean();
    return std::min(LensHalfField(rParams.pOptics.get(), LensOf(rParams)) + fLean, 180.0);
}

double WallSpanOf(const SDewarpParams& rParams)
{
    if (rParams.pOptics == nullptr)
        return 2.0 * RIM_ANGLE;
    return 2.0 * std::max(RIM_ANGLE, LensHalfField(rParams.pOptics.get(), LensOf(rParams)));
}

bool CViewOptics::HasDirections(EViewMesh eMesh)
{
    switch (eMesh) {
    case MESH_VCAM:
    case MESH_PANORAMA:
    case MESH_PANORAMA_WALL:
    case MESH_PANORAMA_DUAL:
    case MESH_PANORAMA_TRIPLE:
        return true;
    default:
        return IsSurfaceMesh(eMesh);
    }
}

/// A band of bearings, a turn wide and 2 high; its rows run from 90 to 39.6 degrees off the axis.
SDirection CViewOptics::OfStrip(double x, double y) const
{
    const bool bBand = m_sKey.sShape.HasBand();
    const double fUpper = bBand ? static_cast<double>(m_sKey.sShape.fBandUpper) : 90.0;
    const double fLower = bBand ? static_cast<double>(m_sKey.sShape.fBandLower) : 39.6;
    const double fWidth = 720.0 / (fUpper - fLower);
    const double fBearing = 2.0 * std::numbers::pi * x / fWidth;
    const double fAngle = (fUpper - (fUpper - fLower) * 0.5 * (1.0 - y)) * RADIANS;
    return {std::sin(fAngle) * std::sin(fBearing), std::sin(fAngle) * std::cos(fBearing), std::cos(fAngle)};
}

/// Rays of a camera that hangs under a ceiling or on a wall, turned about the optical axis.
SDirection CViewOptics::Turned(double fDown, double fSide, double fAhead, double fDegrees) const
{
    const double c = std::cos(fDegrees * RADIANS);
    const double s = std::sin(fDegrees * RADIANS);
    return {-fSide * c - s * fDown, -(c * fDown - s * fSide), fAhead};
}

/// Strips of 90 degrees of azimuth; the middle one of three follows no tilt and stands a quarter further.
SDirection CViewOptics::OfStrips(double x, double y) const
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
SDirection CViewOptics::OfWall(double x, double y) const
{
    const double fTau = static_cast<double>(m_sKey.fMountTilt);
    const bool bWide = !m_sKey.bStrict;
    const double fSpan = m_fWallSpan + (bWide ? 2.0 * std::fabs(fTau) : 0.0);
    // How far a lens beyond the half-sphere reaches past either side.
    const double fPast = 0.5 * m_fWallSpan - RIM_ANGLE;
    const double fAzimuth = (fPast + (bWide ? std::fabs(fTau) : 0.0) - fSpan * 0.5 * (x + 1.0)) * RADIANS;
    const double fElevation =
        ((bWide && fTau > 0.0 ? -2.0 * fTau : 0.0) - fPast + fSpan * 0.5 * (y + 1.0)) * RADIANS;
    const double fDown = std::cos(fElevation);
    const double fAhead = -std::sin(fElevation) * std::sin(fAzimuth);
    const double c = std::cos(fTau * RADIANS);
    const double s = std::sin(fTau * RADIANS);
    return Turned(c * fDown + s * fAhead, std::sin(fElevation) * std::cos(fAzimuth), c * fAhead - s * fDown,
                  -static_cast<double>(m_sKey.fPan));
}

/// What OfWall does, backwards.
double CViewOptics::WallRow(const SDirection& d) const
{
    const double fTau = static_cast<double>(m_sKey.fMountTilt);
    const double cr = std::cos(-static_cast<double>(m_sKey.fPan) * RADIANS);
    const double sr = std::sin(-static_cast<double>(m_sKey.fPan) * RADIANS);
    const double fTurnedDown = -(sr * d.x + cr * d.y);
    const double fDown = std::cos(fTau * RADIANS) * fTurnedDown - std::sin(fTau * RADIANS) * d.z;
    const double fElevation = std::acos(std::clamp(fDown, -1.0, 1.0)) / RADIANS;
    const bool bWide = !m_sKey.bStrict;
    const double fSpan = m_fWallSpan + (bWide ? 2.0 * std::fabs(fTau) : 0.0);
    const double fFirst = (bWide && fTau > 0.0 ? -2.0 * fTau : 0.0) - (0.5 * m_fWallSpan - RIM_ANGLE);
    return 2.0 * (fElevation - fFirst) / fSpan - 1.0;
}

SDirection CViewOptics::DirectionAt(double x, double y, double z) const
{
    switch (m_sKey.eMesh) {
    case MESH_PANORAMA:
        return OfStrip(x, y);
    case MESH_PANORAMA_WALL:
        return OfWall(x, y);
    case MESH_PANORAMA_DUAL:
    case MESH_PANORAMA_TRIPLE:
        return OfStrips(x, y);
    case MESH_EQUIRECTANGULAR:
    case MESH_CYLINDRICAL:
    case MESH_PANINI:
        return m_oSurface.DirectionAt(x, y);
    default:
        return {x, y, -z};
    }
}

void CViewOptics::At(double x, double y, double z, double& u, double& v) const
{
    SDirection d = m_oBody.ToBody(DirectionAt(x, y, z));
    if (!NeedsOpticsMesh(m_sKey))
        d.z = std::max(d.z, 0.0);
    double fFrameX = 0.0;
    double fFrameY = 0.0;
    m_oLens.ToFrame(d, fFrameX, fFrameY);
    u = fFrameX / m_sKey.nImageWidth;
    v = fFrameY / m_sKey.nImageHeight;
}
