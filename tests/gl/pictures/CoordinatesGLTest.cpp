// A frame whose texels tell their own place must come out of every view with the place that the view's
// meaning demands, pixel by pixel.
#include "tests/support/EngineDewarper.h"
#include "tests/support/GLRecorder.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>

/// Limits in input pixels, over the pixels that both the library and the exact view draw. A texel's place is
/// known to half a texel: displacements count from there.
struct SCoordinateCase
{
    const char* pName;
    SReferenceSetup sSetup;
    double fMaxMean;
    double fMaxMost; ///< 99 per cent stay below
};

/// Lens, frame size and angle of one row.
static SReferenceSetup Setup(EViewType eView, EMountType eMount, int nLens, int nWidth, int nHeight,
                             double fPan, double fTilt, double fZoom)
{
    SReferenceSetup s;
    s.eView = eView;
    s.eMount = eMount;
    s.nLensType = nLens;
    s.nImageWidth = nWidth;
    s.nImageHeight = nHeight;
    s.nTargetWidth = 320;
    s.nTargetHeight = 240;
    s.fPan = fPan;
    s.fTilt = fTilt;
    s.fZoom = fZoom;
    return s;
}

static SReferenceSetup OnTarget(SReferenceSetup s, int nWidth, int nHeight)
{
    s.nTargetWidth = nWidth;
    s.nTargetHeight = nHeight;
    return s;
}

static SReferenceSetup Inclined(SReferenceSetup s, double fMountTilt, bool bStrict)
{
    s.fMountTilt = fMountTilt;
    s.bStrict = bStrict;
    return s;
}

static SReferenceSetup Turned(SReferenceSetup s, int nRotation, bool bFlipHorizontal, bool bFlipVertical)
{
    s.nRotation = nRotation;
    s.bFlipHorizontal = bFlipHorizontal;
    s.bFlipVertical = bFlipVertical;
    return s;
}

static SReferenceSetup FromBehind(SReferenceSetup s, double fEyeDistance)
{
    s.fEyeDistance = fEyeDistance;
    return s;
}

static const EMountType C = MOUNT_CEILING;
static const EMountType F = MOUNT_FLOOR;
static const EMountType W = MOUNT_WALL;

// The mesh of the camera has cells of about a tenth of the radius; inside a cell the place is interpolated.
static const SCoordinateCase CAMERA[] = {
    {"straight down", Setup(VIEW_VCAM, C, 419, 512, 512, 90, 0, 180), 0.01, 0.25},
    {"ceiling, towards the top", Setup(VIEW_VCAM, C, 419, 512, 512, 90, 60, 120), 0.01, 0.25},
    {"ceiling, towards the right", Setup(VIEW_VCAM, C, 419, 512, 512, 180, 45, 100), 0.01, 0.25},
    {"ceiling, narrow", Setup(VIEW_VCAM, C, 419, 512, 512, 33, 70, 30), 0.01, 0.25},
    {"ceiling, horizontal", Setup(VIEW_VCAM, C, 419, 512, 512, 300, 90, 140), 0.01, 0.25},
    {"floor, straight up", Setup(VIEW_VCAM, F, 419, 512, 512, 90, 180, 180), 0.01, 0.25},
    {"floor, aside", Setup(VIEW_VCAM, F, 419, 512, 512, 210, 125, 110), 0.01, 0.25},
    {"wall, ahead", Setup(VIEW_VCAM, W, 419, 512, 512, 90, 90, 180), 0.01, 0.25},
    {"wall, up and to the left", Setup(VIEW_VCAM, W, 419, 512, 512, 130, 120, 100), 0.01, 0.25},
    {"wall, at the rim", Setup(VIEW_VCAM, W, 419, 512, 512, 20, 100, 90), 0.01, 0.25},
    {"lens 215, circle cut at top and bottom", Setup(VIEW_VCAM, C, 215, 536, 486, 120, 50, 130), 0.01, 0.25},
    {"lens 239", Setup(VIEW_VCAM, C, 239, 672, 600, 75, 55, 130), 0.01, 0.25},
    {"lens 418", Setup(VIEW_VCAM, W, 418, 600, 500, 60, 75, 130), 0.01, 0.25},
    {"equidistant lens", Setup(VIEW_VCAM, C, 0, 480, 480, 140, 40, 130), 0.01, 0.25},
    {"odd frame size", Setup(VIEW_VCAM, C, 419, 511, 513, 140, 40, 130), 0.01, 0.25},
    {"frame narrower than the circle", Setup(VIEW_VCAM, W, 419, 400, 512, 90, 90, 170), 0.01, 0.25},
    {"portrait target", OnTarget(Setup(VIEW_VCAM, C, 419, 512, 512, 90, 50, 120), 200, 300), 0.01, 0.25},
    {"quad", OnTarget(Setup(VIEW_VCAM_QUAD, C, 419, 512, 512, 110, 55, 130), 320, 320), 0.01, 0.25},
    {"quad, wide", OnTarget(Setup(VIEW_VCAM_QUAD, F, 419, 512, 512, 70, 120, 130), 400, 240), 0.01, 0.25},
    {"quad, odd target", OnTarget(Setup(VIEW_VCAM_QUAD, C, 419, 512, 512, 110, 55, 130), 321, 241), 0.01,
     0.25},
    {"quad of a wall camera is one", Setup(VIEW_VCAM_QUAD, W, 419, 512, 512, 110, 80, 130), 0.01, 0.25},
    {"half-way to stereographic", FromBehind(Setup(VIEW_VCAM, C, 419, 512, 512, 90, 20, 150), 0.5), 0.01,
     0.25},
    {"stereographic", FromBehind(Setup(VIEW_VCAM, C, 419, 512, 512, 90, 0, 180), 1.0), 0.01, 0.25},
};

