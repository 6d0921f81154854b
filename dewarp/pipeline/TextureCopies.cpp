// Passes that copy a frame texture: onto the target, or into another texture.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/shaders/PassTexts.h"
#include "dewarp/views/GPUObjFisheye.h"

#include <GLES3/gl31.h>

namespace
{

/// What a copy reads.
enum ECopySource
{
    COPY_VIEW_TO_SCREEN = 0,
    COPY_VIEW_TO_COPY = 1,
    COPY_COPY_TO_SCREEN = 2,
    COPY_MASKS_TO_INPUT_OVERLAY = 3
};

} // namespace

/// Builds the program of a copy, at its first use, and makes it current. Below 0: it cannot be built.
int CCustomGPUDewarper::PrepareTextureCopy(SShaderProperties& sShader, const char* pVertexText,
                                           const char* pFragmentText, int nWidth, int nHeight)
{
    if (!sShader.IsUsable()) {
        sShader.strVertexShader = pVertexText;
        sShader.strFragmentShader = pFragmentText;
        if (LoadShaderPrograms(sShader) < 0)
            return -1;
        sShader.nPositionLocation = glGetAttribLocation(sShader.nProgram, "vPosition");
        sShader.nTexCoordLocation = glGetAttribLocation(sShader.nProgram, "a_TexCoordinate");
        sShader.nMVPMatrixLocation = glGetUniformLocation(sShader.nProgram, "uMVPMatrix");
        glUniformMatrix4fv(sShader.nMVPMatrixLocation, 1, GL_FALSE, pTextureCopyMatrices->fMVP);
        pTextureCopyParams->nImageWidth = 1;
        pTextureCopyParams->nImageHeight = 1;
        pTextureCopyParams->nImageStride = 4;
        sShader.nSampler0Location = glGetUniformLocation(sShader.nProgram, "samplerInput");
    }
    pTextureCopyMatrices->nViewportWidth = nWidth;
    pTextureCopyMatrices->nViewportHeight = nHeight;
    glViewport(0, 0, nWidth, nHeight);
    glUseProgram(sShader.nProgram);
    return 0;
}

/// Lets the copy read a texture on its unit.
void CCustomGPUDewarper::BindCopySource(const SShaderProperties& rShader, int nUnit, unsigned int nTexture)
{
    glUniform1i(rShader.nSampler0Location, nUnit);
    glActiveTexture(GL_TEXTURE0 + static_cast<unsigned int>(nUnit));
    glBindTexture(GL_TEXTURE_2D, nTexture);
    SetInterpolation();
}

/// Draws the full-target quad and goes back to the main program.
void CCustomGPUDewarper::DrawTextureCopy(SShaderProperties& sShader)
{
    glActiveTexture(GL_TEXTURE0);
    glClear(GL_COLOR_BUFFER_BIT);
    pAuxFisheye2->Activate(pGeometry, pTextureCopyParams);
    if (LacksDriverMemory())
        return;
    pAuxFisheye2->LoadVertexAndTextureCoordinates(&sShader);
    pAuxFisheye2->DrawArrays(pTextureCopyParams, pTextureCopyMatrices, &sShader);
    pBoundViewObject = pAuxFisheye2;
    glUseProgram(sMainShader.nProgram);
}

int CCustomGPUDewarper::HandleTextureToScreen(int nWidth, int nHeight, int nSource)
{
    SShaderProperties& rShader = sTextureToScreenShader;
    if (PrepareTextureCopy(rShader, PASS_TEXT::pTextureToScreenVertex, PASS_TEXT::pTextureToScreenFragment,
                           nWidth, nHeight) < 0)
        return -1;
    if (nSource == COPY_COPY_TO_SCREEN)
        BindCopySource(rShader, 9, nFrameTexture2);
    else if (nSource == COPY_VIEW_TO_SCREEN)
        BindCopySource(rShader, 6, nFrameTexture);
    else
        return 0;
    BindDefaultFrameBuffer();
    DrawTextureCopy(rShader);
    return 0;
}

int CCustomGPUDewarper::HandleTextureToTexture(int nWidth, int nHeight, int nSource)
{
    SShaderProperties& rShader = sTextureToTextureShader;
    if (PrepareTextureCopy(rShader, PASS_TEXT::pTextureToTextureVertex, PASS_TEXT::pTextureToTextureFragment,
                           nWidth, nHeight) < 0)
        return -1;
    unsigned int nTarget = 0;
    if (nSource == COPY_VIEW_TO_COPY) {
        BindCopySource(rShader, 6, nFrameTexture);
        nTarget = nFrameTexture2;
    } else if (nSource == COPY_MASKS_TO_INPUT_OVERLAY) {
        BindCopySource(rShader, 10, nMaskTextureA);
        nTarget = sInputOverlay.nTexture;
    } else {
        return 0;
    }
    PrepareFrameBuffer();
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, nTarget, 0);
    DrawTextureCopy(rShader);
    return 0;
}
