/// \file
/// Colours of host records as shader inputs.
#pragma once

#include <GLES3/gl31.h>

/// Sets a vec4 uniform of the program in use from 0xRRGGBBAA, each byte / 255. GL thread.
inline void SetUniformColour(int nLocation, unsigned int nColour)
{
    glUniform4f(nLocation, static_cast<float>(nColour >> 24 & 255) / 255.0f,
                static_cast<float>(nColour >> 16 & 255) / 255.0f,
                static_cast<float>(nColour >> 8 & 255) / 255.0f, static_cast<float>(nColour & 255) / 255.0f);
}
