/// \file
/// The overlay images: taken from the host, kept, brought into textures.
#pragma once

#include "dewarp/gl/SGOverlay.h"

#include <vector>

class CReport;
class CTextures;

/// Units: pixels. Owns: both overlays, and textures that wait to be deleted on the GL thread.
/// Thread: Set, Clear and the questions any, serialised by the host; everything else the GL thread, context
/// current. Fails: by results; Set throws for lack of memory.
class COverlayImages
{
public:
    COverlayImages(CTextures& rTextures, CReport& rReport) : m_rTextures(rTextures), m_rReport(rReport) {}
    COverlayImages(const COverlayImages&) = delete;
    COverlayImages& operator=(const COverlayImages&) = delete;

    /// Takes an image, or what the rectangles name of it; null removes it. 1 success, 0 refused.
    int Set(SGOverlay& rOverlay, const unsigned char* pData, int nWidth, int nHeight,
            unsigned int nTextureUnit, const std::vector<SGRect>& vRects);
    /// Removes an overlay; its texture is deleted with the next frame.
    void Clear(SGOverlay& rOverlay);
    /// Gives the input overlay's place to the masks of a frame of that size. True when what it held is gone
    /// and all masks are to be painted.
    bool GiveInputToMasks(int nWidth, int nHeight);
    /// Makes the texture that the masks are painted into, if there is none.
    void PrepareMaskTexture();
    /// True when the input overlay shows the masks of a frame of that size.
    bool ShowsMasks(int nWidth, int nHeight) const;

    /// Takes away new overlays that this driver has no texture for. True when the input overlay was one.
    bool DropOversized();
    void Upload();
    void Bind();
    void Unbind();
    /// Lets go of both textures so that the next frame makes them anew from the pixels.
    void Free();
    void Forget();
    void DeleteParked();
    /// An overlay that can be shown: it has pixels of the host.
    static bool HasImage(const SGOverlay& rOverlay) { return rOverlay.pData != nullptr; }

    SGOverlay sInputOverlay;
    SGOverlay sOutputOverlay;

private:
    void UploadOne(SGOverlay& rOverlay);
    void Park(SGOverlay& rOverlay);
    void Release(SGOverlay& rOverlay);

    CTextures& m_rTextures;
    CReport& m_rReport;
    std::vector<unsigned int> m_vParked; ///< to be deleted on the GL thread
};
