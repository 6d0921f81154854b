#include "dewarp/lenses/CircleEnd.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <initializer_list>

namespace
{

/// Full light is looked for this far inside of the rim: pixels, and parts of the radius.
constexpr double FULL_FROM = 8.0;
constexpr double FULL_TO = 16.0;
constexpr double FULL_FROM_PART = 0.015;
constexpr double FULL_TO_PART = 0.03;

/// Where an end begins and where it is judged, in parts of the full light.
constexpr double FIRST_LIGHT = 0.1;
constexpr double MORE_LIGHT = 0.6;

/// Pixels and parts of the radius up to which an end is a blurred step, and pixels up to which it is sharp.
constexpr double SHARP_WIDTH = 3.0;
constexpr double BLURRED_WIDTH = 4.0;
constexpr double BLURRED_PART = 0.012;

/// Pixels looked at on both sides of an end that is not sharp; a wide blur must fit this much better than
/// fading.
constexpr double FADING_WINDOW = 6.0;
constexpr double BLURRED_WINDOW = 10.0;
constexpr double MUCH_BETTER = 0.35;
constexpr double MOST_BLURRED_WIDTH = 10.0;

/// Parts of the radius where the evenness of a fading end is measured, and how much on both sides.
constexpr double NEARER = 0.03;
constexpr double FARTHER = 0.055;
constexpr double BESIDE = 0.005;

/// Pixels outside of the rim where a level is reached first, between two entries.
double FirstReach(const SProfile& rJoint, double fLevel)
{
    int i = rJoint.nFirst;
    while (i < rJoint.nEnd - 1 && rJoint.vLevels[static_cast<std::size_t>(i)] < fLevel)
        ++i;
    if (i == rJoint.nFirst)
        return rJoint.Distance(i);
    const double fThis = rJoint.vLevels[static_cast<std::size_t>(i)];
    const double fBefore = rJoint.vLevels[static_cast<std::size_t>(i) - 1];
    const double fBack = fThis > fBefore ? std::clamp((fThis - fLevel) / (fThis - fBefore), 0.0, 1.0) : 0.0;
    return rJoint.Distance(i) + fBack * rJoint.fStep;
}

/// The best edge of several blurs.
SProfileEdge BestEdge(const SProfile& rJoint, double fThreshold, std::initializer_list<double> fBlurs,
                      double fWindow)
{
    SProfileEdge sBest;
    const int nOnset = FindOnset(rJoint, fThreshold);
    if (nOnset >= rJoint.nEnd)
        return sBest;
    for (const double fBlur : fBlurs) {
        const SProfileEdge sEdge = PlaceEdge(rJoint, nOnset, 0.0, fThreshold, fBlur, fWindow);
        if (sEdge.bFound && (!sBest.bFound || sEdge.fMisfit < sBest.fMisfit))
            sBest = sEdge;
    }
    return sBest;
}

/// Of an end that is not sharp: where it is, and whether it fades or is a wide blur after all.
void MeasureSoftEnd(const SProfile& rJoint, double fRadius, double fThreshold, SRimEnd& rEnd)
{
    SProfileEdge sEdge = BestEdge(rJoint, fThreshold, {1.5, 2.0, 3.0}, FADING_WINDOW);
    if (!sEdge.bFound)
        return;
    rEnd.eKind = END_FADING;
    if (rEnd.fWidth <= MOST_BLURRED_WIDTH) {
        const SProfileEdge sFading = BestEdge(rJoint, fThreshold, {1.5, 2.0, 3.0}, BLURRED_WINDOW);
        const SProfileEdge sBlurred = BestEdge(rJoint, fThreshold, {4.5, 6.0, 8.0}, BLURRED_WINDOW);
        if (sBlurred.bFound && sBlurred.fMisfit < MUCH_BETTER * sFading.fMisfit) {
            sEdge = sBlurred;
            rEnd.eKind = END_BLURRED;
        }
    }
    rEnd.fDistance = sEdge.fDistance;
    const double fNearer = NEARER * fRadius - sEdge.fDistance;
    const double fFarther = FARTHER * fRadius - sEdge.fDistance;
    const double fBeside = BESIDE * fRadius;
    const double fFull = MeanInside(rJoint, fFarther - fBeside, fFarther + fBeside);
    if (fFull > 0.0)
        rEnd.fEvenness = MeanInside(rJoint, fNearer - fBeside, fNearer + fBeside) / fFull;
}

} // namespace

SRimEnd FindRimEnd(const SProfile& rJoint, double fRadius, double fThreshold)
{
    SRimEnd sEnd;
    const double fFull = MeanInside(rJoint, std::max(FULL_FROM, FULL_FROM_PART * fRadius),
                                    std::max(FULL_TO, FULL_TO_PART * fRadius));
    if (!(fFull > fThreshold))
        return sEnd;
    const double fBegin = FirstReach(rJoint, std::max(FIRST_LIGHT * fFull, fThreshold));
    sEnd.fWidth = (fBegin - FirstReach(rJoint, MORE_LIGHT * fFull)) / (MORE_LIGHT - FIRST_LIGHT);
    if (sEnd.fWidth > std::max(BLURRED_WIDTH, BLURRED_PART * fRadius)) {
        MeasureSoftEnd(rJoint, fRadius, fThreshold, sEnd);
        return sEnd;
    }
    sEnd.eKind = sEnd.fWidth > SHARP_WIDTH ? END_BLURRED : END_SHARP;
    const double fBehind = 1.2 * sEnd.fWidth - fBegin;
    sEnd.fDistance = FirstReach(rJoint, 0.5 * MeanInside(rJoint, fBehind, fBehind + 4.0));
    return sEnd;
}
