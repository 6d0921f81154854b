// Overlay images: what is shown of them, with either engine.
#include "tests/gl/overlays/OverlayTools.h"

#include <gtest/gtest.h>
#include <limits>

static const int WIDTH = 48;
static const int HEIGHT = 40;

class OverlayContents : public CEngineTest
{
protected:
    void SetUp() override { ASSERT_EQ(CompareImages(oView.Draw(), sFrame).nMax, 0); }

    const STestImage sFrame = AsymmetricPicture(WIDTH, HEIGHT);
    SEngineView oView{GetParam(), sFrame};
    CDewarper& oDewarper = *oView.oDewarper;
};

TEST_P(OverlayContents, AnInputOverlayLiesOverThePictureWithItsFirstRowOnTop)
{
    const STestImage sOverlay = PatternPicture(WIDTH, HEIGHT);
    EXPECT_EQ(SetInput(oDewarper, sOverlay), 1);
    EXPECT_EQ(CompareImages(oView.Draw(), sOverlay).nMax, 0);
}

TEST_P(OverlayContents, AnOutputOverlayLiesOverThePictureWithItsFirstRowOnTop)
{
    const STestImage sOverlay = PatternPicture(WIDTH, HEIGHT);
    EXPECT_EQ(SetOutput(oDewarper, sOverlay), 1);
    EXPECT_EQ(CompareImages(oView.Draw(), sOverlay).nMax, 0);
}

TEST_P(OverlayContents, OverlaysAreStretchedOverTheirPicture)
{
    STestImage sSmall(2, 2);
    sSmall.Set(0, 0, 250, 0, 0);
    sSmall.Set(1, 0, 0, 250, 0);
    sSmall.Set(0, 1, 0, 0, 250);
    sSmall.Set(1, 1, 250, 250, 0);
    for (const bool bInput : {true, false}) {
        EXPECT_EQ(bInput ? SetInput(oDewarper, sSmall) : SetOutput(oDewarper, sSmall), 1);
        const STestImage sPicture = oView.Draw();
        EXPECT_EQ(sPicture.Word(0, 0), 0xFA0000FFu);
        EXPECT_EQ(sPicture.Word(WIDTH / 2 - 1, HEIGHT / 2 - 1), 0xFA0000FFu);
        EXPECT_EQ(sPicture.Word(WIDTH / 2, 0), 0x00FA00FFu);
        EXPECT_EQ(sPicture.Word(0, HEIGHT / 2), 0x0000FAFFu);
        EXPECT_EQ(sPicture.Word(WIDTH - 1, HEIGHT - 1), 0xFAFA00FFu);
        oDewarper.SetInputOverlay(nullptr, 0, 0, 0);
    }
}

TEST_P(OverlayContents, AFirstImageGivenByRectanglesIsTransparentElsewhere)
{
    for (const std::vector<SGRect>& vRects :
         {std::vector<SGRect>{{4, 5, 6, 7}}, std::vector<SGRect>{{900, 900, 5, 5}}}) {
        // Memory that was used before must not show.
        {
            std::vector<unsigned char> vStale(static_cast<std::size_t>(WIDTH) * HEIGHT * 4, 0x5A);
        }
        oDewarper.SetOutputOverlay(nullptr, 0, 0, 0, {});
        EXPECT_EQ(SetOutput(oDewarper, PatternPicture(WIDTH, HEIGHT), vRects), 1);
        STestImage sWanted = sFrame;
        for (int y = 5; y < 12 && vRects[0].x < WIDTH; ++y)
            for (int x = 4; x < 10; ++x)
                std::copy_n(PatternPicture(WIDTH, HEIGHT).At(x, y), 4, sWanted.At(x, y));
        EXPECT_EQ(CompareImages(oView.Draw(), sWanted).nMax, 0);
    }
}

TEST_P(OverlayContents, ASecondSetBeforeTheFirstWasUploadedKeepsItsPixels)
{
    const STestImage sFirst = PatternPicture(WIDTH, HEIGHT);
    const STestImage sSecond = PlainPicture(WIDTH, HEIGHT, 0xF0A050FF);
    for (const bool bUploadedBefore : {false, true}) {
        SCOPED_TRACE(bUploadedBefore ? "into a texture" : "into a new texture");
        for (const bool bWhole : {true, false}) {
            oDewarper.SetOutputOverlay(nullptr, 0, 0, 0, {});
            STestImage sWanted = PlainPicture(WIDTH, HEIGHT, 0x112233FF);
            if (bUploadedBefore) {
                SetOutput(oDewarper, sWanted);
                oView.Draw();
            }
            const SGRect sOne = {3, 4, 10, 10};
            const SGRect sOther = {8, 9, 20, 3};
            EXPECT_EQ(
                SetOutput(oDewarper, sFirst, bWhole ? std::vector<SGRect>() : std::vector<SGRect>{sOne}), 1);
            EXPECT_EQ(SetOutput(oDewarper, sSecond, {sOther}), 1);
            if (bWhole)
                sWanted = sFirst;
            else if (!bUploadedBefore)
                sWanted = sFrame;
            for (int y = 4; y < 14 && !bWhole; ++y)
                for (int x = 3; x < 13; ++x)
                    std::copy_n(sFirst.At(x, y), 4, sWanted.At(x, y));
            FillRect(sWanted, sOther, 0xF0A050FF);
            EXPECT_EQ(CompareImages(oView.Draw(), sWanted).nMax, 0);
        }
    }
}

