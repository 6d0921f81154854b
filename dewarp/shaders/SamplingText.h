/// \file
/// Text that samples a frame otherwise than the texture unit does.
#pragma once

#include "dewarp/records/Enumerations.h"

#include <string>

struct SSamplingTextInput
{
    const char* pSamplerType = "sampler2D"; ///< of the frame's planes
    ESampling eSampling = SAMPLING_BY_TYPE; ///< in force, or by the texture's filter
    bool bMinification = false;             ///< average over a pixel's footprint
    bool bInputOverlay = false;             ///< "samplerInputOverlay" lies over the frame
    /// The frame is an external image of that size: it has the linear filter where nearest is asked for, too.
    bool bExternal = false;
    int nWidth = 0;
    int nHeight = 0;

    /// The texture's filter does for all of it: there is no text to be written.
    bool IsPlain() const
    {
        const bool bFilter = eSampling <= (bExternal ? SAMPLING_BY_TYPE : SAMPLING_NEAREST);
        return !bMinification && (bFilter || eSampling == SAMPLING_LINEAR);
    }
};

/// The function "sampleFrame(plane, at)" and what it calls, to stand before the main function; empty when the
/// input is plain. It takes a plane's colour at texture coordinates in high precision. Planes need the linear
/// filter.
///
/// Kernels take texels and weigh them in single precision: texture units weigh in 256ths. A footprint is the
/// parallelogram between a pixel's neighbours; it is averaged over 1 to 8 linear samples along either side,
/// as many as it is texels long.
///
/// Texels under an overlay are secret. A kernel that would reach one gives way to the linear sample, whose
/// reach is the overlay's own; samples of a footprint that would reach one are left out, and where none
/// remains the pixel is sampled as it would be without the average.
///
/// All integers are in these functions: numbers of the main function may still be made floats for a driver.
/// Thread: any. Touches no GL. Fails: never.
std::string SamplingText(const SSamplingTextInput& sInput);

/// Statements that "sampleFrame" needs at the beginning of the main function, before pixels are discarded.
std::string SamplingStartText(const SSamplingTextInput& sInput);

/// Statements with the fetches from the frame's planes taken by "sampleFrame". A plane of two chroma channels
/// is taken once.
std::string SampledFetches(std::string strText);
