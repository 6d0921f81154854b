#include "lens/LensFit.h"

#include "ToolError.h"
#include "lens/FitSolver.h"
#include "lens/NumberText.h"

#include <Eigen/QR>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>

static const double DEGREES = 180.0 / std::numbers::pi;
/// How far places are off where people pick them with care, pixels.
static const double PICKED = 0.5;
/// Part of the field that such errors may change before the data are said not to tell it.
static const double MOST_DOUBT = 0.05;
/// Part of the circle's radius that measurements must reach to for a polynomial, which is anything beyond
/// them.
static const double LEAST_REACH = 0.8;
/// Nothing is known better than this, pixels: models that are all exact differ in what they take for it.
static const double EXACT = 0.02;
/// Score by which a polynomial has to be better than ideal lenses, whose curves are real lenses' everywhere.
static const double POLYNOMIAL_PRICE = 6.0;

namespace
{

/// What the data allow any model to be fitted with.
struct SFitTask
{
    const SFitData& rData;
    SFitFrame sFrame;
    bool bCenter;
};

bool HasPlaces(const SFitData& rData)
{
    return !rData.vLines.empty() || (!rData.vPoints.empty() && rData.vPoints[0].bPlace);
}

double WidestAngle(const SFitData& rData)
{
    double fWidest = 0.0;
    for (const SFitPoint& rPoint : rData.vPoints)
        fWidest = std::max(fWidest, rPoint.fAngle);
    return fWidest;
}

/// Degrees across the circle, as far as the curve goes.
double FieldOf(const CFitResiduals& rResiduals, const Eigen::VectorXd& rParameters)
{
    return 2.0 * DEGREES * rResiduals.CurveOf(rParameters).Angle(rResiduals.Frame().fRadius);
}

/// The standard error of the field for measurements a pixel off.
double FieldDoubt(const CFitResiduals& rResiduals, const SFitSolution& rSolution)
{
    Eigen::VectorXd vSlopes(rSolution.vParameters.size());
    const double fStep = 1e-6;
    for (Eigen::Index n = 0; n < vSlopes.size(); ++n) {
        Eigen::VectorXd vMore = rSolution.vParameters;
        Eigen::VectorXd vLess = rSolution.vParameters;
        vMore[n] += fStep;
        vLess[n] -= fStep;
        vSlopes[n] = (FieldOf(rResiduals, vMore) - FieldOf(rResiduals, vLess)) / (2.0 * fStep);
    }
    // A circle beyond the model's end has the model's field, whatever the focal length.
    if (rResiduals.CurveOf(rSolution.vParameters).MostHeight() <= rResiduals.Frame().fRadius)
        return rSolution.vParameters.size() > 0
                   ? FieldOf(rResiduals, rSolution.vParameters) * std::sqrt(rSolution.mCovariance(0, 0))
                   : 0.0;
    const double fSquare = vSlopes.dot(rSolution.mCovariance * vSlopes);
    return fSquare >= 0.0 ? std::sqrt(fSquare) : std::numeric_limits<double>::infinity();
}

/// Akaike's criterion, corrected for few measurements: how badly a model explains them, and what it takes for
/// it.
double ScoreOf(const CFitResiduals& rResiduals, const SFitModel& rModel, const SFitSolution& rSolution)
{
    const double fParameters = static_cast<double>(rResiduals.ParameterCount()) + 1.0;
    const double fCount = static_cast<double>(rResiduals.Freedom()) + fParameters - 1.0;
    const double fSpare = fCount - fParameters - 1.0;
    const double fPrice = fSpare > 0.0 ? 2.0 * fParameters * fCount / fSpare : 1e6 * fParameters;
    return fCount * std::log(std::max(rSolution.fSum / fCount, EXACT * EXACT)) + fPrice +
           (rModel.IsPolynomial() ? POLYNOMIAL_PRICE : 0.0);
}

SLensFit Describe(const CFitResiduals& rResiduals, const SFitModel& rModel, const SFitSolution& rSolution)
{
    SLensFit sFit;
    sFit.sModel = rModel;
    sFit.fField = FieldOf(rResiduals, rSolution.vParameters);
    const double fDoubt = FieldDoubt(rResiduals, rSolution);
    sFit.fFieldDoubt = fDoubt * rSolution.fRMS;
    sFit.fFocal = rResiduals.FocalOf(rSolution.vParameters);
    const SFitPlace sCenter = rResiduals.CenterOf(rSolution.vParameters);
    sFit.fCenterX = sCenter.x;
    sFit.fCenterY = sCenter.y;
    sFit.bCenterFitted = rResiduals.HasCenter();
    if (sFit.bCenterFitted)
        sFit.fCenterDoubt = std::sqrt(std::max(rSolution.mCovariance(1, 1), rSolution.mCovariance(2, 2))) *
                            rResiduals.Frame().fRadius * std::max(rSolution.fRMS, EXACT);
    const Eigen::VectorXd vLast = rSolution.vParameters.tail(rModel.nCoefficients);
    sFit.vCoefficients.assign(vLast.begin(), vLast.end());
    sFit.fRMS = rSolution.fRMS;
    sFit.fLargest = rSolution.fLargest;
    sFit.fReach = rResiduals.Reach(sCenter);
    sFit.fScore = ScoreOf(rResiduals, rModel, rSolution);
    if (!(PICKED * fDoubt <= MOST_DOUBT * sFit.fField))
        sFit.strReason =
            "the data do not tell its field: picked half a pixel off, they would change it by " +
            (PICKED * fDoubt < sFit.fField ? FixedText(100.0 * PICKED * fDoubt / sFit.fField, 0) + " %"
                                           : "any amount");
    else if (!(sFit.fField >= 1.0))
        sFit.strReason = "no field of it comes near the data";
    return sFit;
}

/// The best of several ways down: a curve's bend may suit a wide lens and a narrow one.
SFitSolution SolveModel(const CFitResiduals& rResiduals, const SFitModel& rModel)
{
    const int nSteps = 28;
    const double fMost = std::min(0.5 * MostLensField(rModel.eModel), 139.0) - 1.0;
    const CFitCurve oUnit(rModel, 1.0, {});
    std::vector<double> vSums;
    std::vector<Eigen::VectorXd> vStarts;
    for (int i = 0; i < nSteps; ++i) {
        const double fHalf = 5.0 + (fMost - 5.0) * i / (nSteps - 1);
        vStarts.push_back(rResiduals.Start(rResiduals.Frame().fRadius / oUnit.Height(fHalf / DEGREES)));
        vSums.push_back(SumAt(rResiduals, vStarts.back()));
    }
    SFitSolution sBest;
    for (std::size_t i = 0; i < vSums.size(); ++i) {
        const bool bBelowLast = i == 0 || vSums[i] <= vSums[i - 1];
        const bool bBelowNext = i + 1 == vSums.size() || vSums[i] <= vSums[i + 1];
        if (!bBelowLast || !bBelowNext)
            continue;
        SFitSolution sSolution = SolveFit(rResiduals, vStarts[i]);
        if (sBest.vParameters.size() == 0 || sSolution.fSum < sBest.fSum)
            sBest = sSolution;
    }
    return sBest;
}

SLensFit FitIdeal(const SFitTask& rTask, ELensModel eModel)
{
    const SFitModel sModel = {eModel, 0};
    const double fWidest = WidestAngle(rTask.rData);
    SLensFit sFit;
    sFit.sModel = sModel;
    if (2.0 * fWidest > MostLensField(eModel)) {
        sFit.strReason = "it ends at " + NumberText(0.5 * MostLensField(eModel)) +
                         " degrees off the axis, the points at " + NumberText(fWidest);
        return sFit;
    }
    const CFitResiduals oResiduals(rTask.rData, rTask.sFrame, sModel, rTask.bCenter);
    return Describe(oResiduals, sModel, SolveModel(oResiduals, sModel));
}

/// The parameters of a polynomial that runs as another fit's curve does.
Eigen::VectorXd PolynomialStart(const CFitResiduals& rResiduals, const SLensFit& rFit, int nCoefficients)
{
    Eigen::VectorXd vStart = rResiduals.Start(rFit.fFocal);
    if (rResiduals.HasCenter()) {
        vStart[1] = (rFit.fCenterX - rResiduals.Frame().fCenterX) / rResiduals.Frame().fRadius;
        vStart[2] = (rFit.fCenterY - rResiduals.Frame().fCenterY) / rResiduals.Frame().fRadius;
    }
    const CFitCurve oCurve(rFit.sModel, rFit.fFocal, rFit.vCoefficients);
    const double fEnd = std::min(oCurve.Angle(rFit.fReach), 0.95 * oCurve.MostAngle());
    const int nRows = 40;
    Eigen::MatrixXd mPowers(nRows, nCoefficients + 1);
    Eigen::VectorXd vHeights(nRows);
    for (int i = 0; i < nRows; ++i) {
        const double t = fEnd * (i + 1) / nRows;
        const double u = t * DEGREES / 90.0;
        for (int j = 0; j <= nCoefficients; ++j)
            mPowers(i, j) = t * std::pow(u * u, j);
        vHeights[i] = oCurve.Height(t);
    }
    const Eigen::VectorXd vSums = mPowers.colPivHouseholderQr().solve(vHeights);
    if (!(vSums[0] > 0.0) || !vSums.allFinite())
        return vStart;
    vStart[0] = std::log(vSums[0]);
    vStart.tail(nCoefficients) = vSums.tail(nCoefficients) / vSums[0];
    return vStart;
}

/// Why a polynomial's curve is none of a lens.
std::string CurveFault(const SLensFit& rFit, const SFitTask& rTask, bool bAlone)
{
    const double fRadius = rTask.sFrame.fRadius;
    if (!bAlone && rFit.fReach < LEAST_REACH * fRadius)
        return "the data reach to " + FixedText(100.0 * rFit.fReach / fRadius, 0) +
               " % of the radius, and beyond them it could be anything";
    const CFitCurve oCurve(rFit.sModel, rFit.fFocal, rFit.vCoefficients);
    const double fUsed = std::min(rFit.fReach, fRadius);
    const double fEnd = oCurve.Angle(fUsed);
    if (!(oCurve.MostHeight() > fUsed) || oCurve.Slope(fEnd) < 0.05 * oCurve.Slope(0.0))
        return "its curve does not rise up to the outermost data";
    return std::string();
}

/// As many coefficients as are worth it. Lines alone say nothing of them: whatever is made deeper or flatter,
/// with tangents of all angles times one number, keeps its straight edges, and a polynomial follows.
SLensFit FitPolynomial(const SFitTask& rTask, const std::vector<SLensFit>& vIdeal, bool bAlone)
{
    SLensFit sBest;
    sBest.sModel = {LENS_EQUIDISTANT, 1};
    sBest.strReason = "too few measurements for it";
    if (rTask.rData.vPoints.empty()) {
        sBest.strReason = "lines alone leave its scale open; add points of known angles";
        return sBest;
    }
    SLensFit sFrom;
    for (const SLensFit& rFit : vIdeal)
        if (rFit.fFocal > 0.0 && (!(sFrom.fFocal > 0.0) || rFit.fRMS < sFrom.fRMS))
            sFrom = rFit;
    if (!(sFrom.fFocal > 0.0))
        return sBest;
    for (int nCoefficients = 1; nCoefficients <= 4; ++nCoefficients) {
        const SFitModel sModel = {LENS_EQUIDISTANT, nCoefficients};
        const CFitResiduals oResiduals(rTask.rData, rTask.sFrame, sModel, rTask.bCenter);
        if (oResiduals.Freedom() < 4)
            break;
        SLensFit sFit = Describe(oResiduals, sModel,
                                 SolveFit(oResiduals, PolynomialStart(oResiduals, sFrom, nCoefficients)));
        if (sFit.strReason.empty())
            sFit.strReason = CurveFault(sFit, rTask, bAlone);
        const bool bFirst = nCoefficients == 1;
        const bool bSounder = sFit.strReason.empty() && !sBest.strReason.empty();
        if (bFirst || bSounder || (sFit.strReason.empty() && sFit.fScore < sBest.fScore))
            sBest = sFit;
    }
    return sBest;
}

void RequireEnough(const SFitTask& rTask)
{
    const CFitResiduals oResiduals(rTask.rData, rTask.sFrame, SFitModel(), rTask.bCenter);
    if (oResiduals.Freedom() >= 1)
        return;
    const std::size_t nLines = rTask.rData.vLines.size();
    ThrowFailure("too few measurements: " + std::to_string(oResiduals.MeasuredCount()) + " for " +
                 std::to_string(oResiduals.ParameterCount() + 2 * static_cast<Eigen::Index>(nLines)) +
                 " unknowns" + (nLines > 0 ? ", two of them for each line" : "") + "; give more points");
}

} // namespace

