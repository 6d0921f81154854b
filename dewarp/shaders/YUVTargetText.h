/// \file
/// Texts of the view's program when frames come as external YUV images.
#pragma once

#include "dewarp/records/Enumerations.h"

#include <string>

/// As VertexText without flips. Straight onto a YUV target the drawing is turned upside down, because such a
/// target's row 0 is its top row; into a texture it is not.
/// Thread: any. Touches no GL.
/// Fails: never.
std::string YUVTargetVertexText(bool bDrawToTexture);

/// How an external image is sampled, in force: where linear sampling does, its filter is the linear one
/// anyway.
struct SYUVTargetSampling
{
    ESampling eSampling = SAMPLING_BY_TYPE;
    bool bMinification = false;
    int nWidth = 0; ///< of the image
    int nHeight = 0;
};

/// Samples "uTexture" as YUV and writes the sample unconverted: as YUV onto the target, as plain colour into
/// a texture. An input overlay's channels are mixed into Y, U and V as they are. strDiscard comes from
/// DiscardText, strRim from RimText: a rim fades to black.
/// Thread: any. Touches no GL.
/// Fails: never.
std::string YUVTargetFragmentText(bool bDrawToTexture, bool bInputOverlay, const std::string& strDiscard,
                                  const std::string& strRim = std::string(),
                                  const SYUVTargetSampling& sSampling = SYUVTargetSampling());
