#include "tests/support/ReferenceView.h"

#include <algorithm>
#include <cmath>
#include <numbers>

static constexpr double RADIANS = std::numbers::pi / 180.0;
/// Half of the width of one turn of the panorama strip, whose half-height is 1.
static constexpr double STRIP = 50.0 / 7.0;

static bool IsStrip(EViewType eView)
{
    return eView == VIEW_PANORAMA_QUARTER || eView == VIEW_PANORAMA_FULL || eView == VIEW_PANORAMA_HALF;
}

static bool IsMulti(EViewType eView)
{
    return eView == VIEW_PANORAMA_DUAL || eView == VIEW_PANORAMA_TRIPLE;
}

CReferenceView::CReferenceView(const SReferenceSetup& sSetup)
    : m_sSetup(sSetup), m_oLens(sSetup.nLensType),
      m_fRadius(CLensCurve::Radius(sSetup.nLensType, sSetup.nImageWidth, sSetup.nImageHeight)),
      m_fImageAspect(static_cast<double>(sSetup.nImageWidth) / sSetup.nImageHeight)
{
    const bool bTurned = sSetup.nRotation == 90 || sSetup.nRotation == 270;
    const double fView = static_cast<double>(sSetup.nTargetWidth) / sSetup.nTargetHeight;
    const double fGeometry = bTurned ? 1.0 / GeometryAspect() : GeometryAspect();
    const double fFit = fView <= fGeometry ? fGeometry / fView : 1.0;
    const double fMultiplier = ScaleMultiplier() * (bTurned ? GeometryAspect() : 1.0);
    m_fHalfHeight = std::tan(sSetup.fZoom * 0.25 * RADIANS) * fFit * fMultiplier;
    m_fHalfWidth = m_fHalfHeight * fView;
    const bool bRectangular = IsStrip(sSetup.eView) || IsMulti(sSetup.eView);
    m_bClipRows = bRectangular && (sSetup.nLensType == 215 || sSetup.nLensType == 239);
}

double CReferenceView::GeometryAspect() const
{
    switch (m_sSetup.eView) {
    case VIEW_VCAM:
    case VIEW_VCAM_QUAD:
        return 1.0;
    case VIEW_PANORAMA_DUAL:
        return 1.6;
    case VIEW_PANORAMA_TRIPLE:
        return 2.4;
    case VIEW_PANORAMA_QUARTER:
        return m_sSetup.eMount == MOUNT_WALL ? 2.5 : STRIP * 0.25;
    case VIEW_PANORAMA_HALF:
        return m_sSetup.eMount == MOUNT_WALL ? 2.5 : STRIP * 0.5;
    case VIEW_PANORAMA_FULL:
        return m_sSetup.eMount == MOUNT_WALL ? 2.5 : STRIP;
    default:
        return m_fImageAspect;
    }
}

double CReferenceView::ScaleMultiplier() const
{
    if (IsMulti(m_sSetup.eView))
        return 0.5;
    if (IsStrip(m_sSetup.eView) && m_sSetup.eMount == MOUNT_WALL)
        return 0.4;
    return m_sSetup.eView == VIEW_PANORAMA_QUARTER ? 2.0 : 1.0;
}

/// Pixels that a letterbox band leaves out.
bool CReferenceView::Clipped(double x, double y) const
{
    if (!IsStrip(m_sSetup.eView))
        return false;
    const double fWidth = m_sSetup.nTargetWidth;
    const double fHeight = m_sSetup.nTargetHeight;
    const double fGeometry = GeometryAspect();
    if (m_sSetup.eMount == MOUNT_WALL) {
        if (fWidth / fHeight >= 2.5)
            return false;
        const int nBand = static_cast<int>(fHeight - fWidth / 2.5) / 2;
        return y < nBand || y > m_sSetup.nTargetHeight - nBand;
    }
    if (fWidth / fHeight <= fGeometry)
        return false;
    const int nBand = static_cast<int>(fWidth - fGeometry * fHeight) / 2;
    return x < nBand || x > m_sSetup.nTargetWidth - nBand;
}

