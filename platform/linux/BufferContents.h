/// \file
/// What a graphic buffer holds.
#pragma once

#include <ui/GraphicBuffer.h>

#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

/// The planes are what the CPU sees. The driver sees texels, (Y, U, V, 255) for YUV: they are made on the
/// way, a few rows at a time, so that they stay in the processor's cache. Units: pixels, bytes. Owns: planes.
/// Thread: any; a mutex keeps the CPU's side and the GL thread's apart.
/// Fails: never, once made; all memory is taken then.
class CBufferContents
{
public:
    /// True for sizes and formats that can be held.
    static bool IsPossible(uint32_t nWidth, uint32_t nHeight, int nFormat);
    CBufferContents(int nWidth, int nHeight, int nFormat);

    int Width() const { return m_nWidth; }
    int Height() const { return m_nHeight; }
    int Stride() const { return m_nStride; }
    int Format() const { return m_nFormat; }
    bool IsYUV() const { return m_nFormat != HAL_PIXEL_FORMAT_RGBA_8888; }

    /// Hands out the planes; null while they are handed out already.
    unsigned char* Lock(bool bWrite);
    /// After a lock for writing the contents count as new. False without a lock.
    bool Unlock();
    /// Interleaved chroma within the planes.
    unsigned char* Chroma() { return m_vPlanes.data() + LumaSize(); }

    /// Puts the contents into the bound 2D texture, unless it holds them already (nHeld, which is brought up
    /// to date). Unpack state is changed. GL thread.
    void Upload(unsigned long long& nHeld);
    /// Takes the contents from the framebuffer bound for reading; nHeld as above. Pack state is changed. GL
    /// thread.
    void ReadBack(unsigned long long& nHeld);

private:
    std::size_t LumaSize() const;
    unsigned char* LumaRow(int y);
    unsigned char* ChromaRow(int y);
    unsigned char* StripRow(int y);
    void UploadStrip(int nFirstRow, int nRows);
    void ReadStrip(int nFirstRow, int nRows);

    const int m_nWidth;
    const int m_nHeight;
    const int m_nStride;
    const int m_nFormat;
    std::mutex m_oMutex;
    std::vector<unsigned char> m_vPlanes;
    std::vector<unsigned char> m_vStrip; ///< rows of texels on their way
    bool m_bLocked = false;
    bool m_bLockedForWriting = false;
    unsigned long long m_nVersion = 0; ///< of the contents; 0: nothing was put in yet
};

namespace android
{

/// The native buffer, and what belongs to it.
struct SLinuxBuffer
{
    ANativeWindowBuffer sNative = {};
    native_handle_t sHandle = {};
    std::shared_ptr<CBufferContents> pContents; ///< null: the buffer could not be made
    status_t nStatus = 0;
};

} // namespace android

/// The contents behind a native buffer of this platform; null for anything else.
std::shared_ptr<CBufferContents> ContentsOf(const void* pNativeBuffer);
