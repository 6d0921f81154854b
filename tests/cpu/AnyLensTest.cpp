// Every view through every kind of lens, beside where formulas say that each pixel looks.

#include "tests/cpu/TextbookLens.h"
#include "tests/support/EngineDewarper.h"
#include "tests/support/Setting.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <numbers>

namespace
{

const double RADIANS = std::numbers::pi / 180.0;

struct SViewCase
{
    const char* pName;
    EViewType eView;
    EMountType eMount;
    int nWidth;
    int nHeight;
    double fPan;
    double fTilt;
    double fZoom = 180.0;
    double fMostMean = 0.25; ///< pixels of the frame
    double fRoll = 0.0;
};

const EMountType C = MOUNT_CEILING;
const EMountType F = MOUNT_FLOOR;
const EMountType W = MOUNT_WALL;

// Strips are unrolled: straight cells follow bent lines.
const SViewCase CASES[] = {
    {"camera, ceiling", VIEW_VCAM, C, 1280, 720, 30, 60, 120},
    {"camera, floor", VIEW_VCAM, F, 1280, 720, -100, 130, 100},
    {"camera, wall", VIEW_VCAM, W, 1280, 720, 70, 110, 150},
    {"camera, rolled", VIEW_VCAM, C, 800, 800, 30, 40, 120, 0.25, 25},
    {"four cameras", VIEW_VCAM_QUAD, C, 1280, 960, 10, 50, 110},
    {"panorama", VIEW_PANORAMA_FULL, C, 2500, 350, 40, 0, 180, 0.3},
    {"panorama, floor", VIEW_PANORAMA_FULL, F, 2500, 350, 40, 0, 180, 0.3},
    {"half panorama", VIEW_PANORAMA_HALF, C, 2000, 560, -120, 0, 180, 0.3},
    {"two rows", VIEW_PANORAMA_QUARTER, F, 1500, 840, 75, 0, 180, 0.3},
    {"two panes", VIEW_PANORAMA_DUAL, C, 1600, 1000, 20, 10, 180, 0.3},
    {"three panes", VIEW_PANORAMA_TRIPLE, C, 1920, 800, -30, -15, 180, 0.3},
    {"wall panorama", VIEW_PANORAMA_FULL, W, 1600, 640, 0, 15, 180, 0.3},
    {"equirectangular", VIEW_EQUIRECTANGULAR, C, 1920, 480, 50, -40, 180, 0.3},
    {"equirectangular, wall", VIEW_EQUIRECTANGULAR, W, 1000, 500, -20, 10, 180, 0.3},
    {"cylindrical", VIEW_CYLINDRICAL, F, 1920, 360, 100, 30, 180, 0.3},
    {"cylindrical, wall", VIEW_CYLINDRICAL, W, 1200, 640, 10, -5, 120, 0.3},
    {"panini", VIEW_PANINI, C, 1280, 640, 70, -35, 180, 0.3},
    {"panini, wall, rolled", VIEW_PANINI, W, 1280, 640, -15, 5, 160, 0.3, -20},
};

/// The rays of the views about the vertical, from their definitions; false beside the picture.
class CVerticalView
{
public:
    explicit CVerticalView(const SViewCase& rCase) : m_rCase(rCase)
    {
        const bool bWall = rCase.eMount == W;
        switch (static_cast<int>(rCase.eView)) {
        case VIEW_EQUIRECTANGULAR:
            m_fHalfX = (bWall ? 90.0 : 180.0) * RADIANS;
            m_fHalfY = 45.0 * RADIANS;
            break;
        case VIEW_CYLINDRICAL:
            m_fHalfX = (bWall ? 90.0 : 180.0) * RADIANS;
            m_fHalfY = std::tan((bWall ? 40.0 : 30.0) * RADIANS);
            break;
        default:
            m_fHalfX = 2.0 * std::tan(45.0 * RADIANS);
            m_fHalfY = std::tan(45.0 * RADIANS);
            break;
        }
    }

