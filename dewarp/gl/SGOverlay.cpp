#include "dewarp/gl/SGOverlay.h"

#include <GLES3/gl31.h>

#include <cstddef>

SGOverlay::~SGOverlay()
{
    Reset();
}

void SGOverlay::Reset()
{
    delete[] pData;
    pData = nullptr;
    if (nTexture != 0) {
        glDeleteTextures(1, &nTexture);
        nTexture = 0;
    }
    nTextureUnit = 0;
    bDirty = false;
    bRealloc = false;
    nWidth = 0;
    nHeight = 0;
    vDirtyRects.clear();
    bFromMasks = false;
}

bool SGOverlay::Initialize(unsigned char* /*pPixels*/, int nNewWidth, int nNewHeight)
{
    delete[] pData;
    pData = nullptr;
    pData = new unsigned char[static_cast<std::size_t>(nNewWidth) * static_cast<std::size_t>(nNewHeight) * 4];
    nWidth = nNewWidth;
    nHeight = nNewHeight;
    return true;
}
