#include "dewarp/control/SPictureSettings.h"

#include "dewarp/control/Refusals.h"

void SPictureSettings::SetYUV(EYUVSpace eSpace, EYUVRange eRange)
{
    sYUV2RGB.eSpace = eSpace;
    sYUV2RGB.eRange = eRange;
}

bool SPictureSettings::SetLevels(int nLumaMin, int nLumaMax, int nChromaMin, CReport& rReport)
{
    // The conversion divides by the range.
    if (nLumaMin == nLumaMax) {
        rReport.Refuse("%s: levels from %d to %d leave no range", "SetYUVLevels", nLumaMin, nLumaMax);
        return false;
    }
    sYUV2RGB.nLumaMin = nLumaMin;
    sYUV2RGB.nLumaMax = nLumaMax;
    sYUV2RGB.nChromaMin = nChromaMin;
    return true;
}

bool SPictureSettings::SetGains(float fLuma, float fChroma, CReport& rReport)
{
    if (!AreUsable({fLuma, fChroma}, "SetGains", rReport))
        return false;
    fLumaGain = fLuma;
    fChromaGain = fChroma;
    return true;
}

void SPictureSettings::SetFlip(bool bHorizontal, bool bVertical)
{
    bFlipHorizontal = bHorizontal;
    bFlipVertical = bVertical;
}

bool SPictureSettings::SetSampling(ESampling eNewSampling, CReport& rReport)
{
    if (eNewSampling < SAMPLING_BY_TYPE || eNewSampling > SAMPLING_LANCZOS) {
        rReport.Refuse("%s: there is no sampling %d", "SetSampling", static_cast<int>(eNewSampling));
        return false;
    }
    eSampling = eNewSampling;
    return true;
}
