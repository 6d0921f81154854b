/// \file
/// Text of the tests that keep a view inside its band of the target.
#pragma once

#include <string>

struct SDiscardInput
{
    /// Framebuffer x minimum and maximum, y minimum and maximum, in pixels, as gl_FragCoord counts them; -1
    /// in either value of a pair: no test on that axis.
    int anClipPlanes[4] = {-1, -1, -1, -1};
    float fClipValue = 0;       ///< framebuffer depth below which fragments are discarded; 0: no test
    bool bTexCoordClip = false; ///< discard fragments whose texture row lies outside 0..1
};

/// The statements that discard what the limits exclude, for the beginning of a fragment shader's main
/// function: x, y, depth, texture row.
/// Units: pixels and framebuffer depth, both taken as they are.
/// Thread: any. Touches no GL.
/// Fails: never; no limit gives an empty text.
std::string DiscardText(const SDiscardInput& sInput);
