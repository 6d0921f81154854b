/// \file
/// Text that ends a picture where the light of the lens does.
#pragma once

#include <string>

/// An ellipse in texture coordinates of the frame. Inverse radii of 0: there is none.
struct SRimInput
{
    float fCenterU = 0.0f;
    float fCenterV = 0.0f;
    float fInverseU = 0.0f;
    float fInverseV = 0.0f;
};

/// Statements that leave in "rimCover" how much of a pixel lies inside the ellipse and the frame, 0 to 1:
/// half of it on the edge, which is one pixel wide however the view stretches it. They need "v_TexCoordinate"
/// in high precision (HighTexCoords). Empty without an ellipse. Thread: any. Touches no GL. Fails: never.
std::string RimText(const SRimInput& sInput);

/// A fragment shader's text with its texture coordinate in high precision.
std::string HighTexCoords(std::string strText);
