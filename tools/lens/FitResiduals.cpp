#include "lens/FitResiduals.h"

#include <Eigen/Eigenvalues>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

static const double RADIANS = std::numbers::pi / 180.0;
/// Pixels for a centre that is a whole radius from where it was said to be: half a pixel for a twentieth.
static const double CENTER_PULL = 0.5 * 20.0;

namespace
{

/// The ray of a place, and how it moves for a pixel outward and a pixel around.
struct SRay
{
    Eigen::Vector3d vRay;
    Eigen::Vector3d vOutward;
    Eigen::Vector3d vAround;
    double fBeyond = 0.0; ///< pixels that the place lies outside of what the lens can show
};

SRay RayOf(const SFitPlace& rPlace, const CFitCurve& rCurve, const SFitPlace& rCenter)
{
    const double dx = rPlace.x - rCenter.x;
    const double dy = rPlace.y - rCenter.y;
    const double h = std::hypot(dx, dy);
    const double fCos = h > 0.0 ? dx / h : 1.0;
    const double fSin = h > 0.0 ? dy / h : 0.0;
    const double t = rCurve.Angle(h);
    // A curve that ends flat has no pixels left for further rays.
    const double fOutward = 1.0 / std::max(rCurve.Slope(t), 1e-3 * rCurve.Slope(0.0));
    const double fAround = h > 1e-9 ? std::sin(t) / h : 1.0 / rCurve.Slope(0.0);
    SRay sRay;
    sRay.vRay = {std::sin(t) * fCos, std::sin(t) * fSin, std::cos(t)};
    sRay.vOutward = fOutward * Eigen::Vector3d(std::cos(t) * fCos, std::cos(t) * fSin, -std::sin(t));
    sRay.vAround = fAround * Eigen::Vector3d(-fSin, fCos, 0.0);
    sRay.fBeyond = std::max(h - rCurve.MostHeight(), 0.0);
    return sRay;
}

/// Sines of the angle off a plane for a pixel across it.
double SinesForPixel(const SRay& rRay, const Eigen::Vector3d& rNormal)
{
    const double fMost = rRay.vAround.norm() + rRay.vOutward.norm();
    return std::max(std::hypot(rNormal.dot(rRay.vOutward), rNormal.dot(rRay.vAround)), 1e-6 * fMost);
}

/// The plane through the lens that comes nearest to rays, in pixels. The weights settle within a few rounds.
Eigen::Vector3d PlaneOf(const std::vector<SRay>& vRays)
{
    std::vector<double> vWeights(vRays.size(), 1.0);
    Eigen::Vector3d vNormal = Eigen::Vector3d::UnitZ();
    for (int i = 0; i < 4; ++i) {
        Eigen::Matrix3d mSpread = Eigen::Matrix3d::Zero();
        for (std::size_t n = 0; n < vRays.size(); ++n)
            mSpread += vWeights[n] * vRays[n].vRay * vRays[n].vRay.transpose();
        const Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> oSolver(mSpread / mSpread.trace());
        vNormal = oSolver.eigenvectors().col(0);
        for (std::size_t n = 0; n < vRays.size(); ++n) {
            const double fSines = SinesForPixel(vRays[n], vNormal);
            vWeights[n] = 1.0 / (fSines * fSines);
        }
    }
    return vNormal;
}

/// The place that is furthest from a line's first one.
std::size_t OtherEnd(const std::vector<SFitPlace>& vPlaces)
{
    const auto IsNearer = [&vPlaces](const SFitPlace& a, const SFitPlace& b) {
        return std::hypot(a.x - vPlaces[0].x, a.y - vPlaces[0].y) <
               std::hypot(b.x - vPlaces[0].x, b.y - vPlaces[0].y);
    };
    return static_cast<std::size_t>(std::max_element(vPlaces.begin(), vPlaces.end(), IsNearer) -
                                    vPlaces.begin());
}

} // namespace

CFitResiduals::CFitResiduals(const SFitData& rData, const SFitFrame& rFrame, const SFitModel& rModel,
                             bool bCenter)
    : m_rData(rData), m_rFrame(rFrame), m_sModel(rModel), m_bCenter(bCenter),
      m_nMeasured(static_cast<Eigen::Index>(rData.vPoints.size()))
{
    for (const SFitLine& rLine : rData.vLines)
        m_nMeasured += static_cast<Eigen::Index>(rLine.vPlaces.size());
}