    bool Ray(double x, double y, FVector& aRay) const
    {
        const double fAspect = m_fHalfX / m_fHalfY;
        const double fTarget = static_cast<double>(m_rCase.nWidth) / m_rCase.nHeight;
        // Fitted into the target, then narrowed by the zoom.
        const double fFit =
            (fTarget <= fAspect ? fAspect / fTarget : 1.0) * std::tan(m_rCase.fZoom * RADIANS / 4.0);
        const double fX = (2.0 * x / m_rCase.nWidth - 1.0) * fTarget * fFit;
        const double fY = (1.0 - 2.0 * y / m_rCase.nHeight) * fFit;
        if (std::abs(fX) > fAspect || std::abs(fY) > 1.0)
            return false;
        return m_rCase.eView == VIEW_PANINI ? Panini(fX * m_fHalfY, fY * m_fHalfY, aRay)
                                            : Unrolled(fX * m_fHalfY, fY * m_fHalfY, aRay);
    }

private:
    /// From east, north and up to the mount's axes; the pan turns clockwise from north.
    FVector OnMount(double fEast, double fNorth, double fUp) const
    {
        const double p = m_rCase.fPan * RADIANS;
        const FVector aWorld = {std::cos(p) * fEast + std::sin(p) * fNorth,
                                std::cos(p) * fNorth - std::sin(p) * fEast, fUp};
        return WorldToCamera(m_rCase.eMount, aWorld);
    }

    bool Unrolled(double fX, double fY, FVector& aRay) const
    {
        const double t = m_rCase.fTilt * RADIANS;
        const double fAbove = m_rCase.eView == VIEW_EQUIRECTANGULAR ? fY + t : std::atan(fY + std::tan(t));
        if (std::abs(fAbove) > 90.0 * RADIANS)
            return false;
        aRay = OnMount(std::cos(fAbove) * std::sin(fX), std::cos(fAbove) * std::cos(fX), std::sin(fAbove));
        return true;
    }

    bool Panini(double fX, double fY, FVector& aRay) const
    {
        // A place on a cylinder of radius 1, seen from the far side of its axis: on a plane through the axis'
        // other end the picture is twice as large.
        const double fBearing = 2.0 * std::atan(fX / 2.0);
        const double fUp = fY * (1.0 + std::cos(fBearing)) / 2.0;
        FVector a = Normalised({std::sin(fBearing), std::cos(fBearing), fUp});
        const double r = m_rCase.fRoll * RADIANS;
        a = {std::cos(r) * a[0] + std::sin(r) * a[2], a[1], std::cos(r) * a[2] - std::sin(r) * a[0]};
        const double t = m_rCase.fTilt * RADIANS;
        aRay =
            OnMount(a[0], std::cos(t) * a[1] - std::sin(t) * a[2], std::cos(t) * a[2] + std::sin(t) * a[1]);
        return true;
    }

    const SViewCase& m_rCase;
    double m_fHalfX = 1.0;
    double m_fHalfY = 1.0;
};

/// Where a pixel of a view looks, by definition; false where there is nothing.
class CExpectedRays
{
public:
    CExpectedRays(const SViewCase& rCase, double fHalfField)
        : m_rCase(rCase), m_fWallSpan(2.0 * std::max(90.0, fHalfField)), m_oVertical(rCase),
          m_oReference(SetupOf(rCase))
    {}

