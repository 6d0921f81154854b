// Overlay images: what is copied, what is uploaded, when, and from which thread.
#include "dewarp/Rooms.h"
#include "tests/gl/overlays/OverlayTools.h"

#include <GLES3/gl31.h>
#include <gtest/gtest.h>
#include <limits>
#include <thread>

static const int WIDTH = 48;
static const int HEIGHT = 40;

/// The overlay uploads of one frame without new input pixels.
static std::vector<SGLCall> UploadsOf(SFlatView& oView, const char* pCall)
{
    CGLRecorder::Get().Start();
    EXPECT_TRUE(oView.oDewarper.DrawGLScene(false));
    return CGLRecorder::Get().Named(pCall);
}

class OverlayImages : public testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(CompareImages(oView.Draw(), sFrame).nMax, 0); }

    const STestImage sFrame = AsymmetricPicture(WIDTH, HEIGHT);
    SFlatView oView{sFrame};
    CCustomGPUDewarper& oDewarper = oView.oDewarper;
};

TEST_F(OverlayImages, TheFlagOfTheInputOverlayFollowsThePointer)
{
    const STestImage sOverlay = PatternPicture(WIDTH, HEIGHT);
    EXPECT_EQ(SetInput(oDewarper, sOverlay), 1);
    EXPECT_TRUE(oDewarper.sMainShader.bInputOverlay);
    oDewarper.SetInputOverlay(nullptr, 0, 0, 0);
    EXPECT_FALSE(oDewarper.sMainShader.bInputOverlay);
    STestImage sAny = sOverlay;
    EXPECT_EQ(oDewarper.SetInputOverlay(sAny.vPixels.data(), 0, 100, 0), 0);
    EXPECT_TRUE(oDewarper.sMainShader.bInputOverlay) << "of a refused one too";
    SetOutput(oDewarper, sOverlay);
    EXPECT_EQ(oDewarper.SetOutputOverlay(sAny.vPixels.data(), 0, 100, 0), 0);
    EXPECT_EQ(oDewarper.sOutputOverlay.nWidth, WIDTH);
}

TEST_F(OverlayImages, AWholeImageIsUploadedOnceAndLaterIntoTheSameTexture)
{
    SetOutput(oDewarper, PatternPicture(WIDTH, HEIGHT));
    EXPECT_TRUE(oDewarper.sOutputOverlay.bRealloc);
    int nImages = 0;
    for (const SGLCall& sCall : UploadsOf(oView, "glTexImage2D"))
        nImages += sCall.aArgs[8] != 0.0 && sCall.Int(3) == WIDTH && sCall.Int(4) == HEIGHT ? 1 : 0;
    EXPECT_EQ(nImages, 1) << "beside the two frame textures, which get no pixels";
    const unsigned int nTexture = oDewarper.sOutputOverlay.nTexture;

    CGLRecorder::Get().Start();
    EXPECT_EQ(UploadsOf(oView, "glTexSubImage2D").size() + UploadsOf(oView, "glTexImage2D").size(), 0u);
    SetOutput(oDewarper, PlainPicture(WIDTH, HEIGHT, 0x102030FF));
    EXPECT_FALSE(oDewarper.sOutputOverlay.bRealloc);
    const std::vector<SGLCall> vUploads = UploadsOf(oView, "glTexSubImage2D");
    ASSERT_EQ(vUploads.size(), 1u);
    EXPECT_EQ(vUploads[0].Int(2), 0);
    EXPECT_EQ(vUploads[0].Int(3), 0);
    EXPECT_EQ(vUploads[0].Int(4), WIDTH);
    EXPECT_EQ(vUploads[0].Int(5), HEIGHT);
    EXPECT_EQ(CGLRecorder::Get().Count("glTexImage2D"), 0);
    EXPECT_EQ(NamesTouched(), 0);
    EXPECT_EQ(oDewarper.sOutputOverlay.nTexture, nTexture);
    EXPECT_EQ(oView.oDewarper.Picture().Word(7, 9), 0x102030FFu);

    SetOutput(oDewarper, PatternPicture(WIDTH, HEIGHT / 2));
    EXPECT_TRUE(oDewarper.sOutputOverlay.bRealloc);
    EXPECT_EQ(UploadsOf(oView, "glTexImage2D").size(), 1u);
    EXPECT_EQ(CGLRecorder::Get().Count("glDeleteTextures"), 1);
    EXPECT_EQ(CGLRecorder::Get().Count("glGenTextures"), 1);
}

