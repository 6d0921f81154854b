/// \file
/// Text: the strings' overlay texture, and its composition over the view.
#pragma once

#include "dewarp/gl/FlatPass.h"
#include "dewarp/gl/GPUObjString.h"
#include "dewarp/overlays/StringList.h"

/// Draws into the target, which takes YUV, or into a texture on the way to the output overlay; rows count
/// from the other end there. Owns: the pair of overlay textures, the font's texture, the glyphs. Units:
/// pixels of the target. Thread: GL thread, context current. Fails: with false when a program cannot be made
/// or memory lacks.
class CStringPass
{
public:
    explicit CStringPass(SPassTools& rTools) : m_rTools(rTools) {}
    CStringPass(const CStringPass&) = delete;
    CStringPass& operator=(const CStringPass&) = delete;

    /// Strings are drawn for one kind of target: another one has all of them drawn anew.
    void ChooseTarget(bool bToTexture);
    /// True when the overlay texture does not show the list yet.
    bool IsStale(int nWidth, int nHeight) const;
    /// Brings the overlay texture up to date.
    bool Update(SStringList& rList, int nWidth, int nHeight);
    /// Makes the composition ready; the target is bound after this.
    bool BeginComposition(int nWidth, int nHeight);
    /// Lays the text over the view, read from its texture, in the target that is bound.
    void Compose(unsigned int nView, int nWidth, int nHeight);
    void Free();
    void Forget();

    unsigned int nStringTextureA = 0; ///< unit 12
    unsigned int nStringTextureB = 0; ///< unit 13
    unsigned int nFontTexture = 0;    ///< unit 8
    CCGPUObjString oStringObject;
    SShaderProperties sStringShader;
    SShaderProperties sStringCompositeShader;
    SDewarpMatrices sMatrices; ///< all identity
    SDewarpParams sParams = SDewarpParams::Auxiliary();
    bool bToTexture = false; ///< the strings were drawn for a texture

private:
    bool PrepareProgram(int nWidth, int nHeight, bool& bFullRedraw);
    void PrepareFont();
    bool PrepareTextures(int nWidth, int nHeight);

    SPassTools& m_rTools;
};
