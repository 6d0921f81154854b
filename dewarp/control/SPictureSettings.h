/// \file
/// How a frame's colours and sides are to be shown.
#pragma once

#include "dewarp/records/Enumerations.h"
#include "dewarp/records/SYUV2RGBConversionParams.h"
#include "platform/Export.h"

class CReport;

struct LUMOR_INTERNAL_API SPictureSettings
{
    SYUV2RGBConversionParams sYUV2RGB;
    bool bGain = false; ///< multiply luma and chroma by the gains
    float fLumaGain = 1.1765f;
    float fChromaGain = 2.0f;
    bool bFlipHorizontal = false;
    bool bFlipVertical = false;
    ESampling eSampling = SAMPLING_BY_TYPE;
    bool bMinification = false; ///< average over a pixel's footprint where the view shrinks the frame

    /// Each takes its values and returns true, or refuses them with a log line.
    /// Thread: any, serialised by the host.
    void SetYUV(EYUVSpace eSpace, EYUVRange eRange);
    bool SetLevels(int nLumaMin, int nLumaMax, int nChromaMin, CReport& rReport);
    bool SetGains(float fLuma, float fChroma, CReport& rReport);
    void SetFlip(bool bHorizontal, bool bVertical);
    bool SetSampling(ESampling eNewSampling, CReport& rReport);

    /// How the frame is sampled in the end: never SAMPLING_BY_TYPE.
    ESampling SamplingInForce(EInterpolationType eType) const
    {
        if (eSampling != SAMPLING_BY_TYPE)
            return eSampling;
        return eType == INTERPOLATION_LINEAR ? SAMPLING_LINEAR : SAMPLING_NEAREST;
    }
};