TEST_F(OverlayImages, RectanglesCopyAndUploadExactlyTheirPixels)
{
    SetOutput(oDewarper, PlainPicture(WIDTH, HEIGHT, 0x010203FF));
    oView.Draw();
    const STestImage sNew = PatternPicture(WIDTH, HEIGHT);
    const std::vector<SGRect> vRects = {{10, 20, 5, 2}, {0, 0, 1, 1}, {40, 30, 8, 10}};
    EXPECT_EQ(SetOutput(oDewarper, sNew, vRects), 1);
    STestImage sWanted = PlainPicture(WIDTH, HEIGHT, 0x010203FF);
    for (const SGRect& rRect : vRects)
        for (int y = rRect.y; y < rRect.y + rRect.height; ++y)
            for (int x = rRect.x; x < rRect.x + rRect.width; ++x)
                std::copy_n(sNew.At(x, y), 4, sWanted.At(x, y));
    EXPECT_TRUE(std::equal(sWanted.vPixels.begin(), sWanted.vPixels.end(), oDewarper.sOutputOverlay.pData));

    const std::vector<SGLCall> vUploads = UploadsOf(oView, "glTexSubImage2D");
    ASSERT_EQ(vUploads.size(), vRects.size());
    const unsigned char* pPixels = oDewarper.sOutputOverlay.pData;
    for (std::size_t i = 0; i < vRects.size(); ++i) {
        EXPECT_EQ(vUploads[i].Int(2), vRects[i].x);
        EXPECT_EQ(vUploads[i].Int(3), vRects[i].y);
        EXPECT_EQ(vUploads[i].Int(4), vRects[i].width);
        EXPECT_EQ(vUploads[i].Int(5), vRects[i].height);
        EXPECT_EQ(vUploads[i].aArgs[8], static_cast<double>(reinterpret_cast<std::uintptr_t>(
                                            pPixels + (vRects[i].y * WIDTH + vRects[i].x) * 4)));
    }
    EXPECT_EQ(NamesTouched(), 0);
    EXPECT_EQ(CompareImages(oView.oDewarper.Picture(), sWanted).nMax, 0);
}

TEST_F(OverlayImages, RectanglesAreClippedToTheImage)
{
    const int nMost = std::numeric_limits<int>::max();
    const int nLeast = std::numeric_limits<int>::min();
    SetOutput(oDewarper, PlainPicture(WIDTH, HEIGHT, 0x010203FF));
    oView.Draw();
    const STestImage sNew = PatternPicture(WIDTH, HEIGHT);
    struct SCase
    {
        SGRect sGiven;
        SGRect sUploaded; ///< no width: nothing
    };
    const SCase aCases[] = {
        {{-3, -4, 8, 9}, {0, 0, 5, 5}},
        {{WIDTH - 2, HEIGHT - 1, 100, 100}, {WIDTH - 2, HEIGHT - 1, 2, 1}},
        {{5, 6, nMost, nMost}, {5, 6, WIDTH - 5, HEIGHT - 6}},
        {{nMost, 0, nMost, 1}, {}},
        {{nLeast, nLeast, nMost, nMost}, {}},
        {{nLeast, 0, nLeast, 10}, {}},
        {{0, HEIGHT, WIDTH, 1}, {}},
        {{WIDTH, 0, 1, HEIGHT}, {}},
        {{-1, 0, 1, 1}, {}},
        {{3, 3, 0, 5}, {}},
        {{3, 3, 5, 0}, {}},
        {{3, 3, -5, 5}, {}},
        {{3, 3, 5, -1}, {}},
    };
    for (const SCase& sCase : aCases) {
        SCOPED_TRACE(testing::PrintToString(
            std::vector<int>{sCase.sGiven.x, sCase.sGiven.y, sCase.sGiven.width, sCase.sGiven.height}));
        EXPECT_EQ(SetOutput(oDewarper, sNew, {sCase.sGiven}), 1);
        const std::vector<SGLCall> vUploads = UploadsOf(oView, "glTexSubImage2D");
        ASSERT_EQ(vUploads.size(), sCase.sUploaded.width == 0 ? 0u : 1u);
        if (vUploads.empty())
            continue;
        EXPECT_EQ(vUploads[0].Int(2), sCase.sUploaded.x);
        EXPECT_EQ(vUploads[0].Int(3), sCase.sUploaded.y);
        EXPECT_EQ(vUploads[0].Int(4), sCase.sUploaded.width);
        EXPECT_EQ(vUploads[0].Int(5), sCase.sUploaded.height);
    }
}

TEST_F(OverlayImages, RectanglesThatNoFrameUploadsDoNotPileUp)
{
    STestImage sPicture = PlainPicture(WIDTH, HEIGHT, 0x112233FF);
    SetOutput(oDewarper, sPicture);
    oView.Draw();
    for (int i = 0; i < 100000; ++i) {
        const SGRect sRect = {i % 40, i % 30, 3, 2};
        ASSERT_EQ(oDewarper.SetOutputOverlay(sPicture.vPixels.data(), WIDTH, HEIGHT, 0, {sRect}), 1);
    }
    FillRect(sPicture, {10, 10, 20, 20}, 0xFF8000FF);
    ASSERT_EQ(SetOutput(oDewarper, sPicture, {{10, 10, 20, 20}}), 1);
    EXPECT_LT(oDewarper.sOutputOverlay.vDirtyRects.size(), 1000u);
    EXPECT_EQ(CompareImages(oView.Draw(), sPicture).nMax, 0);
}

