#include "dewarp/geometry/Surface.h"

#include <algorithm>
#include <cmath>
#include <numbers>

static const double RADIANS = std::numbers::pi / 180.0;

SViewShape CSurface::SpanOf(EViewMesh eMesh, EMountType eMount, const SViewShape& rShape)
{
    const bool bWall = eMount == MOUNT_WALL;
    SViewShape sSpan;
    switch (eMesh) {
    case MESH_EQUIRECTANGULAR:
        sSpan.fSpanX = bWall ? 180.0f : 360.0f;
        sSpan.fSpanY = 90.0f;
        break;
    case MESH_CYLINDRICAL:
        sSpan.fSpanX = bWall ? 180.0f : 360.0f;
        sSpan.fSpanY = bWall ? 80.0f : 60.0f;
        break;
    default:
        sSpan.fSpanX = 180.0f;
        sSpan.fSpanY = 90.0f;
        break;
    }
    const float fMostY = eMesh == MESH_EQUIRECTANGULAR ? 180.0f : 160.0f;
    if (rShape.fSpanX > 0.0f)
        sSpan.fSpanX = std::min(rShape.fSpanX, eMesh == MESH_PANINI ? 300.0f : 360.0f);
    if (rShape.fSpanY > 0.0f)
        sSpan.fSpanY = std::min(rShape.fSpanY, fMostY);
    return sSpan;
}

CSurface::CSurface(const SMeshKey& rKey) : m_sKey(rKey)
{
    const SViewShape sSpan = SpanOf(rKey.eMesh, rKey.eMount, rKey.sShape);
    const double fX = 0.5 * static_cast<double>(sSpan.fSpanX) * RADIANS;
    const double fY = 0.5 * static_cast<double>(sSpan.fSpanY) * RADIANS;
    const double fTilt = static_cast<double>(rKey.fTilt) * RADIANS;
    m_fHalfX = rKey.eMesh == MESH_PANINI ? 2.0 * std::tan(0.5 * fX) : fX;
    m_fHalfY = rKey.eMesh == MESH_EQUIRECTANGULAR ? fY : std::tan(fY);
    if (rKey.eMesh == MESH_EQUIRECTANGULAR)
        m_fMiddleY = fTilt;
    else if (rKey.eMesh == MESH_CYLINDRICAL)
        m_fMiddleY = std::tan(fTilt);
}

double CSurface::LowestRow() const
{
    if (m_sKey.eMesh != MESH_EQUIRECTANGULAR)
        return -1.0;
    return std::clamp((-0.5 * std::numbers::pi - m_fMiddleY) / m_fHalfY, -1.0, 1.0);
}

double CSurface::HighestRow() const
{
    if (m_sKey.eMesh != MESH_EQUIRECTANGULAR)
        return 1.0;
    return std::clamp((0.5 * std::numbers::pi - m_fMiddleY) / m_fHalfY, -1.0, 1.0);
}

/// From bearing, angle above the horizon (radians) to the mount's own axes.
static SDirection OnMount(const SMeshKey& rKey, double fRight, double fAhead, double fUp)
{
    const double fPan = static_cast<double>(rKey.fPan) * RADIANS;
    const double x = std::cos(fPan) * fRight + std::sin(fPan) * fAhead;
    const double y = std::cos(fPan) * fAhead - std::sin(fPan) * fRight;
    if (rKey.eMount == MOUNT_FLOOR)
        return {-x, y, fUp};
    if (rKey.eMount != MOUNT_WALL)
        return {x, y, -fUp};
    // A wall camera that looks up or down sees the vertical lean.
    const double c = std::cos(static_cast<double>(rKey.fMountTilt) * RADIANS);
    const double s = std::sin(static_cast<double>(rKey.fMountTilt) * RADIANS);
    return {x, c * fUp - s * y, c * y + s * fUp};
}

SDirection CSurface::DirectionAt(double x, double y) const
{
    const double fX = x * m_fHalfY;
    const double fY = m_fMiddleY + y * m_fHalfY;
    if (m_sKey.eMesh != MESH_PANINI) {
        const double fAbove = m_sKey.eMesh == MESH_EQUIRECTANGULAR ? fY : std::atan(fY);
        return OnMount(m_sKey, std::cos(fAbove) * std::sin(fX), std::cos(fAbove) * std::cos(fX),
                       std::sin(fAbove));
    }
    const double fBearing = 2.0 * std::atan(0.5 * fX);
    const double fAbove = std::atan(fY / (1.0 + 0.25 * fX * fX));
    const double fRight = std::cos(fAbove) * std::sin(fBearing);
    const double fUp = std::sin(fAbove);
    const double fAhead = std::cos(fAbove) * std::cos(fBearing);
    const double cr = std::cos(static_cast<double>(m_sKey.fRoll) * RADIANS);
    const double sr = std::sin(static_cast<double>(m_sKey.fRoll) * RADIANS);
    const double ct = std::cos(static_cast<double>(m_sKey.fTilt) * RADIANS);
    const double st = std::sin(static_cast<double>(m_sKey.fTilt) * RADIANS);
    const double fRolledRight = cr * fRight + sr * fUp;
    const double fRolledUp = cr * fUp - sr * fRight;
    return OnMount(m_sKey, fRolledRight, ct * fAhead - st * fRolledUp, ct * fRolledUp + st * fAhead);
}

CSurface::SHeading CSurface::HeadingOf(const SDewarpParams& rParams, const SDirection& d)
{
    double x = d.x;
    double y = d.y;
    double fUp = -d.z;
    if (rParams.eMountType == MOUNT_FLOOR) {
        x = -d.x;
        fUp = d.z;
    } else if (rParams.eMountType == MOUNT_WALL) {
        const double c = std::cos(static_cast<double>(rParams.fMountTilt) * RADIANS);
        const double s = std::sin(static_cast<double>(rParams.fMountTilt) * RADIANS);
        y = c * d.z - s * d.y;
        fUp = c * d.y + s * d.z;
    }
    return {std::atan2(x, y) / RADIANS, std::atan2(fUp, std::hypot(x, y)) / RADIANS};
}
