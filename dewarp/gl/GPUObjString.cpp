#include "dewarp/gl/GPUObjString.h"

#include "dewarp/gl/Textures.h"
#include "dewarp/gl/UniformColour.h"
#include "dewarp/overlays/OverlapGroups.h"
#include "dewarp/overlays/StringPlacement.h"

#include <algorithm>

namespace
{

const int GLYPH_VERTICES = 6;
const int SOLID_GLYPH = 95;
// Viewports larger than this are clamped by some drivers, which would move what is drawn in them.
const int MAX_VIEWPORT = 8192;
const float TRANSPARENT[4] = {0.0f, 0.0f, 0.0f, 0.0f};

void SetTextColor(const SShaderProperties& rShader, unsigned int nColor)
{
    SetUniformColour(rShader.nColorLocation, nColor);
}

/// Clips an extent that is too long for a viewport to a part that still holds the whole target.
void LimitExtent(long long& nStart, long long& nLength)
{
    if (nLength <= MAX_VIEWPORT)
        return;
    const long long nEnd = std::min<long long>(nStart + nLength, MAX_VIEWPORT * 2);
    nStart = std::max<long long>(nStart, 0);
    nLength = std::max<long long>(nEnd - nStart, 0);
}

void SetViewport(long long x, long long y, long long w, long long h)
{
    LimitExtent(x, w);
    LimitExtent(y, h);
    glViewport(static_cast<int>(x), static_cast<int>(y), static_cast<int>(w), static_cast<int>(h));
}

SGRect DrawnRect(const SGPUString& rString)
{
    return {rString.nDrawnX, rString.nDrawnY, rString.nDrawnW, rString.nDrawnH};
}

void SetDrawnRect(SGPUString& rString, const SGRect& rRect)
{
    rString.nDrawnX = rRect.x;
    rString.nDrawnY = rRect.y;
    rString.nDrawnW = rRect.width;
    rString.nDrawnH = rRect.height;
}

} // namespace

void CCGPUObjString::Activate(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams, int nCols, int nRows)
{
    if (m_nVertexCount != 0)
        return;
    pGeometry->GenerateFontVertices(pParams->nImageWidth, pParams->nImageHeight, nCols, nRows);
    UploadMesh(*pGeometry);
}

void CCGPUObjString::DrawStringToT12(SGPUString& sString, SShaderProperties* pShader,
                                     SDewarpMatrices* pMatrices, unsigned int& nCopyTexture,
                                     unsigned int& nDrawTexture, bool bFlipY)
{
    const int vw = pMatrices->nViewportWidth;
    const SPlacedString sPlaced = PlaceString(sString, vw, pMatrices->nViewportHeight, bFlipY);
    SetDrawnRect(sString, sPlaced.sDrawn);
    if (!sPlaced.bVisible)
        return;
    const int w = sPlaced.nGlyphWidth;

    glUniform1i(pShader->nSampler0Location, UNIT_STRING_A);
    AttachTexture(nDrawTexture);
    SetTextColor(*pShader, sString.nColor);
    long long nX = sPlaced.nX;
    for (const char cCharacter : sString.strText) {
        const int nGlyph = GlyphOf(cCharacter);
        if (nGlyph >= 0 && nX < vw && nX + w > 0) {
            glViewport(static_cast<int>(nX), static_cast<int>(sPlaced.nY), w, sPlaced.nHeight);
            glDrawArrays(m_nPrimitiveMode, nGlyph * GLYPH_VERTICES, GLYPH_VERTICES);
        }
        nX += w;
    }
    SetTextColor(*pShader, 0);
    glUniform1i(pShader->nSampler0Location, UNIT_STRING_B);
    AttachTexture(nCopyTexture);
    SetViewport(sString.nDrawnX, sString.nDrawnY, sString.nDrawnW, sString.nDrawnH);
    glDrawArrays(m_nPrimitiveMode, 0, GLYPH_VERTICES);
}

