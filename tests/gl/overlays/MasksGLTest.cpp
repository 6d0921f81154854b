// Privacy masks: how they are painted, and that nothing takes them away.
#include "tests/gl/overlays/OverlayTools.h"

#include <GLES3/gl31.h>
#include <cmath>
#include <gtest/gtest.h>
#include <thread>

static const int WIDTH = 48;
static const int HEIGHT = 40;

static SGPolygon Box(int x, int y, int nWidth, int nHeight, unsigned int nColor)
{
    return {{{x, y}, {x + nWidth, y}, {x + nWidth, y + nHeight}, {x, y + nHeight}}, nColor};
}

class Masks : public CEngineTest
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(CompareImages(oView.Draw(), sFrame).nMax, 0);
        FillRect(sMasked, {10, 6, 20, 9}, 0x30A0C0FF);
    }

    void ExpectMasked() { EXPECT_EQ(CompareImages(oView.Draw(), sMasked).nMax, 0); }

    const STestImage sFrame = AsymmetricPicture(WIDTH, HEIGHT);
    STestImage sMasked = sFrame;
    const TPolygons vBox = {Box(10, 6, 20, 9, 0x30A0C0FF)};
    SEngineView oView{GetParam(), sFrame};
    CDewarper& oDewarper = *oView.oDewarper;
};

TEST_P(Masks, CoverTheirPixelsInTheirColour)
{
    oDewarper.SetMaskPolygons(vBox);
    ExpectMasked();
}

TEST_P(Masks, ComeAsBytesToo)
{
    // The same box: 4 points, big-endian, then its colour.
    unsigned char acBytes[] = {0,  4, 0,  10, 0,  6, 0,  30,   0,    6,    0,
                               30, 0, 15, 0,  10, 0, 15, 0x30, 0xA0, 0xC0, 0xFF};
    oDewarper.SetMaskPolygons(acBytes, static_cast<int>(sizeof acBytes));
    ExpectMasked();
    // And a red triangle, half transparent.
    unsigned char acTriangle[] = {0, 3, 0, 10, 0, 20, 0, 40, 0, 20, 0, 25, 0, 38, 0xFF, 0, 0, 0x80};
    oDewarper.SetMaskPolygons(acTriangle, static_cast<int>(sizeof acTriangle));
    STestImage sOverlay = PlainPicture(WIDTH, HEIGHT, 0);
    sOverlay.Set(25, 25, 128, 0, 0, 128);
    STestImage sWanted = sFrame;
    Blend(sWanted, sOverlay);
    const STestImage sPicture = oView.Draw();
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(sPicture.At(25, 25)[i], sWanted.At(25, 25)[i], 1) << i;
    oDewarper.SetMaskPolygons(nullptr, 0);
    EXPECT_EQ(CompareImages(oView.Draw(), sFrame).nMax, 0);
}

TEST_P(Masks, OfTwoPointsPaintNothing)
{
    oDewarper.SetMaskPolygons({{{{0, 0}, {40, 40}}, 0xFF0000FF}, {{}, 0xFF0000FF}, {{{5, 5}}, 0xFF0000FF}});
    EXPECT_EQ(CompareImages(oView.Draw(), sFrame).nMax, 0);
}

TEST_P(Masks, OfTwoPointsDoNotShowTheMaskBeforeThem)
{
    oDewarper.SetMaskPolygons({vBox[0], {{{0, 0}, {40, 40}}, 0xFF0000FF}});
    ExpectMasked();
}

TEST_P(Masks, WinOverAHostOverlayOfTheSameFrame)
{
    const STestImage sOverlay = PlainPicture(WIDTH, HEIGHT, 0);
    SetInput(oDewarper, sOverlay);
    oDewarper.SetMaskPolygons(vBox);
    ExpectMasked();
    oDewarper.SetMaskPolygons({});
    oView.Draw();
    oDewarper.SetMaskPolygons(vBox);
    SetInput(oDewarper, sOverlay);
    ExpectMasked();
}

