#include "dewarp/gl/InputTextures.h"

#include "dewarp/gl/DriverWatch.h"
#include "dewarp/gl/Textures.h"
#include "dewarp/records/Enumerations.h"

#include <GLES3/gl31.h>
// clang-format off
#include <GLES2/gl2ext.h>
// clang-format on

#include <algorithm>
#include <initializer_list>

namespace
{

// Blue first; OpenGL ES has no such format of its own.
const unsigned int GL_BGR_UPLOAD = 0x80E0;

} // namespace

/// Planes of the frame's format, in upload order; returns their number (0: the format has no textures).
int CInputTextures::ListPlanes(SPlaneUpload* pPlanes)
{
    const int w = m_rParams.nImageWidth;
    const int h = m_rParams.nImageHeight;
    const int nStride = m_rParams.nImageStride;
    unsigned char* const* ppPixels = pInputPlanes;
    const SPlaneUpload sLuma{&nTextureY, GL_TEXTURE0, GL_LUMINANCE, GL_LUMINANCE, w,
                             h,          1,           nStride,      ppPixels[0]};
    const auto Packed = [&](unsigned int nFormat, unsigned int nUploadFormat, int nPixelBytes) {
        pPlanes[0] = {&nTextureRGB, GL_TEXTURE0, nFormat,    nUploadFormat, w, h,
                      nPixelBytes,  nStride,     ppPixels[0]};
        return 1;
    };
    switch (nImageFormat) {
    case IMAGE_FORMAT_RGB24:
        return Packed(GL_RGB, GL_RGB, 3);
    case IMAGE_FORMAT_BGR24:
        return Packed(GL_RGB, GL_BGR_UPLOAD, 3);
    case IMAGE_FORMAT_RGBA32:
        return Packed(GL_RGBA, GL_RGBA, 4);
    case IMAGE_FORMAT_BGRA32:
        return Packed(GL_RGBA, GL_BGRA_EXT, 4);
    case IMAGE_FORMAT_GRAY8:
        return Packed(GL_LUMINANCE, GL_LUMINANCE, 1);
    case IMAGE_FORMAT_NV12:
    case IMAGE_FORMAT_NV21:
        pPlanes[0] = sLuma;
        pPlanes[1] = {&nTextureUV, GLUnit(UNIT_UV),    GL_LUMINANCE_ALPHA, GL_LUMINANCE_ALPHA, w / 2, h / 2,
                      2,           anChromaStrides[0], ppPixels[1]};
        return 2;
    case IMAGE_FORMAT_YUV420P:
        pPlanes[0] = sLuma;
        pPlanes[1] = {&nTextureU, GLUnit(UNIT_U),     GL_LUMINANCE, GL_LUMINANCE, w / 2, h / 2,
                      1,          anChromaStrides[0], ppPixels[1]};
        pPlanes[2] = {&nTextureV, GLUnit(UNIT_V),     GL_LUMINANCE, GL_LUMINANCE, w / 2, h / 2,
                      1,          anChromaStrides[1], ppPixels[2]};
        return 3;
    default:
        return 0;
    }
}

bool CInputTextures::TexturesMissing()
{
    SPlaneUpload aPlanes[MAX_PLANES];
    const int nPlanes = ListPlanes(aPlanes);
    return std::any_of(aPlanes, aPlanes + nPlanes,
                       [](const SPlaneUpload& rPlane) { return *rPlane.pTexture == 0; });
}

bool CInputTextures::Fits()
{
    return m_rTextures.Fits(m_rParams.nImageWidth, m_rParams.nImageHeight);
}

bool CInputTextures::ShowsQP() const
{
    return nImageFormat == IMAGE_FORMAT_YUV420P && m_rShowQP;
}

void CInputTextures::Initialize()
{
    SPlaneUpload aPlanes[MAX_PLANES];
    const int nPlanes = Fits() ? ListPlanes(aPlanes) : 0;
    m_eRedBlue = RED_BLUE_UNDECIDED;
    m_bUploadDecided = false;
    m_bWidenPixels = false;
    bFrameInTextures = false;
    for (int i = 0; i < nPlanes; ++i) {
        // Planes of an earlier frame may be gone already: then the texture starts without contents.
        if (!bTextureUpload)
            aPlanes[i].pPixels = nullptr;
        UploadPlane(aPlanes[i], true);
    }
    if (ShowsQP())
        CreateQPTextures();
    if (nPlanes > 1)
        glActiveTexture(GL_TEXTURE0);
    bTexturesNeedInit = false;
}

EUploadResult CInputTextures::Upload()
{
    SPlaneUpload aPlanes[MAX_PLANES];
    const int nPlanes = ListPlanes(aPlanes);
    bFrameInTextures = false;
    if (!Fits())
        return UPLOAD_TOO_LARGE;
    for (int i = 0; i < nPlanes; ++i) {
        // Nothing of a frame that is not whole is uploaded.
        if (!aPlanes[i].IsComplete() || *aPlanes[i].pTexture == 0)
            return UPLOAD_NOT_WHOLE;
    }
    for (int i = 0; i < nPlanes; ++i)
        UploadPlane(aPlanes[i], false);
    if (ShowsQP())
        UploadQPTextures();
    if (nPlanes == 0)
        return UPLOAD_NOT_WHOLE;
    if (m_rWatch.LacksMemory())
        return UPLOAD_NO_MEMORY;
    bFrameInTextures = true;
    bTextureUpload = false;
    return UPLOAD_DONE;
}