// Affine pictures: exact but for the half texel.
static const SCoordinateCase FISHEYE[] = {
    {"whole", Setup(VIEW_FISHEYE, C, 419, 512, 512, 0, 0, 180), 0.01, 0.05},
    {"moved and zoomed", Setup(VIEW_FISHEYE, C, 419, 512, 400, 25, -30, 90), 0.01, 0.05},
    {"wide frame", Setup(VIEW_FISHEYE, F, 0, 600, 300, 0, 0, 180), 0.01, 0.05},
    {"circular", Setup(VIEW_FISHEYE_CIRCULAR, C, 419, 512, 512, 0, 0, 180), 0.01, 0.05},
    // Not half the frame: then every pixel's middle would lie between two texels.
    {"circular, circle inside the frame",
     OnTarget(Setup(VIEW_FISHEYE_CIRCULAR, C, 419, 640, 480, 0, 0, 180), 316, 238), 0.01, 0.05},
    {"circular, lens 215", Setup(VIEW_FISHEYE_CIRCULAR, C, 215, 536, 486, 10, 10, 120), 0.01, 0.05},
    {"turned by 90", Turned(Setup(VIEW_FISHEYE, C, 419, 500, 400, 0, 0, 180), 90, false, false), 0.01, 0.05},
    {"turned by 180", Turned(Setup(VIEW_FISHEYE, C, 419, 500, 400, 10, 20, 150), 180, false, false), 0.01,
     0.05},
    {"turned by 270", Turned(Setup(VIEW_FISHEYE, C, 419, 500, 400, 20, 10, 120), 270, false, false), 0.01,
     0.05},
    {"mirrored", Turned(Setup(VIEW_FISHEYE, C, 419, 500, 400, 0, 0, 180), 0, true, false), 0.01, 0.05},
    {"upside down", Turned(Setup(VIEW_FISHEYE, C, 419, 500, 400, 0, 0, 180), 0, false, true), 0.01, 0.05},
    {"turned and mirrored", Turned(Setup(VIEW_FISHEYE, C, 419, 500, 400, 0, 0, 180), 90, true, false), 0.01,
     0.05},
};

// Strips of 2.5 degrees a column and of 2.5 degrees a row. Lenses whose tables go beyond 90 degrees have a
// step in their last degree (the height at 90 is set to 1), which bends the cells at the rim.
static const SCoordinateCase PANORAMA[] = {
    {"full, ceiling", OnTarget(Setup(VIEW_PANORAMA_FULL, C, 419, 512, 512, 0, 0, 180), 700, 100), 0.005, 0.1},
    {"full, floor", OnTarget(Setup(VIEW_PANORAMA_FULL, F, 419, 512, 512, 60, 0, 180), 700, 100), 0.005, 0.1},
    {"full, letterboxed", OnTarget(Setup(VIEW_PANORAMA_FULL, C, 419, 512, 512, -170, 0, 180), 800, 100),
     0.005, 0.1},
    {"half, ceiling", OnTarget(Setup(VIEW_PANORAMA_HALF, C, 239, 672, 600, 100, 0, 180), 500, 140), 0.05,
     1.6},
    {"half, floor", OnTarget(Setup(VIEW_PANORAMA_HALF, F, 418, 600, 600, -90, 0, 180), 600, 140), 0.05, 1.6},
    {"two halves, ceiling", OnTarget(Setup(VIEW_PANORAMA_QUARTER, C, 419, 512, 512, 40, 0, 180), 400, 224),
     0.005, 0.1},
    {"two halves, panned left",
     OnTarget(Setup(VIEW_PANORAMA_QUARTER, C, 0, 512, 512, -140, 0, 180), 400, 240), 0.005, 0.1},
    {"two halves, floor", OnTarget(Setup(VIEW_PANORAMA_QUARTER, F, 419, 512, 512, 120, 0, 180), 500, 240),
     0.005, 0.1},
    {"half, lens 215", OnTarget(Setup(VIEW_PANORAMA_HALF, C, 215, 536, 486, 0, 0, 180), 500, 140), 0.05, 1.6},
    {"dual", OnTarget(Setup(VIEW_PANORAMA_DUAL, C, 419, 512, 512, 0, 0, 180), 400, 250), 0.005, 0.1},
    {"dual, panned and tilted", OnTarget(Setup(VIEW_PANORAMA_DUAL, C, 419, 512, 512, 35, 20, 180), 400, 250),
     0.005, 0.1},
    {"dual, floor, lens 239", OnTarget(Setup(VIEW_PANORAMA_DUAL, F, 239, 672, 600, 200, -15, 180), 400, 250),
     0.05, 1.6},
    {"triple", OnTarget(Setup(VIEW_PANORAMA_TRIPLE, C, 419, 512, 512, 0, 0, 180), 480, 200), 0.005, 0.1},
    {"triple, panned", OnTarget(Setup(VIEW_PANORAMA_TRIPLE, C, 418, 600, 500, 70, 0, 180), 480, 200), 0.05,
     1.6},
    {"triple, tilted", OnTarget(Setup(VIEW_PANORAMA_TRIPLE, F, 0, 512, 512, 20, 25, 180), 480, 220), 0.005,
     0.1},
};