SReferencePixel CReferenceView::At(double x, double y) const
{
    if (Clipped(x, y))
        return {};
    const double fEyeX = (2.0 * x / m_sSetup.nTargetWidth - 1.0) * m_fHalfWidth;
    const double fEyeY = (1.0 - 2.0 * y / m_sSetup.nTargetHeight) * m_fHalfHeight;
    SReferencePixel sPixel;
    if (m_sSetup.eView == VIEW_VCAM_QUAD && m_sSetup.eMount != MOUNT_WALL) {
        // Clockwise from the top left, each turned a further quarter; the last stands at the bottom left.
        const int nHalfWidth = m_sSetup.nTargetWidth / 2;
        const int nHalfHeight = m_sSetup.nTargetHeight / 2;
        // An odd column at the right and an odd row at the top stay empty.
        const double fTop = m_sSetup.nTargetHeight - 2 * nHalfHeight;
        const bool bRight = x > nHalfWidth;
        const bool bBottom = y > fTop + nHalfHeight;
        const double fX = 2.0 * (x - (bRight ? nHalfWidth : 0)) / nHalfWidth - 1.0;
        const double fY = 1.0 - 2.0 * (y - fTop - (bBottom ? nHalfHeight : 0)) / nHalfHeight;
        const int nTurn = bBottom ? (bRight ? 3 : 4) : (bRight ? 2 : 1);
        if (fX > 1.0 || fY > 1.0)
            return {};
        sPixel = Camera(fX * m_fHalfWidth, fY * m_fHalfHeight, 90.0 * nTurn);
    } else if (m_sSetup.eView == VIEW_VCAM || m_sSetup.eView == VIEW_VCAM_QUAD)
        sPixel = Camera(fEyeX, fEyeY, 0.0);
    else if (IsMulti(m_sSetup.eView))
        sPixel = Multi(fEyeX, fEyeY);
    else if (IsStrip(m_sSetup.eView) && m_sSetup.eMount == MOUNT_WALL)
        sPixel = Wall(fEyeX, fEyeY);
    else if (IsStrip(m_sSetup.eView))
        sPixel = Panorama(fEyeX, fEyeY);
    else
        sPixel = Fisheye(fEyeX, fEyeY);
    const bool bTurned = m_sSetup.nRotation == 90 || m_sSetup.nRotation == 270;
    if (bTurned ? m_sSetup.bFlipVertical : m_sSetup.bFlipHorizontal)
        sPixel.fU = 1.0 - sPixel.fU;
    if (bTurned ? m_sSetup.bFlipHorizontal : m_sSetup.bFlipVertical)
        sPixel.fV = 1.0 - sPixel.fV;
    if (m_bClipRows && (sPixel.fV < 0.0 || sPixel.fV > 1.0))
        sPixel.bDrawn = false;
    return sPixel;
}

/// The picture lies flat in front of the window; pan and tilt push it, the rotation turns it clockwise.
SReferencePixel CReferenceView::Fisheye(double fEyeX, double fEyeY) const
{
    const bool bTurned = m_sSetup.nRotation == 90 || m_sSetup.nRotation == 270;
    const double fShift = m_sSetup.fPan / -90.0 * (bTurned ? 1.0 / m_fImageAspect : m_fImageAspect);
    const double fX = fEyeX - fShift;
    const double fY = fEyeY - m_sSetup.fTilt / 90.0;
    const double fTurn = m_sSetup.nRotation * RADIANS;
    const double x = std::cos(fTurn) * fX - std::sin(fTurn) * fY;
    const double y = std::sin(fTurn) * fX + std::cos(fTurn) * fY;
    SReferencePixel sPixel;
    sPixel.bDrawn = std::abs(x) <= m_fImageAspect && std::abs(y) <= 1.0;
    if (m_sSetup.eView == VIEW_FISHEYE_CIRCULAR)
        sPixel.bDrawn = sPixel.bDrawn && std::hypot(x, y) <= 2.04 * m_fRadius / m_sSetup.nImageHeight;
    sPixel.fU = 0.5 + 0.5 * x / m_fImageAspect;
    sPixel.fV = 0.5 - 0.5 * y;
    const double fDistance = std::hypot(x, y) * 0.5 * m_sSetup.nImageHeight;
    const double fAngle = m_oLens.Angle(fDistance / m_fRadius) * RADIANS;
    const double fAcross = std::sin(fAngle) / std::max(std::hypot(x, y), 1e-12);
    sPixel.aRay = {fAcross * x, fAcross * y, std::cos(fAngle)};
    return sPixel;
}

