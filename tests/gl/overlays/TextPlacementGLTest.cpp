// Text stands upright where it was put, whatever else is shown and whatever happens to the target.
#include "tests/gl/overlays/OverlayTools.h"

#include <gtest/gtest.h>

/// Where text is drawn: an output overlay, shown too, has it drawn into the frame texture.
struct STextCase
{
    const char* pName;
    bool bOverlay;
};

static const STextCase CASES[] = {{"Direct", false}, {"ToTexture", true}};

class TextPlacement : public testing::TestWithParam<SEngineCase<STextCase>>
{
protected:
    static STestImage Overlay(int nWidth, int nHeight)
    {
        STestImage sOverlay = PlainPicture(nWidth, nHeight, 0);
        FillRect(sOverlay, {nWidth - 6, 0, 6, 3}, 0xFF00FFFF);
        return sOverlay;
    }

    /// The picture with this text, and what it should be.
    static void Check(SEngineView& oView, const STestImage& sFrame, const TStrings& vStrings, int nTolerance)
    {
        oView.oDewarper->SetStrings(vStrings);
        if (GetParam().sCase.bOverlay)
            SetOutput(*oView.oDewarper, Overlay(sFrame.nWidth, sFrame.nHeight));
        STestImage sWanted = sFrame;
        DrawText(sWanted, vStrings);
        if (GetParam().sCase.bOverlay)
            Blend(sWanted, Overlay(sFrame.nWidth, sFrame.nHeight));
        const STestImage sPicture = oView.Draw();
        const SImageDifference sDifference = CompareImages(sPicture, sWanted);
        EXPECT_LE(sDifference.nMax, nTolerance) << "at " << sDifference.nMaxX << ", " << sDifference.nMaxY;
        if (testing::Test::HasFailure()) {
            WritePicture("text placement", sPicture);
            WritePicture("text placement wanted", sWanted);
        }
    }
};

TEST_P(TextPlacement, LettersStandUprightAndLookLikeTheFont)
{
    const STestImage sFrame = AsymmetricPicture(240, 151);
    SEngineView oView(GetParam().eEngine, sFrame);
    Check(oView, sFrame, {Text("FLgy7", 11, 3, 64, 0xFFFFFFFF), Text("Rotation q4%", 5, 90, 32, 0x20E080FF)},
          1);
    // By eye: an L has its stem on the left and its foot at the bottom.
    oView.oDewarper->SetStrings({Text("L", 100, 40, 64, 0xFFFFFFFF)});
    const STestImage sPicture = oView.Draw();
    const auto White = [&](int x, int y) { return sPicture.At(100 + x, 40 + y)[2] > 200; };
    int nStem = 0;
    int nFoot = 0;
    for (int y = 10; y < 45; ++y)
        nStem += White(9, y) || White(10, y) || White(11, y) ? 1 : 0;
    for (int x = 12; x < 30; ++x)
        nFoot += White(x, 48) || White(x, 46) || White(x, 50) ? 1 : 0;
    EXPECT_GT(nStem, 30);
    EXPECT_GT(nFoot, 14);
    for (int y = 5; y < 40; ++y)
        EXPECT_FALSE(White(25, y)) << y;
}

TEST_P(TextPlacement, AllAnchorsAndReferencesOnEvenAndOddTargets)
{
    for (const auto& [nWidth, nHeight] : {std::pair{120, 80}, std::pair{121, 79}}) {
        const STestImage sFrame = AsymmetricPicture(nWidth, nHeight);
        SEngineView oView(GetParam().eEngine, sFrame);
        for (int i = 0; i < 81; ++i) {
            SGPUString sString = Text("\x7F\x7F\x7F", 7, -5, 11, 0xFFFF00FF); // 3 x 6 pixels wide
            sString.nHAlign = i % 3;
            sString.nVAlign = i / 3 % 3;
            sString.nHRef = i / 9 % 3;
            sString.nVRef = i / 27;
            SCOPED_TRACE("case " + std::to_string(i));
            oView.oDewarper->SetStrings({sString});
            if (GetParam().sCase.bOverlay)
                SetOutput(*oView.oDewarper, PlainPicture(nWidth, nHeight, 0));
            STestImage sWanted = sFrame;
            FillRect(sWanted, TextRect(sString, nWidth, nHeight), 0xFFFF00FF);
            ASSERT_EQ(CompareImages(oView.Draw(), sWanted).nMax, 0);
        }
    }
}

