#include "dewarp/lenses/GivenLens.h"

#include "dewarp/tables/LensDistortion.h"

#include <algorithm>
#include <cmath>

namespace
{

constexpr float RIM_ANGLE = 90.0f;

/// A million pixels of radius; images of that size do not exist.
constexpr int MOST_RADIUS_STEPS = 1 << 20;

/// Heights times angles and pixels stay finite up to here, and their ratios exact enough down to the inverse.
constexpr float MOST_HEIGHT = 1e30f;

constexpr SGivenLens EQUIDISTANT;

constexpr SGivenLens LENSES[] = {
    {LENS_DSL215, LENS_DISTORTION::fDomainForDSL215, LENS_DISTORTION::fRangeForDSL215,
     LENS_RADIUS_LARGER_SIDE, true},
    {LENS_DSL239, LENS_DISTORTION::fDomainForDSL239, LENS_DISTORTION::fRangeForDSL239, LENS_RADIUS_WIDTH,
     true},
    {LENS_DSL418, LENS_DISTORTION::fDomainForDSL418, LENS_DISTORTION::fRangeForDSL418, LENS_RADIUS_HEIGHT,
     false},
    {LENS_DSL419, LENS_DISTORTION::fDomainForDSL419, LENS_DISTORTION::fRangeForDSL419, LENS_RADIUS_HEIGHT,
     false},
};

bool IsEquidistant(const SGivenLens& rLens)
{
    return rLens.vDomain.empty();
}

/// The first row that does not follow its predecessor upward; the number of rows when all do.
std::size_t FirstFallingRow(std::span<const float> vRows)
{
    for (std::size_t i = 1; i < vRows.size(); ++i) {
        if (!(vRows[i] > vRows[i - 1]) || !std::isfinite(vRows[i]))
            return i;
    }
    return vRows.size();
}

/// What is wrong with angles or heights alone.
std::string FindRowFault(std::span<const float> vRows, const char* pName)
{
    if (vRows[0] != 0.0f)
        return std::string(pName) + " do not start at 0";
    const std::size_t nRow = FirstFallingRow(vRows);
    if (nRow == vRows.size())
        return std::string();
    return std::string(pName) + (std::isfinite(vRows[nRow]) ? " do not rise" : " are not finite") +
           " at row " + std::to_string(nRow);
}

} // namespace

const SGivenLens& FindLens(int nLensType)
{
    for (const SGivenLens& rLens : LENSES) {
        if (rLens.eType == nLensType)
            return rLens;
    }
    return EQUIDISTANT;
}

std::span<const SGivenLens> KnownLenses()
{
    return LENSES;
}

std::string FindLensFault(const SGivenLens& rLens)
{
    if (rLens.vDomain.size() != rLens.vRange.size())
        return "as many heights as angles are needed";
    if (IsEquidistant(rLens))
        return std::string();
    if (rLens.vDomain.size() < 2)
        return "one row is no table";
    std::string strFault = FindRowFault(rLens.vDomain, "angles");
    if (strFault.empty())
        strFault = FindRowFault(rLens.vRange, "heights");
    if (!strFault.empty())
        return strFault;
    if (rLens.vDomain.back() < RIM_ANGLE)
        return "angles do not reach 90 degrees";
    if (rLens.vDomain.back() > 180.0f)
        return "angles go beyond 180 degrees";
    if (rLens.vRange.back() > MOST_HEIGHT || rLens.vRange.back() < 1.0f / MOST_HEIGHT)
        return "heights are out of proportion";
    return std::string();
}

float LensRadius(const SGivenLens& rLens, int nWidth, int nHeight)
{
    int nDiameter = std::max(nWidth, nHeight);
    if (rLens.eRadiusRule == LENS_RADIUS_WIDTH)
        nDiameter = nWidth;
    else if (rLens.eRadiusRule == LENS_RADIUS_HEIGHT)
        nDiameter = nHeight;
    return 0.5f * static_cast<float>(nDiameter);
}

