// A privacy mask hides every pixel whose middle lies inside its polygon, and none that lies well outside.
#include "tests/gl/overlays/OverlayTools.h"
#include "tests/unit/geometry/PolygonCases.h"

#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>

static const unsigned int RED = 0xFF0000FF;

/// An outline with its coordinates doubled, so that middles of pixels have whole coordinates, too.
static TPoints Doubled(const TPoints& vPoints)
{
    TPoints vResult;
    for (const SGPoint& rPoint : vPoints)
        vResult.push_back({2 * rPoint.x, 2 * rPoint.y});
    return vResult;
}

static double DistanceToOutline(const TPoints& vPoints, double x, double y)
{
    double fNearest = 1e30;
    for (std::size_t i = 0; i < vPoints.size(); ++i) {
        const SGPoint& a = vPoints[i];
        const SGPoint& b = vPoints[(i + 1) % vPoints.size()];
        const double dx = static_cast<double>(b.x) - a.x;
        const double dy = static_cast<double>(b.y) - a.y;
        const double fLength = dx * dx + dy * dy;
        const double t =
            fLength == 0.0 ? 0.0 : std::clamp(((x - a.x) * dx + (y - a.y) * dy) / fLength, 0.0, 1.0);
        fNearest = std::min(fNearest, std::hypot(a.x + t * dx - x, a.y + t * dy - y));
    }
    return fNearest;
}

enum EPlace
{
    PLACE_INSIDE,
    PLACE_NEAR, ///< on the outline, or outside but within one pixel of it
    PLACE_OUTSIDE
};

/// Where every pixel's middle lies.
static std::vector<EPlace> PlacesOf(const TPoints& vPoints, int nWidth, int nHeight)
{
    const TPoints vDoubled = Doubled(vPoints);
    std::vector<EPlace> vPlaces;
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x) {
            const SGPoint sMiddle = {2 * x + 1, 2 * y + 1};
            if (IsOnOutline(vDoubled, sMiddle))
                vPlaces.push_back(PLACE_NEAR);
            else if (WindingNumber(vDoubled, sMiddle) != 0)
                vPlaces.push_back(PLACE_INSIDE);
            else
                vPlaces.push_back(DistanceToOutline(vPoints, x + 0.5, y + 0.5) <= 1.0 ? PLACE_NEAR
                                                                                      : PLACE_OUTSIDE);
        }
    return vPlaces;
}

static void Move(TPoints& vPoints, int x, int y)
{
    for (SGPoint& rPoint : vPoints) {
        rPoint.x += x;
        rPoint.y += y;
    }
}

/// Simple polygons of many kinds over a frame, both ways round.
static std::vector<TPoints> Polygons(TRandom& oRandom, int nCount, int nWidth, int nHeight)
{
    std::vector<TPoints> vResult;
    for (int i = 0; i < nCount; ++i) {
        TPoints vPoints;
        switch (i % 4) {
        case 0:
            vPoints = StarShaped(oRandom, Between(oRandom, 3, 12), Between(oRandom, 15, nWidth / 2));
            Move(vPoints, nWidth / 2, nHeight / 2);
            break;
        case 1:
            vPoints = Ribbon(oRandom, 2 * Between(oRandom, 2, nWidth / 3), nHeight / 2);
            Move(vPoints, 0, nHeight / 2);
            break;
        case 2: // parts of it beyond the frame
            vPoints = StarShaped(oRandom, Between(oRandom, 5, 40), nWidth);
            Move(vPoints, Between(oRandom, 0, nWidth), Between(oRandom, 0, nHeight));
            break;
        default:
            vPoints = Spiral(Between(oRandom, 5, 16));
            Move(vPoints, nWidth / 2, nHeight / 2);
            break;
        }
        if (i / 4 % 2 == 1)
            std::reverse(vPoints.begin(), vPoints.end());
        vResult.push_back(vPoints);
    }
    return vResult;
}

#ifdef DEWARP_SANITIZED
static const int POLYGONS = 80;
#else
static const int POLYGONS = 400;
#endif

using MaskCoverage = CEngineTest;

