// Pictures of a known room through lenses that hosts describe, by both engines.

#include "tests/cpu/TextbookLens.h"
#include "tests/support/DewarperSteps.h"
#include "tests/support/EngineDewarper.h"

#include <gtest/gtest.h>

#include <numbers>

namespace
{

struct SPictureCase
{
    const char* pName;
    std::size_t nLens; ///< of TextbookLenses
    STextbookCamera sCamera;
    EViewType eView;
    EMountType eMount;
    double fPan;
    double fTilt;
    double fZoom;
};

const SPictureCase CASES[] = {
    // Beyond the half-sphere, up to the rim.
    {"camera of 220 degrees", 1, {1000, 800, 500, 400, 380, 380}, VIEW_VCAM, MOUNT_CEILING, 90, 95, 120},
    {"camera, ellipse, askew",
     3,
     {1000, 800, 450, 420, 400, 350, 10, -12, 20},
     VIEW_VCAM,
     MOUNT_WALL,
     60,
     100,
     140},
    // The circle is larger than the frame.
    {"camera, circle cut", 2, {1000, 600, 500, 300, 450, 450}, VIEW_VCAM, MOUNT_FLOOR, 10, 110, 150},
    {"panorama", 0, {1000, 800, 520, 390, 370, 370, 5, 5, 0}, VIEW_PANORAMA_HALF, MOUNT_CEILING, 30, 0, 180},
    {"two panes", 6, {1000, 800, 500, 400, 390, 390}, VIEW_PANORAMA_DUAL, MOUNT_CEILING, 0, 0, 180},
};

const int WIDTH = 480;
const int HEIGHT = 300;

/// What a place of the view shows: colour and how much of it, from formulas alone.
STestImage Expected(const SPictureCase& r)
{
    const STextbookLens& rLens = TextbookLenses()[r.nLens];
    SReferenceSetup s;
    s.eView = r.eView;
    s.eMount = r.eMount;
    s.nImageWidth = s.nImageHeight = 1000;
    s.nTargetWidth = WIDTH;
    s.nTargetHeight = HEIGHT;
    s.fPan = r.fPan;
    s.fTilt = r.fTilt;
    s.fZoom = r.fZoom;
    const CReferenceView oView(s);
    const bool bCamera = r.eView == VIEW_VCAM;
    STestImage sImage(WIDTH, HEIGHT);
    const int nSamples = 4;
    for (int n = 0; n < WIDTH * HEIGHT; ++n) {
        // A view's own borders follow the pixels' middles.
        if (!bCamera && !oView.At(n % WIDTH + 0.5, n / WIDTH + 0.5).bDrawn)
            continue;
        double afSum[4] = {};
        int nInView = 0;
        for (int i = 0; i < nSamples * nSamples; ++i) {
            const double x = n % WIDTH + (i % nSamples + 0.5) / nSamples;
            const double y = n / WIDTH + (i / nSamples + 0.5) / nSamples;
            const SReferencePixel sPixel = oView.At(x, y);
            double fX = 0.0;
            double fY = 0.0;
            double fAngle = 0.0;
            if (!sPixel.bDrawn && !bCamera)
                continue;
            ++nInView;
            if (!Land(rLens, r.sCamera, sPixel.aRay, fX, fY, fAngle) || fX < 0.0 || fY < 0.0 ||
                fX > r.sCamera.nWidth || fY > r.sCamera.nHeight)
                continue;
            const FColour aColour = RoomColour(CameraToWorld(r.eMount, sPixel.aRay));
            for (std::size_t k = 0; k < 3; ++k)
                afSum[k] += aColour[k] * 255.0;
            afSum[3] += 255.0;
        }
        const double f = 1.0 / std::max(nInView, 1);
        sImage.Set(n % WIDTH, n / WIDTH, static_cast<int>(std::lround(afSum[0] * f)),
                   static_cast<int>(std::lround(afSum[1] * f)), static_cast<int>(std::lround(afSum[2] * f)),
                   static_cast<int>(std::lround(afSum[3] * f)));
    }
    return sImage;
}

class CAnyLensPictures : public ::testing::TestWithParam<SEngineCase<SPictureCase>>
{
};

INSTANTIATE_TEST_SUITE_P(Cases, CAnyLensPictures, ::testing::ValuesIn(WithBothEngines(CASES)),
                         SEngineCaseName());

CLastPicture oFrames;
CLastPicture oExpected;

STestImage Draw(EDewarpEngine eEngine, const SPictureCase& r, const STestImage& rScene)
{
    CEngineDewarper d(eEngine, WIDTH, HEIGHT);
    if (!d.Started())
        return {};
    CTestFrame oFrame(rScene, IMAGE_FORMAT_RGBA32);
    const STextbookCamera& c = r.sCamera;
    d->SetViewType(r.eView);
    d->SetMountType(r.eMount);
    d->SetInterpolationType(INTERPOLATION_LINEAR);
    EXPECT_TRUE(d->SetLens(TextbookLenses()[r.nLens].sLens));
    EXPECT_TRUE(d->SetImageCircle(static_cast<float>(c.fCenterX), static_cast<float>(c.fCenterY),
                                  static_cast<float>(c.fRadiusX), static_cast<float>(c.fRadiusY)));
    EXPECT_TRUE(d->SetMountOrientation(static_cast<float>(c.fYaw), static_cast<float>(c.fPitch),
                                       static_cast<float>(c.fRoll)));
    EXPECT_TRUE(d.DrawFrame(oFrame));
    d->AbsolutePTZ(static_cast<float>(r.fPan), static_cast<float>(r.fTilt), static_cast<float>(r.fZoom));
    EXPECT_TRUE(d.DrawFrame(oFrame));
    return d.Picture();
}

} // namespace

