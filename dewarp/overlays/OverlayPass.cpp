// Overlay images: taken from the host, uploaded, bound, and the output overlay's pass.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/pipeline/LockScope.h"
#include "dewarp/pipeline/MemoryGuard.h"
#include "dewarp/pipeline/PlaneUpload.h"
#include "dewarp/records/LogTag.h"
#include "dewarp/shaders/PassTexts.h"
#include "dewarp/views/GPUObjFisheye.h"

#include <GLES3/gl31.h>
#include <android/log.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace
{

const std::size_t PIXEL_BYTES = 4;
const std::size_t MAX_WAITING_RECTS = 256; ///< of several sets together
const int MAX_OVERLAY_SIZE = 16384;        ///< as for frames and targets

std::size_t Offset(int x, int y, int nWidth)
{
    return (static_cast<std::size_t>(y) * static_cast<std::size_t>(nWidth) + static_cast<std::size_t>(x)) *
           PIXEL_BYTES;
}

/// The parts of the rectangles that lie inside the image; empty ones are left out.
std::vector<SGRect> ClipRects(const std::vector<SGRect>& vRects, int nWidth, int nHeight)
{
    std::vector<SGRect> vClipped;
    for (const SGRect& rRect : vRects) {
        const long long nLeft = std::max(rRect.x, 0);
        const long long nTop = std::max(rRect.y, 0);
        const long long nRight = std::min<long long>(static_cast<long long>(rRect.x) + rRect.width, nWidth);
        const long long nBottom =
            std::min<long long>(static_cast<long long>(rRect.y) + rRect.height, nHeight);
        if (nRight > nLeft && nBottom > nTop)
            vClipped.push_back({static_cast<int>(nLeft), static_cast<int>(nTop),
                                static_cast<int>(nRight - nLeft), static_cast<int>(nBottom - nTop)});
    }
    return vClipped;
}

void CopyRects(SGOverlay& rOverlay, const unsigned char* pData, const std::vector<SGRect>& vRects)
{
    for (const SGRect& rRect : vRects) {
        for (int y = rRect.y; y < rRect.y + rRect.height; ++y) {
            const std::size_t nOffset = Offset(rRect.x, y, rOverlay.nWidth);
            std::memcpy(rOverlay.pData + nOffset, pData + nOffset,
                        static_cast<std::size_t>(rRect.width) * PIXEL_BYTES);
        }
    }
}

/// Pixels that still wait for their upload must not be lost: a whole image stays whole, rectangles add up.
/// Too many of them, while no frame is drawn, become the whole image.
void AddDirtyRects(SGOverlay& rOverlay, const std::vector<SGRect>& vRects)
{
    std::vector<SGRect>& rDirty = rOverlay.vDirtyRects;
    const bool bWholePending = rOverlay.bDirty && rDirty.empty();
    if (!rOverlay.bDirty)
        rDirty.clear();
    if (bWholePending)
        return;
    if (!rDirty.empty() && rDirty.size() + vRects.size() > MAX_WAITING_RECTS)
        rDirty.clear();
    else
        rDirty.insert(rDirty.end(), vRects.begin(), vRects.end());
}

} // namespace

// The list comes by value as it does in the setters.
// NOLINTBEGIN(performance-unnecessary-value-param)
int CCustomGPUDewarper::SetOverlay(SGOverlay& sOverlay, unsigned char* pData, int nWidth, int nHeight,
                                   int /*nUnused*/, unsigned int nTextureUnit, std::vector<SGRect> vRects)
// NOLINTEND(performance-unnecessary-value-param)
{
    if (pData == nullptr) {
        ParkOverlayTexture(sOverlay);
        sOverlay.Reset();
        DrawRequired();
        return 1;
    }
    const bool bNew = sOverlay.pData == nullptr || sOverlay.nWidth != nWidth || sOverlay.nHeight != nHeight;
    if (bNew) {
        if (nWidth < 1 || nHeight < 1 || nWidth > MAX_OVERLAY_SIZE || nHeight > MAX_OVERLAY_SIZE) {
            __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG,
                                "%s: overlay size %d x %d is outside 1 to %d", "SetOverlay", nWidth, nHeight,
                                MAX_OVERLAY_SIZE);
            return 0;
        }
        ParkOverlayTexture(sOverlay);
        sOverlay.Reset();
        sOverlay.Initialize(pData, nWidth, nHeight);
        sOverlay.bRealloc = true;
        sOverlay.nTextureUnit = nTextureUnit;
    }
    const std::size_t nBytes = Offset(0, nHeight, nWidth);
    if (vRects.empty()) {
        std::memcpy(sOverlay.pData, pData, nBytes);
        sOverlay.vDirtyRects.clear();
    } else {
        // What no rectangle names is transparent in a new overlay.
        if (bNew)
            std::memset(sOverlay.pData, 0, nBytes);
        std::vector<SGRect> vClipped = ClipRects(vRects, nWidth, nHeight);
        CopyRects(sOverlay, pData, vClipped);
        if (vClipped.empty() && !bNew) {
            DrawRequired();
            return 1;
        }
        AddDirtyRects(sOverlay, vClipped);
    }
    sOverlay.bDirty = true;
    DrawRequired();
    return 1;
}

