// One input plane into its texture, in the layout that the driver takes fastest.

#include "dewarp/gl/InputTextures.h"

#include "dewarp/gl/DriverWatch.h"
#include "dewarp/gl/Programs.h"
#include "dewarp/gl/Textures.h"
#include "dewarp/gl/WidenPixels.h"

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

void CInputTextures::UploadPlane(const SPlaneUpload& rPlane, bool bCreate)
{
    if (!bCreate && m_bWidenPixels) {
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
        m_rTextures.Generate(*rPlane.pTexture, rPlane.nUnit, rPlane.nFormat, rPlane.nWidth, rPlane.nHeight,
                             nRowLength, pPixels);
    else if (rPlane.nUploadFormat != rPlane.nFormat)
        UploadRedBlue(rPlane, pPixels, nRowLength);
    else
        m_rTextures.Update(*rPlane.pTexture, rPlane.nFormat, rPlane.nWidth, rPlane.nHeight, nRowLength,
                           pPixels);
    if (!bCreate && !m_bUploadDecided)
        PreferRGBA(rPlane, pPixels, nRowLength);
}

/// Lays rows side by side whose length GL cannot express, for it counts in pixels.
unsigned char* CInputTextures::RepackRows(const SPlaneUpload& rPlane, int& nRowBytes)
{
    const std::size_t nPacked =
        static_cast<std::size_t>(rPlane.nWidth) * static_cast<std::size_t>(rPlane.nPixelBytes);
    m_vRepack.resize(nPacked * static_cast<std::size_t>(rPlane.nHeight));
    for (std::size_t y = 0; y < static_cast<std::size_t>(rPlane.nHeight); ++y)
        std::memcpy(m_vRepack.data() + y * nPacked, rPlane.pPixels + y * static_cast<std::size_t>(nRowBytes),
                    nPacked);
    nRowBytes = static_cast<int>(nPacked);
    return m_vRepack.data();
}

/// Uploads a plane whose bytes start with blue. What the driver does with the format shows at the first try.
void CInputTextures::UploadRedBlue(const SPlaneUpload& rPlane, unsigned char* pPixels, int nRowLength)
{
    if (m_eRedBlue != RED_BLUE_BY_SWIZZLE) {
        // What came of making the texture is asked first: the probe's answer must be its own.
        if (m_eRedBlue == RED_BLUE_UNDECIDED && m_rWatch.LacksMemory())
            return;
        m_rTextures.Update(*rPlane.pTexture, rPlane.nUploadFormat, rPlane.nWidth, rPlane.nHeight, nRowLength,
                           pPixels);
        if (m_eRedBlue == RED_BLUE_BY_FORMAT)
            return;
        const unsigned int nError = glGetError();
        // No memory is no answer to the question.
        if (nError == GL_OUT_OF_MEMORY) {
            m_rWatch.NoteLack();
            return;
        }
        m_eRedBlue = nError == GL_NO_ERROR ? RED_BLUE_BY_FORMAT : RED_BLUE_BY_SWIZZLE;
        // The rest of this first upload is judged as that of other formats.
        m_rWatch.BeginMaking();
        if (m_eRedBlue == RED_BLUE_BY_FORMAT)
            return;
        ExchangeRedAndBlue();
    }
    m_rTextures.Update(*rPlane.pTexture, rPlane.nFormat, rPlane.nWidth, rPlane.nHeight, nRowLength, pPixels);
}

/// After a texture's first upload: where the driver takes RGBA much faster than this plane's layout, this and
/// all later frames go up as RGBA. The texels stay what they are.
void CInputTextures::PreferRGBA(const SPlaneUpload& rPlane, unsigned char* pPixels, int nRowLength)
{
    m_bUploadDecided = true;
    const bool bLarge = static_cast<long long>(rPlane.nWidth) * rPlane.nHeight >= WORTH_CONVERTING;
    const bool bWiden = rPlane.nPixelBytes == 3;
    const bool bBlueFirst = rPlane.nPixelBytes > 2 && m_eRedBlue == RED_BLUE_BY_FORMAT;
    if (!bLarge || !(bWiden || bBlueFirst) || !m_rPrograms.Traits().bPreferRGBA)
        return;
    if (bBlueFirst) {
        m_eRedBlue = RED_BLUE_BY_SWIZZLE;
        ExchangeRedAndBlue();
    }
    if (bWiden) {
        m_rWatch.BeginMaking();
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, rPlane.nWidth, rPlane.nHeight, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     nullptr);
        m_bWidenPixels = true;
        UploadWidened(rPlane);
    } else {
        UploadRedBlue(rPlane, pPixels, nRowLength);
    }
}

/// Uploads a plane of 3 bytes a pixel to a texture of 4. Blue-first planes stay so: their texture exchanges.
void CInputTextures::UploadWidened(const SPlaneUpload& rPlane)
{
    const std::size_t nPixels =
        static_cast<std::size_t>(rPlane.nWidth) * static_cast<std::size_t>(rPlane.nHeight);
    m_vRepack.resize(4 * nPixels);
    WidenPixels(rPlane.pPixels, rPlane.nRowBytes, rPlane.nWidth, rPlane.nHeight, m_vRepack.data());
    glPixelStorei(GL_UNPACK_ALIGNMENT, UnpackAlignment(4 * rPlane.nWidth));
    m_rTextures.Update(*rPlane.pTexture, GL_RGBA, rPlane.nWidth, rPlane.nHeight, rPlane.nWidth,
                       m_vRepack.data());
}
