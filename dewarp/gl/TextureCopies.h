/// \file
/// Passes that copy a frame texture: onto the target, or into another texture.
#pragma once

#include "dewarp/gl/FlatPass.h"
#include "dewarp/gl/TextureUnits.h"

/// Owns: its quad. Thread: GL thread, context current. Fails: with a negative result when a program cannot be
/// made or memory lacks.
class CTextureCopies
{
public:
    explicit CTextureCopies(SPassTools& rTools) : m_rTools(rTools) {}
    CTextureCopies(const CTextureCopies&) = delete;
    CTextureCopies& operator=(const CTextureCopies&) = delete;

    /// Sets a copy up to the point where its target is bound: the texture is read from its unit then. False
    /// when the program cannot be made.
    bool BeginToScreen(int nWidth, int nHeight, unsigned int nSource, int nUnit);
    bool BeginToTexture(int nWidth, int nHeight, unsigned int nSource, int nUnit);
    /// Binds the passes' framebuffer with that texture as its target.
    void BindTarget(unsigned int nTexture);
    /// Draws the copy into the target that is bound.
    bool DrawToScreen();
    bool DrawToTexture();

    SShaderProperties sTextureToScreenShader;
    SShaderProperties sTextureToTextureShader;
    SFlatQuad sQuad;

private:
    bool Begin(SShaderProperties& rShader, const char* pVertexText, const char* pFragmentText, int nWidth,
               int nHeight, unsigned int nSource, int nUnit);

    SPassTools& m_rTools;
};