TEST_P(OverlayContents, AnImageWithoutWidthOrHeightIsRefusedAndTheOldOneKept)
{
    STestImage sAny = PatternPicture(WIDTH, 100);
    for (const auto& [nWidth, nHeight] : {std::pair{0, 100}, std::pair{10, 0}, std::pair{-1, 5}}) {
        EXPECT_EQ(oDewarper.SetOutputOverlay(sAny.vPixels.data(), nWidth, nHeight, 0, {}), 0);
    }
    EXPECT_EQ(CompareImages(oView.Draw(), sFrame).nMax, 0);
    const STestImage sOverlay = PatternPicture(WIDTH, HEIGHT);
    SetOutput(oDewarper, sOverlay);
    EXPECT_EQ(oDewarper.SetOutputOverlay(sAny.vPixels.data(), 0, 100, 0, {}), 0);
    EXPECT_EQ(CompareImages(oView.Draw(), sOverlay).nMax, 0);
}

TEST_P(OverlayContents, AnImageThatNoTextureHoldsIsRefusedWithOneLogLine)
{
    const int nLong = 16385;
    std::vector<unsigned char> vPixels(4 * nLong, 255);
    for (const auto& [nWidth, nHeight] : {std::pair{nLong, 1}, std::pair{1, nLong}, std::pair{-3, -3}}) {
        CLogCapture oLog;
        EXPECT_EQ(oDewarper.SetOutputOverlay(vPixels.data(), nWidth, nHeight, 0, {}), 0);
        EXPECT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
        EXPECT_EQ(oDewarper.SetInputOverlay(vPixels.data(), nWidth, nHeight, 0), 0);
        EXPECT_EQ(oLog.Lines().size(), 2u) << oLog.Text();
        EXPECT_TRUE(oDewarper.DrawGLScene(false));
    }
    EXPECT_EQ(oDewarper.SetOutputOverlay(vPixels.data(), nLong - 1, 1, 0, {}), 1) << "the longest there is";
    EXPECT_TRUE(oDewarper.DrawGLScene(false));
}

TEST_P(OverlayContents, TheInputOverlayShowsAlsoAfterARefusedOne)
{
    STestImage sOverlay = PatternPicture(WIDTH, HEIGHT);
    EXPECT_EQ(oDewarper.SetInputOverlay(sOverlay.vPixels.data(), 0, 100, 0), 0);
    EXPECT_TRUE(oDewarper.DrawGLScene(false));
    EXPECT_EQ(SetInput(oDewarper, sOverlay), 1);
    EXPECT_EQ(CompareImages(oView.Draw(), sOverlay).nMax, 0);
}

TEST_P(OverlayContents, RectanglesBringExactlyTheirPixels)
{
    const int nMost = std::numeric_limits<int>::max();
    const int nLeast = std::numeric_limits<int>::min();
    const STestImage sNew = PatternPicture(WIDTH, HEIGHT);
    struct SCase
    {
        SGRect sGiven;
        SGRect sTaken; ///< no width: nothing
    };
    const SCase aCases[] = {
        {{10, 20, 5, 2}, {10, 20, 5, 2}},
        {{-3, -4, 8, 9}, {0, 0, 5, 5}},
        {{WIDTH - 2, HEIGHT - 1, 100, 100}, {WIDTH - 2, HEIGHT - 1, 2, 1}},
        {{5, 6, nMost, nMost}, {5, 6, WIDTH - 5, HEIGHT - 6}},
        {{nMost, 0, nMost, 1}, {}},
        {{nLeast, nLeast, nMost, nMost}, {}},
        {{nLeast, 0, nLeast, 10}, {}},
        {{0, HEIGHT, WIDTH, 1}, {}},
        {{-1, 0, 1, 1}, {}},
        {{3, 3, 0, 5}, {}},
        {{3, 3, 5, -1}, {}},
    };
    for (const SCase& sCase : aCases) {
        SCOPED_TRACE(testing::PrintToString(
            std::vector<int>{sCase.sGiven.x, sCase.sGiven.y, sCase.sGiven.width, sCase.sGiven.height}));
        STestImage sWanted = PlainPicture(WIDTH, HEIGHT, 0x010203FF);
        SetOutput(oDewarper, sWanted);
        EXPECT_EQ(CompareImages(oView.Draw(), sWanted).nMax, 0);
        EXPECT_EQ(SetOutput(oDewarper, sNew, {sCase.sGiven}), 1);
        const SGRect& r = sCase.sTaken;
        for (int y = r.y; y < r.y + r.height; ++y)
            for (int x = r.x; x < r.x + r.width; ++x)
                std::copy_n(sNew.At(x, y), 4, sWanted.At(x, y));
        EXPECT_EQ(CompareImages(oView.Draw(), sWanted).nMax, 0);
    }
}

TEST_P(OverlayContents, NullRemovesTheImage)
{
    SetInput(oDewarper, PatternPicture(WIDTH, HEIGHT));
    SetOutput(oDewarper, PatternPicture(WIDTH, HEIGHT, 90));
    EXPECT_GT(CompareImages(oView.Draw(), sFrame).nMax, 20);
    EXPECT_EQ(oDewarper.SetInputOverlay(nullptr, 5, 5, 0), 1);
    EXPECT_EQ(oDewarper.SetOutputOverlay(nullptr, 5, 5, 0, {}), 1);
    EXPECT_EQ(CompareImages(oView.Draw(), sFrame).nMax, 0);
    EXPECT_EQ(oDewarper.SetInputOverlay(nullptr, 0, 0, 0), 1) << "also when there is none";
    EXPECT_EQ(oDewarper.SetOutputOverlay(nullptr, 0, 0, 0, {}), 1);
}

INSTANTIATE_ENGINES(OverlayContents);
