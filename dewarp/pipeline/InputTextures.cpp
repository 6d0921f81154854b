// Input planes: recorded by the host's thread, uploaded on the GL thread.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/pipeline/LockScope.h"
#include "dewarp/pipeline/MemoryGuard.h"
#include "dewarp/pipeline/PlaneUpload.h"
#include "dewarp/records/LogTag.h"
#include "dewarp/shaders/FragmentText.h"

#include <GLES3/gl31.h>
// clang-format off
#include <GLES2/gl2ext.h>
// clang-format on
#include <android/log.h>

#include <algorithm>

namespace
{

// Blue first; OpenGL ES has no such format of its own.
const unsigned int GL_BGR_UPLOAD = 0x80E0;

} // namespace

bool CCustomGPUDewarper::SetTexture(SImageProperties* pImage, bool bGain, SQPInfo* pQP,
                                    unsigned long long nTimestamp)
{
    CLockScope oScope(*this);
    if (pImage == nullptr) {
        __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG, "%s: no image", "SetTexture");
        return false;
    }
    // The only step that can fail comes first: planes and size of a frame belong together.
    if (pQP != nullptr && !GuardMemory("SetTexture", false, [&] {
            *pQPInfo = *pQP;
            return true;
        }))
        return false;
    nLastSetTimestamp = nTimestamp;
    pInputPlanes[0] = pImage->pPlane0;
    pInputPlanes[1] = pImage->pPlane1;
    pInputPlanes[2] = pImage->pPlane2;
    sMainShader.bGainRequested = bGain;
    if (pImage->nWidth != pParams->nImageWidth || pImage->nHeight != pParams->nImageHeight ||
        pImage->nFormat != nImageFormat) {
        bTexturesNeedInit = true;
        sMainShader.bForceReload = true;
        bResetPTZ = true;
        bResetObjects = true;
    }
    pParams->nImageWidth = pImage->nWidth;
    pParams->nImageHeight = pImage->nHeight;
    pParams->nImageStride = pImage->nStride;
    nImageFormat = pImage->nFormat;
    // The text follows the frame's own space and range where the host left the choice to the frame.
    const SYUV2RGBConversionParams& rWanted = sMainShader.sYUV2RGBRequested;
    if (EffectiveYUVSpace(rWanted.eSpace, pImage->eYUVSpace) !=
            EffectiveYUVSpace(rWanted.eSpace, nImageYUVSpace) ||
        EffectiveYUVRange(rWanted.eRange, pImage->eYUVRange) !=
            EffectiveYUVRange(rWanted.eRange, nImageYUVRange))
        sMainShader.bForceReload = true;
    nImageYUVSpace = pImage->eYUVSpace;
    nImageYUVRange = pImage->eYUVRange;
    bTextureUpload = true;
    DrawRequired();
    return true;
}

/// Planes of the frame's format, in upload order; returns their number (0: the format has no textures).
int CCustomGPUDewarper::ListPlanes(SPlaneUpload* pPlanes)
{
    const int w = pParams->nImageWidth;
    const int h = pParams->nImageHeight;
    const int nStride = pParams->nImageStride;
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
        pPlanes[1] = {&nTextureUV, GL_TEXTURE1, GL_LUMINANCE_ALPHA, GL_LUMINANCE_ALPHA, w / 2, h / 2,
                      2,           nStride,     ppPixels[1]};
        return 2;
    case IMAGE_FORMAT_YUV420P:
        pPlanes[0] = sLuma;
        pPlanes[1] = {&nTextureU, GL_TEXTURE1, GL_LUMINANCE, GL_LUMINANCE, w / 2,
                      h / 2,      1,           nStride / 2,  ppPixels[1]};
        pPlanes[2] = {&nTextureV, GL_TEXTURE2, GL_LUMINANCE, GL_LUMINANCE, w / 2,
                      h / 2,      1,           nStride / 2,  ppPixels[2]};
        return 3;
    default:
        return 0;
    }
}

bool CCustomGPUDewarper::TexturesMissing()
{
    SPlaneUpload aPlanes[MAX_PLANES];
    const int nPlanes = ListPlanes(aPlanes);
    for (int i = 0; i < nPlanes; ++i) {
        if (*aPlanes[i].pTexture == 0)
            return true;
    }
    return false;
}