    bool Ray(double x, double y, FVector& aRay) const
    {
        if (m_rCase.eView >= VIEW_EQUIRECTANGULAR)
            return m_oVertical.Ray(x, y, aRay);
        if (m_rCase.eView == VIEW_PANORAMA_FULL && m_rCase.eMount == W)
            return Wall(x, y, aRay);
        if (m_rCase.fRoll != 0.0) {
            // The camera turns clockwise: what is at a place now was counterclockwise of it.
            const double r = m_rCase.fRoll * RADIANS;
            const double dx = x - 0.5 * m_rCase.nWidth;
            const double dy = y - 0.5 * m_rCase.nHeight;
            x = 0.5 * m_rCase.nWidth + std::cos(r) * dx - std::sin(r) * dy;
            y = 0.5 * m_rCase.nHeight + std::sin(r) * dx + std::cos(r) * dy;
        }
        const SReferencePixel sPixel = m_oReference.At(x, y);
        aRay = sPixel.aRay;
        // The reference's cameras end at 90 degrees, where its lens does.
        return sPixel.bDrawn || m_rCase.eView == VIEW_VCAM || m_rCase.eView == VIEW_VCAM_QUAD;
    }

private:
    static SReferenceSetup SetupOf(const SViewCase& r)
    {
        SReferenceSetup s;
        s.eView = r.eView;
        s.eMount = r.eMount;
        s.nImageWidth = 2000;
        s.nImageHeight = 2000;
        s.nTargetWidth = r.nWidth;
        s.nTargetHeight = r.nHeight;
        s.fPan = r.fPan;
        s.fTilt = r.fTilt;
        s.fZoom = r.fZoom;
        return s;
    }

    /// Columns are bearings over the lens's field, rows as many degrees apart.
    bool Wall(double x, double y, FVector& aRay) const
    {
        const double fPerPixel = m_fWallSpan / m_rCase.nWidth;
        const double fSide = (x - 0.5 * m_rCase.nWidth) * fPerPixel * RADIANS;
        const double fAbove = ((0.5 * m_rCase.nHeight - y) * fPerPixel + m_rCase.fTilt) * RADIANS;
        if (std::abs(fAbove) > 90.0 * RADIANS)
            return false;
        aRay = {std::cos(fAbove) * std::sin(fSide), std::sin(fAbove), std::cos(fAbove) * std::cos(fSide)};
        return true;
    }

    const SViewCase& m_rCase;
    double m_fWallSpan;
    CVerticalView m_oVertical;
    CReferenceView m_oReference;
};

struct SDisplacement
{
    std::vector<double> vPixels;
    int nLacking = 0; ///< places that the lens shows well inside its rim, and the view does not
    int nBeyond = 0;  ///< places well beyond the rim that the view shows
};

SDisplacement Measure(CDewarper& d, const SViewCase& rCase, const STextbookLens& rLens,
                      const STextbookCamera& rCamera)
{
    const CExpectedRays oRays(rCase, rLens.fHalfField);
    SDisplacement sResult;
    const double fStep = Setting("LUMOR_ANY_LENS_STEP", 17.0);
    for (double y = 1.5; y < rCase.nHeight; y += fStep) {
        for (double x = 1.5; x < rCase.nWidth; x += fStep) {
            FVector aRay;
            double fFrameX = 0.0;
            double fFrameY = 0.0;
            const bool bShown = d.ViewToFrame(x, y, fFrameX, fFrameY);
            if (!oRays.Ray(x, y, aRay)) {
                sResult.nBeyond += bShown ? 1 : 0;
                continue;
            }
            double fX = 0.0;
            double fY = 0.0;
            double fAngle = 0.0;
            Land(rLens, rCamera, aRay, fX, fY, fAngle);
            const bool bInFrame =
                fX > 1.0 && fY > 1.0 && fX < rCamera.nWidth - 1.0 && fY < rCamera.nHeight - 1.0;
            if (bShown)
                sResult.vPixels.push_back(std::hypot(fX - fFrameX, fY - fFrameY));
            sResult.nLacking += !bShown && bInFrame && fAngle < rLens.fHalfField - rLens.fRimSlack ? 1 : 0;
            sResult.nBeyond += bShown && fAngle > rLens.fHalfField + rLens.fRimSlack ? 1 : 0;
        }
    }
    return sResult;
}

void Apply(CDewarper& d, const SViewCase& rCase, const STextbookLens& rLens, const STextbookCamera& rCamera)
{
    ASSERT_TRUE(d.SetLens(rLens.sLens));
    ASSERT_TRUE(d.SetImageCircle(static_cast<float>(rCamera.fCenterX), static_cast<float>(rCamera.fCenterY),
                                 static_cast<float>(rCamera.fRadiusX), static_cast<float>(rCamera.fRadiusY)));
    ASSERT_TRUE(d.SetMountOrientation(static_cast<float>(rCamera.fYaw), static_cast<float>(rCamera.fPitch),
                                      static_cast<float>(rCamera.fRoll)));
    d.SetViewType(rCase.eView);
    d.SetMountType(rCase.eMount);
    d.SetRoll(static_cast<float>(rCase.fRoll));
    ASSERT_TRUE(d.InitTarget(rCase.nWidth, rCase.nHeight));
}

bool DrawAt(CDewarper& d, const SViewCase& rCase)
{
    d.AbsolutePTZ(static_cast<float>(rCase.fPan), static_cast<float>(rCase.fTilt),
                  static_cast<float>(rCase.fZoom));
    return d.DrawGLScene(true);
}

/// Pictures are not looked at, only where they come from: a frame of few bytes.
struct SBlankFrame
{
    explicit SBlankFrame(const STextbookCamera& r)
        : vBytes(static_cast<std::size_t>(r.nWidth) * static_cast<std::size_t>(r.nHeight))
    {
        sImage.pPlane0 = vBytes.data();
        sImage.nWidth = r.nWidth;
        sImage.nHeight = r.nHeight;
        sImage.nStride = r.nWidth;
        sImage.nFormat = IMAGE_FORMAT_GRAY8;
    }

