// One input plane into its texture, in the layout that the driver takes fastest.

#include "dewarp/pipeline/PlaneUpload.h"

#include "dewarp/pipeline/WidenPixels.h"
#include "platform/ShaderDialect.h"

#include <GLES3/gl31.h>

#include <algorithm>
#include <cstring>

namespace
{

// Below this many pixels (256 x 256) the driver's own conversion costs too little to be worth another copy.
const long long WORTH_CONVERTING = 65536;

/// Red and blue change places whenever the bound texture is sampled.
void ExchangeRedAndBlue()
{
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_SWIZZLE_R, GL_BLUE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_SWIZZLE_B, GL_RED);
}

} // namespace

int UnpackAlignment(int nRowBytes)
{
    for (const int nAlignment : {8, 4, 2}) {
        if (nRowBytes % nAlignment == 0)
            return nAlignment;
    }
    return 1;
}

void CCustomGPUDewarper::UploadPlane(const SPlaneUpload& rPlane, bool bCreate)
{
    if (!bCreate && bWidenPixels) {
        UploadWidened(rPlane);
        return;
    }
    // Rows of a negative length, which GL does not take, belong to a frame that is not uploaded.
    int nRowBytes = std::max(rPlane.nRowBytes, 0);
    unsigned char* pPixels = rPlane.IsComplete() ? rPlane.pPixels : nullptr;
    if (pPixels != nullptr && nRowBytes % rPlane.nPixelBytes != 0)
        pPixels = RepackRows(rPlane, nRowBytes);
    glPixelStorei(GL_UNPACK_ALIGNMENT, UnpackAlignment(nRowBytes));
    const int nRowLength = nRowBytes / rPlane.nPixelBytes;
    if (bCreate)
        GenerateTexture(*rPlane.pTexture, rPlane.nUnit, rPlane.nFormat, rPlane.nWidth, rPlane.nHeight,
                        nRowLength, pPixels);
    else if (rPlane.nUploadFormat != rPlane.nFormat)
        UploadRedBlue(rPlane, pPixels, nRowLength);
    else
        UpdateTexture(*rPlane.pTexture, rPlane.nUnit, rPlane.nFormat, rPlane.nWidth, rPlane.nHeight,
                      nRowLength, pPixels);
    if (!bCreate && !bUploadDecided)
        PreferRGBA(rPlane, pPixels, nRowLength);
}

/// Lays rows side by side whose length GL cannot express, for it counts in pixels.
unsigned char* CCustomGPUDewarper::RepackRows(const SPlaneUpload& rPlane, int& nRowBytes)
{
    const std::size_t nPacked =
        static_cast<std::size_t>(rPlane.nWidth) * static_cast<std::size_t>(rPlane.nPixelBytes);
    vRepack.resize(nPacked * static_cast<std::size_t>(rPlane.nHeight));
    for (std::size_t y = 0; y < static_cast<std::size_t>(rPlane.nHeight); ++y)
        std::memcpy(vRepack.data() + y * nPacked, rPlane.pPixels + y * static_cast<std::size_t>(nRowBytes),
                    nPacked);
    nRowBytes = static_cast<int>(nPacked);
    return vRepack.data();
}

/// Uploads a plane whose bytes start with blue. What the driver does with the format shows at the first try.
void CCustomGPUDewarper::UploadRedBlue(const SPlaneUpload& rPlane, unsigned char* pPixels, int nRowLength)
{
    if (eRedBlueUpload != RED_BLUE_BY_SWIZZLE) {
        UpdateTexture(*rPlane.pTexture, rPlane.nUnit, rPlane.nUploadFormat, rPlane.nWidth, rPlane.nHeight,
                      nRowLength, pPixels);
        if (eRedBlueUpload == RED_BLUE_BY_FORMAT)
            return;
        eRedBlueUpload = glGetError() == GL_NO_ERROR ? RED_BLUE_BY_FORMAT : RED_BLUE_BY_SWIZZLE;
        if (eRedBlueUpload == RED_BLUE_BY_FORMAT)
            return;
        ExchangeRedAndBlue();
    }
    UpdateTexture(*rPlane.pTexture, rPlane.nUnit, rPlane.nFormat, rPlane.nWidth, rPlane.nHeight, nRowLength,
                  pPixels);
}

/// After a texture's first upload: where the driver takes RGBA much faster than this plane's layout, this and
/// all later frames go up as RGBA. The texels stay what they are.
void CCustomGPUDewarper::PreferRGBA(const SPlaneUpload& rPlane, unsigned char* pPixels, int nRowLength)
{
    bUploadDecided = true;
    const bool bLarge = static_cast<long long>(rPlane.nWidth) * rPlane.nHeight >= WORTH_CONVERTING;
    const bool bWiden = rPlane.nPixelBytes == 3;
    const bool bBlueFirst = rPlane.nPixelBytes > 2 && eRedBlueUpload == RED_BLUE_BY_FORMAT;
    if (!bLarge || !(bWiden || bBlueFirst) || !DriverTraits().bPreferRGBA)
        return;
    if (bBlueFirst) {
        eRedBlueUpload = RED_BLUE_BY_SWIZZLE;
        ExchangeRedAndBlue();
    }
    if (bWiden) {
        bObjectsMade = true;
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, rPlane.nWidth, rPlane.nHeight, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     nullptr);
        bWidenPixels = true;
        UploadWidened(rPlane);
    } else {
        UploadRedBlue(rPlane, pPixels, nRowLength);
    }
}

/// Uploads a plane of 3 bytes a pixel to a texture of 4. Blue-first planes stay so: their texture exchanges.
void CCustomGPUDewarper::UploadWidened(const SPlaneUpload& rPlane)
{
    const std::size_t nPixels =
        static_cast<std::size_t>(rPlane.nWidth) * static_cast<std::size_t>(rPlane.nHeight);
    vRepack.resize(4 * nPixels);
    WidenPixels(rPlane.pPixels, rPlane.nRowBytes, rPlane.nWidth, rPlane.nHeight, vRepack.data());
    glPixelStorei(GL_UNPACK_ALIGNMENT, UnpackAlignment(4 * rPlane.nWidth));
    UpdateTexture(*rPlane.pTexture, rPlane.nUnit, GL_RGBA, rPlane.nWidth, rPlane.nHeight, rPlane.nWidth,
                  vRepack.data());
}