void CInputTextures::CreateQPTextures()
{
    const int nWidth = std::min(sQPInfo.nWidth, sQPInfo.nStride);
    if (nWidth < 1 || sQPInfo.nHeight < 1)
        return;
    const unsigned char* pTypes = sQPInfo.pMBType;
    if (pTypes == nullptr) {
        // Without types every block shows its picture.
        m_vRepack.assign(
            static_cast<std::size_t>(sQPInfo.nStride) * static_cast<std::size_t>(sQPInfo.nHeight), 0);
        pTypes = m_vRepack.data();
    }
    glPixelStorei(GL_UNPACK_ALIGNMENT, UnpackAlignment(sQPInfo.nStride));
    m_rTextures.Generate(nTextureQP, GLUnit(UNIT_QP), GL_LUMINANCE, nWidth, sQPInfo.nHeight, sQPInfo.nStride,
                         sQPInfo.pQP);
    m_rTextures.Generate(nTextureMBType, GLUnit(UNIT_MB_TYPE), GL_LUMINANCE, nWidth, sQPInfo.nHeight,
                         sQPInfo.nStride, pTypes);
    m_bBlankTypes = sQPInfo.pMBType == nullptr;
}

void CInputTextures::UploadQPTextures()
{
    const int nWidth = std::min(sQPInfo.nWidth, sQPInfo.nStride);
    if (sQPInfo.pQP == nullptr || nWidth < 1 || sQPInfo.nHeight < 1)
        return;
    const bool bOtherSize = m_rTextures.NeedsSize(nTextureQP, UNIT_QP, nWidth, sQPInfo.nHeight);
    const bool bBlank = sQPInfo.pMBType == nullptr;
    if (nTextureMBType == 0 || bOtherSize || (bBlank && !m_bBlankTypes))
        CreateQPTextures();
    if (bBlank)
        return;
    m_bBlankTypes = false;
    glPixelStorei(GL_UNPACK_ALIGNMENT, UnpackAlignment(sQPInfo.nStride));
    m_rTextures.Update(nTextureQP, GL_LUMINANCE, nWidth, sQPInfo.nHeight, sQPInfo.nStride, sQPInfo.pQP);
    m_rTextures.Update(nTextureMBType, GL_LUMINANCE, nWidth, sQPInfo.nHeight, sQPInfo.nStride,
                       sQPInfo.pMBType);
}

void CInputTextures::Bind()
{
    SPlaneUpload aPlanes[MAX_PLANES];
    const int nPlanes = ListPlanes(aPlanes);
    for (int i = 0; i < nPlanes; ++i) {
        glActiveTexture(aPlanes[i].nUnit);
        glBindTexture(GL_TEXTURE_2D, *aPlanes[i].pTexture);
        m_rTextures.SetFrameInterpolation();
    }
    if (ShowsQP()) {
        // Macroblock values are not to be mixed.
        for (const int nUnit : {UNIT_QP, UNIT_MB_TYPE}) {
            glActiveTexture(GLUnit(nUnit));
            glBindTexture(GL_TEXTURE_2D, nUnit == UNIT_QP ? nTextureQP : nTextureMBType);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        }
    }
    glActiveTexture(GL_TEXTURE0);
}

void CInputTextures::Unbind()
{
    SPlaneUpload aPlanes[MAX_PLANES];
    const int nPlanes = ListPlanes(aPlanes);
    for (int i = 0; i < nPlanes; ++i) {
        glActiveTexture(aPlanes[i].nUnit);
        glBindTexture(GL_TEXTURE_2D, 0);
    }
    if (ShowsQP()) {
        for (const int nUnit : {UNIT_QP, UNIT_MB_TYPE}) {
            glActiveTexture(GLUnit(nUnit));
            glBindTexture(GL_TEXTURE_2D, 0);
        }
    }
    glActiveTexture(GL_TEXTURE0);
}

void CInputTextures::Free()
{
    for (unsigned int* pTexture :
         {&nTextureY, &nTextureUV, &nTextureU, &nTextureV, &nTextureQP, &nTextureMBType, &nTextureRGB})
        CTextures::Delete(*pTexture);
}

void CInputTextures::Forget()
{
    for (unsigned int* pTexture :
         {&nTextureY, &nTextureUV, &nTextureU, &nTextureV, &nTextureQP, &nTextureMBType, &nTextureRGB})
        *pTexture = 0;
}

void CInputTextures::ForgetContents()
{
    bFrameInTextures = false;
    m_eRedBlue = RED_BLUE_UNDECIDED;
}