static const SCoordinateCase WALL[] = {
    {"straight", OnTarget(Setup(VIEW_PANORAMA_FULL, W, 419, 512, 512, 0, 0, 180), 500, 200), 0.005, 0.1},
    {"letterboxed", OnTarget(Setup(VIEW_PANORAMA_HALF, W, 419, 512, 512, 0, 10, 180), 400, 300), 0.005, 0.1},
    {"tilted down", OnTarget(Setup(VIEW_PANORAMA_QUARTER, W, 418, 600, 600, 0, -40, 180), 500, 200), 0.05,
     1.6},
    {"rolled", OnTarget(Setup(VIEW_PANORAMA_FULL, W, 419, 512, 512, 30, 0, 180), 500, 200), 0.005, 0.1},
    {"lens 239", OnTarget(Setup(VIEW_PANORAMA_FULL, W, 239, 672, 600, 0, 15, 180), 500, 200), 0.05, 1.6},
    {"inclined upwards",
     Inclined(OnTarget(Setup(VIEW_PANORAMA_FULL, W, 419, 512, 512, 0, 0, 180), 500, 200), 15, true), 0.005,
     0.1},
    {"inclined downwards",
     Inclined(OnTarget(Setup(VIEW_PANORAMA_FULL, W, 419, 512, 512, 0, 0, 180), 500, 200), -20, true), 0.005,
     0.1},
    {"inclined, wider span",
     Inclined(OnTarget(Setup(VIEW_PANORAMA_FULL, W, 419, 512, 512, 0, 20, 180), 500, 200), 20, false), 0.005,
     0.1},
};

/// What a picture of texels says against the exact view.
struct SDisplacements
{
    std::vector<double> vPixels; ///< beyond the half texel that cannot be known
    std::vector<double> vTrue;   ///< from where the lens truly shows the pixel's direction
    double fMeanX = 0.0;         ///< signed
    double fMeanY = 0.0;
    int nWronglyDrawn = 0; ///< drawn by one of both only, away from edges
    int nBoth = 0;
};

/// True when all places around a pixel agree with its middle on being drawn.
static bool ClearOfEdges(const CReferenceView& oView, double x, double y, bool bDrawn)
{
    for (int i = 0; i < 9; ++i) {
        const int nRow = i / 3;
        if (oView.At(x + 1.5 * (i % 3 - 1), y + 1.5 * (nRow - 1)).bDrawn != bDrawn)
            return false;
    }
    return true;
}

