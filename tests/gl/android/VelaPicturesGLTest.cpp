// Pictures out of graphic buffers, beside those of the desktop class.
#include "TestVela.h"

#include "dewarp/records/YUVColour.h"
#include <thread>

namespace
{

const int TARGET_WIDTH = 320;
const int TARGET_HEIGHT = 180;
const int INPUT_SIZE = 480;

struct SViewCase
{
    const char* pName;
    EViewType eView;
    EMountType eMount;
    double fPan;
    double fTilt;
    double fZoom;
};

const SViewCase VIEWS[] = {
    {"vcam", VIEW_VCAM, MOUNT_CEILING, 30.0, 40.0, 110.0},
    {"vcam on a wall", VIEW_VCAM, MOUNT_WALL, 80.0, 100.0, 120.0},
    {"quad", VIEW_VCAM_QUAD, MOUNT_CEILING, 10.0, 50.0, 120.0},
    {"fisheye", VIEW_FISHEYE, MOUNT_CEILING, 5.0, -3.0, 150.0},
    {"circular", VIEW_FISHEYE_CIRCULAR, MOUNT_CEILING, 0.0, 0.0, 180.0},
    {"panorama", VIEW_PANORAMA_FULL, MOUNT_CEILING, 20.0, 0.0, 180.0},
    {"quarter", VIEW_PANORAMA_QUARTER, MOUNT_FLOOR, 20.0, 0.0, 180.0},
    {"half", VIEW_PANORAMA_HALF, MOUNT_CEILING, 20.0, 0.0, 120.0},
    {"dual", VIEW_PANORAMA_DUAL, MOUNT_CEILING, 20.0, 0.0, 180.0},
    {"triple", VIEW_PANORAMA_TRIPLE, MOUNT_CEILING, 20.0, 0.0, 180.0},
    {"wall panorama", VIEW_PANORAMA_FULL, MOUNT_WALL, 0.0, 0.0, 180.0},
};

SReferenceSetup SetupOf(const SViewCase& rCase)
{
    SReferenceSetup s;
    s.eView = rCase.eView;
    s.eMount = rCase.eMount;
    s.nImageWidth = INPUT_SIZE;
    s.nImageHeight = INPUT_SIZE;
    s.nTargetWidth = TARGET_WIDTH;
    s.nTargetHeight = TARGET_HEIGHT;
    s.fPan = rCase.fPan;
    s.fTilt = rCase.fTilt;
    s.fZoom = rCase.fZoom;
    return s;
}

const STestImage& RoomFrame()
{
    static const STestImage s = RenderFisheye(RoomColour, 0, INPUT_SIZE, INPUT_SIZE, MOUNT_CEILING);
    return s;
}

} // namespace

namespace
{

unsigned int YUV(unsigned int nRGBA)
{
    return ConvertColourToYUV(nRGBA, YUV_SPACE_BT601, YUV_RANGE_FULL);
}

/// The pixels of an overlay as a YUV target needs them.
STestImage YUVOverlay(const STestImage& sImage)
{
    STestImage sResult(sImage.nWidth, sImage.nHeight);
    for (int y = 0; y < sImage.nHeight; ++y)
        for (int x = 0; x < sImage.nWidth; ++x) {
            const unsigned int n = YUV(sImage.Word(x, y));
            sResult.Set(x, y, static_cast<int>(n >> 24), static_cast<int>(n >> 16 & 255),
                        static_cast<int>(n >> 8 & 255), static_cast<int>(n & 255));
        }
    return sResult;
}

/// A frame, a bar and a half-transparent corner on nothing.
STestImage Overlay(int nWidth, int nHeight)
{
    STestImage sImage(nWidth, nHeight);
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x) {
            if (y < nHeight / 6)
                sImage.Set(x, y, 20, 120, 220);
            else if (x > nWidth * 3 / 4 && y > nHeight / 2)
                sImage.Set(x, y, 250, 160, 10, 128);
        }
    return sImage;
}

SGPUString Text(const char* pText, int nX, int nY, unsigned int nColor)
{
    SGPUString sString;
    sString.strText = pText;
    sString.nX = nX;
    sString.nY = nY;
    sString.nHeight = 40;
    sString.nColor = nColor;
    return sString;
}

enum EDecoration
{
    DECORATE_MASKS = 1,
    DECORATE_INPUT_OVERLAY = 2,
    DECORATE_OUTPUT_OVERLAY = 4,
    DECORATE_TEXT = 8,
};

