#include "dewarp/gl/StringPass.h"

#include "dewarp/gl/DriverWatch.h"
#include "dewarp/gl/FrameTextures.h"
#include "dewarp/gl/PlaneUpload.h"
#include "dewarp/gl/Textures.h"
#include "dewarp/shaders/PassTexts.h"
#include "dewarp/tables/GPUFont.h"

#include <GLES3/gl31.h>

#include <utility>

static constexpr SProgramStep STRING_STEPS[] = {
    {SProgramStep::UNIFORM, "samplerInput", &SShaderProperties::nSampler0Location},
    {SProgramStep::UNIFORM, "samplerString", &SShaderProperties::nSampler1Location},
    {SProgramStep::UNIT, "", &SShaderProperties::nSampler0Location, UNIT_STRING_A},
    {SProgramStep::UNIT, "", &SShaderProperties::nSampler1Location, UNIT_FONT},
    STEP_POSITION,
    STEP_TEX_COORD,
    STEP_MVP,
    STEP_SCREEN_SIZE,
    {SProgramStep::UNIFORM, "u_Mult", &SShaderProperties::nMultLocation},
    {SProgramStep::UNIFORM, "u_PosYMult", &SShaderProperties::nPosYMultLocation},
    {SProgramStep::UNIFORM, "u_TextColor", &SShaderProperties::nColorLocation},
    STEP_IDENTITY_MVP,
};

static constexpr SProgramStep COMPOSITE_STEPS[] = {
    {SProgramStep::UNIFORM, "samplerGeometry", &SShaderProperties::nSampler0Location},
    {SProgramStep::UNIFORM, "samplerStringOverlay", &SShaderProperties::nSampler1Location},
    {SProgramStep::UNIT, "", &SShaderProperties::nSampler0Location, UNIT_VIEW_COPY},
    {SProgramStep::UNIT, "", &SShaderProperties::nSampler1Location, UNIT_STRING_A},
    STEP_POSITION,
    STEP_NO_TEX_COORD,
    STEP_SCREEN_SIZE,
    STEP_MVP,
    STEP_IDENTITY_MVP,
};

void CStringPass::ChooseTarget(bool bTexture)
{
    if (bTexture == bToTexture)
        return;
    sStringShader.Free();
    sStringCompositeShader.Free();
    bToTexture = bTexture;
}

bool CStringPass::IsStale(int nWidth, int nHeight) const
{
    return !sStringShader.IsUsable() ||
           m_rTools.rTextures.NeedsSize(nStringTextureA, UNIT_STRING_A, nWidth, nHeight);
}

bool CStringPass::PrepareProgram(int nWidth, int nHeight, bool& bFullRedraw)
{
    SShaderProperties& rShader = sStringShader;
    if (!rShader.IsUsable()) {
        rShader.strVertexShader = PASS_TEXT::pStringVertex;
        rShader.strFragmentShader = PASS_TEXT::pStringFragment;
        if (m_rTools.rPrograms.Use(rShader, STRING_STEPS) < 0)
            return false;
        glUniform1f(rShader.nMultLocation, 1.0f);
        glUniform1f(rShader.nPosYMultLocation, bToTexture ? 1.0f : -1.0f);
        sParams.nImageWidth = GPU_FONT::nW;
        sParams.nImageHeight = GPU_FONT::nH;
        sParams.nImageStride = GPU_FONT::nW;
        sMatrices.nViewportWidth = 0;
        bFullRedraw = true;
    }
    CPrograms::MakeCurrent(rShader);
    if (sMatrices.nViewportWidth != nWidth || sMatrices.nViewportHeight != nHeight) {
        glViewport(0, 0, nWidth, nHeight);
        sMatrices.nViewportWidth = nWidth;
        sMatrices.nViewportHeight = nHeight;
        glUniform2f(rShader.nScreenSizeLocation, static_cast<float>(nWidth), static_cast<float>(nHeight));
        bFullRedraw = true;
    }
    return true;
}

