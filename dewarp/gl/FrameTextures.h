/// \file
/// The framebuffer of the passes, and the textures that a view goes through.
#pragma once

class CDriverWatch;
class CTextures;

/// Owns: one framebuffer, two textures. Units: pixels. Thread: GL thread, context current. Fails: never here;
/// the watch tells of missing memory.
class CFrameTextures
{
public:
    CFrameTextures(CTextures& rTextures, CDriverWatch& rWatch) : m_rTextures(rTextures), m_rWatch(rWatch) {}
    CFrameTextures(const CFrameTextures&) = delete;
    CFrameTextures& operator=(const CFrameTextures&) = delete;

    /// Makes the framebuffer if there is none, and binds it.
    void BindFrameBuffer();
    /// Attaches a texture to the framebuffer, which is bound; the first time it is asked whether it is
    /// complete.
    void Attach(unsigned int nTexture);
    /// Binds the framebuffer with the view's texture as its target, both textures at that size.
    void BindViewTexture(int nWidth, int nHeight);
    void Free();
    void Forget();

    unsigned int nFrameBuffer = 0;
    unsigned int nFrameTexture = 0;  ///< unit 6: the view, before strings and output overlay
    unsigned int nFrameTexture2 = 0; ///< unit 9: its copy

private:
    CTextures& m_rTextures;
    CDriverWatch& m_rWatch;
    bool m_bAsked = false; ///< whether the framebuffer is complete
};
