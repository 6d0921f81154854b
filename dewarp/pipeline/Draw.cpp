// Target, draw call, composition.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/records/LogTag.h"
#include "dewarp/views/GPUObjBase.h"

#include <android/log.h>

#include <utility>

bool CCustomGPUDewarper::NeedsFrameTexture() const
{
    return !vStrings.empty() || HasImage(sOutputOverlay);
}

bool CCustomGPUDewarper::HasImage(const SGOverlay& rOverlay)
{
    return rOverlay.pData != nullptr;
}

void CCustomGPUDewarper::BindFrameTarget(int nWidth, int nHeight)
{
    if (!NeedsFrameTexture()) {
        BindDefaultFrameBuffer();
        return;
    }
    PrepareFrameBuffer();
    for (const auto& [pTexture, nUnit] : {std::pair{&nFrameTexture, 6U}, std::pair{&nFrameTexture2, 9U}}) {
        if (*pTexture == 0 || anTextureUnitSize[nUnit][0] != nWidth || anTextureUnitSize[nUnit][1] != nHeight)
            GenerateTexture(*pTexture, GL_TEXTURE0 + nUnit, GL_RGBA, nWidth, nHeight, nWidth, nullptr);
    }
    glActiveTexture(GL_TEXTURE6);
    glBindTexture(GL_TEXTURE_2D, nFrameTexture);
    SetInterpolation();
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, nFrameTexture, 0);
    glActiveTexture(GL_TEXTURE0);
}

void CCustomGPUDewarper::PrepareFrameBuffer()
{
    if (nFrameBuffer == 0) {
        glGenFramebuffers(1, &nFrameBuffer);
        bObjectsMade = true;
        if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE)
            __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG,
                                "%s:7++++ nError! glCheckFramebufferStatus not complete!\n", "DrawGLScene");
    }
    glBindFramebuffer(GL_FRAMEBUFFER, nFrameBuffer);
}

void CCustomGPUDewarper::DrawView(int nWidth, int nHeight)
{
    glViewport(0, 0, nWidth, nHeight);
    glUseProgram(sMainShader.nProgram);
    BindTextures();
    if (pActiveViewObject != pBoundViewObject) {
        pActiveViewObject->LoadVertexAndTextureCoordinates(&sMainShader);
        pBoundViewObject = pActiveViewObject;
    }
    pActiveViewObject->DrawArrays(pParams, pMatrices, &sMainShader);
}

void CCustomGPUDewarper::DrawCompositionPasses(int nWidth, int nHeight)
{
    const bool bOverlay = HasImage(sOutputOverlay);
    int nResult = 0;
    if (!vStrings.empty()) {
        nResult =
            bOverlay ? HandleTextureToTexture(nWidth, nHeight, 1) : HandleTextureToScreen(nWidth, nHeight, 0);
        // Text reads the copy: without one it would stand on whatever the copy's texture holds.
        if (nResult >= 0)
            nResult = HandleStrings(nWidth, nHeight);
    }
    // Without the overlay's program the view is shown without the overlay, not the frame before.
    if (bOverlay && HandleOutputOverlay(nWidth, nHeight) < 0) {
        HandleTextureToScreen(nWidth, nHeight, 0);
        nResult = -1;
    }
    // A pass that could not run leaves its own target bound.
    if (nResult < 0)
        BindDefaultFrameBuffer();
    // The quad view's quarters, and the strings, leave a smaller viewport behind.
    glViewport(0, 0, nWidth, nHeight);
}