Eigen::Index CFitResiduals::ParameterCount() const
{
    return 1 + (m_bCenter ? 2 : 0) + m_sModel.nCoefficients;
}

Eigen::Index CFitResiduals::Freedom() const
{
    return m_nMeasured - 2 * static_cast<Eigen::Index>(m_rData.vLines.size()) - ParameterCount();
}

Eigen::VectorXd CFitResiduals::Start(double fFocal) const
{
    Eigen::VectorXd vParameters = Eigen::VectorXd::Zero(ParameterCount());
    vParameters[0] = std::log(fFocal);
    return vParameters;
}

double CFitResiduals::FocalOf(const Eigen::VectorXd& rParameters) const
{
    return std::exp(std::clamp(rParameters[0], -20.0, 20.0));
}

SFitPlace CFitResiduals::CenterOf(const Eigen::VectorXd& rParameters) const
{
    SFitPlace sCenter = {m_rFrame.fCenterX, m_rFrame.fCenterY};
    if (m_bCenter) {
        sCenter.x += rParameters[1] * m_rFrame.fRadius;
        sCenter.y += rParameters[2] * m_rFrame.fRadius;
    }
    return sCenter;
}

CFitCurve CFitResiduals::CurveOf(const Eigen::VectorXd& rParameters) const
{
    const Eigen::VectorXd vLast = rParameters.tail(m_sModel.nCoefficients);
    return CFitCurve(m_sModel, FocalOf(rParameters), std::vector<double>(vLast.begin(), vLast.end()));
}

double CFitResiduals::Reach(const SFitPlace& rCenter) const
{
    double fReach = 0.0;
    for (const SFitPoint& rPoint : m_rData.vPoints)
        fReach = std::max(fReach, rPoint.bPlace
                                      ? std::hypot(rPoint.sPlace.x - rCenter.x, rPoint.sPlace.y - rCenter.y)
                                      : rPoint.fRadius);
    for (const SFitLine& rLine : m_rData.vLines)
        for (const SFitPlace& rPlace : rLine.vPlaces)
            fReach = std::max(fReach, std::hypot(rPlace.x - rCenter.x, rPlace.y - rCenter.y));
    return fReach;
}

Eigen::Index CFitResiduals::EvaluateLine(const SFitLine& rLine, const CFitCurve& rCurve,
                                         const SFitPlace& rCenter, Eigen::Index nFirst,
                                         Eigen::VectorXd& rValues) const
{
    std::vector<SRay> vRays;
    vRays.reserve(rLine.vPlaces.size());
    for (const SFitPlace& rPlace : rLine.vPlaces)
        vRays.push_back(RayOf(rPlace, rCurve, rCenter));
    // Either side of a plane is as good as the other; residuals must not change their signs with it.
    Eigen::Vector3d vNormal = PlaneOf(vRays);
    if (vNormal.dot(vRays[0].vRay.cross(vRays[OtherEnd(rLine.vPlaces)].vRay)) < 0.0)
        vNormal = -vNormal;
    for (const SRay& rRay : vRays) {
        const double fPixels = vNormal.dot(rRay.vRay) / SinesForPixel(rRay, vNormal);
        rValues[nFirst++] = fPixels + std::copysign(rRay.fBeyond, fPixels);
    }
    return nFirst;
}

void CFitResiduals::Evaluate(const Eigen::VectorXd& rParameters, Eigen::VectorXd& rValues) const
{
    rValues.resize(ValueCount());
    const CFitCurve oCurve = CurveOf(rParameters);
    const SFitPlace sCenter = CenterOf(rParameters);
    Eigen::Index n = 0;
    for (const SFitPoint& rPoint : m_rData.vPoints) {
        const double fMeasured = rPoint.bPlace
                                     ? std::hypot(rPoint.sPlace.x - sCenter.x, rPoint.sPlace.y - sCenter.y)
                                     : rPoint.fRadius;
        rValues[n++] = fMeasured - oCurve.Height(rPoint.fAngle * RADIANS);
    }
    for (const SFitLine& rLine : m_rData.vLines)
        n = EvaluateLine(rLine, oCurve, sCenter, n, rValues);
    if (m_bCenter) {
        rValues[n++] = CENTER_PULL * rParameters[1];
        rValues[n++] = CENTER_PULL * rParameters[2];
    }
    const double fFarAway = 1e6;
    for (double& rValue : rValues)
        rValue = std::isfinite(rValue) ? std::clamp(rValue, -fFarAway, fFarAway) : fFarAway;
}
