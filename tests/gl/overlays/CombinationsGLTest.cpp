// All sixteen combinations of input overlay, masks, text and output overlay, in flat and dewarped views: the
// picture upright, row 0 on top, everything in its place.
#include "tests/gl/overlays/OverlayTools.h"

#include <cmath>
#include <gtest/gtest.h>

// Odd, so that no pixel of the flat views has its middle on the border of two texels.
static const int FRAME = 71;
static const unsigned int MASK_COLOR = 0x10C0F0FF;

struct SCombinationCase
{
    const char* pName;
    EViewType eView;
    int nWidth;
    int nHeight;
};

static const SCombinationCase CASES[] = {
    {"Flat", VIEW_FISHEYE, 160, 144},      {"FlatOdd", VIEW_FISHEYE, 161, 143},
    {"Camera", VIEW_VCAM, 160, 144},       {"CameraOdd", VIEW_VCAM, 161, 143},
    {"Quad", VIEW_VCAM_QUAD, 160, 144},    {"QuadOddWidth", VIEW_VCAM_QUAD, 161, 144},
    {"QuadOdd", VIEW_VCAM_QUAD, 161, 143}, {"QuadOddHeight", VIEW_VCAM_QUAD, 160, 143},
};

/// Pixels that differ by more than rounding. In a dewarped view some pixel may look at the border of two
/// texels; a frame that goes through a texture is drawn the other way up and may take the other one.
static int PixelsOff(const STestImage& sA, const STestImage& sB)
{
    int nOff = 0;
    for (int y = 0; y < sA.nHeight; ++y)
        for (int x = 0; x < sA.nWidth; ++x) {
            bool bOff = false;
            for (int i = 0; i < 3; ++i)
                bOff = bOff || std::abs(sA.At(x, y)[i] - sB.At(x, y)[i]) > 1;
            nOff += bOff ? 1 : 0;
        }
    return nOff;
}

class Combinations : public testing::TestWithParam<SEngineCase<SCombinationCase>>
{
protected:
    Combinations() : oDewarper(GetParam().eEngine, GetParam().sCase.nWidth, GetParam().sCase.nHeight)
    {
        s.eView = GetParam().sCase.eView;
        s.nLensType = LENS_DSL419;
        s.nImageWidth = s.nImageHeight = FRAME;
        s.nTargetWidth = GetParam().sCase.nWidth;
        s.nTargetHeight = GetParam().sCase.nHeight;
        if (s.eView != VIEW_FISHEYE) {
            s.fPan = 70.0;
            s.fTilt = 45.0;
            s.fZoom = 150.0;
        }
        FillRect(sInput, {0, 0, FRAME, 9}, 0xE00000FF); // its first rows
        FillRect(sInput, {52, 16, 14, 30}, 0x00E000FF);
        FillRect(sInput, {8, 54, 40, 9}, 0x0000E0FF);
        const SGRect sBox = {14, 20, 34, 26};
        FillRect(sMaskImage, sBox, MASK_COLOR);
        vMasks = {{{{14, 20}, {48, 20}, {48, 46}, {14, 46}}, MASK_COLOR}};
        FillRect(sOutput, {0, 0, s.nTargetWidth, 4}, 0xFF00FFFF);
        FillRect(sOutput, {30, 100, 60, 20}, 0xFFFFFF80);
        FillRect(sOutput, {s.nTargetWidth - 7, 30, 7, 50}, 0x00FFFFFF);
        SGPUString sClock = Text("9F", -3, -2, 32, 0xFFFF00FF);
        sClock.nHAlign = sClock.nVAlign = sClock.nHRef = sClock.nVRef = 2;
        vStrings = {Text("L7g", 20, 24, 64, 0xFFFFFFFF), sClock};
    }

    /// The view of a frame without anything laid over it.
    STestImage Bare(const STestImage& sSource)
    {
        CTestFrame oFrame(sSource, IMAGE_FORMAT_RGB24);
        CEngineDewarper oPlain(GetParam().eEngine, s.nTargetWidth, s.nTargetHeight);
        EXPECT_TRUE(oPlain.Apply(s, oFrame));
        return oPlain.Picture();
    }

    SReferenceSetup s;
    const STestImage sFrame = AsymmetricPicture(FRAME, FRAME);
    STestImage sInput = PlainPicture(FRAME, FRAME, 0);
    STestImage sMaskImage = PlainPicture(FRAME, FRAME, 0);
    STestImage sOutput = PlainPicture(GetParam().sCase.nWidth, GetParam().sCase.nHeight, 0);
    TPolygons vMasks;
    TStrings vStrings;
    CEngineDewarper oDewarper;
};