TEST_P(Masks, WinOverAHostOverlayOfAnotherFrame)
{
    oDewarper.SetMaskPolygons(vBox);
    ExpectMasked();
    for (const int nSize : {WIDTH, 7}) { // an overlay of the frame's size, and of another
        SetInput(oDewarper, PlainPicture(nSize, HEIGHT, 0));
        ExpectMasked();
        SetInput(oDewarper, PlainPicture(nSize, HEIGHT, 0));
        SetInput(oDewarper, PlainPicture(nSize, HEIGHT, 0x00FF00FF));
        ExpectMasked();
    }
    oDewarper.SetInputOverlay(nullptr, 0, 0, 0);
    ExpectMasked();
    STestImage sAny = PlainPicture(4, 4, 0);
    oDewarper.SetInputOverlay(sAny.vPixels.data(), 0, 4, 0);
    ExpectMasked();
    std::thread oControl([&] { oDewarper.SetInputOverlay(nullptr, 0, 0, 0); });
    oControl.join();
    ExpectMasked();
}

TEST_P(Masks, CoverAlsoAfterARefusedOverlay)
{
    STestImage sAny = PlainPicture(4, 4, 0);
    oDewarper.SetInputOverlay(sAny.vPixels.data(), 0, 4, 0);
    ASSERT_TRUE(oDewarper.DrawGLScene(false));
    oDewarper.SetMaskPolygons(vBox);
    ExpectMasked();
}

TEST_P(Masks, FollowANewFrameSizeInPixelsOfThatFrame)
{
    oDewarper.SetMaskPolygons(vBox);
    ExpectMasked();
    for (const auto& [nWidth, nHeight] : {std::pair{96, 60}, std::pair{33, 29}, std::pair{48, 40}}) {
        const STestImage sOther = AsymmetricPicture(nWidth, nHeight);
        CTestFrame oOther(sOther, IMAGE_FORMAT_RGB24);
        ASSERT_TRUE(oDewarper.InitTarget(nWidth, nHeight));
        ASSERT_TRUE(oView.oDewarper.DrawFrame(oOther));
        STestImage sWanted = sOther;
        FillRect(sWanted, {10, 6, 20, 9}, 0x30A0C0FF);
        EXPECT_EQ(CompareImages(oView.oDewarper.Picture(), sWanted).nMax, 0) << nWidth;
    }
}

TEST_P(Masks, StayInPlaceWhenTheFormatChanges)
{
    oDewarper.SetMaskPolygons(vBox);
    ExpectMasked();
    for (const int nFormat :
         {IMAGE_FORMAT_NV12, IMAGE_FORMAT_YUV420P, IMAGE_FORMAT_RGBA32, IMAGE_FORMAT_GRAY8,
          IMAGE_FORMAT_BGR24, IMAGE_FORMAT_NV21, IMAGE_FORMAT_BGRA32}) {
        SCOPED_TRACE(nFormat);
        CTestFrame oOther(sFrame, nFormat);
        ASSERT_TRUE(oView.oDewarper.DrawFrame(oOther));
        const STestImage sPicture = oView.oDewarper.Picture();
        for (int y = 6; y < 15; ++y)
            for (int x = 10; x < 30; ++x)
                ASSERT_EQ(sPicture.Word(x, y), 0x30A0C0FFu) << x << ", " << y;
        if (nFormat == IMAGE_FORMAT_BGR24)
            CGLRecorder::Get().TakeErrors(); // drivers without that format say so once
    }
}

TEST_P(Masks, LeaveTheTargetsViewportAlone)
{
    ASSERT_TRUE(oDewarper.InitTarget(96, 80)); // twice the frame
    oView.Draw();
    oDewarper.SetMaskPolygons(vBox);
    const STestImage sPicture = oView.Draw();
    for (int y = 0; y < 80; ++y)
        for (int x = 0; x < 96; ++x)
            ASSERT_EQ(sPicture.Word(x, y), sMasked.Word(x / 2, y / 2)) << x << ", " << y;
}

TEST_P(Masks, AnEmptyListRemovesTheInputOverlay)
{
    for (const bool bHost : {false, true}) {
        if (bHost)
            SetInput(oDewarper, PatternPicture(WIDTH, HEIGHT));
        else
            oDewarper.SetMaskPolygons(vBox);
        oView.Draw();
        oDewarper.SetMaskPolygons({});
        EXPECT_EQ(CompareImages(oView.Draw(), sFrame).nMax, 0);
    }
}