TEST_P(MaskCoverage, EveryPixelInsideAndNoneBeyondOnePixelOutside)
{
    const int nWidth = 90;
    const int nHeight = 70;
    SEngineView oView(GetParam(), PlainPicture(nWidth, nHeight, 0x00FF00FF));
    TRandom oRandom(11);
    long long anPixels[3] = {};
    int nNearCovered = 0;
    for (const TPoints& vPoints : Polygons(oRandom, POLYGONS, nWidth, nHeight)) {
        oView.oDewarper->SetMaskPolygons({{vPoints, RED}});
        const STestImage sPicture = oView.Draw();
        const std::vector<EPlace> vPlaces = PlacesOf(vPoints, nWidth, nHeight);
        int nLeaks = 0;
        int nStray = 0;
        for (std::size_t i = 0; i < vPlaces.size(); ++i) {
            const bool bCovered = sPicture.vPixels[i * 4] == 255 && sPicture.vPixels[i * 4 + 1] == 0;
            ++anPixels[vPlaces[i]];
            nLeaks += vPlaces[i] == PLACE_INSIDE && !bCovered ? 1 : 0;
            nStray += vPlaces[i] == PLACE_OUTSIDE && sPicture.vPixels[i * 4] != 0 ? 1 : 0;
            nNearCovered += vPlaces[i] == PLACE_NEAR && bCovered ? 1 : 0;
        }
        ASSERT_EQ(nLeaks, 0) << testing::PrintToString(vPoints.size()) << " points";
        ASSERT_EQ(nStray, 0) << testing::PrintToString(vPoints.size()) << " points";
    }
    std::printf("  %lld pixels inside, %lld outside, %d of %lld on the outline or beside it covered\n",
                anPixels[PLACE_INSIDE], anPixels[PLACE_OUTSIDE], nNearCovered, anPixels[PLACE_NEAR]);
    EXPECT_GT(anPixels[PLACE_INSIDE], 1000 * POLYGONS / 2);
}

TEST_P(MaskCoverage, HugeCoordinatesCoverWhatTheyShould)
{
    const int nWidth = 64;
    const int nHeight = 48;
    SEngineView oView(GetParam(), PlainPicture(nWidth, nHeight, 0x00FF00FF));
    const int n = 32767;
    const std::vector<TPoints> vCases = {
        {{-n, -n}, {n, -n}, {n, n}, {-n, n}},
        {{-n, -n}, {n, n}, {-n, n}},
        {{32, -n}, {n, 24}, {32, n}, {20, 24}},
        {{-n, 10}, {n, 11}, {n, 30}, {-n, 31}},
        {{-2000000000, -2000000000},
         {2000000000, -2000000000},
         {2000000000, 2000000000},
         {-2000000000, 2000000000}},
    };
    for (std::size_t k = 0; k < vCases.size(); ++k) {
        oView.oDewarper->SetMaskPolygons({{vCases[k], RED}});
        const STestImage sPicture = oView.Draw();
        const TPoints& rPoints = vCases[k];
        const std::vector<EPlace> vPlaces = PlacesOf(
            rPoints[0].x < -n ? TPoints{{-n, -n}, {n, -n}, {n, n}, {-n, n}} : rPoints, nWidth, nHeight);
        for (std::size_t i = 0; i < vPlaces.size(); ++i) {
            if (vPlaces[i] != PLACE_NEAR) {
                ASSERT_EQ(sPicture.vPixels[i * 4] == 255, vPlaces[i] == PLACE_INSIDE)
                    << "case " << k << " pixel " << i % static_cast<std::size_t>(nWidth) << ", "
                    << i / static_cast<std::size_t>(nWidth);
            }
        }
    }
}

struct SMaskView
{
    const char* pName;
    EViewType eView;
    EMountType eMount;
    double fPan;
    double fTilt;
    double fZoom;
};

static const SMaskView VIEWS[] = {
    {"Fisheye", VIEW_FISHEYE, MOUNT_CEILING, 0, 0, 180},
    {"Circular", VIEW_FISHEYE_CIRCULAR, MOUNT_FLOOR, 0, 0, 180},
    {"Camera", VIEW_VCAM, MOUNT_CEILING, 70, 40, 150},
    {"CameraWall", VIEW_VCAM, MOUNT_WALL, 100, 95, 160},
    {"Quad", VIEW_VCAM_QUAD, MOUNT_CEILING, 30, 35, 150},
    {"Panorama", VIEW_PANORAMA_FULL, MOUNT_CEILING, 0, 0, 180},
    {"PanoramaQuarter", VIEW_PANORAMA_QUARTER, MOUNT_CEILING, 0, 0, 180},
    {"Dual", VIEW_PANORAMA_DUAL, MOUNT_CEILING, 0, 0, 180},
    {"Triple", VIEW_PANORAMA_TRIPLE, MOUNT_CEILING, 0, 0, 180},
    {"WallPanorama", VIEW_PANORAMA_FULL, MOUNT_WALL, 0, 0, 180},
};

class MaskInView : public testing::TestWithParam<SEngineCase<SMaskView>>
{
protected:
    static const int SIZE = 97;