float LensRimHeight(const SGivenLens& rLens)
{
    if (IsEquidistant(rLens))
        return RIM_ANGLE;
    const std::span<const float> vDomain = rLens.vDomain;
    const std::span<const float> vRange = rLens.vRange;
    std::size_t m = vDomain.size() - 1;
    if (!(vDomain[m] > RIM_ANGLE))
        return vRange[m];
    do
        --m;
    while (m > 0 && vDomain[m] > RIM_ANGLE);
    return vRange[m] + (vRange[m + 1] - vRange[m]) * (RIM_ANGLE - vDomain[m]) / (vDomain[m + 1] - vDomain[m]);
}

/// Heights at whole angles below 90 degrees, for a lens with rows.
static bool ResampleHeights(const SGivenLens& rLens, float* pTable)
{
    const std::span<const float> vDomain = rLens.vDomain;
    const std::span<const float> vRange = rLens.vRange;
    const std::size_t nLast = vDomain.size() - 1;
    // The last row scaled to 90 degrees. The radius-to-angle table interpolates around 90 instead: on
    // purpose the two are not exact inverses.
    const float fRim = vRange[nLast] * RIM_ANGLE / vDomain[nLast];
    std::size_t j = 0;
    for (int i = 0; i < 90; ++i) {
        const float fDegrees = static_cast<float>(i);
        while (j + 1 < nLast && vDomain[j + 1] <= fDegrees)
            ++j;
        const float fBelow = vDomain[j];
        const float fAbove = vDomain[j + 1];
        if (!(fBelow <= fDegrees && fAbove > fDegrees))
            return false;
        const float fFrom = vRange[j] / fRim;
        const float fTo = vRange[j + 1] / fRim;
        pTable[i] = fFrom + (fDegrees - fBelow) * (fTo - fFrom) / (fAbove - fBelow);
    }
    return true;
}

bool FillAngleToRadius(const SGivenLens& rLens, float* pTable)
{
    if (IsEquidistant(rLens)) {
        for (int i = 0; i < 90; ++i)
            pTable[i] = static_cast<float>(i) / RIM_ANGLE;
    } else if (rLens.vDomain.size() < 2 || !ResampleHeights(rLens, pTable)) {
        return false;
    }
    pTable[90] = 1.0f;
    pTable[91] = 1.0f;
    return true;
}

int CountRadiusSteps(float fRadius)
{
    if (!(fRadius > 0.0f))
        return 0;
    return fRadius < static_cast<float>(MOST_RADIUS_STEPS) ? static_cast<int>(fRadius) : MOST_RADIUS_STEPS;
}

/// Field angle at every whole pixel of the radius, for a lens with rows.
static void InvertHeights(const SGivenLens& rLens, float fRadius, int nSteps, float* pTable)
{
    const std::span<const float> vDomain = rLens.vDomain;
    const std::span<const float> vRange = rLens.vRange;
    const float fRim = LensRimHeight(rLens);
    std::size_t m = 1;
    for (int k = 0; k < nSteps; ++k) {
        const float fHeight = (fRim * static_cast<float>(k)) / fRadius;
        while (m < vRange.size() - 1 && vRange[m] <= fHeight)
            ++m;
        pTable[k] = vDomain[m - 1] +
                    (fHeight - vRange[m - 1]) * (vDomain[m] - vDomain[m - 1]) / (vRange[m] - vRange[m - 1]);
    }
}

void FillRadiusToAngle(const SGivenLens& rLens, float fRadius, float* pTable)
{
    const int nSteps = CountRadiusSteps(fRadius);
    if (IsEquidistant(rLens)) {
        for (int k = 0; k < nSteps; ++k)
            pTable[k] = static_cast<float>(k) / fRadius * RIM_ANGLE;
    } else {
        InvertHeights(rLens, fRadius, nSteps, pTable);
    }
    pTable[nSteps] = RIM_ANGLE;
    pTable[nSteps + 1] = RIM_ANGLE;
}
