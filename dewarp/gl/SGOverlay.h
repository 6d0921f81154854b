/// \file
/// An RGBA image laid over the input picture or over the result.
#pragma once

#include "dewarp/records/SGRect.h"
#include "platform/Export.h"

#include <vector>

/// Units: pixels; rows packed, top row first, 4 bytes (R, G, B, A) a pixel.
/// Owns: its copy of the pixels and one GL texture.
/// Thread: a record with a texture must be reset on the GL thread.
struct LUMOR_API SGOverlay
{
    unsigned char* pData = nullptr; ///< null when no overlay is set
    int nWidth = 0;
    int nHeight = 0;
    bool bDirty = false;             ///< pixels changed since the last upload
    bool bRealloc = false;           ///< size changed: the texture must be made anew
    unsigned int nTexture = 0;       ///< GL name
    unsigned int nTextureUnit = 0;   ///< GL_TEXTURE5 or GL_TEXTURE7; 0 when no overlay is set
    std::vector<SGRect> vDirtyRects; ///< what the last set changed; empty: everything

    bool bFromMasks = false; ///< painted from privacy masks: nobody else may write or show it

    SGOverlay() = default;
    SGOverlay(const SGOverlay&) = delete;
    SGOverlay& operator=(const SGOverlay&) = delete;
    ~SGOverlay();

    /// Frees the pixels, deletes the texture, forgets the size.
    void Reset();
    /// Stores the size and makes room for the pixels, without copying them. Always true.
    bool Initialize(unsigned char* pPixels, int nNewWidth, int nNewHeight);
};