bool CCustomGPUDewarper::InitializeTextures()
{
    SPlaneUpload aPlanes[MAX_PLANES];
    const int nPlanes = FitsTexture() ? ListPlanes(aPlanes) : 0;
    eRedBlueUpload = RED_BLUE_UNDECIDED;
    bUploadDecided = false;
    bWidenPixels = false;
    bFrameInTextures = false;
    for (int i = 0; i < nPlanes; ++i) {
        // Planes of an earlier frame may be gone already: then the texture starts without contents.
        if (!bTextureUpload)
            aPlanes[i].pPixels = nullptr;
        UploadPlane(aPlanes[i], true);
    }
    if (nImageFormat == IMAGE_FORMAT_YUV420P && sMainShader.bQPTextures)
        CreateQPTextures();
    if (nPlanes > 1)
        glActiveTexture(GL_TEXTURE0);
    bTexturesNeedInit = false;
    return true;
}

void CCustomGPUDewarper::UploadTexture()
{
    if (bTextureUpload) {
        if (bTexturesNeedInit)
            InitializeTextures();
        if (OSDependentUploadTexture()) {
            bFrameInTextures = true;
            bTextureUpload = false;
        } else {
            if (TexturesMissing())
                InitializeTextures();
            if (UploadPlanes()) {
                bFrameInTextures = true;
                bTextureUpload = false;
            } else {
                bFrameInTextures = false;
            }
        }
        glActiveTexture(GL_TEXTURE0);
    }
    UploadOverlayTexture();
}

/// True when the driver can hold a texture of the frame's size.
bool CCustomGPUDewarper::FitsTexture()
{
    return FitsTexture(pParams->nImageWidth, pParams->nImageHeight);
}

/// True when the driver can hold a texture of that size.
bool CCustomGPUDewarper::FitsTexture(int nWidth, int nHeight)
{
    if (nMaxTextureSize == 0)
        glGetIntegerv(GL_MAX_TEXTURE_SIZE, &nMaxTextureSize);
    return nWidth <= nMaxTextureSize && nHeight <= nMaxTextureSize;
}

/// False when the frame is not whole: nothing of it is uploaded then.
bool CCustomGPUDewarper::UploadPlanes()
{
    SPlaneUpload aPlanes[MAX_PLANES];
    const int nPlanes = ListPlanes(aPlanes);
    if (!FitsTexture())
        return false;
    for (int i = 0; i < nPlanes; ++i) {
        if (!aPlanes[i].IsComplete() || *aPlanes[i].pTexture == 0)
            return false;
    }
    for (int i = 0; i < nPlanes; ++i)
        UploadPlane(aPlanes[i], false);
    if (nImageFormat == IMAGE_FORMAT_YUV420P && sMainShader.bQPTextures)
        UploadQPTextures();
    return nPlanes > 0;
}

void CCustomGPUDewarper::CreateQPTextures()
{
    const int nWidth = std::min(pQPInfo->nWidth, pQPInfo->nStride);
    if (nWidth < 1 || pQPInfo->nHeight < 1)
        return;
    glPixelStorei(GL_UNPACK_ALIGNMENT, UnpackAlignment(pQPInfo->nStride));
    GenerateTexture(nTextureQP, GL_TEXTURE3, GL_LUMINANCE, nWidth, pQPInfo->nHeight, pQPInfo->nStride,
                    pQPInfo->pQP);
    GenerateTexture(nTextureMBType, GL_TEXTURE4, GL_LUMINANCE, nWidth, pQPInfo->nHeight, pQPInfo->nStride,
                    pQPInfo->pMBType);
}

void CCustomGPUDewarper::UploadQPTextures()
{
    const int nWidth = std::min(pQPInfo->nWidth, pQPInfo->nStride);
    if (pQPInfo->pQP == nullptr || pQPInfo->pMBType == nullptr || nWidth < 1 || pQPInfo->nHeight < 1)
        return;
    const bool bOtherSize = anTextureUnitSize[3][0] != nWidth || anTextureUnitSize[3][1] != pQPInfo->nHeight;
    if (nTextureQP == 0 || nTextureMBType == 0 || bOtherSize)
        CreateQPTextures();
    glPixelStorei(GL_UNPACK_ALIGNMENT, UnpackAlignment(pQPInfo->nStride));
    UpdateTexture(nTextureQP, GL_TEXTURE3, GL_LUMINANCE, nWidth, pQPInfo->nHeight, pQPInfo->nStride,
                  pQPInfo->pQP);
    UpdateTexture(nTextureMBType, GL_TEXTURE4, GL_LUMINANCE, nWidth, pQPInfo->nHeight, pQPInfo->nStride,
                  pQPInfo->pMBType);
}