TEST_P(TextPlacement, OddHeightsAndLengthsAreCentredTheSameWayEverywhere)
{
    const STestImage sFrame = AsymmetricPicture(101, 77);
    SEngineView oView(GetParam().eEngine, sFrame);
    for (int nHeight = 2; nHeight < 40; nHeight += 3) {
        SGPUString sString = Text("\x7F", 0, 0, nHeight, 0xFFFF00FF);
        sString.nHAlign = sString.nVAlign = sString.nHRef = sString.nVRef = 1;
        oView.oDewarper->SetStrings({sString});
        if (GetParam().sCase.bOverlay)
            SetOutput(*oView.oDewarper, PlainPicture(101, 77, 0));
        STestImage sWanted = sFrame;
        FillRect(sWanted, TextRect(sString, 101, 77), 0xFFFF00FF);
        ASSERT_EQ(CompareImages(oView.Draw(), sWanted).nMax, 0) << nHeight;
    }
}

TEST_P(TextPlacement, TextThatHangsOverTheEdgeShowsItsInnerPart)
{
    const STestImage sFrame = AsymmetricPicture(150, 100);
    SEngineView oView(GetParam().eEngine, sFrame);
    Check(oView, sFrame,
          {Text("LEFT", -50, -20, 64, 0xFFFFFFFF), Text("right", 120, 60, 64, 0xFF8000FF),
           Text("low", 2, 90, 32, 0x00FF00FF)},
          1);
}

TEST_P(TextPlacement, ABlockLargerThanTheTargetCoversItWhole)
{
    const STestImage sFrame = AsymmetricPicture(90, 60);
    SEngineView oView(GetParam().eEngine, sFrame);
    if (GetParam().sCase.bOverlay)
        SetOutput(*oView.oDewarper, PlainPicture(90, 60, 0));
    for (const SGPUString& rString : {Text("\x7F", -500, -700, 2000, 0xC08040FF),
                                      Text(std::string(65535, '\x7F'), -600000, -2, 64, 0xC08040FF),
                                      Text("\x7F", -1000, -5000, 8192, 0xC08040FF)}) {
        oView.oDewarper->SetStrings({rString});
        EXPECT_EQ(CompareImages(oView.Draw(), PlainPicture(90, 60, 0xC08040FF)).nMax, 0) << rString.nHeight;
        oView.oDewarper->SetStrings({Text("", 0, 0)}); // and vanishes without a trace
        EXPECT_EQ(CompareImages(oView.Draw(), sFrame).nMax, 0) << rString.nHeight;
    }
}

TEST_P(TextPlacement, ANewTargetSizeMovesTextWithItsReferences)
{
    const STestImage sFrame = AsymmetricPicture(64, 64);
    SEngineView oView(GetParam().eEngine, sFrame);
    SGPUString sString = Text("\x7F", -2, -3, 32, 0xFFFF00FF); // 19 pixels wide
    sString.nHAlign = sString.nVAlign = sString.nHRef = sString.nVRef = 2;
    oView.oDewarper->SetStrings({sString});
    if (GetParam().sCase.bOverlay)
        SetOutput(*oView.oDewarper, PlainPicture(64, 64, 0));
    for (const int nSize : {64, 128, 32, 63, 64}) {
        ASSERT_TRUE(oView.oDewarper->InitTarget(nSize, nSize));
        const STestImage sPicture = oView.Draw();
        const SGRect sRect = TextRect(sString, nSize, nSize);
        for (int y = 0; y < nSize; ++y)
            for (int x = 0; x < nSize; ++x) {
                const bool bInside =
                    x >= sRect.x && x < sRect.x + sRect.width && y >= sRect.y && y < sRect.y + sRect.height;
                ASSERT_EQ(sPicture.Word(x, y) == 0xFFFF00FF, bInside) << nSize << ": " << x << ", " << y;
            }
    }
}