TEST_P(Combinations, ShowEveryLayerUprightInItsPlace)
{
    CTestFrame oFrame(sFrame, IMAGE_FORMAT_RGB24);
    ASSERT_TRUE(oDewarper.Apply(s, oFrame));
    for (int i = 0; i < 16; ++i) {
        const bool bInput = (i & 1) != 0;
        const bool bMask = (i & 2) != 0;
        const bool bText = (i & 4) != 0;
        const bool bOutput = (i & 8) != 0;
        SCOPED_TRACE(std::string(bInput ? "input " : "") + (bMask ? "mask " : "") + (bText ? "text " : "") +
                     (bOutput ? "output" : ""));
        oDewarper->SetMaskPolygons(TPolygons());
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        if (bInput)
            SetInput(*oDewarper, sInput);
        if (bMask)
            oDewarper->SetMaskPolygons(vMasks);
        oDewarper->SetStrings(bText ? vStrings : TStrings());
        if (bOutput)
            SetOutput(*oDewarper, sOutput);
        else
            oDewarper->SetOutputOverlay(nullptr, 0, 0, 0, {});
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        const STestImage sPicture = oDewarper.Picture();

        // Opaque layers of the input are the same as another frame; the rest lies flat over its view.
        STestImage sSource = sFrame;
        if (bInput && !bMask)
            Blend(sSource, sInput);
        if (bMask)
            Blend(sSource, sMaskImage);
        STestImage sWanted = Bare(sSource);
        if (bText)
            DrawText(sWanted, vStrings);
        if (bOutput)
            Blend(sWanted, sOutput);
        const SImageDifference sDifference = CompareImages(sPicture, sWanted);
        EXPECT_LE(PixelsOff(sPicture, sWanted), s.eView == VIEW_FISHEYE ? 0 : 3)
            << "at " << sDifference.nMaxX << ", " << sDifference.nMaxY;
        if (i == 15 || i == 7 || HasFailure())
            WritePicture("combination " + EngineName(GetParam().eEngine) + " " + GetParam().sCase.pName +
                             " " + std::to_string(i),
                         HasFailure() ? SideBySide(sPicture, sWanted) : sPicture);
        EXPECT_NO_GL_ERROR();
    }
}

TEST_P(Combinations, TheViewBelowStandsAsTheLensSaysWithAndWithoutLayers)
{
    // The room's own way up does not depend on anything of the library.
    CTestFrame oFrame(sFrame, IMAGE_FORMAT_RGB24);
    ASSERT_TRUE(oDewarper.Apply(s, oFrame));
    const STestImage sWanted = CReferenceView(s).Render(sFrame, false);
    for (const bool bLayers : {false, true}) {
        if (bLayers) { // that cannot be seen
            oDewarper->SetStrings({Text(" ", 0, 0, 8)});
            SetOutput(*oDewarper, PlainPicture(s.nTargetWidth, s.nTargetHeight, 0));
        }
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        const STestImage sPicture = oDewarper.Picture();
        int nMarks = 0;
        int nRight = 0;
        for (int y = 5; y < s.nTargetHeight; y += 7)
            for (int x = 5; x < s.nTargetWidth; x += 7) {
                // Marks are places whose surroundings look alike, so that half a texel does not matter.
                bool bFlat = true;
                for (int i = 0; i < 9; ++i)
                    for (int k = 0; k < 3; ++k) {
                        const int nX = std::min(x + i % 3 * 3 - 3, s.nTargetWidth - 1);
                        const int nY = std::min(y + i / 3 * 3 - 3, s.nTargetHeight - 1);
                        bFlat = bFlat && std::abs(sWanted.At(nX, nY)[k] - sWanted.At(x, y)[k]) < 12;
                    }
                if (!bFlat || sWanted.At(x, y)[3] == 0)
                    continue;
                ++nMarks;
                int nWorst = 0;
                for (int k = 0; k < 3; ++k)
                    nWorst = std::max(nWorst, std::abs(sPicture.At(x, y)[k] - sWanted.At(x, y)[k]));
                nRight += nWorst < 12 ? 1 : 0;
            }
        EXPECT_GT(nMarks, 150);
        EXPECT_GE(nRight, nMarks * 98 / 100) << "of " << nMarks;
        if (HasFailure())
            WritePicture("combination " + EngineName(GetParam().eEngine) + " " + GetParam().sCase.pName +
                             " view",
                         SideBySide(sPicture, sWanted));
    }
}