TEST_P(CAnyLensPictures, AreThoseOfTheRoomWithASmoothRim)
{
    const SPictureCase& r = GetParam().sCase;
    const STestImage& rScene = oFrames.Of(r.pName, [&] {
        return RenderThrough(TextbookLenses()[r.nLens], r.sCamera, r.eMount, RoomColour, 2);
    });
    const STestImage& rExpected = oExpected.Of(r.pName, [&] { return Expected(r); });
    const STestImage sDrawn = Draw(GetParam().eEngine, r, rScene);
    if (sDrawn.nWidth == 0)
        GTEST_SKIP();
    WritePicture(CleanName(std::string("any lens ") + r.pName + EngineName(GetParam().eEngine)),
                 SideBySide(sDrawn, rExpected));
    std::vector<double> vColour;
    std::vector<double> vAlpha;
    int nBetween = 0;
    for (int n = 0; n < WIDTH * HEIGHT; ++n) {
        const unsigned char* a = sDrawn.At(n % WIDTH, n / WIDTH);
        const unsigned char* b = rExpected.At(n % WIDTH, n / WIDTH);
        for (int k = 0; k < 3; ++k) {
            vColour.push_back(std::abs(a[k] - b[k]));
            // Premultiplied: no colour is stronger than its share.
            EXPECT_LE(a[k], a[3] + 1);
        }
        vAlpha.push_back(std::abs(a[3] - b[3]));
        nBetween += a[3] > 20 && a[3] < 235 ? 1 : 0;
    }
    // The frame has a texel for each pixel or two of the view, and sharp edges.
    EXPECT_LT(Mean(vColour), 3.0);
    EXPECT_LT(Mean(vAlpha), 0.25);
    EXPECT_LE(Percentile(vAlpha, 0.999), 60.0);
    const bool bHasRim = std::any_of(vAlpha.begin(), vAlpha.end(), [](double f) { return f > 0.0; });
    if (bHasRim) {
        EXPECT_GT(nBetween, 20) << "the edge is stepped";
    }
}
