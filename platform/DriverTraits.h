/// \file
/// What a driver offers, and the one place through which shader text passes on its way to it. Texts are kept
/// as they were written; what a driver cannot take, or takes slowly, is replaced in a copy.
#pragma once

#include <string>

/// What a driver and the target in use offer to shader text and uploads. A fresh record lacks nothing: with
/// it every text and every plane goes to the driver as it is.
struct SDriverTraits
{
    bool bKnown = false;       ///< filled in by QueryDriverTraits
    bool bYUVTarget = true;    ///< GL_EXT_YUV_target: YUV outputs and samplers that deliver YUV
    bool bYUVOutput = true;    ///< the target holds YUV; the caller clears it for a target of plain colours
    bool bPreferHighp = false; ///< single precision is faster here than the precision the texts ask for
    bool bPreferRGBA = false;  ///< RGBA uploads are several times faster here than BGRA, RGB and BGR ones
};

/// True when what a driver calls its renderer (GL_RENDERER) is hardware, as far as its name tells; the names
/// of software rasterisers, empty ones and none are not. Thread: any. Touches no GL. Fails: never.
bool IsHardwareRenderer(const char* pRenderer);

/// Asks the current context for its traits; bYUVOutput stays true, for it is the caller's to say.
/// Thread: GL thread, context current.
/// Fails: without a context the result is a fresh record.
SDriverTraits QueryDriverTraits();

/// The text to give the driver first: the text itself, byte for byte, unless a copy is known to be needed to
/// draw right (a YUV output towards a target of plain colours) or known to run faster (bPreferHighp: default
/// precision of floats and samplers raised to highp). Such a copy is also rid of all that AdaptShaderText
/// replaces.
/// Thread: any. Touches no GL.
/// Fails: never.
std::string PreferredShaderText(const std::string& strText, const SDriverTraits& sTraits);

/// The copy to try when the driver has refused the preferred text. Replaced are:
/// - integral numbers where floats are meant ("(1-mb_type)", "(y-0)/1"): GLSL ES converts none by itself;
/// - numbers that no compiler reads: "1e+06.0", and "y--0.1", which reads as a decrement;
/// - without bYUVTarget the extension's line, "layout (yuv)" of outputs, and samplers that deliver YUV; an
///   external image sampler takes their place, which delivers what the image holds where images are RGBA;
/// - with bPreferHighp the default precision.
/// Lines keep their numbers, so that the compiler's messages fit both texts.
/// Thread: any. Touches no GL.
/// Fails: an empty result says that there is nothing else to try.
std::string AdaptShaderText(const std::string& strText, const SDriverTraits& sTraits);
