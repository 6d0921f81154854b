#include <ui/GraphicBuffer.h>

#include <cstring>
#include <gtest/gtest.h>
#include <thread>

using android::GraphicBuffer;

namespace
{

const uint64_t USAGE = GraphicBuffer::USAGE_SW_READ_OFTEN | GraphicBuffer::USAGE_SW_WRITE_OFTEN;

} // namespace

TEST(GraphicBuffer, TellsWhatItIs)
{
    GraphicBuffer oBuffer(1504, 100, HAL_PIXEL_FORMAT_YCBCR_420_888, 1, USAGE, "test");
    EXPECT_EQ(oBuffer.initCheck(), 0);
    EXPECT_EQ(oBuffer.getWidth(), 1504u);
    EXPECT_EQ(oBuffer.getHeight(), 100u);
    EXPECT_EQ(oBuffer.getStride(), 1536u);
    EXPECT_EQ(oBuffer.getPixelFormat(), HAL_PIXEL_FORMAT_YCBCR_420_888);
    EXPECT_EQ(oBuffer.getUsage(), USAGE);
    const ANativeWindowBuffer& rNative = *oBuffer.getNativeBuffer();
    EXPECT_EQ(rNative.common.magic, '_' << 24 | 'b' << 16 | 'f' << 8 | 'r');
    EXPECT_EQ(rNative.common.version, static_cast<int>(sizeof(ANativeWindowBuffer)));
    EXPECT_EQ(rNative.width, 1504);
    EXPECT_EQ(rNative.height, 100);
    EXPECT_EQ(rNative.stride, 1536);
    EXPECT_EQ(rNative.format, HAL_PIXEL_FORMAT_YCBCR_420_888);
    ASSERT_NE(rNative.handle, nullptr);
    EXPECT_EQ(rNative.handle->version, static_cast<int>(sizeof(native_handle_t)));
    EXPECT_EQ(rNative.handle->numFds, 0);
    EXPECT_EQ(rNative.handle->numInts, 1);
    GraphicBuffer oOther(16, 16, HAL_PIXEL_FORMAT_RGBA_8888, 1, USAGE);
    EXPECT_NE(oOther.getNativeBuffer()->handle->data[0], rNative.handle->data[0]);
}

TEST(GraphicBuffer, ImpossibleOnesSaySo)
{
    struct SCase
    {
        uint32_t nWidth;
        uint32_t nHeight;
        int nFormat;
        uint32_t nLayers;
    };
    const SCase aCases[] = {{0, 16, HAL_PIXEL_FORMAT_RGBA_8888, 1},
                            {16, 0, HAL_PIXEL_FORMAT_RGBA_8888, 1},
                            {16385, 16, HAL_PIXEL_FORMAT_RGBA_8888, 1},
                            {0xFFFFFFFF, 0xFFFFFFFF, HAL_PIXEL_FORMAT_RGBA_8888, 1},
                            {16, 16, 4711, 1},
                            {16, 16, HAL_PIXEL_FORMAT_RGBA_8888, 2}};
    for (const SCase& rCase : aCases) {
        GraphicBuffer oBuffer(rCase.nWidth, rCase.nHeight, rCase.nFormat, rCase.nLayers, USAGE);
        EXPECT_LT(oBuffer.initCheck(), 0);
        EXPECT_NE(oBuffer.getNativeBuffer(), nullptr);
        void* pMemory = nullptr;
        android_ycbcr sLayout = {};
        EXPECT_LT(oBuffer.lock(USAGE, &pMemory), 0);
        EXPECT_LT(oBuffer.lockYCbCr(USAGE, &sLayout), 0);
        EXPECT_LT(oBuffer.unlock(), 0);
    }
}

TEST(GraphicBuffer, IsLockedOnceAtATime)
{
    GraphicBuffer oBuffer(16, 16, HAL_PIXEL_FORMAT_RGBA_8888, 1, USAGE);
    void* pMemory = nullptr;
    EXPECT_LT(oBuffer.unlock(), 0);
    EXPECT_LT(oBuffer.lock(USAGE, nullptr), 0);
    EXPECT_EQ(oBuffer.lock(USAGE, &pMemory), 0);
    EXPECT_NE(pMemory, nullptr);
    EXPECT_LT(oBuffer.lock(USAGE, &pMemory), 0);
    EXPECT_EQ(oBuffer.unlock(), 0);
    EXPECT_EQ(oBuffer.lock(USAGE, &pMemory), 0);
    EXPECT_EQ(oBuffer.unlock(), 0);
    android_ycbcr sLayout = {};
    EXPECT_LT(oBuffer.lockYCbCr(USAGE, &sLayout), 0) << "plain colours have no such layout";
}

TEST(GraphicBuffer, LayoutsAreThoseOfTheirFormats)
{
    for (const int nFormat : {HAL_PIXEL_FORMAT_YCBCR_420_888, HAL_PIXEL_FORMAT_YCRCB_420_SP}) {
        GraphicBuffer oBuffer(33, 17, nFormat, 1, USAGE);
        android_ycbcr sLayout = {};
        ASSERT_EQ(oBuffer.lockYCbCr(USAGE, &sLayout), 0);
        auto* const pY = static_cast<unsigned char*>(sLayout.y);
        EXPECT_EQ(sLayout.ystride, 64u);
        EXPECT_EQ(sLayout.cstride, 64u);
        EXPECT_EQ(sLayout.chroma_step, 2u);
        const bool bVFirst = nFormat == HAL_PIXEL_FORMAT_YCRCB_420_SP;
        EXPECT_EQ(sLayout.cb, pY + 17 * 64 + (bVFirst ? 1 : 0));
        EXPECT_EQ(sLayout.cr, pY + 17 * 64 + (bVFirst ? 0 : 1));
        // All of it may be written: nine rows of chroma.
        std::memset(pY, 1, (17 + 9) * 64);
        EXPECT_EQ(oBuffer.unlock(), 0);
    }
}

TEST(GraphicBuffer, KeepsWhatWasWritten)
{
    for (const int nFormat : {HAL_PIXEL_FORMAT_YCBCR_420_888, HAL_PIXEL_FORMAT_RGBA_8888}) {
        GraphicBuffer oBuffer(20, 10, nFormat, 1, USAGE);
        void* pMemory = nullptr;
        ASSERT_EQ(oBuffer.lock(GraphicBuffer::USAGE_SW_WRITE_RARELY, &pMemory), 0);
        const std::size_t nBytes = nFormat == HAL_PIXEL_FORMAT_RGBA_8888 ? 64 * 4 * 10 : 64 * 15;
        for (std::size_t i = 0; i < nBytes; ++i)
            static_cast<unsigned char*>(pMemory)[i] = static_cast<unsigned char>(i * 7);
        ASSERT_EQ(oBuffer.unlock(), 0);
        std::thread oThread([&] {
            void* pAgain = nullptr;
            ASSERT_EQ(oBuffer.lock(GraphicBuffer::USAGE_SW_READ_RARELY, &pAgain), 0);
            for (std::size_t i = 0; i < nBytes; ++i)
                ASSERT_EQ(static_cast<unsigned char*>(pAgain)[i], static_cast<unsigned char>(i * 7));
            oBuffer.unlock();
        });
        oThread.join();
    }
}