void CStringPass::PrepareFont()
{
    if (nFontTexture == 0) {
        glPixelStorei(GL_UNPACK_ALIGNMENT, UnpackAlignment(GPU_FONT::nW * 2));
        m_rTools.rTextures.Generate(nFontTexture, GLUnit(UNIT_FONT), GL_LUMINANCE_ALPHA, GPU_FONT::nW,
                                    GPU_FONT::nH, GPU_FONT::nW, GPU_FONT::pGPU_FONT);
    }
    glActiveTexture(GLUnit(UNIT_FONT));
    glBindTexture(GL_TEXTURE_2D, nFontTexture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
}

/// True when the pair was made anew and holds nothing yet.
bool CStringPass::PrepareTextures(int nWidth, int nHeight)
{
    bool bNew = false;
    for (const auto& [pTexture, nUnit] :
         {std::pair{&nStringTextureA, UNIT_STRING_A}, std::pair{&nStringTextureB, UNIT_STRING_B}}) {
        bNew = m_rTools.rTextures.Prepare(*pTexture, nUnit, nWidth, nHeight) || bNew;
        m_rTools.rTextures.Bind(nUnit, *pTexture);
    }
    return bNew;
}

bool CStringPass::Update(SStringList& rList, int nWidth, int nHeight)
{
    bool bFullRedraw = false;
    if (!PrepareProgram(nWidth, nHeight, bFullRedraw))
        return false;
    PrepareFont();
    oStringObject.Activate(&m_rTools.rGeometry, &sParams, GPU_FONT::nCols, GPU_FONT::nRows);
    if (m_rTools.rWatch.LacksMemory())
        return false;
    oStringObject.LoadVertexAndTextureCoordinates(&sStringShader);
    bFullRedraw = PrepareTextures(nWidth, nHeight) || bFullRedraw;
    m_rTools.rFrame.BindFrameBuffer();
    oStringObject.DrawStringsToOverlay(rList.vStrings, &sParams, &sMatrices, &sStringShader, nStringTextureA,
                                       nStringTextureB, m_rTools.rFrame.nFrameTexture,
                                       m_rTools.rFrame.nFrameTexture2, bFullRedraw, bToTexture);
    rList.bStringsChanged = false;
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, 0);
    return true;
}

bool CStringPass::BeginComposition(int nWidth, int nHeight)
{
    SShaderProperties& rShader = sStringCompositeShader;
    if (!rShader.IsUsable()) {
        rShader.strVertexShader = PASS_TEXT::pStringCompositeVertex;
        rShader.strFragmentShader = StringCompositeFragmentText(bToTexture);
        if (m_rTools.rPrograms.Use(rShader, COMPOSITE_STEPS) < 0)
            return false;
    }
    glViewport(0, 0, nWidth, nHeight);
    CPrograms::MakeCurrent(rShader);
    m_rTools.rTextures.Bind(UNIT_STRING_A, nStringTextureA);
    glUniform1i(rShader.nSampler1Location, UNIT_STRING_A);
    return true;
}

void CStringPass::Compose(unsigned int nView, int nWidth, int nHeight)
{
    SShaderProperties& rShader = sStringCompositeShader;
    const int nUnit = bToTexture ? UNIT_VIEW_COPY : UNIT_VIEW;
    m_rTools.rTextures.Bind(nUnit, nView);
    glUniform1i(rShader.nSampler0Location, nUnit);
    if (bToTexture)
        AttachTexture(m_rTools.rFrame.nFrameTexture);
    glUniform2f(rShader.nScreenSizeLocation, static_cast<float>(nWidth), static_cast<float>(nHeight));
    oStringObject.LoadVertexAndTextureCoordinates(&rShader);
    oStringObject.DrawStringsToTexture();
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, 0);
}

void CStringPass::Free()
{
    CTextures::Delete(nStringTextureA);
    CTextures::Delete(nStringTextureB);
    CTextures::Delete(nFontTexture);
}

void CStringPass::Forget()
{
    nStringTextureA = nStringTextureB = nFontTexture = 0;
}
