// Text: the strings' overlay texture, and its composition over the view.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/overlays/GPUObjString.h"
#include "dewarp/overlays/StringFormat.h"
#include "dewarp/pipeline/LockScope.h"
#include "dewarp/pipeline/MemoryGuard.h"
#include "dewarp/pipeline/PlaneUpload.h"
#include "dewarp/shaders/PassTexts.h"
#include "dewarp/tables/GPUFont.h"

#include <GLES3/gl31.h>

#include <utility>

void CCustomGPUDewarper::SetStrings(unsigned char* pData, int nLength)
{
    GuardMemory("SetStrings", false, [&] {
        SetStrings(ParseStrings(pData, nLength));
        return true;
    });
}

void CCustomGPUDewarper::SetStrings(std::vector<SGPUString> vNewStrings)
{
    CLockScope oScope(*this);
    // Element by element: a string that was there keeps the rectangle it was drawn in.
    GuardMemory("SetStrings", false, [&] {
        vStrings.resize(vNewStrings.size());
        for (std::size_t i = 0; i < vNewStrings.size(); ++i)
            vStrings[i] = vNewStrings[i];
        return true;
    });
    bStringsChanged = true;
    DrawRequired();
}

int CCustomGPUDewarper::PrepareStringProgram(int nWidth, int nHeight, bool& bFullRedraw)
{
    SShaderProperties& rShader = sStringShader;
    if (!rShader.IsUsable()) {
        rShader.strVertexShader = PASS_TEXT::pStringVertex;
        rShader.strFragmentShader = PASS_TEXT::pStringFragment;
        if (LoadShaderPrograms(rShader) < 0)
            return -1;
        rShader.nSampler0Location = glGetUniformLocation(rShader.nProgram, "samplerInput");
        rShader.nSampler1Location = glGetUniformLocation(rShader.nProgram, "samplerString");
        glUniform1i(rShader.nSampler0Location, 12);
        glUniform1i(rShader.nSampler1Location, 8);
        rShader.nPositionLocation = glGetAttribLocation(rShader.nProgram, "vPosition");
        rShader.nTexCoordLocation = glGetAttribLocation(rShader.nProgram, "a_TexCoordinate");
        rShader.nMVPMatrixLocation = glGetUniformLocation(rShader.nProgram, "uMVPMatrix");
        rShader.nScreenSizeLocation = glGetUniformLocation(rShader.nProgram, "u_ScreenSize");
        rShader.nMultLocation = glGetUniformLocation(rShader.nProgram, "u_Mult");
        rShader.nPosYMultLocation = glGetUniformLocation(rShader.nProgram, "u_PosYMult");
        rShader.nColorLocation = glGetUniformLocation(rShader.nProgram, "u_TextColor");
        glUniformMatrix4fv(rShader.nMVPMatrixLocation, 1, GL_FALSE, pStringMatrices->fMVP);
        glUniform1f(rShader.nMultLocation, 1.0f);
        glUniform1f(rShader.nPosYMultLocation, HasImage(sOutputOverlay) ? 1.0f : -1.0f);
        pStringParams->nImageWidth = GPU_FONT::nW;
        pStringParams->nImageHeight = GPU_FONT::nH;
        pStringParams->nImageStride = GPU_FONT::nW;
        pStringMatrices->nViewportWidth = 0;
        bFullRedraw = true;
    }
    glUseProgram(rShader.nProgram);
    if (pStringMatrices->nViewportWidth != nWidth || pStringMatrices->nViewportHeight != nHeight) {
        glViewport(0, 0, nWidth, nHeight);
        pStringMatrices->nViewportWidth = nWidth;
        pStringMatrices->nViewportHeight = nHeight;
        glUniform2f(rShader.nScreenSizeLocation, static_cast<float>(nWidth), static_cast<float>(nHeight));
        bFullRedraw = true;
    }
    return 0;
}

