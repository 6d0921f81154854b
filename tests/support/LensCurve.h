/// \file
/// The lenses in double precision, straight from their tables.
#pragma once

#include <vector>

/// Image height against field angle of one lens; unknown lenses are equidistant.
/// Units: degrees; heights are normalised so that 1 is the height at 90 degrees.
class CLensCurve
{
public:
    explicit CLensCurve(int nLensType);

    /// Height at an angle, 1 at exactly 90 degrees. Goes on to the table's end, then along its last piece.
    double Height(double fDegrees) const;
    /// The angle of a height, up to a height of 1.2.
    double Angle(double fHeight) const;
    /// What the panoramas take for the height: measured against the last sample scaled to 90 degrees, and 1
    /// from 90 degrees on. For a table that ends beyond 90 it differs from Height by up to one per cent.
    double PanoramaHeight(double fDegrees) const;

    /// Radius of the 90-degree circle in pixels.
    static double Radius(int nLensType, int nWidth, int nHeight);

private:
    double Sample(double fDegrees) const;

    const float* m_pDomain = nullptr;
    const float* m_pRange = nullptr;
    int m_nCount = 0;
    double m_fHeight90 = 1.0;
    std::vector<double> m_vAngles; ///< of evenly spaced heights
};
