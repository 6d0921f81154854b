/// \file
/// Least squares.
#pragma once

#include "lens/FitResiduals.h"

/// Where the search ended, and how firmly it stands there.
struct SFitSolution
{
    Eigen::VectorXd vParameters;
    double fSum = 0.0; ///< of the squares of the measured values
    double fRMS = 0.0; ///< pixels
    double fLargest = 0.0;
    /// Of the parameters, for measurements that are each a pixel off by chance. Not finite where nothing
    /// holds one.
    Eigen::MatrixXd mCovariance;
};

/// From a start to the nearest minimum, by Levenberg's and Marquardt's steps. Thread: any. Fails: never; the
/// start is returned where no step is better.
SFitSolution SolveFit(const CFitResiduals& rResiduals, const Eigen::VectorXd& rStart);
/// The sum of the squares.
double SumAt(const CFitResiduals& rResiduals, const Eigen::VectorXd& rParameters);