TEST_P(TextPlacement, TogglingTheOutputOverlayDrawsAllTextAgainTheRightWayUp)
{
    const STestImage sFrame = AsymmetricPicture(150, 101);
    SEngineView oView(GetParam().eEngine, sFrame);
    const TStrings vStrings = {Text("Fj4", 10, 7, 64, 0xFFFFFFFF), Text("dp", 60, 70, 32, 0xFF40C0FF)};
    STestImage sText = sFrame;
    DrawText(sText, vStrings);
    STestImage sBoth = sText;
    Blend(sBoth, Overlay(150, 101));
    bool bOverlay = GetParam().sCase.bOverlay;
    oView.oDewarper->SetStrings(vStrings);
    int nNames = 0;
    for (int i = 0; i < 8; ++i, bOverlay = !bOverlay) {
        if (bOverlay)
            SetOutput(*oView.oDewarper, Overlay(150, 101));
        else
            oView.oDewarper->SetOutputOverlay(nullptr, 0, 0, 0, {});
        EXPECT_LE(CompareImages(oView.Draw(), bOverlay ? sBoth : sText).nMax, 1)
            << "toggled " << i << " times";
        if (i == 3)
            nNames = CGLRecorder::Get().LivingGLNames();
    }
    EXPECT_EQ(CGLRecorder::Get().LivingGLNames(), nNames);
    // Strings come and go meanwhile.
    oView.oDewarper->SetStrings(TStrings());
    oView.oDewarper->SetOutputOverlay(nullptr, 0, 0, 0, {});
    EXPECT_EQ(CompareImages(oView.Draw(), sFrame).nMax, 0);
    SetOutput(*oView.oDewarper, Overlay(150, 101));
    STestImage sOverlay = sFrame;
    Blend(sOverlay, Overlay(150, 101));
    EXPECT_EQ(CompareImages(oView.Draw(), sOverlay).nMax, 0);
    oView.oDewarper->SetStrings(vStrings);
    EXPECT_LE(CompareImages(oView.Draw(), sBoth).nMax, 1);
}

INSTANTIATE_TEST_SUITE_P(Targets, TextPlacement, testing::ValuesIn(WithBothEngines(CASES)),
                         SEngineCaseName());

/// True: into the frame texture.
using TextPrograms = testing::TestWithParam<bool>;

TEST_P(TextPrograms, ThatAreMissingLeaveTheFrameWithoutText)
{
    const STestImage sFrame = AsymmetricPicture(80, 60);
    for (int nSkip = 0; nSkip < 4; ++nSkip) {
        SFlatView oView(sFrame);
        oView.oDewarper.SetStrings({Text("A", 0, 0)});
        if (GetParam())
            SetOutput(oView.oDewarper, PlainPicture(80, 60, 0));
        // The view's own program is linked first; then one pass after the other.
        CGLRecorder::Get().Inject("GL_LINK_STATUS", 0.0, 1 + nSkip);
        CLogCapture oLog;
        const STestImage sPicture = oView.Draw();
        CGLRecorder::Get().ClearInjections();
        STestImage sWanted = sFrame;
        DrawText(sWanted, {Text("A", 0, 0)});
        // Last comes the output overlay's program, if there is one: then there is text, but no overlay. And
        // without the program that takes the view to the target there is nothing to see.
        if (nSkip > 0 || GetParam()) {
            EXPECT_LE(CompareImages(sPicture, nSkip == 3 ? sWanted : sFrame).nMax, 1) << nSkip;
        }
        // The next frame is whole.
        EXPECT_LE(CompareImages(oView.Draw(), sWanted).nMax, 1) << nSkip;
        EXPECT_NO_GL_ERROR();
    }
}

INSTANTIATE_TEST_SUITE_P(Targets, TextPrograms, testing::Bool(),
                         [](const auto& oInfo) { return oInfo.param ? "ToTexture" : "Direct"; });
