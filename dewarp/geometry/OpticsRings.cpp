#include "dewarp/geometry/OpticsRings.h"

#include "dewarp/lenses/RadialCurve.h"

#include <algorithm>
#include <cmath>
#include <numbers>

static const double RADIANS = std::numbers::pi / 180.0;
static const double LEAST_STEP = 0.4 * RADIANS;
static const double MOST_STEP = 2.4 * RADIANS;
/// How far a line may leave the lens's curve, in parts of the height at its edge.
static const double MOST_ERROR = 4e-5;

/// The step that keeps a line near the curve: it leaves by its bend times the step's square, over 8.
static double StepAt(const CRadialCurve& rCurve, double fAngle)
{
    const double e = 1.0 * RADIANS;
    const double fMiddle = std::clamp(fAngle + e, e, std::max(e, rCurve.Edge() - e));
    const double fBend =
        (rCurve.Height(fMiddle + e) - 2.0 * rCurve.Height(fMiddle) + rCurve.Height(fMiddle - e)) / (e * e);
    const double fRelative = std::fabs(fBend) / rCurve.EdgeHeight();
    return std::clamp(std::sqrt(8.0 * MOST_ERROR / std::max(fRelative, 1e-6)), LEAST_STEP, MOST_STEP);
}

std::vector<double> PlaceRings(const CRadialCurve& rCurve, double fLast)
{
    std::vector<double> vRings = {0.0};
    const double fEdge = std::min(rCurve.Edge(), fLast);
    while (vRings.back() < fEdge) {
        const double fNext = vRings.back() + StepAt(rCurve, vRings.back());
        // No sliver before the edge.
        vRings.push_back(fNext > fEdge - 0.5 * LEAST_STEP ? fEdge : fNext);
    }
    if (fLast > fEdge)
        vRings.push_back(fLast);
    return vRings;
}
