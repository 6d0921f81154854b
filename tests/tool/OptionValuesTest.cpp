#include "OptionValues.h"

#include "Names.h"
#include "ToolError.h"

#include "dewarp/Dewarper.h"

#include <functional>
#include <gtest/gtest.h>

namespace
{

/// The message of a refusal; empty when the text was taken.
std::string GetRefusal(const std::function<void()>& pRead)
{
    try {
        pRead();
    } catch (const CToolError& oError) {
        EXPECT_EQ(oError.GetStatus(), EXIT_USAGE);
        return oError.what();
    }
    return "";
}

} // namespace

TEST(OptionValues, NumbersWithinTheLimitsAreTaken)
{
    EXPECT_FLOAT_EQ(ReadFloat("--zoom", "5", 5.0f, 180.0f, "degrees"), 5.0f);
    EXPECT_FLOAT_EQ(ReadFloat("--zoom", "180", 5.0f, 180.0f, "degrees"), 180.0f);
    EXPECT_FLOAT_EQ(ReadFloat("--pan", "-12.5", -360.0f, 360.0f, "degrees"), -12.5f);
    EXPECT_FLOAT_EQ(ReadFloat("--pan", "+7", -360.0f, 360.0f, "degrees"), 7.0f);
    EXPECT_FLOAT_EQ(ReadFloat("--pan", "1e2", -360.0f, 360.0f, "degrees"), 100.0f);
    EXPECT_EQ(ReadInt("--rotation", "270", 0, 270, "degrees"), 270);
}

TEST(OptionValues, NumbersThatAreNoneAreRefused)
{
    for (const char* pText : {"", " ", "x", "1x", "1,5", "nan", "inf", "-inf", "1e99", "+-1", "++1", "0x10",
                              "4.9", "180.01", " 90"})
        EXPECT_NE(GetRefusal([&] { ReadFloat("--zoom", pText, 5.0f, 180.0f, "degrees"); }), "") << pText;
    for (const char* pText : {"", "1.5", "99999999999", "-1", "271"})
        EXPECT_NE(GetRefusal([&] { ReadInt("--rotation", pText, 0, 270, "degrees"); }), "") << pText;
}

TEST(OptionValues, RefusalsNameOptionTextAndLimits)
{
    const std::string strLine = GetRefusal([] { ReadFloat("--zoom", "500", 5.0f, 180.0f, "degrees"); });
    EXPECT_EQ(strLine, "--zoom: '500' is not a number from 5 to 180 (degrees)");
}

TEST(OptionValues, SizesHaveTwoSides)
{
    const SSize sSize = ReadSize("--size", "1280x720");
    EXPECT_EQ(sSize.nWidth, 1280);
    EXPECT_EQ(sSize.nHeight, 720);
    for (const char* pText :
         {"", "x", "10", "10x", "x10", "10x10x10", "1x10", "10x1", "0x0", "16385x10", "-4x4", "4 x4"})
        EXPECT_NE(GetRefusal([&] { ReadSize("--size", pText); }), "") << pText;
}

TEST(OptionValues, RawLayoutsTakeTheRowBytesAsStride)
{
    EXPECT_EQ(ReadRawLayout("rgb24:10x4").nStride, 30);
    EXPECT_EQ(ReadRawLayout("bgra:10x4").nStride, 40);
    EXPECT_EQ(ReadRawLayout("nv12:10x4").nStride, 10);
    const SRawLayout sLayout = ReadRawLayout("nv21:10x4:16");
    EXPECT_EQ(sLayout.nFormat, IMAGE_FORMAT_NV21);
    EXPECT_EQ(sLayout.sSize.nWidth, 10);
    EXPECT_EQ(sLayout.sSize.nHeight, 4);
    EXPECT_EQ(sLayout.nStride, 16);
}

TEST(OptionValues, RawLayoutsThatCannotBeAreRefused)
{
    for (const char* pText : {"", "nv12", "nv12:", "yuy2:10x4", "nv12:10x4:9", "rgb24:10x4:29", "nv12:10x4:x",
                              "nv12:10x4:10:10", "nv12:0x4", "rgba:16384x16384:999999999"})
        EXPECT_NE(GetRefusal([&] { ReadRawLayout(pText); }), "") << pText;
}

