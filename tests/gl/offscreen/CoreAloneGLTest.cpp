// A host that links the core alone: what draws with OpenGL ES comes when it is asked for, and not before.
#include "dewarp/Dewarper.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include <dlfcn.h>

namespace
{

bool IsLoaded(const char* pLibrary)
{
    void* const pHandle = dlopen(pLibrary, RTLD_NOW | RTLD_NOLOAD);
    if (pHandle != nullptr)
        dlclose(pHandle);
    return pHandle != nullptr;
}

} // namespace

// One case, for what was loaded stays.
TEST(CoreAlone, LoadsWhatDrawsWithOpenGLESWhenItIsAskedFor)
{
    for (const char* pLibrary : {"libEGL.so.1", "libGLESv2.so.2", "liblumor_dewarp.so.0"})
        ASSERT_FALSE(IsLoaded(pLibrary)) << pLibrary;
    const std::unique_ptr<CDewarper> pCPU = CreateDewarper(ENGINE_CPU, 32, 24);
    ASSERT_NE(pCPU, nullptr);
    EXPECT_EQ(pCPU->GetEngine(), ENGINE_CPU);
    EXPECT_FALSE(IsLoaded("libEGL.so.1"));

    const std::unique_ptr<CDewarper> pGL = CreateDewarper(ENGINE_GL, 32, 24);
    if (pGL == nullptr)
        std::_Exit(77); // no driver here
    EXPECT_TRUE(IsLoaded("libEGL.so.1"));
    EXPECT_EQ(pGL->GetEngine(), ENGINE_GL);
    std::vector<unsigned char> vGrey(32 * 32, 120);
    SImageProperties sImage;
    sImage.pPlane0 = vGrey.data();
    sImage.nWidth = sImage.nHeight = sImage.nStride = 32;
    sImage.nFormat = IMAGE_FORMAT_GRAY8;
    ASSERT_TRUE(pGL->SetTexture(&sImage, false, nullptr, 0));
    std::vector<unsigned char> vTarget(32 * 24 * 3 / 2);
    ASSERT_TRUE(pGL->DrawTo(vTarget.data(), 32, IMAGE_FORMAT_NV12));
    EXPECT_EQ(vTarget[32 * 12 + 16], 120);
    EXPECT_EQ(vTarget[32 * 30 + 16], 128);
}
