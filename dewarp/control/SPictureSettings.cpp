#include "dewarp/control/SPictureSettings.h"

#include "dewarp/control/Refusals.h"

void SPictureSettings::SetYUV(EYUVSpace eSpace, EYUVRange eRange)
{
    sYUV2RGB.eSpace = eSpace;
    sYUV2RGB.eRange = eRange;
}

void SPictureSettings::SetLevels(int nLumaMin, int nLumaMax, int nChromaMin)
{
    sYUV2RGB.nLumaMin = nLumaMin;
    sYUV2RGB.nLumaMax = nLumaMax;
    sYUV2RGB.nChromaMin = nChromaMin;
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