INSTANTIATE_ENGINES(Masks);

/// The passes that paint them.
class MaskPasses : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(CompareImages(oView.Draw(), sFrame).nMax, 0);
        FillRect(sMasked, {10, 6, 20, 9}, 0x30A0C0FF);
    }

    void ExpectMasked() { EXPECT_EQ(CompareImages(oView.Draw(), sMasked).nMax, 0); }

    const STestImage sFrame = AsymmetricPicture(WIDTH, HEIGHT);
    STestImage sMasked = sFrame;
    const TPolygons vBox = {Box(10, 6, 20, 9, 0x30A0C0FF)};
    SFlatView oView{sFrame};
    CCustomGPUDewarper& oDewarper = oView.oDewarper;
};

TEST_F(MaskPasses, LeaveTheirImageInTheInputOverlaysPlace)
{
    oDewarper.SetMaskPolygons(vBox);
    ExpectMasked();
    EXPECT_TRUE(oDewarper.sMainShader.bInputOverlay);
    EXPECT_EQ(oDewarper.sInputOverlay.nTextureUnit, static_cast<unsigned int>(GL_TEXTURE5));
    EXPECT_EQ(oDewarper.sInputOverlay.nWidth, WIDTH);
    oDewarper.SetMaskPolygons({{{{0, 0}, {40, 40}}, 0xFF0000FF}, {{}, 0xFF0000FF}});
    oView.Draw();
    EXPECT_EQ(oDewarper.vMaskPolygons.size(), 2u);
    EXPECT_TRUE(oDewarper.sMainShader.bInputOverlay);
    for (const bool bHost : {false, true}) {
        if (bHost)
            SetInput(oDewarper, PatternPicture(WIDTH, HEIGHT));
        else
            oDewarper.SetMaskPolygons(vBox);
        oView.Draw();
        oDewarper.SetMaskPolygons({});
        EXPECT_EQ(CompareImages(oView.Draw(), sFrame).nMax, 0);
        EXPECT_EQ(oDewarper.sInputOverlay.nTexture, 0u);
        EXPECT_FALSE(oDewarper.sMainShader.bInputOverlay);
    }
}

TEST_F(MaskPasses, DrawEachIntoTheSecondTextureAndCopyItBackIntoTheFirst)
{
    oDewarper.SetMaskPolygons(vBox);
    oView.Draw(); // programs and textures are there
    oDewarper.SetMaskPolygons({Box(1, 2, 3, 4, 0x10203040),
                               {{{1, 1}, {5, 5}}, 0xFFFFFFFF},
                               {{{0, 0}, {9, 0}, {12, 5}, {9, 9}, {0, 9}}, 0xFF0000FF}});
    CGLRecorder& oRecorder = CGLRecorder::Get();
    oRecorder.Start();
    ASSERT_TRUE(oDewarper.DrawGLScene(false));
    const unsigned int nA = oDewarper.nMaskTextureA;
    const unsigned int nB = oDewarper.nMaskTextureB;
    const int nColor = oDewarper.sMaskShader.nColorLocation;
    // What was attached, which unit was read and which colour was set at each draw call.
    std::string strDraws;
    unsigned int nTarget = 0;
    int nUnit = -1;
    double afColor[4] = {};
    for (const SGLCall& sCall : oRecorder.Calls()) {
        const std::string strName = sCall.pName;
        if (strName == "glFramebufferTexture2D")
            nTarget = static_cast<unsigned int>(sCall.Int(3));
        else if (strName == "glUniform1i" && sCall.Int(0) == oDewarper.sMaskShader.nSampler0Location)
            nUnit = sCall.Int(1);
        else if (strName == "glUniform4f" && sCall.Int(0) == nColor)
            std::copy_n(sCall.aArgs + 1, 4, afColor);
        else if (strName == "glDrawArrays" && (nTarget == nA || nTarget == nB))
            strDraws += std::string(nTarget == nA ? "A" : "B") + " reads " + std::to_string(nUnit) + " red " +
                        std::to_string(std::lround(afColor[0] * 255.0)) + " alpha " +
                        std::to_string(std::lround(afColor[3] * 255.0)) + ", " +
                        std::to_string(sCall.Int(2)) + " vertices\n";
    }
    EXPECT_EQ(strDraws, "B reads 10 red 16 alpha 64, 6 vertices\n"
                        "A reads 11 red 0 alpha 0, 6 vertices\n"
                        "B reads 10 red 255 alpha 255, 9 vertices\n"
                        "A reads 11 red 0 alpha 0, 9 vertices\n");
    EXPECT_EQ(oRecorder.Count("glClear"), 2 + 1 + 1) << "the pair, the input overlay, the view";
    EXPECT_EQ(oRecorder.Count("glGenTextures") + oRecorder.Count("glGenFramebuffers"), 0);
    EXPECT_EQ(oRecorder.Count("glLinkProgram"), 0);
    EXPECT_EQ(oRecorder.Count("glGenBuffers"), 4) << "two for each polygon that has a mesh";
    EXPECT_EQ(oRecorder.Count("glDeleteBuffers"), 4);
}

