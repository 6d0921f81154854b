// Masks and the host's image share one place: who has it when, and what the log says of it.
#include "tests/gl/overlays/OverlayTools.h"

#include <GLES3/gl31.h>
#include <gtest/gtest.h>

static const int WIDTH = 48;
static const int HEIGHT = 40;

class MaskPlace : public CEngineTest
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(CompareImages(oView.Draw(), sFrame).nMax, 0);
        FillRect(sMasked, {10, 6, 20, 9}, 0x30A0C0FF);
    }
    /// A frame with masks in force.
    void DrawMasked()
    {
        oDewarper.SetMaskPolygons(vBox);
        ASSERT_EQ(CompareImages(oView.Draw(), sMasked).nMax, 0);
    }
    void ExpectLogo() { EXPECT_EQ(CompareImages(oView.Draw(), sLogo).nMax, 0); }

    const STestImage sFrame = AsymmetricPicture(WIDTH, HEIGHT);
    const STestImage sLogo = PatternPicture(WIDTH, HEIGHT);
    STestImage sMasked = sFrame;
    const TPolygons vBox = {{{{10, 6}, {30, 6}, {30, 15}, {10, 15}}, 0x30A0C0FF}};
    SEngineView oView{GetParam(), sFrame};
    CDewarper& oDewarper = *oView.oDewarper;
};

TEST_P(MaskPlace, ALogoThatIsSetAfterTheListWasEmptiedStays)
{
    DrawMasked();
    oDewarper.SetMaskPolygons({});
    SetInput(oDewarper, sLogo);
    ExpectLogo();
    ExpectLogo();
}

TEST_P(MaskPlace, ALogoThatIsSetAfterAnEmptyListStaysThoughThereWereNoMasks)
{
    oDewarper.SetMaskPolygons({});
    SetInput(oDewarper, sLogo);
    ExpectLogo();
    oDewarper.SetMaskPolygons({});
    SetInput(oDewarper, sLogo);
    ExpectLogo();
}

TEST_P(MaskPlace, ALogoThatIsSetBeforeTheListIsEmptiedGoes)
{
    SetInput(oDewarper, sLogo);
    oDewarper.SetMaskPolygons({});
    EXPECT_EQ(CompareImages(oView.Draw(), sFrame).nMax, 0);
    SetInput(oDewarper, sLogo);
    ExpectLogo();
    oDewarper.SetMaskPolygons({});
    EXPECT_EQ(CompareImages(oView.Draw(), sFrame).nMax, 0);
}

TEST_P(MaskPlace, AnImageSetWhileThereAreMasksIsKeptOutWithOneLine)
{
    DrawMasked();
    CLogCapture oLog;
    EXPECT_EQ(SetInput(oDewarper, sLogo), 1);
    ASSERT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
    EXPECT_TRUE(
        oLog.Contains("SetInputOverlay: privacy masks stand in the input overlay's place; the image is "
                      "kept out"))
        << oLog.Text();
    EXPECT_EQ(oDewarper.GetLastErrorText(), oLog.Lines()[0].strText);
    EXPECT_EQ(CompareImages(oView.Draw(), sMasked).nMax, 0);
    EXPECT_EQ(oLog.Lines().size(), 1u) << "and no other at the frame: " << oLog.Text();
    // The image that was kept out does not come back with the end of the masks.
    oDewarper.SetMaskPolygons({});
    EXPECT_EQ(CompareImages(oView.Draw(), sFrame).nMax, 0);
}

TEST_P(MaskPlace, AnImageTakenAwayWhileThereAreMasksTakesNoMaskAwayAndSaysSo)
{
    DrawMasked();
    CLogCapture oLog;
    EXPECT_EQ(oDewarper.SetInputOverlay(nullptr, 0, 0, 0), 1);
    ASSERT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
    EXPECT_TRUE(oLog.Contains("SetInputOverlay: privacy masks stand in the input overlay's place; they stay"))
        << oLog.Text();
    EXPECT_EQ(CompareImages(oView.Draw(), sMasked).nMax, 0);
    EXPECT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
}

TEST_P(MaskPlace, ARefusedImageAfterTheMasksWereEmptiedLeavesThePlainPicture)
{
    for (const bool bFrameBetween : {false, true}) {
        DrawMasked();
        oDewarper.SetMaskPolygons({});
        if (bFrameBetween)
            oView.Draw();
        STestImage sAny = PlainPicture(4, 4, 0x00FF00FF);
        EXPECT_EQ(oDewarper.SetInputOverlay(sAny.vPixels.data(), 0, 4, 0), 0);
        EXPECT_EQ(CompareImages(oView.Draw(), sFrame).nMax, 0) << bFrameBetween;
        EXPECT_EQ(CompareImages(oView.Draw(), sFrame).nMax, 0) << bFrameBetween;
    }
}