    void SetUp() override
    {
        SReferenceSetup s;
        s.eView = GetParam().sCase.eView;
        s.eMount = GetParam().sCase.eMount;
        s.nLensType = LENS_DSL419;
        s.nImageWidth = s.nImageHeight = SIZE;
        s.nTargetWidth = 260;
        s.nTargetHeight = 140;
        s.fPan = GetParam().sCase.fPan;
        s.fTilt = GetParam().sCase.fTilt;
        s.fZoom = GetParam().sCase.fZoom;
        CTestFrame oFrame(PlainPicture(SIZE, SIZE, 0xFF), IMAGE_FORMAT_RGB24);
        ASSERT_TRUE(oDewarper.Apply(s, oFrame));
    }

    /// What is to be hidden is green, what must stay is blue, the outline's surroundings are black: green in
    /// the picture is a leak, and so is red beside blue the other way. No mapping has to be known for that.
    static STestImage Frame(const std::vector<EPlace>& vPlaces)
    {
        STestImage sFrame(SIZE, SIZE);
        for (int y = 0; y < SIZE; ++y)
            for (int x = 0; x < SIZE; ++x) {
                const EPlace ePlace = vPlaces[static_cast<std::size_t>(y * SIZE + x)];
                sFrame.Set(x, y, 0, ePlace == PLACE_INSIDE ? 255 : 0, ePlace == PLACE_OUTSIDE ? 255 : 0);
            }
        return sFrame;
    }

    CEngineDewarper oDewarper{GetParam().eEngine, 260, 140};
};

TEST_P(MaskInView, HidesWhatIsInsideAndNothingElse)
{
    TRandom oRandom(5);
    int anWorst[2][2] = {};
    long long nHidden = 0;
    for (const TPoints& vPoints : Polygons(oRandom, POLYGONS / 20, SIZE, SIZE)) {
        CTestFrame oFrame(Frame(PlacesOf(vPoints, SIZE, SIZE)), IMAGE_FORMAT_RGB24);
        for (const bool bLinear : {false, true}) {
            oDewarper->SetInterpolationType(bLinear ? INTERPOLATION_LINEAR : INTERPOLATION_NEAREST);
            oDewarper->SetMaskPolygons({{vPoints, RED}});
            ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
            const STestImage sPicture = oDewarper.Picture();
            for (std::size_t i = 0; i < sPicture.vPixels.size(); i += 4) {
                const unsigned char* p = &sPicture.vPixels[i];
                nHidden += p[0] == 255 ? 1 : 0;
                anWorst[bLinear][0] = std::max<int>(anWorst[bLinear][0], p[1]);
                anWorst[bLinear][1] = std::max(anWorst[bLinear][1], std::min<int>(p[0], p[2]));
            }
        }
    }
    // Pixel by pixel nothing shows. Filtered, an outline is a mixture of both sides: the picture takes part
    // with t and is hidden by t, so that t (1 - t) of it remains at most.
    EXPECT_EQ(anWorst[0][0], 0) << "hidden pixels show";
    EXPECT_EQ(anWorst[0][1], 0) << "pixels that should show are hidden";
    EXPECT_LE(anWorst[1][0], 64);
    EXPECT_GT(nHidden, 100);
    std::printf("  %-16s filtered: at most %d of 255 of a hidden pixel shows beside the outline\n",
                GetParam().sCase.pName, anWorst[1][0]);
}

TEST_P(MaskInView, OneTexelInsideTheOutlineNothingShowsFilteredEither)
{
    TRandom oRandom(6);
    for (const TPoints& vPoints : Polygons(oRandom, POLYGONS / 20, SIZE, SIZE)) {
        const std::vector<EPlace> vPlaces = PlacesOf(vPoints, SIZE, SIZE);
        std::vector<EPlace> vCore = vPlaces;
        for (int y = 0; y < SIZE; ++y)
            for (int x = 0; x < SIZE; ++x)
                for (int i = 0; i < 9; ++i) {
                    const int nX = std::clamp(x + i % 3 - 1, 0, SIZE - 1);
                    const int nY = std::clamp(y + i / 3 - 1, 0, SIZE - 1);
                    if (vPlaces[static_cast<std::size_t>(nY * SIZE + nX)] != PLACE_INSIDE)
                        vCore[static_cast<std::size_t>(y * SIZE + x)] = PLACE_NEAR;
                }
        CTestFrame oFrame(Frame(vCore), IMAGE_FORMAT_RGB24);
        oDewarper->SetInterpolationType(INTERPOLATION_LINEAR);
        oDewarper->SetMaskPolygons({{vPoints, RED}});
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        const STestImage sPicture = oDewarper.Picture();
        int nWorst = 0;
        for (std::size_t i = 0; i < sPicture.vPixels.size(); i += 4)
            nWorst = std::max<int>(nWorst, sPicture.vPixels[i + 1]);
        ASSERT_LE(nWorst, 1);
    }
}

INSTANTIATE_ENGINES(MaskCoverage);
INSTANTIATE_TEST_SUITE_P(Views, MaskInView, testing::ValuesIn(WithBothEngines(VIEWS)), SEngineCaseName());