TEST_F(MaskPasses, AreNotRunAgainInASteadyFrame)
{
    oDewarper.SetMaskPolygons(vBox);
    ExpectMasked();
    CGLRecorder::Get().Start();
    ASSERT_TRUE(oDewarper.DrawGLScene(false));
    EXPECT_EQ(CGLRecorder::Get().Count("glDrawArrays"), 1);
    EXPECT_EQ(CGLRecorder::Get().Count("glFramebufferTexture2D"), 0);
    EXPECT_EQ(NamesTouched(), 0);
    EXPECT_EQ(CompareImages(oView.oDewarper.Picture(), sMasked).nMax, 0);
}

TEST_F(MaskPasses, ComeBackAfterARestart)
{
    oDewarper.SetMaskPolygons(vBox);
    ExpectMasked();
    for (int i = 0; i < 3; ++i) {
        oDewarper.FreeOpenGLObjects();
        oView.oDewarper.SetViewType(VIEW_FISHEYE);
        ExpectMasked();
        oDewarper.ReinitializeOpenGLObjects();
        ExpectMasked();
        ASSERT_TRUE(oView.oDewarper.StopGL());
        ASSERT_TRUE(oView.oDewarper.StartGL());
        ExpectMasked();
    }
    // Set while GL is down.
    ASSERT_TRUE(oView.oDewarper.StopGL());
    oDewarper.SetMaskPolygons({Box(0, 0, 5, 5, 0x30A0C0FF)});
    SetInput(oDewarper, PlainPicture(WIDTH, HEIGHT, 0));
    ASSERT_TRUE(oView.oDewarper.StartGL());
    sMasked = sFrame;
    FillRect(sMasked, {0, 0, 5, 5}, 0x30A0C0FF);
    ExpectMasked();
}

TEST_F(MaskPasses, ThatCannotBeRunKeepTheFrameFromBeingShown)
{
    oDewarper.SetMaskPolygons(vBox);
    // The view's program can be made, the masks' cannot.
    CGLRecorder::Get().Inject("GL_LINK_STATUS", 0.0, 1, 2);
    EXPECT_FALSE(oDewarper.DrawGLScene(false));
    EXPECT_FALSE(oDewarper.DrawGLScene(false)) << "tried again, in vain";
    EXPECT_FALSE(oDewarper.DrawGLScene(false)) << "not tried any more: nothing changed";
    oDewarper.SetInterpolationType(INTERPOLATION_NEAREST);
    EXPECT_TRUE(oDewarper.DrawGLScene(false)) << "any request has everything tried again";
    EXPECT_EQ(CompareImages(oView.oDewarper.Picture(), sMasked).nMax, 0);
}

TEST_F(MaskPasses, RunAgainAndAgainGainNoName)
{
    oDewarper.SetMaskPolygons(vBox);
    ExpectMasked();
    const int nNames = CGLRecorder::Get().LivingGLNames();
    for (int i = 0; i < 100; ++i) {
        oDewarper.SetMaskPolygons({Box(i % 20, i % 17, 9, 9, 0xFF), vBox[0]});
        if (i % 10 == 0)
            SetInput(oDewarper, PlainPicture(3 + i, 5, 0));
        ASSERT_TRUE(oDewarper.DrawGLScene(false));
    }
    EXPECT_EQ(CGLRecorder::Get().LivingGLNames(), nNames);
}
