#include "dewarp/records/FrameCheck.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

unsigned char aPlanes[3];

SImageProperties Frame(int nFormat, int nWidth, int nHeight, int nStride)
{
    SImageProperties sImage;
    sImage.pPlane0 = &aPlanes[0];
    sImage.pPlane1 = &aPlanes[1];
    sImage.pPlane2 = &aPlanes[2];
    sImage.nFormat = nFormat;
    sImage.nWidth = nWidth;
    sImage.nHeight = nHeight;
    sImage.nStride = nStride;
    return sImage;
}

struct SFormatCase
{
    int nFormat;
    int nPlanes;
    int nPixelBytes;
};

const SFormatCase FORMATS[] = {
    {IMAGE_FORMAT_RGB24, 1, 3},  {IMAGE_FORMAT_BGR24, 1, 3},   {IMAGE_FORMAT_NV12, 2, 1},
    {IMAGE_FORMAT_NV21, 2, 1},   {IMAGE_FORMAT_YUV420P, 3, 1}, {IMAGE_FORMAT_RGBA32, 1, 4},
    {IMAGE_FORMAT_BGRA32, 1, 4}, {IMAGE_FORMAT_GRAY8, 1, 1},
};

} // namespace

TEST(FindFrameFault, EveryFormatNeedsItsPlanesAndWholeRows)
{
    for (const SFormatCase& rCase : FORMATS) {
        SCOPED_TRACE(rCase.nFormat);
        const int nRow = 10 * rCase.nPixelBytes;
        SImageProperties sImage = Frame(rCase.nFormat, 10, 8, nRow);
        EXPECT_EQ(FindFrameFault(&sImage, nullptr), "");
        sImage.nStride = nRow - 1;
        EXPECT_EQ(FindFrameFault(&sImage, nullptr), "stride of " + std::to_string(nRow - 1) +
                                                        " bytes does not fit rows of " +
                                                        std::to_string(nRow) + " bytes");
        sImage.nStride = nRow;
        unsigned char** const aMembers[] = {&sImage.pPlane0, &sImage.pPlane1, &sImage.pPlane2};
        for (int i = 0; i < 3; ++i) {
            *aMembers[i] = nullptr;
            EXPECT_EQ(FindFrameFault(&sImage, nullptr),
                      i < rCase.nPlanes ? "plane " + std::to_string(i) + " is missing" : "");
            *aMembers[i] = &aPlanes[i];
        }
    }
}

TEST(FindFrameFault, SizesAndFormatsOutsideAreNamed)
{
    EXPECT_EQ(FindFrameFault(nullptr, nullptr), "no image");
    const SImageProperties sUnknown = Frame(3, 10, 10, 100);
    EXPECT_EQ(FindFrameFault(&sUnknown, nullptr), "unknown image format 3");
    for (const auto& [nWidth, nHeight] : {std::pair{1, 2}, {2, 1}, {16385, 2}, {2, 16385}, {-4, 4}}) {
        const SImageProperties sImage = Frame(IMAGE_FORMAT_GRAY8, nWidth, nHeight, 20000);
        EXPECT_EQ(FindFrameFault(&sImage, nullptr), "image size " + std::to_string(nWidth) + " x " +
                                                        std::to_string(nHeight) + " is outside 2 to 16384");
    }
    for (const auto& [nWidth, nHeight] : {std::pair{2, 2}, {16384, 2}, {2, 16384}}) {
        const SImageProperties sImage = Frame(IMAGE_FORMAT_GRAY8, nWidth, nHeight, 20000);
        EXPECT_EQ(FindFrameFault(&sImage, nullptr), "");
    }
    const SImageProperties sWide = Frame(IMAGE_FORMAT_GRAY8, 4, 4, 16384 * 16 + 1);
    EXPECT_NE(FindFrameFault(&sWide, nullptr), "");
}

TEST(FindFrameFault, MacroblockInformationCountsWhereItHasAny)
{
    const SImageProperties sImage = Frame(IMAGE_FORMAT_GRAY8, 10, 10, 10);
    SQPInfo sQP;
    EXPECT_EQ(FindFrameFault(&sImage, &sQP), "");
    sQP.pQP = &aPlanes[0];
    EXPECT_EQ(FindFrameFault(&sImage, &sQP), "macroblock information has an impossible size");
    sQP.nWidth = sQP.nHeight = sQP.nStride = 1;
    EXPECT_EQ(FindFrameFault(&sImage, &sQP), "");
    sQP.nStride = 0;
    EXPECT_EQ(FindFrameFault(&sImage, &sQP), "macroblock information has an impossible size");
    sQP.pQP = nullptr;
}

namespace
{

SFrameTarget Target(EImageFormat eFormat, int nStride0, int nStride1, int nStride2)
{
    SFrameTarget sTarget;
    sTarget.eFormat = eFormat;
    const int anStrides[] = {nStride0, nStride1, nStride2};
    for (int i = 0; i < 3; ++i) {
        sTarget.apPlanes[i] = anStrides[i] > 0 ? &aPlanes[i] : nullptr;
        sTarget.anStrides[i] = anStrides[i];
    }
    return sTarget;
}

} // namespace

TEST(FindTargetFault, EveryFormatNeedsItsPlanesAndWholeRows)
{
    for (const SFrameTarget& rGood :
         {Target(IMAGE_FORMAT_BGRA32, 28, 0, 0), Target(IMAGE_FORMAT_RGBA32, 28, 0, 0),
          Target(IMAGE_FORMAT_NV12, 7, 8, 0), Target(IMAGE_FORMAT_YUV420P, 7, 4, 4)}) {
        SCOPED_TRACE(rGood.eFormat);
        EXPECT_EQ(FindTargetFault(rGood, 7, 5), "");
        for (int i = 0; i < 3; ++i) {
            if (rGood.apPlanes[i] == nullptr)
                continue;
            SFrameTarget sBad = rGood;
            sBad.apPlanes[i] = nullptr;
            EXPECT_EQ(FindTargetFault(sBad, 7, 5),
                      "plane " + std::to_string(i) + " of the target is missing");
            sBad = rGood;
            for (const int nStride : {rGood.anStrides[i] - 1, 0, -rGood.anStrides[i]}) {
                sBad.anStrides[i] = nStride;
                EXPECT_EQ(FindTargetFault(sBad, 7, 5),
                          "stride of " + std::to_string(nStride) + " bytes does not fit rows of " +
                              std::to_string(rGood.anStrides[i]) + " bytes in plane " + std::to_string(i) +
                              " of the target");
            }
        }
    }
}

TEST(FindTargetFault, OtherFormatsAndNoSizeAreNamed)
{
    for (const int nFormat : {int{IMAGE_FORMAT_RGB24}, int{IMAGE_FORMAT_BGR24}, int{IMAGE_FORMAT_GRAY8},
                              int{IMAGE_FORMAT_NV21}, 99})
        EXPECT_EQ(FindTargetFault(Target(static_cast<EImageFormat>(nFormat), 100, 100, 100), 4, 4),
                  "nothing is drawn in image format " + std::to_string(nFormat));
    for (const auto& [nWidth, nHeight] : {std::pair{0, 0}, {0, 4}, {4, 0}, {-1, 4}, {16385, 4}, {4, 16385}})
        EXPECT_EQ(FindTargetFault(Target(IMAGE_FORMAT_NV12, 20000, 20000, 0), nWidth, nHeight),
                  "the target has no size yet");
}