void CCustomGPUDewarper::PrepareFontTexture()
{
    if (nFontTexture == 0) {
        glPixelStorei(GL_UNPACK_ALIGNMENT, UnpackAlignment(GPU_FONT::nW * 2));
        // GL only reads the pixels.
        GenerateTexture(nFontTexture, GL_TEXTURE8, GL_LUMINANCE_ALPHA, GPU_FONT::nW, GPU_FONT::nH,
                        GPU_FONT::nW, const_cast<unsigned char*>(GPU_FONT::pGPU_FONT));
    }
    glActiveTexture(GL_TEXTURE8);
    glBindTexture(GL_TEXTURE_2D, nFontTexture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
}

/// True when the pair was made anew and holds nothing yet.
bool CCustomGPUDewarper::PrepareStringTextures(int nWidth, int nHeight)
{
    bool bNew = false;
    for (const auto& [pTexture, nUnit] :
         {std::pair{&nStringTextureA, 12U}, std::pair{&nStringTextureB, 13U}}) {
        if (*pTexture == 0 || anTextureUnitSize[nUnit][0] != nWidth ||
            anTextureUnitSize[nUnit][1] != nHeight) {
            GenerateTexture(*pTexture, GL_TEXTURE0 + nUnit, GL_RGBA, nWidth, nHeight, nWidth, nullptr);
            bNew = true;
        }
        glActiveTexture(GL_TEXTURE0 + nUnit);
        glBindTexture(GL_TEXTURE_2D, *pTexture);
        SetInterpolation();
    }
    return bNew;
}

int CCustomGPUDewarper::UpdateStringOverlay(int nWidth, int nHeight)
{
    bool bFullRedraw = false;
    if (PrepareStringProgram(nWidth, nHeight, bFullRedraw) < 0)
        return -1;
    PrepareFontTexture();
    pStringObject->Activate(pGeometry, pStringParams, GPU_FONT::nCols, GPU_FONT::nRows);
    if (LacksDriverMemory())
        return -1;
    pStringObject->LoadVertexAndTextureCoordinates(&sStringShader);
    bFullRedraw = PrepareStringTextures(nWidth, nHeight) || bFullRedraw;
    PrepareFrameBuffer();
    pStringObject->DrawStringsToOverlay(vStrings, pStringParams, pStringMatrices, &sStringShader,
                                        nStringTextureA, nStringTextureB, nFrameTexture, nFrameTexture2,
                                        bFullRedraw, HasImage(sOutputOverlay));
    pBoundViewObject = pStringObject;
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, 0);
    BindDefaultFrameBuffer();
    glUseProgram(sMainShader.nProgram);
    glViewport(0, 0, nWidth, nHeight);
    return 0;
}

int CCustomGPUDewarper::PrepareStringCompositeProgram()
{
    SShaderProperties& rShader = sStringCompositeShader;
    if (rShader.IsUsable())
        return 0;
    rShader.strVertexShader = PASS_TEXT::pStringCompositeVertex;
    rShader.strFragmentShader = StringCompositeFragmentText(HasImage(sOutputOverlay));
    if (LoadShaderPrograms(rShader) < 0)
        return -1;
    rShader.nSampler0Location = glGetUniformLocation(rShader.nProgram, "samplerGeometry");
    rShader.nSampler1Location = glGetUniformLocation(rShader.nProgram, "samplerStringOverlay");
    glUniform1i(rShader.nSampler0Location, 9);
    glUniform1i(rShader.nSampler1Location, 12);
    rShader.nPositionLocation = glGetAttribLocation(rShader.nProgram, "vPosition");
    rShader.nTexCoordLocation = -1;
    rShader.nScreenSizeLocation = glGetUniformLocation(rShader.nProgram, "u_ScreenSize");
    rShader.nMVPMatrixLocation = glGetUniformLocation(rShader.nProgram, "uMVPMatrix");
    glUniformMatrix4fv(rShader.nMVPMatrixLocation, 1, GL_FALSE, pStringMatrices->fMVP);
    return 0;
}

int CCustomGPUDewarper::HandleStrings(int nWidth, int nHeight)
{
    const bool bToTexture = HasImage(sOutputOverlay);
    if (bToTexture != bStringsToTexture) {
        // Rows count from the other end there: both programs and all glyphs are made for one kind of target.
        sStringShader.Free();
        sStringCompositeShader.Free();
        bStringsToTexture = bToTexture;
    }
    const bool bStale = nStringTextureA == 0 || !sStringShader.IsUsable() ||
                        anTextureUnitSize[12][0] != nWidth || anTextureUnitSize[12][1] != nHeight;
    if (bStringsChanged || bStale) {
        if (UpdateStringOverlay(nWidth, nHeight) < 0)
            return -1;
        bStringsChanged = false;
    }
    SShaderProperties& rShader = sStringCompositeShader;
    if (PrepareStringCompositeProgram() < 0)
        return -1;
    glViewport(0, 0, nWidth, nHeight);
    glUseProgram(rShader.nProgram);
    glActiveTexture(GL_TEXTURE12);
    glBindTexture(GL_TEXTURE_2D, nStringTextureA);
    SetInterpolation();
    glUniform1i(rShader.nSampler1Location, 12);
    const int nUnit = bToTexture ? 9 : 6;
    if (bToTexture)
        PrepareFrameBuffer();
    else
        BindDefaultFrameBuffer();
    glActiveTexture(GL_TEXTURE0 + static_cast<unsigned int>(nUnit));
    glBindTexture(GL_TEXTURE_2D, bToTexture ? nFrameTexture2 : nFrameTexture);
    SetInterpolation();
    glUniform1i(rShader.nSampler0Location, nUnit);
    if (bToTexture)
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, nFrameTexture, 0);
    glUniform2f(rShader.nScreenSizeLocation, static_cast<float>(nWidth), static_cast<float>(nHeight));
    pStringObject->LoadVertexAndTextureCoordinates(&rShader);
    pStringObject->DrawStringsToTexture();
    pBoundViewObject = pStringObject;
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, 0);
    BindDefaultFrameBuffer();
    glUseProgram(sMainShader.nProgram);
    glViewport(0, 0, nWidth, nHeight);
    return 0;
}