TEST(OptionValues, GainsAreTwoFactors)
{
    const SGains sGains = ReadGains("1.25:0");
    EXPECT_FLOAT_EQ(sGains.fLuma, 1.25f);
    EXPECT_FLOAT_EQ(sGains.fChroma, 0.0f);
    for (const char* pText : {"1", "1:", ":1", "1:2:3", "-1:1", "1:17", "nan:1"})
        EXPECT_NE(GetRefusal([&] { ReadGains(pText); }), "") << pText;
}

TEST(OptionValues, ColorsWithoutAlphaAreOpaque)
{
    EXPECT_EQ(ReadColor("--mask", "#102030"), 0x102030FFu);
    EXPECT_EQ(ReadColor("--mask", "#fFaA0080"), 0xFFAA0080u);
    for (const char* pText : {"", "102030", "#10203", "#1020304", "#10203g", "#-10203", "#102030405"})
        EXPECT_NE(GetRefusal([&] { ReadColor("--mask", pText); }), "") << pText;
}

TEST(OptionValues, MasksAreCornersAndAColor)
{
    const SGPolygon sPolygon = ReadMask("  1,2 -3,4   500,600 #01020304 ");
    ASSERT_EQ(sPolygon.vPoints.size(), 3u);
    EXPECT_EQ(sPolygon.vPoints[1].x, -3);
    EXPECT_EQ(sPolygon.vPoints[2].y, 600);
    EXPECT_EQ(sPolygon.nColor, 0x01020304u);
    for (const char* pText : {"", "1,2 3,4 #010203", "1,2 3,4 5,6", "1,2 3,4 5 #010203",
                              "1,2 3,4 5,40000 #010203", "1,2 3,4 5,6.5 #010203"})
        EXPECT_NE(GetRefusal([&] { ReadMask(pText); }), "") << pText;
}

TEST(OptionValues, ProjectionsAreNamesOrNumbers)
{
    EXPECT_FLOAT_EQ(ReadProjection("rectilinear"), 0.0f);
    EXPECT_FLOAT_EQ(ReadProjection("stereographic"), 1.0f);
    EXPECT_FLOAT_EQ(ReadProjection("0.5"), 0.5f);
    for (const char* pText : {"", "fisheye", "-0.1", "1.1", "nan"})
        EXPECT_NE(GetRefusal([&] { ReadProjection(pText); }), "") << pText;
}

TEST(OptionValues, TextsAlignOnBothAxes)
{
    SGPUString sString;
    ReadTextAlign("right", sString);
    EXPECT_EQ(sString.nHAlign, 2);
    EXPECT_EQ(sString.nVAlign, 0);
    ReadTextAlign("center,bottom", sString);
    EXPECT_EQ(sString.nHAlign, 1);
    EXPECT_EQ(sString.nVAlign, 2);
    for (const char* pText : {"", "middle", "left,", "left,left", "left,top,top"})
        EXPECT_NE(GetRefusal([&] { ReadTextAlign(pText, sString); }), "") << pText;
}

TEST(OptionValues, ViewsHaveNamesAndNumbers)
{
    EXPECT_EQ(ReadView("vcam"), VIEW_VCAM);
    EXPECT_EQ(ReadView("panorama"), VIEW_PANORAMA_FULL);
    EXPECT_EQ(ReadView("circular"), VIEW_FISHEYE_CIRCULAR);
    for (int nView = 1; nView <= 9; nView++) {
        const EViewType eView = ReadView(std::to_string(nView));
        EXPECT_EQ(eView, nView);
        EXPECT_EQ(ReadView(CDewarper::GetViewName(eView)), eView);
    }
    for (const char* pText : {"", "0", "10", "Vcam", "cam"})
        EXPECT_NE(GetRefusal([&] { ReadView(pText); }), "") << pText;
}

TEST(OptionValues, EnginesHaveNames)
{
    EXPECT_EQ(ReadEngine("auto"), ENGINE_AUTO);
    EXPECT_EQ(ReadEngine("cpu"), ENGINE_CPU);
    EXPECT_EQ(ReadEngine("gl"), ENGINE_GL);
}

TEST(OptionValues, UnknownNamesAreAnsweredWithTheKnownOnes)
{
    EXPECT_EQ(GetRefusal([] { ReadEngine("GL"); }), "--engine: 'GL' is not known; give auto, cpu or gl");
    EXPECT_EQ(GetRefusal([] { ReadMount("roof"); }),
              "--mount: 'roof' is not known; give ceiling, floor or wall");
}
