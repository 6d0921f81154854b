#include "dewarp/gl/MaskPass.h"

#include "dewarp/gl/DriverWatch.h"
#include "dewarp/gl/FrameTextures.h"
#include "dewarp/gl/GPUObjPolygon.h"
#include "dewarp/gl/Textures.h"
#include "dewarp/gl/UniformColour.h"
#include "dewarp/shaders/PassTexts.h"

#include <GLES3/gl31.h>

#include <utility>

static constexpr SProgramStep MASK_STEPS[] = {
    STEP_POSITION,     STEP_NO_TEX_COORD,
    STEP_MVP,          {SProgramStep::UNIFORM, "u_Color", &SShaderProperties::nColorLocation},
    STEP_SCREEN_SIZE,  {SProgramStep::UNIFORM, "samplerInput", &SShaderProperties::nSampler0Location},
    STEP_IDENTITY_MVP,
};

bool CMaskPass::Paint(const std::vector<SGPolygon>& vPolygons, int nWidth, int nHeight)
{
    if (!m_rTools.rTextures.Fits(nWidth, nHeight) || !PrepareProgram(nWidth, nHeight))
        return false;
    m_rTools.rFrame.BindFrameBuffer();
    PrepareTextures(nWidth, nHeight);
    for (const SGPolygon& rPolygon : vPolygons) {
        if (!PaintPolygon(rPolygon))
            return false;
    }
    return true;
}

bool CMaskPass::PrepareProgram(int nWidth, int nHeight)
{
    SShaderProperties& rShader = sMaskShader;
    if (!rShader.IsUsable()) {
        rShader.strVertexShader = PASS_TEXT::pMaskVertex;
        rShader.strFragmentShader = PASS_TEXT::pMaskFragment;
        if (m_rTools.rPrograms.Use(rShader, MASK_STEPS) < 0)
            return false;
    }
    // A new frame size would misplace the masks: sizes are given at every painting.
    CPrograms::MakeCurrent(rShader);
    glViewport(0, 0, nWidth, nHeight);
    sMatrices.nViewportWidth = nWidth;
    sMatrices.nViewportHeight = nHeight;
    sParams.nImageWidth = nWidth;
    sParams.nImageHeight = nHeight;
    sParams.nImageStride = nWidth * 4;
    glUniform2f(rShader.nScreenSizeLocation, static_cast<float>(nWidth), static_cast<float>(nHeight));
    return true;
}

void CMaskPass::PrepareTextures(int nWidth, int nHeight)
{
    for (const auto& [pTexture, nUnit] :
         {std::pair{&nMaskTextureA, UNIT_MASK_A}, std::pair{&nMaskTextureB, UNIT_MASK_B}}) {
        m_rTools.rTextures.Prepare(*pTexture, nUnit, nWidth, nHeight);
        m_rTools.rTextures.Bind(nUnit, *pTexture);
        m_rTools.rFrame.Attach(*pTexture);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    glActiveTexture(GL_TEXTURE0);
}

/// False when the polygon could not be drawn; one that covers nothing is drawn by doing nothing.
bool CMaskPass::PaintPolygon(const SGPolygon& rPolygon)
{
    SShaderProperties& rShader = sMaskShader;
    glUniform1i(rShader.nSampler0Location, UNIT_MASK_A);
    AttachTexture(nMaskTextureB);
    CCGPUObjPolygon oPolygon(rPolygon);
    oPolygon.m_pWatch = &m_rTools.rWatch;
    SetUniformColour(rShader.nColorLocation, rPolygon.nColor);
    oPolygon.Activate(&m_rTools.rGeometry, &sParams);
    if (m_rTools.rWatch.LacksMemory())
        return false;
    // A mask that has an area but no mesh would stay open.
    if (oPolygon.m_nVertexCount == 0)
        return rPolygon.vPoints.size() < 3;
    oPolygon.LoadVertexAndTextureCoordinates(&rShader);
    oPolygon.DrawArrays(&sParams, &sMatrices, &rShader);
    // Without a colour the pass copies: the first texture takes over what the second one has got.
    SetUniformColour(rShader.nColorLocation, 0);
    glUniform1i(rShader.nSampler0Location, UNIT_MASK_B);
    AttachTexture(nMaskTextureA);
    oPolygon.DrawArrays(&sParams, &sMatrices, &rShader);
    return true;
}

void CMaskPass::Free()
{
    CTextures::Delete(nMaskTextureA);
    CTextures::Delete(nMaskTextureB);
}

void CMaskPass::Forget()
{
    nMaskTextureA = nMaskTextureB = 0;
}
