#include "Frame.h"

#include "RawFrame.h"
#include "Session.h"
#include "TestPictures.h"
#include "ToolError.h"

#include <gtest/gtest.h>

namespace
{

SRawLayout MakeLayout(int nFormat, int nWidth, int nHeight, int nStride)
{
    return {nFormat, {nWidth, nHeight}, nStride};
}

} // namespace

TEST(Frame, ChromaRowsAreHalfTheFirstRow)
{
    SFrame sFrame;
    sFrame.Allocate(IMAGE_FORMAT_YUV420P, 101, 51);
    EXPECT_EQ(sFrame.nStride, 102);
    EXPECT_EQ(sFrame.avPlanes[0].size(), 102u * 51u);
    EXPECT_EQ(sFrame.avPlanes[1].size(), 51u * 26u);
    EXPECT_EQ(sFrame.avPlanes[2].size(), 51u * 26u);
    sFrame.Allocate(IMAGE_FORMAT_NV12, 101, 51);
    EXPECT_EQ(sFrame.avPlanes[1].size(), 102u * 26u);
    const SImageProperties sImage = sFrame.Describe();
    EXPECT_EQ(sImage.pPlane1, sFrame.avPlanes[1].data());
    EXPECT_EQ(sImage.pPlane2, nullptr);
}

TEST(RawFrame, LengthsCountEveryPlane)
{
    EXPECT_EQ(GetRawFrameBytes(MakeLayout(IMAGE_FORMAT_RGB24, 10, 4, 30)), 120u);
    EXPECT_EQ(GetRawFrameBytes(MakeLayout(IMAGE_FORMAT_NV12, 10, 4, 10)), 60u);
    EXPECT_EQ(GetRawFrameBytes(MakeLayout(IMAGE_FORMAT_YUV420P, 10, 4, 16)), 96u);
    // Odd sizes: chroma covers the last column and row.
    EXPECT_EQ(GetRawFrameBytes(MakeLayout(IMAGE_FORMAT_YUV420P, 5, 3, 5)), 15u + 2u * 3u * 2u);
    EXPECT_EQ(GetRawFrameBytes(MakeLayout(IMAGE_FORMAT_NV21, 5, 3, 5)), 15u + 6u * 2u);
    EXPECT_EQ(GetRawFrameBytes(MakeLayout(IMAGE_FORMAT_RGBA32, 16384, 16384, 131072)), 2147483648u);
}

TEST(RawFrame, PlanesAreReadRowByRow)
{
    const CTempFolder oFolder;
    const std::string strPath = oFolder.Path("frame");
    const SRGBPicture sPicture = MakeGradient(7, 5);
    for (const int nStride : {7, 8, 11}) {
        SaveBytes(strPath, MakeRaw(sPicture, "yuv420p", nStride));
        const SFrame sFrame = ReadRawFrame(strPath, MakeLayout(IMAGE_FORMAT_YUV420P, 7, 5, nStride));
        const TBytes vFile = LoadBytes(strPath);
        EXPECT_EQ(sFrame.nStride % 2, 0);
        for (int y = 0; y < 5; y++)
            for (int x = 0; x < 7; x++)
                ASSERT_EQ(sFrame.avPlanes[0][static_cast<std::size_t>(y * sFrame.nStride + x)],
                          vFile[static_cast<std::size_t>(y * nStride + x)]);
        const int nChromaStride = (nStride + 1) / 2;
        for (int i = 0; i < 2; i++)
            for (int y = 0; y < 3; y++)
                for (int x = 0; x < 4; x++)
                    ASSERT_EQ(sFrame.avPlanes[1 + i][static_cast<std::size_t>(y * sFrame.nStride / 2 + x)],
                              vFile[static_cast<std::size_t>(nStride * 5 + (i * 3 + y) * nChromaStride + x)]);
    }
}

TEST(RawFrame, AWrongLengthIsToldWithBothNumbers)
{
    const CTempFolder oFolder;
    const std::string strPath = oFolder.Path("frame");
    for (const std::size_t nBytes : {std::size_t(0), std::size_t(59), std::size_t(61)}) {
        SaveBytes(strPath, TBytes(nBytes));
        try {
            ReadRawFrame(strPath, MakeLayout(IMAGE_FORMAT_NV12, 10, 4, 10));
            FAIL() << nBytes;
        } catch (const CToolError& oError) {
            EXPECT_EQ(oError.GetStatus(), EXIT_FAILED);
            EXPECT_EQ(std::string(oError.what()),
                      strPath + ": holds " + std::to_string(nBytes) +
                          " bytes, but --raw describes 60; check format, size and stride");
        }
    }
}

TEST(Session, DefaultSizesFollowTheView)
{
    EXPECT_EQ(GetDefaultSize(VIEW_FISHEYE, MOUNT_CEILING, {300, 200}).nWidth, 300);
    EXPECT_EQ(GetDefaultSize(VIEW_FISHEYE_CIRCULAR, MOUNT_WALL, {300, 200}).nHeight, 200);
    EXPECT_EQ(GetDefaultSize(VIEW_VCAM, MOUNT_WALL, {300, 200}).nWidth, 1280);
    // Shapes of the strips, width to height.
    const SSize sFull = GetDefaultSize(VIEW_PANORAMA_FULL, MOUNT_FLOOR, {300, 200});
    EXPECT_NEAR(sFull.nWidth / static_cast<double>(sFull.nHeight), 7.142857, 1e-5);
    const SSize sWall = GetDefaultSize(VIEW_PANORAMA_FULL, MOUNT_WALL, {300, 200});
    EXPECT_NEAR(sWall.nWidth / static_cast<double>(sWall.nHeight), 2.5, 1e-5);
}
