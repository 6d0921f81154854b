/// \file
/// Picture settings and clip bands as a program's requests.
#pragma once

#include "dewarp/control/SPictureSettings.h"
#include "dewarp/gl/SShaderProperties.h"
#include "dewarp/views/View.h"

#include <algorithm>
#include <iterator>

/// What a program was asked for. Thread: any, serialised by the host.
inline SPictureSettings RequestedSettings(const SShaderProperties& rShader)
{
    SPictureSettings sSettings;
    sSettings.sYUV2RGB = rShader.sYUV2RGBRequested;
    sSettings.bGain = rShader.bGainRequested;
    sSettings.fLumaGain = rShader.fLumaGainRequested;
    sSettings.fChromaGain = rShader.fChromaGainRequested;
    sSettings.bFlipHorizontal = rShader.bFlipHorizontalRequested;
    sSettings.bFlipVertical = rShader.bFlipVerticalRequested;
    sSettings.eSampling = rShader.eSamplingRequested;
    sSettings.bMinification = rShader.bMinificationRequested;
    return sSettings;
}

/// Asks a program for settings.
inline void RequestSettings(const SPictureSettings& rSettings, SShaderProperties& rShader)
{
    rShader.sYUV2RGBRequested = rSettings.sYUV2RGB;
    rShader.bGainRequested = rSettings.bGain;
    rShader.fLumaGainRequested = rSettings.fLumaGain;
    rShader.fChromaGainRequested = rSettings.fChromaGain;
    rShader.bFlipHorizontalRequested = rSettings.bFlipHorizontal;
    rShader.bFlipVerticalRequested = rSettings.bFlipVertical;
    rShader.eSamplingRequested = rSettings.eSampling;
    rShader.bMinificationRequested = rSettings.bMinification;
}

/// Puts a program's requests in force: its texts are written from them next.
inline void TakeSettings(SShaderProperties& rShader)
{
    rShader.bGain = rShader.bGainRequested;
    rShader.fLumaGain = rShader.fLumaGainRequested;
    rShader.fChromaGain = rShader.fChromaGainRequested;
    rShader.bFlipHorizontal = rShader.bFlipHorizontalRequested;
    rShader.bFlipVertical = rShader.bFlipVerticalRequested;
    rShader.eSampling = rShader.eSamplingRequested;
    rShader.bMinification = rShader.bMinificationRequested;
    rShader.sYUV2RGB = rShader.sYUV2RGBRequested;
}

/// Asks a program for bands.
inline void RequestBands(const SClipBands& rBands, SShaderProperties& rShader)
{
    std::copy(std::begin(rBands.anPlanes), std::end(rBands.anPlanes), rShader.anClipPlanesRequested);
    rShader.fClipValueRequested = rBands.fDepth;
    rShader.bTexCoordClipRequested = rBands.bTexCoordRows;
    const SRimCut& r = rBands.sRim;
    const float afRim[] = {r.fCenterU, r.fCenterV, r.fInverseU, r.fInverseV};
    std::copy(std::begin(afRim), std::end(afRim), rShader.afRimRequested);
}