TEST_F(OverlayImages, NullRemovesTheImageAndItsTexture)
{
    const int nNames = CGLRecorder::Get().LivingGLNames();
    SetInput(oDewarper, PatternPicture(WIDTH, HEIGHT));
    SetOutput(oDewarper, PatternPicture(WIDTH, HEIGHT));
    oView.Draw();
    const unsigned int nInput = oDewarper.sInputOverlay.nTexture;
    const unsigned int nOutput = oDewarper.sOutputOverlay.nTexture;
    ASSERT_TRUE(nInput != 0 && nOutput != 0);
    EXPECT_EQ(oDewarper.SetInputOverlay(nullptr, 5, 5, 0), 1);
    EXPECT_EQ(oDewarper.SetOutputOverlay(nullptr, 5, 5, 0), 1);
    EXPECT_FALSE(oDewarper.sMainShader.bInputOverlay);
    EXPECT_EQ(oDewarper.sInputOverlay.nWidth, 0);
    EXPECT_EQ(oDewarper.sOutputOverlay.nTexture, 0u);
    EXPECT_EQ(CompareImages(oView.Draw(), sFrame).nMax, 0);
    EXPECT_FALSE(glIsTexture(nInput));
    EXPECT_FALSE(glIsTexture(nOutput));
    // What stays are the two frame textures, their framebuffer, two programs (three names each), which may be
    // wanted again, and the overlay's quad.
    EXPECT_EQ(CGLRecorder::Get().LivingGLNames(), nNames + 2 + 1 + 6 + 2);
    EXPECT_EQ(oDewarper.SetInputOverlay(nullptr, 0, 0, 0), 1) << "also when there is none";
}

/// A dewarper whose driver has small textures.
class CSmallTextures : public CTestDewarper
{
public:
    explicit CSmallTextures(int nMost) : CTestDewarper(WIDTH, HEIGHT)
    {
        pRooms->oTextures.nMaxTextureSize = nMost;
    }
};

TEST(OversizedOverlays, LeaveTheViewAsItIsWhereTheDriverHasNoTextureForThem)
{
    CSmallTextures oDewarper(WIDTH);
    CTestFrame oFrame(AsymmetricPicture(WIDTH, HEIGHT), IMAGE_FORMAT_RGBA32);
    oDewarper.SetViewType(VIEW_FISHEYE);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    const STestImage sBefore = oDewarper.Picture();
    STestImage sOverlay = PatternPicture(WIDTH + 1, 4);
    CLogCapture oLog;
    EXPECT_EQ(oDewarper.SetInputOverlay(sOverlay.vPixels.data(), WIDTH + 1, 4, 0), 1);
    EXPECT_EQ(oDewarper.SetOutputOverlay(sOverlay.vPixels.data(), WIDTH + 1, 4, 0), 1);
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
        EXPECT_EQ(oDewarper.Picture().vPixels, sBefore.vPixels);
        EXPECT_EQ(oLog.Lines().size(), 2u) << oLog.Text();
    }
}

TEST_F(OverlayImages, AControlThreadTouchesNoGL)
{
    const STestImage sOverlay = PatternPicture(WIDTH, HEIGHT);
    for (const bool bOtherSize : {false, true}) {
        SetInput(oDewarper, sOverlay);
        SetOutput(oDewarper, sOverlay);
        oView.Draw();
        CGLRecorder::Get().Start();
        std::thread oControl([&] {
            if (bOtherSize) {
                SetInput(oDewarper, PatternPicture(9, 9));
                SetOutput(oDewarper, PatternPicture(9, 9), {{1, 1, 2, 2}});
            }
            oDewarper.SetInputOverlay(nullptr, 0, 0, 0);
            oDewarper.SetOutputOverlay(nullptr, 0, 0, 0);
            oDewarper.SetMaskPolygons({});
            oDewarper.SetStrings(TStrings());
        });
        oControl.join();
        EXPECT_EQ(GLCalls(), 0) << CGLRecorder::Get().Dump();
        EXPECT_EQ(CompareImages(oView.Draw(), sFrame).nMax, 0);
        EXPECT_EQ(CGLRecorder::Get().Count("glDeleteTextures"), 1) << "both at once, on this thread";
    }
}

TEST_F(OverlayImages, WithoutItsProgramTheViewIsShownWithoutTheOverlay)
{
    SetOutput(oDewarper, PatternPicture(WIDTH, HEIGHT));
    CGLRecorder::Get().Inject("GL_LINK_STATUS", 0.0, 1); // the view's own program is linked first
    CLogCapture oLog;
    EXPECT_EQ(CompareImages(oView.Draw(), sFrame).nMax, 0);
    CGLRecorder::Get().ClearInjections();
    EXPECT_EQ(CompareImages(oView.Draw(), PatternPicture(WIDTH, HEIGHT)).nMax, 0);
}