static FVector TurnedAboutX(const FVector& a, double fDegrees)
{
    const double c = std::cos(fDegrees * RADIANS);
    const double s = std::sin(fDegrees * RADIANS);
    return {a[0], c * a[1] - s * a[2], s * a[1] + c * a[2]};
}

static FVector TurnedAboutY(const FVector& a, double fDegrees)
{
    const double c = std::cos(fDegrees * RADIANS);
    const double s = std::sin(fDegrees * RADIANS);
    return {c * a[0] + s * a[2], a[1], c * a[2] - s * a[0]};
}

static FVector TurnedAboutZ(const FVector& a, double fDegrees)
{
    const double c = std::cos(fDegrees * RADIANS);
    const double s = std::sin(fDegrees * RADIANS);
    return {c * a[0] - s * a[1], s * a[0] + c * a[1], a[2]};
}

/// A pinhole camera; its frame looks along -z like the sphere of directions does.
SReferencePixel CReferenceView::Camera(double fEyeX, double fEyeY, double fExtraPan) const
{
    // Where the pixel's ray meets the sphere, seen from an eye moved back along its axis.
    FVector aRay = Normalised({fEyeX, fEyeY, -1.0});
    const double e = m_sSetup.fEyeDistance;
    const double fAlong = -aRay[2] * e;
    const double fFar = fAlong + std::sqrt(std::max(0.0, fAlong * fAlong - e * e + 1.0));
    aRay = {aRay[0] * fFar, aRay[1] * fFar, aRay[2] * fFar + e};
    // Undo the turns of the sphere, last first.
    const double fPan = 90.0 - m_sSetup.fPan;
    if (m_sSetup.eMount == MOUNT_WALL) {
        aRay = TurnedAboutX(aRay, m_sSetup.fTilt - 90.0);
        aRay = TurnedAboutY(aRay, -fPan);
    } else {
        const double fTilt = m_sSetup.eMount == MOUNT_FLOOR ? m_sSetup.fTilt - 180.0 : m_sSetup.fTilt;
        aRay = TurnedAboutX(aRay, fTilt);
        aRay = TurnedAboutZ(aRay, -fPan + fExtraPan);
    }
    aRay = Normalised({aRay[0], aRay[1], -aRay[2]});
    SReferencePixel sPixel;
    sPixel.aRay = aRay;
    const int nWidth = m_sSetup.nImageWidth;
    const int nHeight = m_sSetup.nImageHeight;
    const double fAngle = std::acos(std::clamp(aRay[2], -1.0, 1.0)) / RADIANS;
    const double fAcross = std::max(std::hypot(aRay[0], aRay[1]), 1e-12);
    const double fDistance = m_fRadius * m_oLens.Height(fAngle);
    const double x = fDistance * aRay[0] / fAcross;
    const double y = fDistance * aRay[1] / fAcross;
    sPixel.bDrawn = fAngle <= 90.0 && std::abs(x) <= 0.5 * nWidth && std::abs(y) <= 0.5 * nHeight;
    // The mesh takes texels one pixel nearer to the vertical axis than they lie; the two columns of cells
    // that meet at the axis, whose u is exactly the middle there, let that pixel go linearly.
    const double fShare = std::min(1.0, std::abs(y) / m_fRadius);
    const double fStretch = 0.75 + 0.5 * std::sqrt(2.25 - 2.0 * fShare);
    const double fCell = fStretch * std::min(0.5 * nWidth, m_fRadius) / 30.0;
    const double fNearer = (nWidth % 2 == 0 ? 1.0 : 0.5) * std::min(1.0, std::abs(x) / fCell);
    sPixel.fU = 0.5 + (x < 0.0 ? x + fNearer : x - fNearer) / nWidth;
    const double fOddRow = nHeight % 2 == 0 ? 0.0 : 0.5;
    sPixel.fV = 0.5 - (y > 0.0 ? y + fOddRow : y - fOddRow) / nHeight;
    return sPixel;
}

