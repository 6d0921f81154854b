// The graphic buffer, as far as the library and its hosts' frame loop use it. It is counted: only its last
// holder destroys it.
#pragma once

#include <nativebase/nativebase.h>

#include <cstdint>
#include <string>

namespace android
{

typedef std::int32_t PixelFormat;
typedef std::int32_t status_t;

class GraphicBuffer : public ANativeWindowBuffer
{
public:
    GraphicBuffer(std::uint32_t inWidth, std::uint32_t inHeight, PixelFormat inFormat,
                  std::uint32_t inLayerCount, std::uint64_t inUsage, std::string requestorName = "<Unknown>");

    status_t initCheck() const;
    std::uint32_t getWidth() const { return static_cast<std::uint32_t>(width); }
    std::uint32_t getHeight() const { return static_cast<std::uint32_t>(height); }
    std::uint32_t getStride() const { return static_cast<std::uint32_t>(stride); }
    PixelFormat getPixelFormat() const { return format; }
    ANativeWindowBuffer* getNativeBuffer() const;

private:
    ~GraphicBuffer();
};

} // namespace android
