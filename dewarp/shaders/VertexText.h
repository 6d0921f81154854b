/// \file
/// Text of the vertex shader of every dewarped view.
#pragma once

#include <string>

struct SVertexTextInput
{
    bool bFlipHorizontal = false; ///< mirror the picture left to right
    bool bFlipVertical = false;   ///< mirror the picture top to bottom
    int nRotation = 0;            ///< of the input image, degrees; other than 0 and 180 the flips swap axes
    bool bInvertY = false;        ///< the target's row 0 is its top row: turn the drawing upside down
};

/// A shader that takes the mesh through "uMVPMatrix" and hands "a_TexCoordinate" on as "v_TexCoordinate".
/// Units: degrees.
/// Thread: any. Touches no GL.
/// Fails: never; every rotation that is not 0 or 180 counts as a quarter turn.
std::string VertexText(const SVertexTextInput& sInput);