static SDisplacements Measure(const CReferenceView& oView, const STestImage& sPicture)
{
    const SReferenceSetup& s = oView.Setup();
    SDisplacements sResult;
    for (int y = 0; y < sPicture.nHeight; ++y)
        for (int x = 0; x < sPicture.nWidth; ++x) {
            const unsigned char* pPixel = sPicture.At(x, y);
            const SReferencePixel sPixel = oView.At(x + 0.5, y + 0.5);
            const bool bDrawn = pPixel[3] != 0;
            if (bDrawn != sPixel.bDrawn) {
                sResult.nWronglyDrawn += ClearOfEdges(oView, x + 0.5, y + 0.5, sPixel.bDrawn) ? 1 : 0;
                continue;
            }
            if (!bDrawn || !ClearOfEdges(oView, x + 0.5, y + 0.5, true))
                continue;
            const double fX = (pPixel[0] | (pPixel[2] & 15) << 8) + 0.5;
            const double fY = (pPixel[1] | (pPixel[2] >> 4) << 8) + 0.5;
            const double fWantedX = std::clamp(sPixel.fU * s.nImageWidth, 0.5, s.nImageWidth - 0.5);
            const double fWantedY = std::clamp(sPixel.fV * s.nImageHeight, 0.5, s.nImageHeight - 0.5);
            sResult.vPixels.push_back(std::hypot(std::max(0.0, std::abs(fX - fWantedX) - 0.5),
                                                 std::max(0.0, std::abs(fY - fWantedY) - 0.5)));
            sResult.fMeanX += fX - fWantedX;
            sResult.fMeanY += fY - fWantedY;
            ++sResult.nBoth;
            if (s.bFlipHorizontal || s.bFlipVertical)
                continue;
            double fU = 0.0;
            double fV = 0.0;
            oView.TrueTexCoord(sPixel.aRay, fU, fV);
            if (sPixel.aRay[2] > 0.0)
                sResult.vTrue.push_back(
                    std::hypot(sPixel.fU - fU, (sPixel.fV - fV) * s.nImageHeight / s.nImageWidth) *
                    s.nImageWidth);
        }
    sResult.fMeanX /= std::max(1, sResult.nBoth);
    sResult.fMeanY /= std::max(1, sResult.nBoth);
    return sResult;
}

class Coordinates : public testing::TestWithParam<SEngineCase<SCoordinateCase>>
{
};

TEST_P(Coordinates, AreThoseThatTheViewMeans)
{
    const SCoordinateCase& sCase = GetParam().sCase;
    const SReferenceSetup& s = sCase.sSetup;
    CEngineDewarper oDewarper(GetParam().eEngine, s.nTargetWidth, s.nTargetHeight);
    ASSERT_TRUE(oDewarper.Started());
    CTestFrame oFrame(TexelFrame(s.nImageWidth, s.nImageHeight), IMAGE_FORMAT_RGB24);
    ASSERT_TRUE(oDewarper.Apply(s, oFrame));
    EXPECT_EQ(std::remainder(static_cast<double>(oDewarper.Pan()) - s.fPan, 360.0), 0.0)
        << "the case must keep to the view's limits";
    EXPECT_EQ(oDewarper.Tilt(), static_cast<float>(s.fTilt));
    const STestImage sPicture = oDewarper.Picture();
    const SDisplacements sFound = Measure(CReferenceView(s), sPicture);
    const double fMean = Mean(sFound.vPixels);
    const double fMost = Percentile(sFound.vPixels, 0.99);
    std::printf("  %-40s mean %.3f  99%% %.3f  max %.2f  shift %+.3f %+.3f  of %d px; lens rule itself %.2f "
                "max %.2f\n",
                sCase.pName, fMean, fMost, Percentile(sFound.vPixels, 1.0), sFound.fMeanX, sFound.fMeanY,
                sFound.nBoth, Mean(sFound.vTrue), Percentile(sFound.vTrue, 1.0));
    EXPECT_LT(fMean, sCase.fMaxMean);
    EXPECT_LT(fMost, sCase.fMaxMost);
    EXPECT_LT(std::abs(sFound.fMeanX), 0.25);
    EXPECT_LT(std::abs(sFound.fMeanY), 0.25);
    EXPECT_GT(sFound.nBoth, s.nTargetWidth * s.nTargetHeight / 4);
    EXPECT_LE(sFound.nWronglyDrawn, sFound.nBoth / 1000);
    if (HasFailure()) {
        const STestImage sInput = TexelFrame(s.nImageWidth, s.nImageHeight);
        const STestImage sWanted = CReferenceView(s).Render(sInput, false);
        const std::string strName = "coordinates " + EngineName(GetParam().eEngine) + " " + sCase.pName;
        WritePicture(strName, SideBySide(sPicture, sWanted));
    }
    EXPECT_NO_GL_ERROR();
}

INSTANTIATE_TEST_SUITE_P(Camera, Coordinates, testing::ValuesIn(WithBothEngines(CAMERA)), SEngineCaseName());
INSTANTIATE_TEST_SUITE_P(Fisheye, Coordinates, testing::ValuesIn(WithBothEngines(FISHEYE)),
                         SEngineCaseName());
INSTANTIATE_TEST_SUITE_P(Panorama, Coordinates, testing::ValuesIn(WithBothEngines(PANORAMA)),
                         SEngineCaseName());
INSTANTIATE_TEST_SUITE_P(Wall, Coordinates, testing::ValuesIn(WithBothEngines(WALL)), SEngineCaseName());