/// Texture coordinate of a direction by the panoramas' lens rule; beyond 90 degrees the circle's edge.
SReferencePixel CReferenceView::LookedUp(const FVector& aRay) const
{
    SReferencePixel sPixel;
    sPixel.bDrawn = true;
    sPixel.aRay = aRay;
    const double fAngle = std::acos(std::clamp(aRay[2], -1.0, 1.0)) / RADIANS;
    const double fAcross = std::max(std::hypot(aRay[0], aRay[1]), 1e-12);
    const int nHalfHeight = m_sSetup.nImageHeight / 2;
    const double fHeight = m_fRadius / nHalfHeight * m_oLens.PanoramaHeight(fAngle);
    sPixel.fU = 0.5 + 0.5 * fHeight / m_fImageAspect * aRay[0] / fAcross;
    sPixel.fV = 0.5 - 0.5 * fHeight * aRay[1] / fAcross;
    return sPixel;
}

/// A strip of bearings, clockwise from left to right; its rows run from 90 to 39.6 degrees off the axis.
SReferencePixel CReferenceView::Panorama(double fEyeX, double fEyeY) const
{
    const bool bFloor = m_sSetup.eMount == MOUNT_FLOOR;
    const double fShift = m_sSetup.fPan * STRIP / -180.0;
    double x = (bFloor ? -fEyeX : fEyeX) - fShift;
    double y = bFloor ? -fEyeY : fEyeY;
    if (m_sSetup.eView == VIEW_PANORAMA_QUARTER) {
        const bool bUpper = fEyeY >= 0.0;
        const double fMove = bFloor ? -fShift : fShift;
        double fEnd = m_sSetup.fPan >= 0.0 ? STRIP : -STRIP;
        fEnd = bFloor ? -fEnd : fEnd;
        const double fX = fEyeX - fMove - (bUpper ? 0.0 : fEnd);
        const double fY = fEyeY + (bUpper ? -1.0 : 1.0);
        x = bFloor ? -fX : fX;
        y = bFloor ? -fY : fY;
    }
    if (std::abs(x) > 2.0 * STRIP || std::abs(y) > 1.0)
        return {};
    const double fBearing = x / STRIP * std::numbers::pi; // 0 at the top of the input, clockwise
    const double fAngle = 90.0 * (1.0 - 0.28 * (1.0 - y)) * RADIANS;
    return LookedUp(
        {std::sin(fAngle) * std::sin(fBearing), std::sin(fAngle) * std::cos(fBearing), std::cos(fAngle)});
}

