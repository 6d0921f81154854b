#include "lens/FitSolver.h"

#include <Eigen/Dense>
#include <algorithm>
#include <limits>
#include <unsupported/Eigen/NonLinearOptimization>

namespace
{

/// The residuals in the form that the solver takes.
struct SFunction
{
    using Scalar = double;
    using InputType = Eigen::VectorXd;
    using ValueType = Eigen::VectorXd;
    using JacobianType = Eigen::MatrixXd;
    enum
    {
        InputsAtCompileTime = Eigen::Dynamic,
        ValuesAtCompileTime = Eigen::Dynamic
    };

    int inputs() const { return static_cast<int>(pResiduals->ParameterCount()); }
    int values() const { return static_cast<int>(pResiduals->ValueCount()); }
    int operator()(const InputType& rParameters, ValueType& rValues) const
    {
        pResiduals->Evaluate(rParameters, rValues);
        return 0;
    }
    /// Every parameter is a logarithm or a part of something of size 1: one step does for all.
    int df(const InputType& rParameters, JacobianType& rSlopes) const
    {
        const double fStep = 1e-6;
        ValueType vMore;
        ValueType vLess;
        for (Eigen::Index n = 0; n < rParameters.size(); ++n) {
            InputType vMoved = rParameters;
            vMoved[n] += fStep;
            pResiduals->Evaluate(vMoved, vMore);
            vMoved[n] -= 2.0 * fStep;
            pResiduals->Evaluate(vMoved, vLess);
            rSlopes.col(n) = (vMore - vLess) / (2.0 * fStep);
        }
        return 0;
    }

    const CFitResiduals* pResiduals = nullptr;
};

void Describe(const CFitResiduals& rResiduals, SFitSolution& rSolution)
{
    Eigen::VectorXd vValues;
    rResiduals.Evaluate(rSolution.vParameters, vValues);
    const Eigen::VectorXd vMeasured = vValues.head(rResiduals.MeasuredCount());
    rSolution.fSum = vMeasured.squaredNorm();
    rSolution.fRMS =
        std::sqrt(rSolution.fSum / static_cast<double>(std::max<Eigen::Index>(vMeasured.size(), 1)));
    rSolution.fLargest = vMeasured.size() > 0 ? vMeasured.cwiseAbs().maxCoeff() : 0.0;

    Eigen::MatrixXd mJacobian(rResiduals.ValueCount(), rResiduals.ParameterCount());
    SFunction{&rResiduals}.df(rSolution.vParameters, mJacobian);
    const Eigen::FullPivLU<Eigen::MatrixXd> oNormal(mJacobian.transpose() * mJacobian);
    const Eigen::Index nCount = rResiduals.ParameterCount();
    rSolution.mCovariance =
        Eigen::MatrixXd::Constant(nCount, nCount, std::numeric_limits<double>::infinity());
    if (oNormal.isInvertible())
        rSolution.mCovariance = oNormal.inverse();
}

} // namespace

double SumAt(const CFitResiduals& rResiduals, const Eigen::VectorXd& rParameters)
{
    Eigen::VectorXd vValues;
    rResiduals.Evaluate(rParameters, vValues);
    return vValues.squaredNorm();
}

SFitSolution SolveFit(const CFitResiduals& rResiduals, const Eigen::VectorXd& rStart)
{
    SFitSolution sSolution;
    sSolution.vParameters = rStart;
    // The solver wants as many values as parameters at least.
    if (rResiduals.ValueCount() >= rResiduals.ParameterCount()) {
        SFunction sFunction{&rResiduals};
        Eigen::LevenbergMarquardt<SFunction> oSolver(sFunction);
        oSolver.parameters.maxfev = 120;
        oSolver.parameters.ftol = 1e-12;
        oSolver.parameters.xtol = 1e-10;
        Eigen::VectorXd vParameters = rStart;
        oSolver.minimize(vParameters);
        if (vParameters.allFinite() && SumAt(rResiduals, vParameters) <= SumAt(rResiduals, rStart))
            sSolution.vParameters = vParameters;
    }
    Describe(rResiduals, sSolution);
    return sSolution;
}
