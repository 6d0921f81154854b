#include "dewarp/gl/OutputOverlayPass.h"

#include "dewarp/gl/Textures.h"
#include "dewarp/shaders/PassTexts.h"

static constexpr SProgramStep OVERLAY_STEPS[] = {
    {SProgramStep::UNIFORM, "samplerInput", &SShaderProperties::nSampler0Location},
    {SProgramStep::UNIFORM, "samplerOverlay", &SShaderProperties::nSampler1Location},
    {SProgramStep::UNIT, "", &SShaderProperties::nSampler0Location, UNIT_VIEW},
    {SProgramStep::UNIT, "", &SShaderProperties::nSampler1Location, UNIT_OUTPUT_OVERLAY},
    STEP_POSITION,
    STEP_TEX_COORD,
    STEP_MVP,
    STEP_IDENTITY_MVP,
};

bool COutputOverlayPass::Begin(int nWidth, int nHeight)
{
    SShaderProperties& rShader = sOutputOverlayShader;
    if (!rShader.IsUsable()) {
        rShader.strVertexShader = PASS_TEXT::pOutputOverlayVertex;
        rShader.strFragmentShader = PASS_TEXT::pOutputOverlayFragment;
        if (m_rTools.rPrograms.Use(rShader, OVERLAY_STEPS) < 0)
            return false;
    }
    sQuad.SetViewport(nWidth, nHeight);
    return true;
}

bool COutputOverlayPass::Draw(unsigned int nView, unsigned int nOverlay)
{
    CPrograms::MakeCurrent(sOutputOverlayShader);
    m_rTools.rTextures.Bind(UNIT_VIEW, nView);
    m_rTools.rTextures.Bind(UNIT_OUTPUT_OVERLAY, nOverlay);
    return sQuad.Draw(m_rTools, sOutputOverlayShader);
}
