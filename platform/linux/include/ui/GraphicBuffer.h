/// \file
/// Android's graphic buffer for platforms without one: the same names, in plain memory. Drivers see it
/// through the library's own eglCreateImageKHR only, which copies: pictures written between lock and unlock
/// go to the driver when the next frame is bound, drawn ones come back when the frame's fence is waited for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct native_handle
{
    int version; ///< sizeof(native_handle_t)
    int numFds;
    int numInts;
    int data[1]; ///< file descriptors, then integers; here one integer, the buffer's number
} native_handle_t;

typedef const native_handle_t* buffer_handle_t;

typedef struct android_native_base_t
{
    int magic; ///< "_bfr"
    int version;
    void* reserved[4];
    void (*incRef)(struct android_native_base_t* base);
    void (*decRef)(struct android_native_base_t* base);
} android_native_base_t;

typedef struct ANativeWindowBuffer
{
    android_native_base_t common;
    int width;
    int height;
    int stride; ///< pixels
    int format;
    int usage_deprecated;
    uintptr_t layerCount;
    void* reserved[1];
    buffer_handle_t handle;
    uint64_t usage;
} ANativeWindowBuffer;

/// Where the channels of a locked YUV buffer lie.
struct android_ycbcr
{
    void* y;
    void* cb;
    void* cr;
    size_t ystride;     ///< bytes from row to row
    size_t cstride;     ///< the same of cb and cr
    size_t chroma_step; ///< bytes from one chroma value to the next
    uint32_t reserved[8];
};

enum
{
    HAL_PIXEL_FORMAT_RGBA_8888 = 1,
    HAL_PIXEL_FORMAT_YCRCB_420_SP = 17,  ///< NV21
    HAL_PIXEL_FORMAT_YCBCR_420_888 = 35, ///< here always NV12
};

#ifdef __cplusplus
}
#endif

namespace android
{

using PixelFormat = int32_t;
using status_t = int32_t;

struct SLinuxBuffer;

/// Rows of nStride pixels, a multiple of 64; YUV: luma, then interleaved chroma at half width and height.
/// Units: pixels. Owns: its memory, and copies of it that frames in flight share.
/// Thread: any, serialised by the host. Touches no GL.
/// Fails: with a result below 0; a buffer that could not be made says so in initCheck.
/// Not counted: hold it with new and delete, std::unique_ptr, or as a variable.
class __attribute__((visibility("default"))) GraphicBuffer
{
public:
    enum
    {
        USAGE_SW_READ_NEVER = 0x00,
        USAGE_SW_READ_RARELY = 0x02,
        USAGE_SW_READ_OFTEN = 0x03,
        USAGE_SW_WRITE_NEVER = 0x00,
        USAGE_SW_WRITE_RARELY = 0x20,
        USAGE_SW_WRITE_OFTEN = 0x30,
        USAGE_HW_TEXTURE = 0x100,
        USAGE_HW_RENDER = 0x200,
    };

    GraphicBuffer(uint32_t nWidth, uint32_t nHeight, PixelFormat nFormat, uint32_t nLayerCount,
                  uint64_t nUsage, const std::string& rRequestor = "<Unknown>");
    ~GraphicBuffer();
    GraphicBuffer(const GraphicBuffer&) = delete;
    GraphicBuffer& operator=(const GraphicBuffer&) = delete;

    /// 0, or below 0 for an impossible size or a format that is not among the three above.
    status_t initCheck() const;
    uint32_t getWidth() const;
    uint32_t getHeight() const;
    uint32_t getStride() const;
    uint64_t getUsage() const;
    PixelFormat getPixelFormat() const;
    ANativeWindowBuffer* getNativeBuffer() const;

    /// Gives the memory to the CPU: the first row, of luma where there is any. One lock at a time.
    status_t lock(uint32_t nUsage, void** ppAddress);
    status_t lockYCbCr(uint32_t nUsage, android_ycbcr* pLayout);
    /// Takes it back. After a lock for writing the contents count as new.
    status_t unlock();

private:
    std::unique_ptr<SLinuxBuffer> m_pBuffer;
};

} // namespace android
