#include "dewarp/gl/OverlayImages.h"

#include "dewarp/gl/PlaneUpload.h"
#include "dewarp/gl/Textures.h"
#include "platform/Report.h"

#include <GLES3/gl31.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace
{

const std::size_t PIXEL_BYTES = 4;
const std::size_t MAX_WAITING_RECTS = 256; ///< of several sets together
const int MAX_OVERLAY_SIZE = 16384;        ///< as for frames and targets

std::size_t Offset(int x, int y, int nWidth)
{
    return (static_cast<std::size_t>(y) * static_cast<std::size_t>(nWidth) + static_cast<std::size_t>(x)) *
           PIXEL_BYTES;
}

/// The parts of the rectangles that lie inside the image; empty ones are left out.
std::vector<SGRect> ClipRects(const std::vector<SGRect>& vRects, int nWidth, int nHeight)
{
    std::vector<SGRect> vClipped;
    for (const SGRect& rRect : vRects) {
        const long long nLeft = std::max(rRect.x, 0);
        const long long nTop = std::max(rRect.y, 0);
        const long long nRight = std::min<long long>(static_cast<long long>(rRect.x) + rRect.width, nWidth);
        const long long nBottom =
            std::min<long long>(static_cast<long long>(rRect.y) + rRect.height, nHeight);
        if (nRight > nLeft && nBottom > nTop)
            vClipped.push_back({static_cast<int>(nLeft), static_cast<int>(nTop),
                                static_cast<int>(nRight - nLeft), static_cast<int>(nBottom - nTop)});
    }
    return vClipped;
}

void CopyRects(SGOverlay& rOverlay, const unsigned char* pData, const std::vector<SGRect>& vRects)
{
    for (const SGRect& rRect : vRects) {
        for (int y = rRect.y; y < rRect.y + rRect.height; ++y) {
            const std::size_t nOffset = Offset(rRect.x, y, rOverlay.nWidth);
            std::memcpy(rOverlay.pData + nOffset, pData + nOffset,
                        static_cast<std::size_t>(rRect.width) * PIXEL_BYTES);
        }
    }
}

/// Pixels that still wait for their upload must not be lost: a whole image stays whole, rectangles add up.
/// Too many of them, while no frame is drawn, become the whole image.
void AddDirtyRects(SGOverlay& rOverlay, const std::vector<SGRect>& vRects)
{
    std::vector<SGRect>& rDirty = rOverlay.vDirtyRects;
    const bool bWholePending = rOverlay.bDirty && rDirty.empty();
    if (!rOverlay.bDirty)
        rDirty.clear();
    if (bWholePending)
        return;
    if (!rDirty.empty() && rDirty.size() + vRects.size() > MAX_WAITING_RECTS)
        rDirty.clear();
    else
        rDirty.insert(rDirty.end(), vRects.begin(), vRects.end());
}

} // namespace

int COverlayImages::Set(SGOverlay& rOverlay, const unsigned char* pData, int nWidth, int nHeight,
                        unsigned int nTextureUnit, const std::vector<SGRect>& vRects)
{
    if (pData == nullptr) {
        Clear(rOverlay);
        return 1;
    }
    const bool bNew = rOverlay.pData == nullptr || rOverlay.nWidth != nWidth || rOverlay.nHeight != nHeight;
    const std::vector<SGRect> vClipped = ClipRects(vRects, nWidth, nHeight);
    if (bNew) {
        if (nWidth < 1 || nHeight < 1 || nWidth > MAX_OVERLAY_SIZE || nHeight > MAX_OVERLAY_SIZE) {
            m_rReport.Refuse("%s: overlay size %d x %d is outside 1 to %d", "SetOverlay", nWidth, nHeight,
                             MAX_OVERLAY_SIZE);
            return 0;
        }
        // What needs memory comes first: without it the overlay stays as it is.
        SGOverlay sNew;
        sNew.Initialize(nullptr, nWidth, nHeight);
        sNew.vDirtyRects.reserve(vClipped.size());
        Clear(rOverlay);
        std::swap(rOverlay.pData, sNew.pData);
        rOverlay.vDirtyRects.swap(sNew.vDirtyRects);
        rOverlay.nWidth = nWidth;
        rOverlay.nHeight = nHeight;
        rOverlay.bRealloc = true;
        rOverlay.nTextureUnit = nTextureUnit;
    }
    const std::size_t nBytes = Offset(0, nHeight, nWidth);
    if (vRects.empty()) {
        std::memcpy(rOverlay.pData, pData, nBytes);
        rOverlay.vDirtyRects.clear();
    } else {
        // What no rectangle names is transparent in a new overlay.
        if (bNew)
            std::memset(rOverlay.pData, 0, nBytes);
        if (vClipped.empty() && !bNew)
            return 1;
        AddDirtyRects(rOverlay, vClipped);
        CopyRects(rOverlay, pData, vClipped);
    }
    rOverlay.bDirty = true;
    return 1;
}

void COverlayImages::Clear(SGOverlay& rOverlay)
{
    Park(rOverlay);
    rOverlay.Reset();
}

bool COverlayImages::GiveInputToMasks(int nWidth, int nHeight)
{
    SGOverlay& rOverlay = sInputOverlay;
    if (rOverlay.bFromMasks && rOverlay.nWidth == nWidth && rOverlay.nHeight == nHeight)
        return rOverlay.nTexture == 0;
    rOverlay.Reset();
    rOverlay.bFromMasks = true;
    rOverlay.nWidth = nWidth;
    rOverlay.nHeight = nHeight;
    rOverlay.nTextureUnit = GLUnit(UNIT_INPUT_OVERLAY);
    return true;
}