SLensCircle SFitSetup::Circle() const
{
    if (oCircle)
        return *oCircle;
    const float fRadius = 0.5f * static_cast<float>(std::min(nWidth, nHeight));
    return {0.5f * static_cast<float>(nWidth), 0.5f * static_cast<float>(nHeight), fRadius, fRadius};
}

std::string FitModelName(const SFitModel& rModel)
{
    return rModel.IsPolynomial() ? "polynomial" : LensModelName(rModel.eModel);
}

std::vector<SLensFit> FitLenses(const SFitData& rData, const SFitSetup& rSetup, bool bPolynomialAlone)
{
    const SLensCircle sCircle = rSetup.Circle();
    SFitTask sTask = {rData,
                      {static_cast<double>(sCircle.fCenterX), static_cast<double>(sCircle.fCenterY),
                       static_cast<double>(sCircle.fRadiusX)},
                      HasPlaces(rData) && !rSetup.bKeepCenter};
    // Two places more are needed to seek the centre.
    if (sTask.bCenter && CFitResiduals(rData, sTask.sFrame, SFitModel(), true).Freedom() < 1)
        sTask.bCenter = false;
    RequireEnough(sTask);
    std::vector<SLensFit> vFits;
    for (const ELensModel eModel :
         {LENS_EQUIDISTANT, LENS_EQUISOLID, LENS_STEREOGRAPHIC, LENS_ORTHOGRAPHIC, LENS_RECTILINEAR})
        vFits.push_back(FitIdeal(sTask, eModel));
    vFits.push_back(FitPolynomial(sTask, vFits, bPolynomialAlone));
    return vFits;
}

const SLensFit* BestFit(const std::vector<SLensFit>& vFits)
{
    const SLensFit* pBest = nullptr;
    for (const SLensFit& rFit : vFits)
        if (rFit.strReason.empty() && (pBest == nullptr || rFit.fScore < pBest->fScore))
            pBest = &rFit;
    return pBest;
}