    std::vector<unsigned char> vBytes;
    SImageProperties sImage;
};

const STextbookCamera CENTRED;
const STextbookCamera ASKEW = {2000, 1800, 930.0, 960.5, 850.0, 790.0, 6.0, -9.0, 14.0};

} // namespace

class CAnyLens : public ::testing::TestWithParam<STextbookLens>
{
protected:
    static void Check(const STextbookCamera& rCamera, const char* pCamera)
    {
        SBlankFrame sFrame(rCamera);
        CEngineDewarper d(ENGINE_CPU, 64, 64);
        ASSERT_TRUE(d->SetTexture(&sFrame.sImage, false, nullptr, 0));
        for (const SViewCase& rCase : CASES) {
            SCOPED_TRACE(rCase.pName);
            SViewCase sCase = rCase;
            Apply(*d, sCase, GetParam(), rCamera);
            ASSERT_TRUE(DrawAt(*d, sCase));
            float fPan = 0.0f;
            float fTilt = 0.0f;
            float fZoom = 0.0f;
            d->GetPTZ(fPan, fTilt, fZoom);
            // A narrow lens cannot be turned as far as was asked for.
            sCase.fTilt = static_cast<double>(fTilt);
            if (sCase.eMount == W && sCase.eView == VIEW_VCAM)
                sCase.fPan = static_cast<double>(fPan);
            SDisplacement sFound = Measure(*d, sCase, GetParam(), rCamera);
            EXPECT_EQ(sFound.nLacking, 0);
            EXPECT_EQ(sFound.nBeyond, 0);
            if (sFound.vPixels.empty())
                continue;
            const double fMean = Mean(sFound.vPixels);
            const double fMost = Percentile(sFound.vPixels, 0.999);
            EXPECT_LE(fMean, sCase.fMostMean);
            EXPECT_LE(fMost, 1.0);
            std::printf("| %s | %s | %s | %.3f | %.3f |\n", GetParam().pName, pCamera, sCase.pName, fMean,
                        fMost);
        }
    }
};

INSTANTIATE_TEST_SUITE_P(Lenses, CAnyLens, ::testing::ValuesIn(TextbookLenses()),
                         [](const auto& oInfo) { return CleanName(oInfo.param.pName); });

TEST_P(CAnyLens, EveryViewShowsWhatItsDefinitionSays)
{
    Check(CENTRED, "centred");
}

TEST_P(CAnyLens, EveryViewDoesSoThroughAnEllipseBesideTheMiddleOfATurnedBody)
{
    Check(ASKEW, "ellipse, turned body");
}
