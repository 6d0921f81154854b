/// \file
/// Text of the fragment shader that draws a view from CPU planes.
#pragma once

#include "dewarp/records/ColourMatrix.h"
#include "dewarp/records/Enumerations.h"

#include <string>

/// True for the image formats that can be drawn from CPU planes.
bool HasFragmentText(int nFormat);

struct SFragmentTextInput
{
    int nFormat = 0;   ///< EImageFormat
    int nYUVSpace = 1; ///< effective, 1 to 4
    int nYUVRange = 1; ///< effective, 1 or 2
    int nLumaMin = 16; ///< levels of the limited range, 0..255
    int nLumaMax = 235;
    int nChromaMin = 16;
    bool bGain = false; ///< multiply luma and chroma by the gains
    float fLumaGain = 1.1765f;
    float fChromaGain = 2.0f;
    bool bInputOverlay = false;             ///< blend "samplerInputOverlay" over the picture
    bool bQPTextures = false;               ///< show quantiser and macroblock type, planar frames only
    ESampling eSampling = SAMPLING_BY_TYPE; ///< SamplingText of the planes
    bool bMinification = false;
    std::string strRim;     ///< RimText of the view
    std::string strDiscard; ///< DiscardText of the view; goes in unchanged, before anything is sampled
};

/// A shader that samples the frame's planes at "v_TexCoordinate" and writes RGB and alpha to "vOutputColor".
/// Units: levels on the 0..255 scale.
/// Thread: any. Touches no GL.
/// Fails: an image format that cannot be drawn gives an empty text. Numbers go in as they format: an integral
/// level or a gain in exponent form needs the driver dialect before it compiles.
std::string FragmentText(const SFragmentTextInput& sInput);