/// Gives a dewarper what lies over the picture; bYUV: for a dewarper that draws YUV.
void Decorate(CCustomGPUDewarper& rDewarper, int nWhat, bool bYUV)
{
    const auto Colour = [bYUV](unsigned int n) { return bYUV ? YUV(n) : n; };
    const auto Image = [bYUV](const STestImage& s) { return bYUV ? YUVOverlay(s) : s; };
    if ((nWhat & DECORATE_INPUT_OVERLAY) != 0)
        rDewarper.SetInputOverlay(Image(Overlay(INPUT_SIZE, INPUT_SIZE)).vPixels.data(), INPUT_SIZE,
                                  INPUT_SIZE, 0);
    if ((nWhat & DECORATE_OUTPUT_OVERLAY) != 0)
        rDewarper.SetOutputOverlay(Image(Overlay(TARGET_WIDTH, TARGET_HEIGHT)).vPixels.data(), TARGET_WIDTH,
                                   TARGET_HEIGHT, 0);
    if ((nWhat & DECORATE_MASKS) != 0)
        rDewarper.SetMaskPolygons({{{{60, 60}, {420, 80}, {240, 200}}, Colour(0xC81E5AFF)},
                                   {{{150, 300}, {330, 300}, {330, 400}, {150, 400}}, Colour(0x10A040FF)}});
    if ((nWhat & DECORATE_TEXT) != 0)
        rDewarper.SetStrings(
            {Text("Top left", 10, 4, Colour(0xFFE000FF)), Text("gq 0123", 60, 100, Colour(0xFFFFFFFF))});
}

/// One view of the room by both classes.
void DrawBoth(const SViewCase& rCase, int nDecoration, STestImage& rDesktop, STestImage& rVela)
{
    CTestFrame oFrame(RoomFrame(), IMAGE_FORMAT_NV12);
    CTestBuffer oInput(INPUT_SIZE, INPUT_SIZE);
    oInput.Fill(oFrame);
    CTestDewarper oDesktop(TARGET_WIDTH, TARGET_HEIGHT);
    oDesktop.SetInterpolationType(INTERPOLATION_LINEAR);
    Decorate(oDesktop, nDecoration, false);
    ASSERT_TRUE(oDesktop.Apply(SetupOf(rCase), oFrame));
    rDesktop = oDesktop.Picture();
    // (Y, U, V) at full resolution: what differs is not the packing.
    CTestBuffer oOutput(TARGET_WIDTH, TARGET_HEIGHT, HAL_PIXEL_FORMAT_RGBA_8888);
    CTestVela oVela(TARGET_WIDTH, TARGET_HEIGHT);
    oVela.SetInterpolationType(INTERPOLATION_LINEAR);
    Decorate(oVela, nDecoration, true);
    ASSERT_TRUE(oVela.Apply(SetupOf(rCase), oInput, oOutput));
    rVela = ShownByYUV(oOutput.Texels());
    WritePicture(std::string("vela ") + rCase.pName + " " + std::to_string(nDecoration),
                 SideBySide(rDesktop, rVela));
}

} // namespace

TEST(VelaPictures, EveryViewIsThatOfTheDesktopClass)
{
    for (const SViewCase& rCase : VIEWS) {
        SCOPED_TRACE(rCase.pName);
        STestImage sDesktop;
        STestImage sVela;
        DrawBoth(rCase, 0, sDesktop, sVela);
        const SFlatDifference sDifference = CompareFlatParts(sDesktop, sVela, 12);
        EXPECT_LE(sDifference.nMax, 2) << "at " << sDifference.nMaxX << ", " << sDifference.nMaxY;
        EXPECT_GT(sDifference.fShare, 0.1);
        // Edges as well: the chroma's own, no more.
        EXPECT_LT(CompareImages(sDesktop, sVela).fMean, 1.0);
    }
}

TEST(VelaPictures, MasksOverlaysAndTextAreThoseOfTheDesktopClass)
{
    const int aDecorations[] = {DECORATE_MASKS,
                                DECORATE_INPUT_OVERLAY,
                                DECORATE_OUTPUT_OVERLAY,
                                DECORATE_TEXT,
                                DECORATE_MASKS | DECORATE_TEXT,
                                DECORATE_MASKS | DECORATE_OUTPUT_OVERLAY | DECORATE_TEXT};
    for (const int nDecoration : aDecorations) {
        for (const SViewCase& rCase : {VIEWS[0], VIEWS[2], VIEWS[5]}) {
            SCOPED_TRACE(std::string(rCase.pName) + ", decoration " + std::to_string(nDecoration));
            STestImage sDesktop;
            STestImage sVela;
            DrawBoth(rCase, nDecoration, sDesktop, sVela);
            const SFlatDifference sDifference = CompareFlatParts(sDesktop, sVela, 12);
            EXPECT_LE(sDifference.nMax, 2) << "at " << sDifference.nMaxX << ", " << sDifference.nMaxY;
            EXPECT_GT(sDifference.fShare, 0.1);
            EXPECT_LT(CompareImages(sDesktop, sVela).fMean, 1.2);
        }
    }
}