TEST_P(MaskPlace, ARefusedImageShowsAYUVFrameInItsColours)
{
    for (const int nFormat : {IMAGE_FORMAT_NV12, IMAGE_FORMAT_NV21, IMAGE_FORMAT_YUV420P}) {
        SEngineView oYUV(GetParam(), sFrame, nFormat);
        const STestImage sWanted = oYUV.Draw();
        STestImage sAny = PlainPicture(4, 4, 0);
        EXPECT_EQ(oYUV.oDewarper->SetInputOverlay(sAny.vPixels.data(), 4, 20000, 0), 0);
        EXPECT_EQ(CompareImages(oYUV.Draw(), sWanted).nMax, 0) << nFormat;
    }
}

TEST_P(MaskPlace, MasksOfAFrameOfAnotherSizeAreThereWithItsFirstPicture)
{
    DrawMasked();
    for (const int nFactor : {2, 1, 3}) {
        const int w = WIDTH * nFactor;
        const int h = HEIGHT * nFactor;
        ASSERT_TRUE(oDewarper.InitTarget(w, h));
        CTestFrame oOther(PlainPicture(w, h, 0xFF0000FF), IMAGE_FORMAT_RGB24);
        // The whole of the new frame is masked before it comes, and nobody looks in between.
        oDewarper.SetMaskPolygons({{{{0, 0}, {w, 0}, {w, h}, {0, h}}, 0x30A0C0FF}});
        ASSERT_TRUE(oView.oDewarper.DrawFrame(oOther));
        EXPECT_EQ(CompareImages(oView.oDewarper.Picture(), PlainPicture(w, h, 0x30A0C0FF)).nMax, 0)
            << nFactor;
    }
}

INSTANTIATE_ENGINES(MaskPlace);

TEST(MaskBuffers, TheTextureOfTheSharedPlaceGoesWhenNobodyHasIt)
{
    const STestImage sFrame = AsymmetricPicture(WIDTH, HEIGHT);
    SFlatView oView(sFrame);
    CCustomGPUDewarper& oDewarper = oView.oDewarper;
    SetInput(oDewarper, PatternPicture(WIDTH, HEIGHT));
    oView.Draw();
    EXPECT_NE(oDewarper.sInputOverlay.nTexture, 0u);
    oDewarper.SetMaskPolygons({});
    EXPECT_EQ(CompareImages(oView.Draw(), sFrame).nMax, 0);
    EXPECT_EQ(oDewarper.sInputOverlay.nTexture, 0u);
    STestImage sAny = PlainPicture(4, 4, 0x00FF00FF);
    EXPECT_EQ(oDewarper.SetInputOverlay(sAny.vPixels.data(), 0, 4, 0), 0);
    EXPECT_TRUE(oDewarper.sMainShader.bInputOverlay) << "the wish stands until the next frame";
    EXPECT_EQ(CompareImages(oView.Draw(), sFrame).nMax, 0);
    EXPECT_EQ(oDewarper.sInputOverlay.nTexture, 0u);
}

TEST(MaskBuffers, AMaskWhoseMeshGetsNoBufferRefusesTheFrame)
{
    const STestImage sFrame = AsymmetricPicture(WIDTH, HEIGHT);
    SFlatView oView(sFrame);
    CCustomGPUDewarper& oDewarper = oView.oDewarper;
    const TPolygons vOne = {{{{10, 6}, {30, 6}, {30, 15}, {10, 15}}, 0x30A0C0FF}};
    oDewarper.SetMaskPolygons(vOne);
    ASSERT_EQ(oView.Draw().Word(12, 8), 0x30A0C0FFu);
    CLogCapture oLog;
    const TPolygons vTwo = {{{{1, 1}, {5, 1}, {5, 5}}, 0xFF}, vOne[0]};
    // Two buffers a mask: any of the four may be the one that is not to be had.
    for (int nSkip = 0; nSkip < 4; ++nSkip) {
        SCOPED_TRACE(nSkip);
        oDewarper.SetMaskPolygons(vTwo);
        ASSERT_TRUE(oDewarper.SetTexture(oView.oFrame.Image(), false, nullptr, 0));
        const int nNames = CGLRecorder::Get().LivingGLNames();
        CGLRecorder::Get().Inject("glGenBuffers", 0.0, nSkip, 1);
        EXPECT_FALSE(oDewarper.DrawGLScene(false));
        CGLRecorder::Get().ClearInjections();
        EXPECT_LE(CGLRecorder::Get().LivingGLNames(), nNames) << "nothing is left of the try";
        EXPECT_TRUE(oDewarper.DrawGLScene(false)) << oDewarper.GetLastErrorText();
        EXPECT_EQ(oView.oDewarper.Picture().Word(12, 8), 0x30A0C0FFu);
        EXPECT_EQ(oView.oDewarper.Picture().Word(4, 2), 0x000000FFu);
    }
    EXPECT_NO_GL_ERROR();
}
