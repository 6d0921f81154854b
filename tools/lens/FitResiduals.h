/// \file
/// How far measured places are from where a lens would have put them.
#pragma once

#include "lens/FitCurve.h"
#include "lens/FitData.h"

#include <Eigen/Core>
#include <vector>

/// Where the picture lies. Units: frame pixels.
struct SFitFrame
{
    double fCenterX = 0.0; ///< as far as is known before
    double fCenterY = 0.0;
    double fRadius = 0.0; ///< of the circle whose field is asked for
};

/// Pixels between measured and expected for every point and every place of a line. A place is as far from its
/// line as from the nearest place whose ray lies in the line's plane, which is the one that suits all its
/// places best. Parameters: the focal length's logarithm, the centre's offset in radii where it is sought,
/// coefficients. Owns: nothing of the data. Thread: one at a time. Fails: never; what cannot be is far away.
class CFitResiduals
{
public:
    CFitResiduals(const SFitData& rData, const SFitFrame& rFrame, const SFitModel& rModel, bool bCenter);

    Eigen::Index ParameterCount() const;
    /// Of measurements, without what holds the centre.
    Eigen::Index MeasuredCount() const { return m_nMeasured; }
    /// Values: the measured ones, and two where the centre is sought. They draw it gently to where it was
    /// said to be, so that what the data do not tell stays there.
    Eigen::Index ValueCount() const { return m_nMeasured + (m_bCenter ? 2 : 0); }
    /// How many of the measurements are more than planes and parameters take.
    Eigen::Index Freedom() const;
    void Evaluate(const Eigen::VectorXd& rParameters, Eigen::VectorXd& rValues) const;

    Eigen::VectorXd Start(double fFocal) const;
    CFitCurve CurveOf(const Eigen::VectorXd& rParameters) const;
    double FocalOf(const Eigen::VectorXd& rParameters) const;
    SFitPlace CenterOf(const Eigen::VectorXd& rParameters) const;
    bool HasCenter() const { return m_bCenter; }
    const SFitFrame& Frame() const { return m_rFrame; }
    const SFitData& Data() const { return m_rData; }
    /// Pixels from a centre to the outermost place.
    double Reach(const SFitPlace& rCenter) const;

private:
    Eigen::Index EvaluateLine(const SFitLine& rLine, const CFitCurve& rCurve, const SFitPlace& rCenter,
                              Eigen::Index nFirst, Eigen::VectorXd& rValues) const;

    const SFitData& m_rData;
    const SFitFrame& m_rFrame;
    SFitModel m_sModel;
    bool m_bCenter;
    Eigen::Index m_nMeasured = 0;
};
