/// \file
/// Draws text strings: into their overlay texture, and that texture over the result.
#pragma once

#include "dewarp/gl/GPUObjBase.h"
#include "dewarp/overlays/SGPUString.h"
#include "platform/Export.h"

#include <cstddef>
#include <vector>

/// Holds one quad a glyph of the font, each covering the whole viewport, and the strings as last drawn.
/// Thread: GL thread, context current.
class LUMOR_API CCGPUObjString : public CCGPUObjBase
{
public:
    using CCGPUObjBase::Activate;
    /// Builds the glyph quads of a font atlas of nCols x nRows cells, once.
    void Activate(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams, int nCols, int nRows);

    /// Draws one string into the texture nDrawTexture over what nCopyTexture (unit 12) holds, and copies its
    /// area back. bFlipY: rows count from the other end. Strings without height, or outside every viewport,
    /// draw nothing.
    void DrawStringToT12(SGPUString& sString, SShaderProperties* pShader, SDewarpMatrices* pMatrices,
                         unsigned int& nCopyTexture, unsigned int& nDrawTexture, bool bFlipY);

    /// Brings the pair of overlay textures (units 12 and 13) up to date with the list; redraws what changed,
    /// or everything. Returns the number of strings drawn.
    int DrawStringsToOverlay(std::vector<SGPUString>& vStrings, SDewarpParams* pParams,
                             SDewarpMatrices* pMatrices, SShaderProperties* pShader, unsigned int& nTextureA,
                             unsigned int& nTextureB, unsigned int& nViewTexture,
                             unsigned int& nViewCopyTexture, bool bFullRedraw, bool bDrawToTexture);

    /// Draws the area of every string as last drawn, with the program in use. The area is twice as wide and
    /// high as the string and centred on its first corner.
    void DrawStringsToTexture();

    std::vector<SGPUString> m_vStrings; ///< as last drawn

private:
    int RedrawAll(const std::vector<SGPUString>& vStrings, SShaderProperties* pShader,
                  SDewarpMatrices* pMatrices, unsigned int& nTextureA, unsigned int& nTextureB, bool bFlipY);
    std::vector<std::size_t> FindChanged(const std::vector<SGPUString>& vStrings);
    void Erase(const std::vector<std::size_t>& vChanged, const SShaderProperties& rShader,
               unsigned int nTextureA, unsigned int nTextureB);
};
