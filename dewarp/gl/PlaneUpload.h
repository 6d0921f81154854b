/// \file
/// One input plane on its way into a texture.
#pragma once

/// Units: pixels, bytes. The pixels are the host's.
struct SPlaneUpload
{
    unsigned int* pTexture = nullptr;
    unsigned int nUnit = 0;         ///< GL_TEXTURE0 ..
    unsigned int nFormat = 0;       ///< the texture's
    unsigned int nUploadFormat = 0; ///< the plane's
    int nWidth = 0;
    int nHeight = 0;
    int nPixelBytes = 0;
    int nRowBytes = 0; ///< from one row to the next
    unsigned char* pPixels = nullptr;

    /// The rows hold the width; otherwise the upload would run over the last row.
    bool IsComplete() const
    {
        return pPixels != nullptr && static_cast<long long>(nWidth) * nPixelBytes <= nRowBytes;
    }
};

/// Most planes a format has.
inline constexpr int MAX_PLANES = 3;

/// Largest of 8, 4, 2, 1 that divides the bytes of a row.
int UnpackAlignment(int nRowBytes);