int CCustomGPUDewarper::SetInputOverlay(unsigned char* pData, int nWidth, int nHeight, int nUnused)
{
    CLockScope oScope(*this);
    const bool bHadSize = sInputOverlay.nWidth > 0;
    const int nResult = GuardMemory("SetInputOverlay", 0, [&] {
        return SetOverlay(sInputOverlay, pData, nWidth, nHeight, nUnused, GL_TEXTURE5, {});
    });
    sMainShader.bInputOverlay = pData != nullptr;
    // A program that was built while the overlay had no size does not look at its unit.
    if (!bHadSize && sInputOverlay.nWidth > 0)
        sMainShader.bForceReload = true;
    // Privacy masks live in the input overlay: they are painted again, over whatever was put there.
    if (!vMaskPolygons.empty())
        bMaskPolygonsChanged = true;
    DrawRequired();
    return nResult;
}

int CCustomGPUDewarper::SetOutputOverlay(unsigned char* pData, int nWidth, int nHeight, int nUnused,
                                         std::vector<SGRect> vRects)
{
    CLockScope oScope(*this);
    const int nResult = GuardMemory("SetOutputOverlay", 0, [&] {
        return SetOverlay(sOutputOverlay, pData, nWidth, nHeight, nUnused, GL_TEXTURE7, std::move(vRects));
    });
    DrawRequired();
    return nResult;
}

int CCustomGPUDewarper::SetOutputOverlay(unsigned char* pData, int nWidth, int nHeight, int nUnused)
{
    return SetOutputOverlay(pData, nWidth, nHeight, nUnused, {});
}

/// Keeps a texture's name for the GL thread: the host's thread has no context.
void CCustomGPUDewarper::ParkOverlayTexture(SGOverlay& sOverlay)
{
    if (sOverlay.nTexture == 0)
        return;
    vParkedTextures.push_back(sOverlay.nTexture);
    sOverlay.nTexture = 0;
}

void CCustomGPUDewarper::DeleteParkedTextures()
{
    if (vParkedTextures.empty())
        return;
    glDeleteTextures(static_cast<GLsizei>(vParkedTextures.size()), vParkedTextures.data());
    vParkedTextures.clear();
}

/// Lets go of the texture so that the next frame makes it anew from the pixels. An overlay without pixels of
/// its own was painted from masks, and will be again.
void CCustomGPUDewarper::ReleaseOverlayTexture(SGOverlay& sOverlay)
{
    if (sOverlay.pData == nullptr) {
        sOverlay.Reset();
        return;
    }
    if (sOverlay.nTexture != 0) {
        glDeleteTextures(1, &sOverlay.nTexture);
        sOverlay.nTexture = 0;
    }
    sOverlay.vDirtyRects.clear();
    sOverlay.bRealloc = true;
    sOverlay.bDirty = true;
}

/// Takes away new overlays that this driver has no texture for, before a program is made that samples them:
/// without their texture they would show as black. Which driver it is, the host's thread could not know.
void CCustomGPUDewarper::DropOversizedOverlays()
{
    for (SGOverlay* pOverlay : {&sInputOverlay, &sOutputOverlay}) {
        if (!pOverlay->bRealloc || FitsTexture(pOverlay->nWidth, pOverlay->nHeight))
            continue;
        __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG,
                            "%s: the driver has no texture of %d x %d; no overlay", "DrawGLScene",
                            pOverlay->nWidth, pOverlay->nHeight);
        pOverlay->Reset();
        if (pOverlay == &sInputOverlay)
            sMainShader.bInputOverlay = false;
    }
}

void CCustomGPUDewarper::UploadOverlayTexture()
{
    UploadOverlay(sInputOverlay);
    UploadOverlay(sOutputOverlay);
}

