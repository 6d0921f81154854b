/// \file
/// A camera's lens in one frame: from directions to pixels and back.
#pragma once

#include "dewarp/records/Enumerations.h"
#include "dewarp/records/SDirection.h"

class CCameraOptics;
class CRadialCurve;
struct SImageCircle;
struct SLensCalibration;

/// An ellipse in the frame, pixels, outside of which there is no light.
struct SRimEllipse
{
    double fCenterX = 0.0;
    double fCenterY = 0.0;
    double fRadiusX = 0.0;
    double fRadiusY = 0.0;
};

/// Units: pixels from the top left, halves in the middles of pixels, of the frame as views show it: mirrored
/// where it is to be. Directions of the body itself.
/// Owns: nothing; the optics must outlive it. Thread: any. Fails: never.
class CLensMap
{
public:
    /// pOptics: null for a known lens under its own rule. Meshes of virtual cameras of such lenses stand a
    /// pixel nearer to the middle than this.
    CLensMap(const CCameraOptics* pOptics, ELensType eLens, int nWidth, int nHeight);

    /// Where a direction lands; one beyond the lens's edge lands beyond its rim. True for those that the
    /// lens sees.
    bool ToFrame(const SDirection& rDirection, double& x, double& y) const;
    /// The unit direction that lands on a pixel; false beyond the edge.
    bool ToDirection(double x, double y, SDirection& rDirection) const;
    /// Radians off the optical axis of the last rays seen.
    double Edge() const;
    const CRadialCurve& Curve() const { return *m_pCurve; }
    /// Degrees off the optical axis that the frame has room for: the edge, or less where the frame cuts it.
    double HalfField() const;
    /// Where the light ends: in the frame as views show it, and in the frame as it comes.
    SRimEllipse Rim() const;
    const SRimEllipse& FrameRim() const { return m_sRim; }

private:
    struct SPlace
    {
        double x;
        double y;
    };

    void Centre(const SImageCircle& rCircle, double fRadius);
    void SetCalibration(const SLensCalibration& rCalibration, int nWidth, int nHeight);
    bool Unmirrored(const SDirection& rDirection, double& x, double& y) const;
    /// On the sensor, in focal lengths, from the centre; y down.
    SPlace Land(double fAngle, double fCos, double fSin) const;
    /// Whether light reaches a pixel of the circle that a calibration was given beside its own.
    bool IsLit(double x, double y) const;
    SPlace Distort(const SPlace& rPlain) const;
    bool Undistort(const SPlace& rLanded, SPlace& rPlain) const;

    const CRadialCurve* m_pCurve;
    int m_nWidth = 0;
    int m_nHeight = 0;
    double m_fCenterX = 0.0;
    double m_fCenterY = 0.0;
    double m_fScaleX = 1.0; ///< pixels for a height of 1
    double m_fScaleY = 1.0;
    bool m_bMirrorX = false; ///< the picture is the frame's mirror image
    bool m_bMirrorY = false;
    double m_fSkew = 0.0; ///< pixels to the right for a height of 1 downward
    SRimEllipse m_sRim;
    bool m_bOwnRim = false; ///< the rim says more than the lens's edge
    // Of the unified model, whose tangential terms follow the azimuth.
    bool m_bTangential = false;
    double m_fRadial1 = 0.0;
    double m_fRadial2 = 0.0;
    double m_fTangential1 = 0.0;
    double m_fTangential2 = 0.0;
    double m_fXi = 0.0;
};