TEST(VelaPictures, ADecorationIsSeen)
{
    STestImage sPlain;
    STestImage sDecorated;
    STestImage sDesktop;
    DrawBoth(VIEWS[0], 0, sDesktop, sPlain);
    for (const int nDecoration :
         {DECORATE_MASKS, DECORATE_INPUT_OVERLAY, DECORATE_OUTPUT_OVERLAY, DECORATE_TEXT}) {
        DrawBoth(VIEWS[0], nDecoration, sDesktop, sDecorated);
        EXPECT_GT(CompareImages(sPlain, sDecorated).fMean, 2.0) << nDecoration;
    }
}

TEST(VelaPictures, PackedOutputShowsTheSamePicture)
{
    const SReferenceSetup sSetup = SetupOf(VIEWS[0]);
    CTestFrame oFrame(RoomFrame(), IMAGE_FORMAT_NV12);
    CTestBuffer oInput(INPUT_SIZE, INPUT_SIZE);
    oInput.Fill(oFrame);
    CTestDewarper oDesktop(TARGET_WIDTH, TARGET_HEIGHT);
    oDesktop.SetInterpolationType(INTERPOLATION_LINEAR);
    ASSERT_TRUE(oDesktop.Apply(sSetup, oFrame));
    const STestImage sDesktop = oDesktop.Picture();
    CTestVela oVela(TARGET_WIDTH, TARGET_HEIGHT);
    for (const int nFormat : {HAL_PIXEL_FORMAT_YCBCR_420_888, HAL_PIXEL_FORMAT_YCRCB_420_SP}) {
        CTestBuffer oOutput(TARGET_WIDTH, TARGET_HEIGHT, nFormat);
        ASSERT_TRUE(oVela.Apply(sSetup, oInput, oOutput));
        const SFlatDifference sDifference = CompareFlatParts(sDesktop, oOutput.Picture(), 12);
        EXPECT_LE(sDifference.nMax, 2) << nFormat;
        EXPECT_GT(sDifference.fShare, 0.3);
    }
}

TEST(VelaPictures, ChromaOrderOfTheInputIsMinded)
{
    CTestFrame oUFirst(RoomFrame(), IMAGE_FORMAT_NV12);
    CTestFrame oVFirst(RoomFrame(), IMAGE_FORMAT_NV21);
    CTestBuffer oInputU(INPUT_SIZE, INPUT_SIZE, HAL_PIXEL_FORMAT_YCBCR_420_888);
    CTestBuffer oInputV(INPUT_SIZE, INPUT_SIZE, HAL_PIXEL_FORMAT_YCRCB_420_SP);
    oInputU.Fill(oUFirst);
    oInputV.Fill(oVFirst);
    CTestBuffer oOutputU(TARGET_WIDTH, TARGET_HEIGHT);
    CTestBuffer oOutputV(TARGET_WIDTH, TARGET_HEIGHT);
    CTestVela oVela(TARGET_WIDTH, TARGET_HEIGHT);
    oVela.SetViewType(VIEW_PANORAMA_HALF);
    ASSERT_TRUE(oVela.DrawFrame(oInputU, oOutputU));
    ASSERT_TRUE(oVela.DrawFrame(oInputV, oOutputV));
    EXPECT_EQ(oOutputU.Texels().vPixels, oOutputV.Texels().vPixels);
}

TEST(VelaPictures, PlainColoursPassUnchanged)
{
    // The whole frame, one pixel for one.
    CTestFrame oFrame(AsymmetricPicture(100, 75), IMAGE_FORMAT_RGBA32);
    CTestBuffer oInput(100, 75, HAL_PIXEL_FORMAT_RGBA_8888);
    CTestBuffer oOutput(100, 75, HAL_PIXEL_FORMAT_RGBA_8888);
    oInput.Fill(oFrame);
    CTestVela oVela(100, 75);
    oVela.SetViewType(VIEW_FISHEYE);
    ASSERT_TRUE(oVela.DrawFrame(oInput, oOutput));
    EXPECT_LE(CompareImages(AsymmetricPicture(100, 75), oOutput.Texels()).nMax, 1);
}

