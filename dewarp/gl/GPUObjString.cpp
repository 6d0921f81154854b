#include "dewarp/gl/GPUObjString.h"

#include "dewarp/gl/Textures.h"
#include "dewarp/gl/UniformColour.h"
#include "dewarp/overlays/StringList.h"

#include <algorithm>
#include <numeric>

namespace
{

const int GLYPH_VERTICES = 6;
const unsigned int FIRST_CODE = 32;
const unsigned int LAST_CODE = 127;
const int SOLID_GLYPH = 95;
const int CELL_WIDTH = 38;
const int CELL_HEIGHT = 64;
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

/// Where an extent of nLength starts: anchor against its reference, less what the alignment takes.
long long Start(int nAnchor, int nReference, int nAlign, int nViewport, long long nLength)
{
    long long n = nAnchor;
    if (nReference == 2)
        n += nViewport;
    else if (nReference == 1)
        n += nViewport / 2;
    if (nAlign == 2)
        n -= nLength;
    else if (nAlign == 1)
        n -= nLength / 2;
    return n;
}

/// Glyph of a character; -1 when the font has none.
int Glyph(char cCharacter)
{
    const unsigned int nCode = static_cast<unsigned char>(cCharacter);
    return nCode < FIRST_CODE || nCode > LAST_CODE ? -1 : static_cast<int>(nCode - FIRST_CODE);
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
    SetDrawnRect(sString, {});
    const int h = sString.nHeight;
    if (h < 1 || h > MOST_TEXT_HEIGHT || sString.strText.empty())
        return;
    const int w = h * CELL_WIDTH / CELL_HEIGHT;
    const int vw = pMatrices->nViewportWidth;
    const int vh = pMatrices->nViewportHeight;
    const long long nLength = static_cast<long long>(sString.strText.size()) * w;
    const long long y = Start(sString.nY, sString.nVRef, sString.nVAlign, vh, h);
    const long long x = Start(sString.nX, sString.nHRef, sString.nHAlign, vw, nLength);
    const long long nRow = bFlipY ? vh - h - y : y;
    if (nLength < 1 || x >= vw || x + nLength <= 0 || nRow >= vh || nRow + h <= 0)
        return;

    glUniform1i(pShader->nSampler0Location, UNIT_STRING_A);
    AttachTexture(nDrawTexture);
    SetTextColor(*pShader, sString.nColor);
    long long nX = x;
    for (const char cCharacter : sString.strText) {
        const int nGlyph = Glyph(cCharacter);
        if (nGlyph >= 0 && nX < vw && nX + w > 0) {
            glViewport(static_cast<int>(nX), static_cast<int>(nRow), w, h);
            glDrawArrays(m_nPrimitiveMode, nGlyph * GLYPH_VERTICES, GLYPH_VERTICES);
        }
        nX += w;
    }
    // What lies far outside the target needs no memory of its exact place.
    const long long nLeft = std::max<long long>(x, -(1LL << 28));
    const long long nRight = std::min<long long>(x + nLength, 1LL << 28);
    SetDrawnRect(sString,
                 {static_cast<int>(nLeft), static_cast<int>(nRow), static_cast<int>(nRight - nLeft), h});
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
    RecomputeOverlapGroups();
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

void CCGPUObjString::RecomputeOverlapGroups()
{
    // Strings that cover nothing overlap nothing: however many there are, they take no time.
    std::vector<SGPUString*> vVisible;
    for (SGPUString& rString : m_vStrings) {
        rString.nOverlapGroup = 0;
        if (rString.nDrawnW > 0 && rString.nDrawnH > 0)
            vVisible.push_back(&rString);
    }
    int nGroups = 0;
    for (std::size_t i = 0; i < vVisible.size(); ++i) {
        for (std::size_t j = i + 1; j < vVisible.size(); ++j) {
            if (!DrawnRect(*vVisible[i]).Intersect(DrawnRect(*vVisible[j])))
                continue;
            int& rFirst = vVisible[i]->nOverlapGroup;
            int& rSecond = vVisible[j]->nOverlapGroup;
            if (rFirst == 0)
                rFirst = rSecond != 0 ? rSecond : ++nGroups;
            if (rSecond != 0 && rSecond != rFirst) {
                // Two groups meet: they become one.
                const int nOld = rSecond;
                for (SGPUString* pString : vVisible) {
                    if (pString->nOverlapGroup == nOld)
                        pString->nOverlapGroup = rFirst;
                }
            }
            rSecond = rFirst;
        }
    }
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
