#include "platform/DriverTraits.h"

#include <gtest/gtest.h>

// With a context: tests/gl/platform/DriverTraitsGLTest.cpp.
TEST(DriverTraits, WithoutAContextTheyAreAFreshRecord)
{
    const SDriverTraits sTraits = QueryDriverTraits();
    EXPECT_FALSE(sTraits.bKnown);
    EXPECT_TRUE(sTraits.bYUVTarget);
    EXPECT_TRUE(sTraits.bYUVOutput);
    EXPECT_FALSE(sTraits.bPreferHighp);
}

TEST(IsHardwareRenderer, SoftwareRasterisersAreNone)
{
    for (const char* pName :
         {"llvmpipe (LLVM 15.0.6, 256 bits)", "softpipe", "Software Rasterizer", "swrast",
          "SWR (LLVM 10.0, 256 bits)", "zink Vulkan 1.3(llvmpipe (LLVM 15.0.6, 256 bits) (MESA_LLVMPIPE))",
          "virgl (LLVMPIPE (LLVM 11.0.1))",
          "ANGLE (Google, Vulkan 1.3.0 (SwiftShader Device (Subzero) (0x0000C0DE)), SwiftShader driver)",
          "Android Emulator OpenGL ES Translator (Google SwiftShader)", "Google SwiftShader",
          "D3D12 (Microsoft Basic Render Driver)", "Apple Software Renderer", ""})
        EXPECT_FALSE(IsHardwareRenderer(pName)) << pName;
    EXPECT_FALSE(IsHardwareRenderer(nullptr));
}

TEST(IsHardwareRenderer, EveryOtherNameIs)
{
    for (const char* pName :
         {"Mesa Intel(R) UHD Graphics 620 (KBL GT2)", "NVIDIA H200/PCIe/SSE2",
          "NVIDIA Tegra Orin (nvgpu)/integrated", "AMD Radeon RX 6800 (navi21, LLVM 15.0.6, DRM 3.49)",
          "Mali-G52", "Adreno (TM) 630", "V3D 4.2", "PowerVR Rogue GE8320", "Vivante GC7000L",
          "SVGA3D; build: RELEASE;  LLVM;", "Apple M1"})
        EXPECT_TRUE(IsHardwareRenderer(pName)) << pName;
}
