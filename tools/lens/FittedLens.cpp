#include "ToolError.h"
#include "lens/LensFit.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace
{

const double DEGREES = 180.0 / std::numbers::pi;

/// What further digits would tell is less than the fit knows.
double Rounded(double fValue, double fSteps)
{
    return std::round(fValue * fSteps) / fSteps;
}

SLens PolynomialLens(const SLensFit& rFit, const SFitSetup& rSetup)
{
    SLensCalibration sCalibration;
    sCalibration.nWidth = rSetup.nWidth;
    sCalibration.nHeight = rSetup.nHeight;
    sCalibration.fFocalX = Rounded(rFit.fFocal, 1e6);
    sCalibration.fFocalY = sCalibration.fFocalX;
    // Calibrations count from the middle of the first pixel.
    sCalibration.fCenterX = Rounded(rFit.fCenterX - 0.5, 1e4);
    sCalibration.fCenterY = Rounded(rFit.fCenterY - 0.5, 1e4);
    const CFitCurve oCurve(rFit.sModel, rFit.fFocal, rFit.vCoefficients);
    const std::array<double, 4> aRadial = oCurve.Radial();
    for (std::size_t i = 0; i < aRadial.size(); ++i)
        sCalibration.afRadial[i] = Rounded(aRadial[i], 1e12);
    // Beyond the outermost measurement the curve is believed for a little only.
    const double fRadius = static_cast<double>(rSetup.Circle().fRadiusX);
    const double fEnd = oCurve.Angle(std::min(fRadius, rFit.fReach / 0.8));
    sCalibration.fField = Rounded(2.0 * DEGREES * fEnd, 1e4);
    return SLens::FromCalibration(sCalibration);
}

} // namespace

SLensFile LensOfFit(const SLensFit& rFit, const SFitSetup& rSetup)
{
    SLensFile sFile;
    SLensCircle sCircle = rSetup.Circle();
    bool bTell = rSetup.oCircle.has_value();
    if (rFit.bCenterFitted) {
        sCircle.fCenterX = static_cast<float>(Rounded(rFit.fCenterX, 1e3));
        sCircle.fCenterY = static_cast<float>(Rounded(rFit.fCenterY, 1e3));
        bTell = true;
    }
    if (rFit.sModel.IsPolynomial()) {
        // It knows its own centre and scale; a circle would only say where the light ends.
        sFile.sLens = PolynomialLens(rFit, rSetup);
        bTell = rSetup.oCircle.has_value();
    } else {
        sFile.sLens = SLens::FromModel(rFit.sModel.eModel, Rounded(rFit.fField, 1e4));
        const double fMost = CFitCurve(rFit.sModel, rFit.fFocal, {}).MostHeight();
        if (fMost < static_cast<double>(sCircle.fRadiusX)) {
            sCircle.fRadiusX = sCircle.fRadiusY = static_cast<float>(Rounded(fMost, 1e3));
            bTell = true;
        }
    }
    if (bTell)
        sFile.oCircle = sCircle;
    const std::string strFault = FindLensFault(sFile.sLens);
    if (!strFault.empty())
        ThrowFailure("nothing can be drawn with the lens that fits best: " + strFault);
    return sFile;
}