void COverlayImages::PrepareMaskTexture()
{
    SGOverlay& rOverlay = sInputOverlay;
    if (rOverlay.nTexture != 0)
        return;
    m_rTextures.Generate(rOverlay.nTexture, rOverlay.nTextureUnit, GL_RGBA, rOverlay.nWidth, rOverlay.nHeight,
                         rOverlay.nWidth, nullptr);
    glActiveTexture(GL_TEXTURE0);
}

bool COverlayImages::ShowsMasks(int nWidth, int nHeight) const
{
    return sInputOverlay.bFromMasks && sInputOverlay.nTexture != 0 && sInputOverlay.nWidth == nWidth &&
           sInputOverlay.nHeight == nHeight;
}

/// Keeps a texture's name for the GL thread: the host's thread has no context.
void COverlayImages::Park(SGOverlay& rOverlay)
{
    if (rOverlay.nTexture == 0)
        return;
    m_vParked.push_back(rOverlay.nTexture);
    rOverlay.nTexture = 0;
}

void COverlayImages::DeleteParked()
{
    if (m_vParked.empty())
        return;
    glDeleteTextures(static_cast<GLsizei>(m_vParked.size()), m_vParked.data());
    m_vParked.clear();
}

/// An overlay without pixels of its own was painted from masks, and will be again.
void COverlayImages::Release(SGOverlay& rOverlay)
{
    if (rOverlay.pData == nullptr) {
        rOverlay.Reset();
        return;
    }
    CTextures::Delete(rOverlay.nTexture);
    rOverlay.vDirtyRects.clear();
    rOverlay.bRealloc = true;
    rOverlay.bDirty = true;
}

void COverlayImages::Free()
{
    Release(sInputOverlay);
    Release(sOutputOverlay);
    DeleteParked();
}

void COverlayImages::Forget()
{
    sInputOverlay.nTexture = 0;
    sOutputOverlay.nTexture = 0;
    m_vParked.clear();
}

/// Done before a program is made that samples them: without their texture they would show as black. Which
/// driver it is, the host's thread could not know.
bool COverlayImages::DropOversized()
{
    bool bInput = false;
    for (SGOverlay* pOverlay : {&sInputOverlay, &sOutputOverlay}) {
        if (!pOverlay->bRealloc || m_rTextures.Fits(pOverlay->nWidth, pOverlay->nHeight))
            continue;
        m_rReport.Refuse("%s: the driver has no texture of %d x %d; no overlay", "DrawGLScene",
                         pOverlay->nWidth, pOverlay->nHeight);
        pOverlay->Reset();
        bInput = bInput || pOverlay == &sInputOverlay;
    }
    return bInput;
}

void COverlayImages::Upload()
{
    UploadOne(sInputOverlay);
    UploadOne(sOutputOverlay);
}

void COverlayImages::UploadOne(SGOverlay& rOverlay)
{
    if (!rOverlay.bDirty)
        return;
    const int nWidth = rOverlay.nWidth;
    const int nHeight = rOverlay.nHeight;
    if (rOverlay.pData != nullptr && nWidth > 0 && nHeight > 0) {
        glPixelStorei(GL_UNPACK_ALIGNMENT, UnpackAlignment(nWidth * 4));
        if (rOverlay.bRealloc) {
            m_rTextures.Generate(rOverlay.nTexture, rOverlay.nTextureUnit, GL_RGBA, nWidth, nHeight, nWidth,
                                 rOverlay.pData);
        } else {
            glActiveTexture(rOverlay.nTextureUnit);
            glPixelStorei(GL_UNPACK_ROW_LENGTH, nWidth);
            if (rOverlay.vDirtyRects.empty()) {
                m_rTextures.Update(rOverlay.nTexture, GL_RGBA, nWidth, nHeight, nWidth, rOverlay.pData);
            } else {
                glBindTexture(GL_TEXTURE_2D, rOverlay.nTexture);
                for (const SGRect& rRect : rOverlay.vDirtyRects)
                    glTexSubImage2D(GL_TEXTURE_2D, 0, rRect.x, rRect.y, rRect.width, rRect.height, GL_RGBA,
                                    GL_UNSIGNED_BYTE, rOverlay.pData + Offset(rRect.x, rRect.y, nWidth));
            }
        }
    }
    glActiveTexture(GL_TEXTURE0);
    rOverlay.bRealloc = false;
    rOverlay.bDirty = false;
}

void COverlayImages::Bind()
{
    for (const SGOverlay* pOverlay : {&sInputOverlay, &sOutputOverlay}) {
        if (pOverlay->nWidth < 1 || pOverlay->nHeight < 1)
            continue;
        glActiveTexture(pOverlay->nTextureUnit);
        glBindTexture(GL_TEXTURE_2D, pOverlay->nTexture);
        m_rTextures.SetInterpolation();
        glActiveTexture(GL_TEXTURE0);
    }
}

void COverlayImages::Unbind()
{
    for (const SGOverlay* pOverlay : {&sInputOverlay, &sOutputOverlay}) {
        if (pOverlay->nWidth < 1 || pOverlay->nHeight < 1)
            continue;
        glActiveTexture(pOverlay->nTextureUnit);
        glBindTexture(GL_TEXTURE_2D, 0);
        glActiveTexture(GL_TEXTURE0);
    }
}
