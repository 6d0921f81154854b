// Privacy masks: polygons painted into the input overlay, so that every view dewarps them with the picture.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/overlays/GPUObjPolygon.h"
#include "dewarp/overlays/MaskPolygonFormat.h"
#include "dewarp/pipeline/LockScope.h"
#include "dewarp/pipeline/MemoryGuard.h"
#include "dewarp/shaders/PassTexts.h"

#include <GLES3/gl31.h>

#include <utility>

namespace
{

const float TRANSPARENT[4] = {0.0f, 0.0f, 0.0f, 0.0f};

void SetColor(int nLocation, unsigned int nColor)
{
    glUniform4f(nLocation, static_cast<float>(nColor >> 24 & 255) / 255.0f,
                static_cast<float>(nColor >> 16 & 255) / 255.0f,
                static_cast<float>(nColor >> 8 & 255) / 255.0f, static_cast<float>(nColor & 255) / 255.0f);
}

void AttachTexture(unsigned int nTexture)
{
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, nTexture, 0);
}

} // namespace

void CCustomGPUDewarper::SetMaskPolygons(unsigned char* pData, int nLength)
{
    // A list that cannot be held leaves the masks there are: they must not fall away.
    GuardMemory("SetMaskPolygons", false, [&] {
        SetMaskPolygons(ParseMaskPolygons(pData, nLength));
        return true;
    });
}

void CCustomGPUDewarper::SetMaskPolygons(std::vector<SGPolygon> vPolygons)
{
    CLockScope oScope(*this);
    vMaskPolygons = std::move(vPolygons);
    bMaskPolygonsChanged = true;
    DrawRequired();
}

int CCustomGPUDewarper::MaskPolygonsToInputOverlay()
{
    if (vMaskPolygons.empty()) {
        Unlock();
        SetInputOverlay(nullptr, 0, 0, 0);
        Lock();
        return 0;
    }
    const int w = pParams->nImageWidth;
    const int h = pParams->nImageHeight;
    if (!FitsTexture() || PrepareMaskProgram(w, h) < 0)
        return -1;
    PrepareFrameBuffer();
    PrepareMaskTextures(w, h);
    for (const SGPolygon& rPolygon : vMaskPolygons)
        PaintMaskPolygon(rPolygon);
    PrepareInputOverlayForMasks(w, h);
    const int nResult = HandleTextureToTexture(w, h, 3) < 0 || LacksDriverMemory() ? -1 : 0;
    if (nResult == 0)
        sMainShader.bInputOverlay = true;
    BindDefaultFrameBuffer();
    glActiveTexture(GL_TEXTURE0);
    glUseProgram(sMainShader.nProgram);
    if (pActiveViewObject != nullptr) {
        pActiveViewObject->Activate(pGeometry, pParams);
        pActiveViewObject->LoadVertexAndTextureCoordinates(&sMainShader);
        pBoundViewObject = pActiveViewObject;
    }
    return nResult;
}

int CCustomGPUDewarper::PrepareMaskProgram(int nWidth, int nHeight)
{
    SShaderProperties& rShader = sMaskShader;
    if (!rShader.IsUsable()) {
        rShader.strVertexShader = PASS_TEXT::pMaskVertex;
        rShader.strFragmentShader = PASS_TEXT::pMaskFragment;
        if (LoadShaderPrograms(rShader) < 0)
            return -1;
        rShader.nPositionLocation = glGetAttribLocation(rShader.nProgram, "vPosition");
        rShader.nTexCoordLocation = -1;
        rShader.nMVPMatrixLocation = glGetUniformLocation(rShader.nProgram, "uMVPMatrix");
        rShader.nColorLocation = glGetUniformLocation(rShader.nProgram, "u_Color");
        rShader.nScreenSizeLocation = glGetUniformLocation(rShader.nProgram, "u_ScreenSize");
        rShader.nSampler0Location = glGetUniformLocation(rShader.nProgram, "samplerInput");
        glUniformMatrix4fv(rShader.nMVPMatrixLocation, 1, GL_FALSE, pMaskMatrices->fMVP);
    }
    // A new frame size would misplace the masks: sizes are given at every painting.
    glUseProgram(rShader.nProgram);
    glViewport(0, 0, nWidth, nHeight);
    pMaskMatrices->nViewportWidth = nWidth;
    pMaskMatrices->nViewportHeight = nHeight;
    pMaskParams->nImageWidth = nWidth;
    pMaskParams->nImageHeight = nHeight;
    pMaskParams->nImageStride = nWidth * 4;
    glUniform2f(rShader.nScreenSizeLocation, static_cast<float>(nWidth), static_cast<float>(nHeight));
    return 0;
}

void CCustomGPUDewarper::PrepareMaskTextures(int nWidth, int nHeight)
{
    for (const auto& [pTexture, nUnit] : {std::pair{&nMaskTextureA, 10U}, std::pair{&nMaskTextureB, 11U}}) {
        if (*pTexture == 0 || anTextureUnitSize[nUnit][0] != nWidth || anTextureUnitSize[nUnit][1] != nHeight)
            GenerateTexture(*pTexture, GL_TEXTURE0 + nUnit, GL_RGBA, nWidth, nHeight, nWidth, nullptr);
        glActiveTexture(GL_TEXTURE0 + nUnit);
        glBindTexture(GL_TEXTURE_2D, *pTexture);
        SetInterpolation();
        AttachTexture(*pTexture);
        glClearBufferfv(GL_COLOR, 0, TRANSPARENT);
    }
    glActiveTexture(GL_TEXTURE0);
}

void CCustomGPUDewarper::PaintMaskPolygon(const SGPolygon& rPolygon)
{
    SShaderProperties& rShader = sMaskShader;
    glUniform1i(rShader.nSampler0Location, 10);
    AttachTexture(nMaskTextureB);
    CCGPUObjPolygon oPolygon(rPolygon);
    SetColor(rShader.nColorLocation, rPolygon.nColor);
    oPolygon.Activate(pGeometry, pMaskParams);
    if (oPolygon.m_nVertexCount == 0 || LacksDriverMemory())
        return;
    oPolygon.LoadVertexAndTextureCoordinates(&rShader);
    oPolygon.DrawArrays(pMaskParams, pMaskMatrices, &rShader);
    // Without a colour the pass copies: the first texture takes over what the second one has got.
    SetColor(rShader.nColorLocation, 0);
    glUniform1i(rShader.nSampler0Location, 11);
    AttachTexture(nMaskTextureA);
    oPolygon.DrawArrays(pMaskParams, pMaskMatrices, &rShader);
}

void CCustomGPUDewarper::PrepareInputOverlayForMasks(int nWidth, int nHeight)
{
    SGOverlay& rOverlay = sInputOverlay;
    if (rOverlay.nWidth == nWidth && rOverlay.nHeight == nHeight && rOverlay.nTexture != 0 &&
        rOverlay.pData == nullptr)
        return;
    // A program that was built while the overlay had no size does not look at its unit.
    if (rOverlay.nWidth < 1)
        sMainShader.bForceReload = true;
    rOverlay.Reset();
    rOverlay.nWidth = nWidth;
    rOverlay.nHeight = nHeight;
    rOverlay.nTextureUnit = GL_TEXTURE5;
    GenerateTexture(rOverlay.nTexture, GL_TEXTURE5, GL_RGBA, nWidth, nHeight, nWidth, nullptr);
    glActiveTexture(GL_TEXTURE0);
}