INSTANTIATE_TEST_SUITE_P(Views, Combinations, testing::ValuesIn(WithBothEngines(CASES)), SEngineCaseName());

using QuadView = CEngineTest;
using TurnedViews = CEngineTest;

/// What an odd quad view leaves undrawn stays where it is, and stays black.
TEST_P(QuadView, LeavesTheSameRowAndColumnFreeInEveryCombination)
{
    SReferenceSetup s;
    s.eView = VIEW_VCAM_QUAD;
    s.nLensType = LENS_DSL419;
    s.nImageWidth = s.nImageHeight = FRAME;
    s.fPan = 90.0;
    s.fTilt = 30.0;
    s.fZoom = 100.0;
    STestImage sFrame = PlainPicture(FRAME, FRAME, 0xC0C0C0FF);
    CTestFrame oFrame(sFrame, IMAGE_FORMAT_RGB24);
    CEngineDewarper oDewarper(GetParam(), 81, 61);
    s.nTargetWidth = 81;
    s.nTargetHeight = 61;
    ASSERT_TRUE(oDewarper.Apply(s, oFrame));
    for (int i = 0; i < 4; ++i) {
        oDewarper->SetStrings((i & 1) != 0 ? TStrings{Text(" ", 10, 10, 16)} : TStrings());
        if ((i & 2) != 0)
            SetOutput(*oDewarper, PlainPicture(81, 61, 0));
        CGLRecorder::Get().Start();
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        if (GetParam() == ENGINE_GL) {
            const SGLCall sViewport = CGLRecorder::Get().Named("glViewport").back();
            EXPECT_EQ(
                (std::vector<int>{sViewport.Int(0), sViewport.Int(1), sViewport.Int(2), sViewport.Int(3)}),
                (std::vector<int>{0, 0, 81, 61}))
                << "what a frame leaves behind";
        }
        const STestImage sPicture = oDewarper.Picture();
        for (int x = 0; x < 81; ++x)
            ASSERT_EQ(sPicture.At(x, 0)[0], 0) << i << ": the top row, column " << x;
        for (int y = 0; y < 61; ++y)
            ASSERT_EQ(sPicture.At(80, y)[0], 0) << i << ": the last column, row " << y;
        for (const int y : {1, 30, 31, 60})
            for (const int x : {0, 39, 40, 79})
                ASSERT_EQ(sPicture.At(x, y)[0], 0xC0) << i << ": " << x << ", " << y;
    }
}

TEST_P(TurnedViews, TurnsAndFlipsMoveInputAndMasksButNeitherTextNorOutputOverlay)
{
    const STestImage sFrame = AsymmetricPicture(FRAME, FRAME);
    STestImage sMasked = sFrame;
    FillRect(sMasked, {14, 20, 34, 26}, MASK_COLOR);
    CTestFrame oFrame(sFrame, IMAGE_FORMAT_RGB24);
    CTestFrame oMasked(sMasked, IMAGE_FORMAT_RGB24);
    STestImage sOutput = PlainPicture(FRAME, FRAME, 0);
    FillRect(sOutput, {0, 0, FRAME, 3}, 0xFF00FF90);
    const TStrings vStrings = {Text("L", 12, 5, 64, 0xFFFFFFFF)};
    CEngineDewarper oDewarper(GetParam(), FRAME, FRAME);
    CEngineDewarper oPlain(GetParam(), FRAME, FRAME);
    oDewarper->SetMaskPolygons({{{{14, 20}, {48, 20}, {48, 46}, {14, 46}}, MASK_COLOR}});
    for (int i = 0; i < 64; ++i) {
        SCOPED_TRACE(i);
        for (CDewarper* pEach : {&*oDewarper, &*oPlain}) {
            pEach->SetViewType(VIEW_FISHEYE);
            pEach->SetRotation(i % 4 * 90);
            pEach->SetFlip((i & 4) != 0, (i & 8) != 0);
        }
        ASSERT_TRUE(oPlain.DrawFrame(oMasked));
        STestImage sWanted = oPlain.Picture();
        oDewarper->SetStrings((i & 16) != 0 ? vStrings : TStrings());
        if ((i & 16) != 0)
            DrawText(sWanted, vStrings);
        if ((i & 32) != 0) {
            SetOutput(*oDewarper, sOutput);
            Blend(sWanted, sOutput);
        }
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        ASSERT_LE(CompareImages(oDewarper.Picture(), sWanted).nMax, 1);
    }
}

INSTANTIATE_ENGINES(QuadView);
INSTANTIATE_ENGINES(TurnedViews);
