/// \file
/// The curve of a lens while it is being fitted.
#pragma once

#include "dewarp/lenses/SLens.h"

#include <array>
#include <vector>

/// An ideal lens, or the odd polynomial of fisheye calibrations with one to four coefficients.
struct SFitModel
{
    ELensModel eModel = LENS_EQUIDISTANT;
    int nCoefficients = 0; ///< of the polynomial; 0: the ideal lens

    bool operator==(const SFitModel& sOther) const = default;
    bool IsPolynomial() const { return nCoefficients > 0; }
};

/// Heights in pixels over angles in radians. Thread: any. Fails: never.
class CFitCurve
{
public:
    /// The focal length in pixels for a radian; coefficients count in powers of a quarter turn, which makes
    /// them alike in size.
    CFitCurve(const SFitModel& rModel, double fFocal, const std::vector<double>& vCoefficients);

    double Height(double fAngle) const;
    /// Pixels for a radian at an angle.
    double Slope(double fAngle) const;
    /// The angle up to which heights rise, as far as the model is drawn with.
    double MostAngle() const { return m_fMostAngle; }
    double MostHeight() const { return m_fMostHeight; }
    /// The angle of a height; that of the end for heights beyond it.
    double Angle(double fHeight) const;
    /// k1 to k4 of a fisheye calibration.
    std::array<double, 4> Radial() const;

private:
    double PolynomialAngle(double fHeight) const;

    SFitModel m_sModel;
    double m_fFocal;
    std::array<double, 4> m_aCoefficients{};
    double m_fMostAngle = 0.0;
    double m_fMostHeight = 0.0;
};