void CCustomGPUDewarper::UploadOverlay(SGOverlay& sOverlay)
{
    if (!sOverlay.bDirty)
        return;
    const int nWidth = sOverlay.nWidth;
    const int nHeight = sOverlay.nHeight;
    if (sOverlay.pData != nullptr && nWidth > 0 && nHeight > 0) {
        glPixelStorei(GL_UNPACK_ALIGNMENT, UnpackAlignment(nWidth * 4));
        if (sOverlay.bRealloc) {
            GenerateTexture(sOverlay.nTexture, sOverlay.nTextureUnit, GL_RGBA, nWidth, nHeight, nWidth,
                            sOverlay.pData);
        } else {
            glActiveTexture(sOverlay.nTextureUnit);
            glPixelStorei(GL_UNPACK_ROW_LENGTH, nWidth);
            if (sOverlay.vDirtyRects.empty()) {
                UpdateTexture(sOverlay.nTexture, sOverlay.nTextureUnit, GL_RGBA, nWidth, nHeight, nWidth,
                              sOverlay.pData);
            } else {
                glBindTexture(GL_TEXTURE_2D, sOverlay.nTexture);
                for (const SGRect& rRect : sOverlay.vDirtyRects)
                    glTexSubImage2D(GL_TEXTURE_2D, 0, rRect.x, rRect.y, rRect.width, rRect.height, GL_RGBA,
                                    GL_UNSIGNED_BYTE, sOverlay.pData + Offset(rRect.x, rRect.y, nWidth));
            }
        }
    }
    glActiveTexture(GL_TEXTURE0);
    sOverlay.bRealloc = false;
    sOverlay.bDirty = false;
}

bool CCustomGPUDewarper::BindOverlayTextures()
{
    for (const SGOverlay* pOverlay : {&sInputOverlay, &sOutputOverlay}) {
        if (pOverlay->nWidth < 1 || pOverlay->nHeight < 1)
            continue;
        glActiveTexture(pOverlay->nTextureUnit);
        glBindTexture(GL_TEXTURE_2D, pOverlay->nTexture);
        SetInterpolation();
        glActiveTexture(GL_TEXTURE0);
    }
    return true;
}

bool CCustomGPUDewarper::UnbindOverlayTextures()
{
    for (const SGOverlay* pOverlay : {&sInputOverlay, &sOutputOverlay}) {
        if (pOverlay->nWidth < 1 || pOverlay->nHeight < 1)
            continue;
        glActiveTexture(pOverlay->nTextureUnit);
        glBindTexture(GL_TEXTURE_2D, 0);
        glActiveTexture(GL_TEXTURE0);
    }
    return true;
}

int CCustomGPUDewarper::PrepareOutputOverlayProgram()
{
    SShaderProperties& rShader = sOutputOverlayShader;
    if (rShader.IsUsable())
        return 0;
    rShader.strVertexShader = PASS_TEXT::pOutputOverlayVertex;
    rShader.strFragmentShader = PASS_TEXT::pOutputOverlayFragment;
    if (LoadShaderPrograms(rShader) < 0)
        return -1;
    rShader.nSampler0Location = glGetUniformLocation(rShader.nProgram, "samplerInput");
    rShader.nSampler1Location = glGetUniformLocation(rShader.nProgram, "samplerOverlay");
    glUniform1i(rShader.nSampler0Location, 6);
    glUniform1i(rShader.nSampler1Location, 7);
    rShader.nPositionLocation = glGetAttribLocation(rShader.nProgram, "vPosition");
    rShader.nTexCoordLocation = glGetAttribLocation(rShader.nProgram, "a_TexCoordinate");
    rShader.nMVPMatrixLocation = glGetUniformLocation(rShader.nProgram, "uMVPMatrix");
    glUniformMatrix4fv(rShader.nMVPMatrixLocation, 1, GL_FALSE, pOutputOverlayMatrices->fMVP);
    return 0;
}

int CCustomGPUDewarper::HandleOutputOverlay(int nWidth, int nHeight)
{
    SShaderProperties& rShader = sOutputOverlayShader;
    if (PrepareOutputOverlayProgram() < 0)
        return -1;
    glViewport(0, 0, nWidth, nHeight);
    pOutputOverlayMatrices->nViewportWidth = nWidth;
    pOutputOverlayMatrices->nViewportHeight = nHeight;
    BindDefaultFrameBuffer();
    glUseProgram(rShader.nProgram);
    for (const auto& [nUnit, nTexture] :
         {std::pair{GL_TEXTURE6, nFrameTexture}, std::pair{GL_TEXTURE7, sOutputOverlay.nTexture}}) {
        glActiveTexture(static_cast<unsigned int>(nUnit));
        glBindTexture(GL_TEXTURE_2D, nTexture);
        SetInterpolation();
    }
    glActiveTexture(GL_TEXTURE0);
    glClear(GL_COLOR_BUFFER_BIT);
    pOutputOverlayParams->nImageWidth = 1;
    pOutputOverlayParams->nImageHeight = 1;
    pOutputOverlayParams->nImageStride = 4;
    pAuxFisheye->Activate(pGeometry, pOutputOverlayParams);
    if (LacksDriverMemory())
        return -1;
    pAuxFisheye->LoadVertexAndTextureCoordinates(&rShader);
    pAuxFisheye->DrawArrays(pOutputOverlayParams, pOutputOverlayMatrices, &rShader);
    pBoundViewObject = pAuxFisheye;
    glUseProgram(sMainShader.nProgram);
    return 0;
}
