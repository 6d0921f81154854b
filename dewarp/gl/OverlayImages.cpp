#include "dewarp/gl/OverlayImages.h"

#include "dewarp/gl/PlaneUpload.h"
#include "dewarp/gl/Textures.h"
#include "dewarp/overlays/OverlayPixels.h"
#include "platform/Report.h"

#include <GLES3/gl31.h>

#include <utility>

namespace
{

const std::size_t MAX_WAITING_RECTS = 256; ///< of several sets together

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
    const std::vector<SGRect> vClipped = ClipToImage(vRects, nWidth, nHeight);
    if (bNew) {
        if (!IsOverlaySizeUsable(nWidth, nHeight, m_rReport))
            return 0;
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
    if (vRects.empty())
        rOverlay.vDirtyRects.clear();
    else if (vClipped.empty() && !bNew)
        return 1;
    else
        AddDirtyRects(rOverlay, vClipped);
    TakeOverlayPixels(rOverlay.pData, bNew, pData, nWidth, nHeight, vRects.empty() ? nullptr : &vClipped);
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
                                    GL_UNSIGNED_BYTE,
                                    rOverlay.pData + OverlayOffset(rRect.x, rRect.y, nWidth));
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
