/// \file
/// A framebuffer with one colour buffer of 4 bytes a pixel.
#pragma once

/// Units: pixels. Owns: two GL names. Thread: GL thread, context current.
/// Fails: Create returns false when the driver cannot make a buffer of that size.
class COffscreenTarget
{
public:
    /// Makes the buffer anew if the size differs from the one there is. Leaves the framebuffer bound then.
    bool Create(int nWidth, int nHeight);
    void Free();
    void Bind() const;

private:
    unsigned int m_nFrameBuffer = 0;
    unsigned int m_nColorBuffer = 0;
    int m_nWidth = 0;
    int m_nHeight = 0;
};
