// The native window buffer, as far as the library reads it.
#pragma once

#include <cutils/native_handle.h>

#include <cstdint>

typedef struct android_native_base_t
{
    int magic;
    int version;
    void* reserved[4];
    void (*incRef)(struct android_native_base_t* base);
    void (*decRef)(struct android_native_base_t* base);
} android_native_base_t;

typedef struct ANativeWindowBuffer
{
    struct android_native_base_t common;
    int width;
    int height;
    int stride;
    int format;
    int usage_deprecated;
    std::uintptr_t layerCount;
    void* reserved[1];
    const native_handle_t* handle;
    std::uint64_t usage;
    void* reserved_proc[8 - (sizeof(std::uint64_t) / sizeof(void*))];
} ANativeWindowBuffer_t;
