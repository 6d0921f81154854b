/// \file
/// A framebuffer with one colour buffer of 4 bytes a pixel.
#pragma once

/// The buffer holds BGRA where the driver can draw into that, for that is what read-back delivers; elsewhere
/// RGBA.
/// Units: pixels. Owns: two GL names. Thread: GL thread, context current.
/// Fails: Create returns false when the driver cannot make a buffer of that size.
class COffscreenTarget
{
public:
    /// Makes the buffer anew if the size differs from the one there is. Leaves the framebuffer bound then.
    bool Create(int nWidth, int nHeight);
    /// True when there is a buffer of that size.
    bool Has(int nWidth, int nHeight) const
    {
        return m_nFrameBuffer != 0 && nWidth == m_nWidth && nHeight == m_nHeight;
    }
    void Free();
    /// Forgets the names without touching GL: their context is gone.
    void Forget();
    void Bind() const;

private:
    bool AttachTexture(int nWidth, int nHeight);
    bool AttachRenderbuffer(int nWidth, int nHeight);

    unsigned int m_nFrameBuffer = 0;
    unsigned int m_nTexture = 0;
    unsigned int m_nRenderbuffer = 0;
    int m_nWidth = 0;
    int m_nHeight = 0;
};
