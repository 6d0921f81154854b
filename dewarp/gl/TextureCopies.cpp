#include "dewarp/gl/TextureCopies.h"

#include "dewarp/gl/FrameTextures.h"
#include "dewarp/gl/Textures.h"
#include "dewarp/shaders/PassTexts.h"

#include <GLES3/gl31.h>

static constexpr SProgramStep COPY_STEPS[] = {
    STEP_POSITION,
    STEP_TEX_COORD,
    STEP_MVP,
    STEP_IDENTITY_MVP,
    {SProgramStep::UNIFORM, "samplerInput", &SShaderProperties::nSampler0Location},
};

bool CTextureCopies::Begin(SShaderProperties& rShader, const char* pVertexText, const char* pFragmentText,
                           int nWidth, int nHeight, unsigned int nSource, int nUnit)
{
    if (!rShader.IsUsable()) {
        rShader.strVertexShader = pVertexText;
        rShader.strFragmentShader = pFragmentText;
        if (m_rTools.rPrograms.Use(rShader, COPY_STEPS) < 0)
            return false;
    }
    sQuad.SetViewport(nWidth, nHeight);
    CPrograms::MakeCurrent(rShader);
    glUniform1i(rShader.nSampler0Location, nUnit);
    m_rTools.rTextures.Bind(nUnit, nSource);
    return true;
}

bool CTextureCopies::BeginToScreen(int nWidth, int nHeight, unsigned int nSource, int nUnit)
{
    return Begin(sTextureToScreenShader, PASS_TEXT::pTextureToScreenVertex,
                 PASS_TEXT::pTextureToScreenFragment, nWidth, nHeight, nSource, nUnit);
}

bool CTextureCopies::BeginToTexture(int nWidth, int nHeight, unsigned int nSource, int nUnit)
{
    return Begin(sTextureToTextureShader, PASS_TEXT::pTextureToTextureVertex,
                 PASS_TEXT::pTextureToTextureFragment, nWidth, nHeight, nSource, nUnit);
}

void CTextureCopies::BindTarget(unsigned int nTexture)
{
    m_rTools.rFrame.BindFrameBuffer();
    m_rTools.rFrame.Attach(nTexture);
}

bool CTextureCopies::DrawToScreen()
{
    return sQuad.Draw(m_rTools, sTextureToScreenShader);
}

bool CTextureCopies::DrawToTexture()
{
    return sQuad.Draw(m_rTools, sTextureToTextureShader);
}