/// Strips of 90 degrees of azimuth each (37 steps in 74ths of a half turn), 54 to 126 degrees across.
SReferencePixel CReferenceView::Multi(double fEyeX, double fEyeY) const
{
    const bool bTriple = m_sSetup.eView == VIEW_PANORAMA_TRIPLE;
    if (std::abs(fEyeY) > 0.5 || std::abs(fEyeX) > (bTriple ? 1.2 : 0.8))
        return {};
    double fAcross = 0.0; // 0..1 over a strip
    double fAzimuth = 0.0;
    bool bMiddle = false;
    if (bTriple && std::abs(fEyeX) <= 0.4) {
        bMiddle = true;
        fAcross = (fEyeX + 0.4) / 0.8;
        fAzimuth = (fEyeY - 0.5) * 90.0;
    } else if (fEyeX < 0.0) {
        fAcross = (fEyeX + (bTriple ? 1.2 : 0.8)) / 0.8;
        fAzimuth = (fEyeY - 0.5) * 90.0;
    } else {
        fAcross = ((bTriple ? 1.2 : 0.8) - fEyeX) / 0.8;
        fAzimuth = (-0.5 - fEyeY) * 90.0 - 90.0;
    }
    const double fElevation = (54.0 + 72.0 * fAcross + (bMiddle ? 0.0 : m_sSetup.fTilt)) * RADIANS;
    const double fTurn = (-m_sSetup.fPan + (bMiddle ? 90.0 : 0.0)) * RADIANS;
    const double fDown = std::cos(fElevation);
    const double fSide = std::sin(fElevation) * std::cos(fAzimuth * RADIANS);
    const double fForward = -std::sin(fElevation) * std::sin(fAzimuth * RADIANS);
    return LookedUp({-fSide * std::cos(fTurn) - std::sin(fTurn) * fDown,
                     -(std::cos(fTurn) * fDown - std::sin(fTurn) * fSide), fForward});
}

/// A half-sphere in front of an inclined camera: columns are azimuth, rows elevation, both linear.
SReferencePixel CReferenceView::Wall(double fEyeX, double fEyeY) const
{
    const double x = fEyeX;
    const double y = fEyeY + m_sSetup.fTilt / 90.0;
    if (std::abs(x) > 1.0 || std::abs(y) > 1.0)
        return {};
    const double fTau = m_sSetup.fMountTilt;
    const double fSpan = m_sSetup.bStrict ? 180.0 : 180.0 + 2.0 * std::abs(fTau);
    const double fLeft = m_sSetup.bStrict ? 0.0 : std::abs(fTau);
    const double fBottom = !m_sSetup.bStrict && fTau > 0.0 ? -2.0 * fTau : 0.0;
    const double fAzimuth = (fLeft - fSpan * 0.5 * (x + 1.0)) * RADIANS;
    const double fElevation = (fBottom + fSpan * 0.5 * (y + 1.0)) * RADIANS;
    const double fDown = std::cos(fElevation);
    const double fSide = std::sin(fElevation) * std::cos(fAzimuth);
    const double fAhead = -std::sin(fElevation) * std::sin(fAzimuth);
    // Lift by the inclination, then roll about the optical axis.
    const double c = std::cos(fTau * RADIANS);
    const double s = std::sin(fTau * RADIANS);
    const double fCameraDown = c * fDown + s * fAhead;
    const double fForward = c * fAhead - s * fDown;
    const double fRoll = -m_sSetup.fPan * RADIANS;
    SReferencePixel sPixel = LookedUp({-fSide * std::cos(fRoll) - std::sin(fRoll) * fCameraDown,
                                       -(std::cos(fRoll) * fCameraDown - std::sin(fRoll) * fSide), fForward});
    // Depth of the vertex behind the near plane at 0.01, far plane at 2; the eye stands 0.99 in front.
    const double fDepth = 0.5 + 0.5 * ((2.0 * (fForward + 0.99) - 2.01) / 1.99);
    if (fTau != 0.0 && fDepth < 0.475)
        sPixel.bDrawn = false;
    return sPixel;
}

void CReferenceView::TrueTexCoord(const FVector& aRay, double& fU, double& fV) const
{
    const double fAngle = std::acos(std::clamp(aRay[2], -1.0, 1.0)) / RADIANS;
    const double fAcross = std::max(std::hypot(aRay[0], aRay[1]), 1e-12);
    const double fDistance = m_fRadius * m_oLens.Height(fAngle);
    fU = 0.5 + fDistance * aRay[0] / fAcross / m_sSetup.nImageWidth;
    fV = 0.5 - fDistance * aRay[1] / fAcross / m_sSetup.nImageHeight;
}
