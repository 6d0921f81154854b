#include "dewarp/overlays/OverlayPixels.h"

#include "platform/Report.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

namespace
{

const int W = 5;
const int H = 4;

using VPixels = std::vector<unsigned char>;

VPixels Filled(unsigned char nByte)
{
    return VPixels(OverlayOffset(0, H, W), nByte);
}

/// One character a pixel: '.' for 0, else the byte itself.
std::string Map(const VPixels& vPixels)
{
    std::string strMap;
    for (std::size_t i = 0; i < vPixels.size(); i += 4)
        strMap += vPixels[i] == 0 ? '.' : static_cast<char>(vPixels[i]);
    return strMap;
}

std::string Text(const std::vector<SGRect>& vRects)
{
    std::string strText;
    for (const SGRect& r : vRects)
        strText += std::to_string(r.x) + "," + std::to_string(r.y) + " " + std::to_string(r.width) + "x" +
                   std::to_string(r.height) + ";";
    return strText;
}

} // namespace

TEST(OverlayPixels, SizesFromOneTo16384AreUsable)
{
    CLogCapture oLog;
    CReport oReport("TAG");
    for (const auto& [nWidth, nHeight] : {std::pair{1, 1}, {16384, 1}, {1, 16384}, {16384, 16384}})
        EXPECT_TRUE(IsOverlaySizeUsable(nWidth, nHeight, oReport));
    EXPECT_EQ(oLog.Text(), "");
    for (const auto& [nWidth, nHeight] : {std::pair{0, 1}, {1, 0}, {-1, 5}, {16385, 1}, {1, 16385}})
        EXPECT_FALSE(IsOverlaySizeUsable(nWidth, nHeight, oReport));
    ASSERT_EQ(oLog.Lines().size(), 5u);
    EXPECT_EQ(oLog.Lines()[3].strText, "SetOverlay: overlay size 16385 x 1 is outside 1 to 16384");
    EXPECT_EQ(oLog.Lines()[3].nPriority, 4);
}

TEST(OverlayPixels, OffsetsReachBeyondFourGigabytes)
{
    EXPECT_EQ(OverlayOffset(3, 2, 10), 92u);
    EXPECT_EQ(OverlayOffset(0, 40000, 40000), 6400000000u);
}

TEST(OverlayPixels, RectanglesAreClippedToTheImage)
{
    EXPECT_EQ(Text(ClipToImage({}, W, H)), "");
    EXPECT_EQ(Text(ClipToImage({{0, 0, W, H}, {-2, -3, 4, 4}, {4, 3, 9, 9}}, W, H)),
              "0,0 5x4;0,0 2x1;4,3 1x1;");
    EXPECT_EQ(
        Text(ClipToImage({{5, 0, 1, 1}, {0, 4, 1, 1}, {-3, 0, 3, 3}, {0, 0, 0, 2}, {1, 1, -1, 1}}, W, H)),
        "");
    EXPECT_EQ(Text(ClipToImage({{INT_MIN, INT_MIN, INT_MAX, INT_MAX}, {2, 1, INT_MAX, INT_MAX}}, W, H)),
              "2,1 3x3;");
}

TEST(OverlayPixels, RectanglesCopyTheirPixelsOnly)
{
    VPixels vTo = Filled('a');
    const VPixels vFrom = Filled('b');
    CopyOverlayRects(vTo.data(), vFrom.data(), W, {{1, 0, 2, 2}, {4, 3, 1, 1}});
    EXPECT_EQ(Map(vTo), "abbaa"
                        "abbaa"
                        "aaaaa"
                        "aaaab");
}

TEST(OverlayPixels, AWholeImageReplacesEverything)
{
    for (const bool bNew : {false, true}) {
        VPixels vTo = Filled('a');
        TakeOverlayPixels(vTo.data(), bNew, Filled('b').data(), W, H, nullptr);
        EXPECT_EQ(vTo, Filled('b'));
    }
}

TEST(OverlayPixels, WhatNoRectangleNamesStaysOrIsTransparentInANewImage)
{
    const std::vector<SGRect> vRects = {{0, 1, 2, 1}};
    VPixels vOld = Filled('a');
    TakeOverlayPixels(vOld.data(), false, Filled('b').data(), W, H, &vRects);
    EXPECT_EQ(Map(vOld), "aaaaabbaaaaaaaaaaaaa");
    VPixels vNew = Filled('a');
    TakeOverlayPixels(vNew.data(), true, Filled('b').data(), W, H, &vRects);
    EXPECT_EQ(Map(vNew), ".....bb.............");
}