TEST(VelaPictures, YUVPassesUnchangedWhateverItsSpaceAndRange)
{
    for (const bool bLimited : {false, true})
        for (const EYUVSpace eSpace : {YUV_SPACE_BT601, YUV_SPACE_BT709}) {
            CTestFrame oFrame(AsymmetricPicture(101, 75), IMAGE_FORMAT_NV12, 0, eSpace, bLimited);
            CTestBuffer oInput(100, 74);
            CTestBuffer oOutput(100, 74);
            SImageProperties* const pImage = oFrame.Image();
            pImage->nWidth = 100;
            pImage->nHeight = 74;
            oInput.Fill(oFrame);
            CTestVela oVela(100, 74);
            oVela.SetViewType(VIEW_FISHEYE);
            oVela.SetYUVparams(YUV_SPACE_BT2020, YUV_RANGE_LIMITED); // has no say here
            ASSERT_TRUE(oVela.DrawFrame(oInput, oOutput));
            EXPECT_LE(CompareImages(oInput.Texels(), oOutput.Texels()).nMax, 1);
        }
}

TEST(VelaPictures, WhatNoViewCoversIsBlack)
{
    CTestFrame oFrame(RoomFrame(), IMAGE_FORMAT_NV12);
    CTestBuffer oInput(INPUT_SIZE, INPUT_SIZE);
    CTestBuffer oOutput(TARGET_WIDTH, TARGET_HEIGHT);
    oInput.Fill(oFrame);
    CTestVela oVela(TARGET_WIDTH, TARGET_HEIGHT);
    oVela.SetViewType(VIEW_FISHEYE); // a square in the middle
    ASSERT_TRUE(oVela.DrawFrame(oInput, oOutput));
    const STestImage sShown = oOutput.Picture();
    for (const int x : {0, TARGET_WIDTH - 1})
        for (int i = 0; i < 3; ++i)
            EXPECT_LE(sShown.At(x, TARGET_HEIGHT / 2)[i], 1);
    EXPECT_EQ(oOutput.Texels().At(0, 0)[0], 0) << "luma of black";
}

TEST(VelaPictures, TheReadBackFrameIsTheOutputBuffer)
{
    CTestFrame oFrame(RoomFrame(), IMAGE_FORMAT_NV12);
    CTestBuffer oInput(INPUT_SIZE, INPUT_SIZE);
    CTestBuffer oOutput(TARGET_WIDTH, TARGET_HEIGHT, HAL_PIXEL_FORMAT_RGBA_8888);
    oInput.Fill(oFrame);
    CTestVela oVela(TARGET_WIDTH, TARGET_HEIGHT);
    ASSERT_TRUE(oVela.DrawFrame(oInput, oOutput));
    int nSize = 0;
    int nWidth = 0;
    int nHeight = 0;
    int nStride = 0;
    const unsigned char* const pImage = oVela.GetImage(&nSize, &nWidth, &nHeight, &nStride);
    ASSERT_NE(pImage, nullptr);
    ASSERT_EQ(nWidth, TARGET_WIDTH);
    ASSERT_EQ(nHeight, TARGET_HEIGHT);
    const STestImage sBuffer = oOutput.Texels();
    const unsigned char* const pRows = pImage + static_cast<std::ptrdiff_t>(nHeight) * nStride;
    int nDifferent = 0;
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x) {
            const unsigned char* const p = pRows + static_cast<std::ptrdiff_t>(y) * nStride + x * 4;
            const unsigned char* const q = sBuffer.At(x, y);
            nDifferent += p[2] != q[0] || p[1] != q[1] || p[0] != q[2];
        }
    EXPECT_EQ(nDifferent, 0);
}

TEST(VelaPictures, TheHostReadsTheFinishedFrameFromAnyThread)
{
    CTestFrame oFrame(RoomFrame(), IMAGE_FORMAT_NV12);
    CTestBuffer oInput(INPUT_SIZE, INPUT_SIZE);
    CTestBuffer oOutput(TARGET_WIDTH, TARGET_HEIGHT);
    oInput.Fill(oFrame);
    STestImage sAfterStop;
    STestImage sElsewhere;
    {
        CTestVela oVela(TARGET_WIDTH, TARGET_HEIGHT);
        ASSERT_TRUE(oVela.DrawFrame(oInput, oOutput));
        std::thread oThread([&] { sElsewhere = oOutput.Texels(); });
        oThread.join();
    }
    sAfterStop = oOutput.Texels();
    EXPECT_EQ(sElsewhere.vPixels, sAfterStop.vPixels);
    EXPECT_GT(CompareImages(sAfterStop, STestImage(TARGET_WIDTH, TARGET_HEIGHT)).fMean, 20.0);
}