int CCGPUObjString::DrawStringsToOverlay(std::vector<SGPUString>& vStrings, SDewarpParams* /*pParams*/,
                                         SDewarpMatrices* pMatrices, SShaderProperties* pShader,
                                         unsigned int& nTextureA, unsigned int& nTextureB,
                                         unsigned int& /*nViewTexture*/, unsigned int& /*nViewCopyTexture*/,
                                         bool bFullRedraw, bool bDrawToTexture)
{
    int nDrawn = 0;
    if (bFullRedraw || vStrings.size() != m_vStrings.size()) {
        nDrawn = RedrawAll(vStrings, pShader, pMatrices, nTextureA, nTextureB, bDrawToTexture);
    } else {
        const std::vector<std::size_t> vChanged = FindChanged(vStrings);
        if (vChanged.empty())
            return 0;
        Erase(vChanged, *pShader, nTextureA, nTextureB);
        for (const std::size_t i : vChanged) {
            m_vStrings[i] = vStrings[i];
            DrawStringToT12(m_vStrings[i], pShader, pMatrices, nTextureA, nTextureB, bDrawToTexture);
        }
        nDrawn = static_cast<int>(vChanged.size());
    }
    RecomputeOverlapGroups(m_vStrings);
    for (std::size_t i = 0; i < vStrings.size(); ++i) {
        SetDrawnRect(vStrings[i], DrawnRect(m_vStrings[i]));
        vStrings[i].nOverlapGroup = m_vStrings[i].nOverlapGroup;
    }
    return nDrawn;
}

int CCGPUObjString::RedrawAll(const std::vector<SGPUString>& vStrings, SShaderProperties* pShader,
                              SDewarpMatrices* pMatrices, unsigned int& nTextureA, unsigned int& nTextureB,
                              bool bFlipY)
{
    for (const unsigned int nTexture : {nTextureB, nTextureA}) {
        AttachTexture(nTexture);
        glClearBufferfv(GL_COLOR, 0, TRANSPARENT);
    }
    m_vStrings = vStrings;
    for (SGPUString& rString : m_vStrings) {
        rString.nOverlapGroup = 0;
        DrawStringToT12(rString, pShader, pMatrices, nTextureA, nTextureB, bFlipY);
    }
    return static_cast<int>(m_vStrings.size());
}

/// Strings that differ from what was drawn, and those that share pixels with one of them.
std::vector<std::size_t> CCGPUObjString::FindChanged(const std::vector<SGPUString>& vStrings)
{
    std::vector<int> vGroups;
    for (std::size_t i = 0; i < m_vStrings.size(); ++i) {
        if (m_vStrings[i].nOverlapGroup != 0 && m_vStrings[i] != vStrings[i])
            vGroups.push_back(m_vStrings[i].nOverlapGroup);
    }
    std::sort(vGroups.begin(), vGroups.end());
    std::vector<std::size_t> vChanged;
    for (std::size_t i = 0; i < m_vStrings.size(); ++i) {
        // Asked for before the text is cleared: a string that becomes empty has changed, too.
        const bool bInGroup = std::binary_search(vGroups.begin(), vGroups.end(), m_vStrings[i].nOverlapGroup);
        if (bInGroup || m_vStrings[i] != vStrings[i])
            vChanged.push_back(i);
        if (bInGroup)
            m_vStrings[i].strText.clear();
    }
    return vChanged;
}

/// Makes the areas of the strings transparent in both textures, with the font's solid cell.
void CCGPUObjString::Erase(const std::vector<std::size_t>& vChanged, const SShaderProperties& rShader,
                           unsigned int nTextureA, unsigned int nTextureB)
{
    SetTextColor(rShader, 0x000000FF);
    glUniform1f(rShader.nMultLocation, 0.0f);
    // The program takes the alpha away; what is left of the colour would brighten the edges of later letters.
    glEnable(GL_BLEND);
    glBlendFunc(GL_ZERO, GL_ZERO);
    for (const std::size_t i : vChanged) {
        const SGRect sRect = DrawnRect(m_vStrings[i]);
        if (sRect.width < 1 || sRect.height < 1)
            continue;
        SetViewport(sRect.x, sRect.y, sRect.width, sRect.height);
        glUniform1i(rShader.nSampler0Location, UNIT_STRING_B);
        AttachTexture(nTextureA);
        glDrawArrays(m_nPrimitiveMode, SOLID_GLYPH * GLYPH_VERTICES, GLYPH_VERTICES);
        glUniform1i(rShader.nSampler0Location, UNIT_STRING_A);
        AttachTexture(nTextureB);
        glDrawArrays(m_nPrimitiveMode, SOLID_GLYPH * GLYPH_VERTICES, GLYPH_VERTICES);
    }
    glBlendFunc(GL_ONE, GL_ZERO);
    glDisable(GL_BLEND);
    glUniform1f(rShader.nMultLocation, 1.0f);
}

void CCGPUObjString::DrawStringsToTexture()
{
    for (const SGPUString& rString : m_vStrings) {
        if (rString.nDrawnW < 1 || rString.nDrawnH < 1)
            continue;
        const long long w = rString.nDrawnW;
        const long long h = rString.nDrawnH;
        SetViewport(rString.nDrawnX - w, rString.nDrawnY - h, 2 * w, 2 * h);
        glDrawArrays(m_nPrimitiveMode, 0, GLYPH_VERTICES);
    }
}
