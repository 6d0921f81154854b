// Lenses, circles, bodies and shapes that come and go: a picture is that of a fresh dewarper in the same
// state.

#include "dewarp/records/SMountOrientation.h"
#include "tests/cpu/TextbookLens.h"
#include "tests/support/DewarperSteps.h"
#include "tests/support/EngineDewarper.h"
#include "tests/support/GLRecorder.h"
#include "tests/support/Setting.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>

namespace
{

/// All that was asked for, as a fresh dewarper is told it.
struct SAskedState
{
    EViewType eView = VIEW_VCAM;
    EMountType eMount = MOUNT_CEILING;
    ELensType eLens = LENS_UNKNOWN;
    std::optional<SLens> oLens;
    SGRect sCircle; ///< centre and radii; no width: none
    SMountOrientation sOrientation;
    bool bCleanRim = false;
    float fRoll = 0.0f;
    SViewShape sShape;
    bool bFlip = false;
    bool bMask = false;
    bool bSmallFrame = false;
};

const EViewType VIEWS[] = {
    VIEW_VCAM,    VIEW_PANORAMA_FULL,    VIEW_PANORAMA_QUARTER, VIEW_PANORAMA_DUAL,   VIEW_PANORAMA_TRIPLE,
    VIEW_FISHEYE, VIEW_FISHEYE_CIRCULAR, VIEW_VCAM_QUAD,        VIEW_EQUIRECTANGULAR, VIEW_CYLINDRICAL,
    VIEW_PANINI};
const EMountType MOUNTS[] = {MOUNT_CEILING, MOUNT_WALL, MOUNT_FLOOR};
const int WIDTH = 96;
const int HEIGHT = 60;

class CWalk
{
public:
    explicit CWalk(unsigned int nSeed) : m_oRandom(nSeed) {}

    int Lot(int nCount) { return std::uniform_int_distribution<int>(0, nCount - 1)(m_oRandom); }

    /// Changes one thing, and tells the dewarper.
    void Step(SAskedState& s, CDewarper& d)
    {
        switch (Lot(10)) {
        case 0:
            s.eView = VIEWS[Lot(static_cast<int>(std::size(VIEWS)))];
            d.SetViewType(s.eView);
            break;
        case 1:
            s.eMount = MOUNTS[Lot(3)];
            d.SetMountType(s.eMount);
            break;
        case 2: {
            const std::vector<STextbookLens>& rLenses = TextbookLenses();
            s.oLens = rLenses[static_cast<std::size_t>(Lot(static_cast<int>(rLenses.size())))].sLens;
            EXPECT_TRUE(d.SetLens(*s.oLens));
            // One that is refused changes nothing.
            EXPECT_FALSE(d.SetLens(SLens::FromModel(LENS_ORTHOGRAPHIC, 190.0)));
            break;
        }
        case 3:
            s.oLens.reset();
            s.eLens = Lot(2) == 0 ? LENS_DSL419 : LENS_DSL215;
            d.SetLensType(s.eLens);
            break;
        case 4:
            s.sCircle =
                Lot(3) == 0 ? SGRect() : SGRect{60 + Lot(60), 50 + Lot(30), 40 + Lot(60), 40 + Lot(60)};
            EXPECT_TRUE(TellCircle(s, d));
            EXPECT_FALSE(d.SetImageCircle(1.0f, 1.0f, -3.0f, 5.0f));
            break;
        case 5:
            s.sOrientation = {};
            if (Lot(3) != 0)
                s.sOrientation = {static_cast<float>(Lot(60) - 30), static_cast<float>(Lot(60) - 30),
                                  static_cast<float>(Lot(360))};
            EXPECT_TRUE(
                d.SetMountOrientation(s.sOrientation.fYaw, s.sOrientation.fPitch, s.sOrientation.fRoll));
            break;
        case 6:
            s.bCleanRim = !s.bCleanRim;
            d.SetCleanRim(s.bCleanRim);
            break;
        case 7:
            s.fRoll = static_cast<float>(Lot(4) * 25);
            d.SetRoll(s.fRoll);
            break;
        case 8:
            s.sShape = Lot(3) == 0 ? SViewShape() : SViewShape{150.0f, 70.0f, 105.0f, 50.0f, Lot(2) == 0};
            EXPECT_TRUE(d.SetViewShape(s.sShape));
            break;
        default:
            s.bFlip = !s.bFlip;
            d.SetFlip(s.bFlip, false);
            s.bMask = Lot(2) == 0;
            TellMasks(s, d);
            s.bSmallFrame = Lot(3) == 0;
            break;
        }
    }

    /// Tells a fresh dewarper everything.
    static void Tell(const SAskedState& s, CDewarper& d)
    {
        d.SetViewType(s.eView);
        d.SetMountType(s.eMount);
        d.SetLensType(s.eLens);
        if (s.oLens)
            d.SetLens(*s.oLens);
        TellCircle(s, d);
        d.SetMountOrientation(s.sOrientation.fYaw, s.sOrientation.fPitch, s.sOrientation.fRoll);
        d.SetCleanRim(s.bCleanRim);
        d.SetRoll(s.fRoll);
        d.SetViewShape(s.sShape);
        d.SetFlip(s.bFlip, false);
        TellMasks(s, d);
    }

private:
    static bool TellCircle(const SAskedState& s, CDewarper& d)
    {
        return d.SetImageCircle(static_cast<float>(s.sCircle.x), static_cast<float>(s.sCircle.y) + 0.5f,
                                static_cast<float>(s.sCircle.width), static_cast<float>(s.sCircle.height));
    }
    static void TellMasks(const SAskedState& s, CDewarper& d)
    {
        SGPolygon sMask;
        sMask.vPoints = {{70, 30}, {110, 35}, {100, 80}};
        sMask.nColor = 0x202020FF;
        d.SetMaskPolygons(s.bMask ? std::vector<SGPolygon>{sMask} : std::vector<SGPolygon>());
    }

    std::mt19937 m_oRandom;
};

/// Every texel tells its place, so that nothing can be shown wrongly unseen.
CTestFrame& Frame(bool bSmall)
{
    static CTestFrame oLarge(TexelFrame(180, 130), IMAGE_FORMAT_NV12);
    static CTestFrame oSmall(TexelFrame(150, 150), IMAGE_FORMAT_NV12);
    return bSmall ? oSmall : oLarge;
}

class CAnyLensStates : public CEngineTest
{
};

INSTANTIATE_ENGINES(CAnyLensStates);

} // namespace

TEST_P(CAnyLensStates, APictureIsThatOfAFreshDewarperInTheSameState)
{
    int nCompared = 0;
    const unsigned int nWalks = static_cast<unsigned int>(Setting("LUMOR_ANY_LENS_WALKS", 6));
    for (unsigned int nSeed = 1; nSeed <= nWalks; ++nSeed) {
        SCOPED_TRACE("walk " + std::to_string(nSeed));
        CWalk oWalk(nSeed);
        CEngineDewarper oWalked(GetParam(), WIDTH, HEIGHT);
        if (!oWalked.Started())
            GTEST_SKIP();
        oWalked->SetInterpolationType(INTERPOLATION_LINEAR);
        SAskedState sState;
        CWalk::Tell(sState, *oWalked);
        ASSERT_TRUE(oWalked.DrawFrame(Frame(sState.bSmallFrame)));
        for (int i = 0; i < 24; ++i) {
            oWalk.Step(sState, *oWalked);
            if (oWalk.Lot(2) == 0)
                continue;
            float fPan = static_cast<float>(oWalk.Lot(360) - 180);
            float fTilt = static_cast<float>(oWalk.Lot(180));
            ASSERT_TRUE(oWalked.DrawFrame(Frame(sState.bSmallFrame)));
            oWalked->AbsolutePTZ(fPan, fTilt, 120.0f);
            ASSERT_TRUE(oWalked.DrawFrame(Frame(sState.bSmallFrame)));
            CEngineDewarper oFresh(GetParam(), WIDTH, HEIGHT);
            oFresh->SetInterpolationType(INTERPOLATION_LINEAR);
            CWalk::Tell(sState, *oFresh);
            ASSERT_TRUE(oFresh.DrawFrame(Frame(sState.bSmallFrame)));
            oFresh->AbsolutePTZ(fPan, fTilt, 120.0f);
            ASSERT_TRUE(oFresh.DrawFrame(Frame(sState.bSmallFrame)));
            ASSERT_EQ(oWalked.Picture().vPixels, oFresh.Picture().vPixels)
                << "step " << i << ", view " << sState.eView << ", mount " << sState.eMount;
            ++nCompared;
        }
    }
    EXPECT_GT(nCompared, 50);
    EXPECT_NO_GL_ERROR();
}

TEST_P(CAnyLensStates, WhatIsTakenBackLeavesNoTrace)
{
    CEngineDewarper d(GetParam(), WIDTH, HEIGHT);
    if (!d.Started())
        GTEST_SKIP();
    d->SetLensType(LENS_DSL419);
    ASSERT_TRUE(d.DrawFrame(Frame(false)));
    const std::vector<unsigned char> vBefore = d.Picture().vPixels;
    EXPECT_TRUE(d->SetLens(SLens::FromModel(LENS_EQUISOLID, 210.0)));
    EXPECT_EQ(d->GetLensInForce(), LENS_OWN);
    EXPECT_TRUE(d->SetImageCircle(90.0f, 60.0f, 50.0f, 55.0f));
    EXPECT_TRUE(d->SetMountOrientation(5.0f, 6.0f, 7.0f));
    d->SetRoll(30.0f);
    ASSERT_TRUE(d.DrawFrame(Frame(false)));
    EXPECT_NE(d.Picture().vPixels, vBefore);
    d->SetLensType(LENS_DSL419);
    EXPECT_EQ(d->GetLensInForce(), LENS_DSL419);
    EXPECT_TRUE(d->SetImageCircle(0.0f, 0.0f, 0.0f, 0.0f));
    EXPECT_TRUE(d->SetMountOrientation(0.0f, 0.0f, 0.0f));
    d->SetRoll(0.0f);
    ASSERT_TRUE(d.DrawFrame(Frame(false)));
    EXPECT_EQ(d.Picture().vPixels, vBefore);
}

TEST_P(CAnyLensStates, WhatWasSaidIsTold)
{
    CEngineDewarper d(GetParam(), WIDTH, HEIGHT);
    if (!d.Started())
        GTEST_SKIP();
    float x = 0.0f;
    float y = 0.0f;
    float rx = 0.0f;
    float ry = 0.0f;
    EXPECT_FALSE(d->GetImageCircle(x, y, rx, ry)) << "no frame, no lens, no circle";
    EXPECT_TRUE(d->SetImageCircle(90.0f, 60.5f, 50.0f, 55.0f));
    ASSERT_TRUE(d->GetImageCircle(x, y, rx, ry));
    EXPECT_EQ(y, 60.5f);
    EXPECT_EQ(ry, 55.0f);
    EXPECT_TRUE(d->SetImageCircle(0.0f, 0.0f, 0.0f, 0.0f));
    d->SetLensType(LENS_UNKNOWN);
    ASSERT_TRUE(d.DrawFrame(Frame(false)));
    ASSERT_TRUE(d->GetImageCircle(x, y, rx, ry)) << "by the lens's own rule";
    EXPECT_EQ(x, 90.0f);
    EXPECT_EQ(rx, 90.0f);
    EXPECT_TRUE(d->SetMountOrientation(365.0f, -20.0f, 3.0f));
    float fYaw = 0.0f;
    float fPitch = 0.0f;
    float fRoll = 0.0f;
    d->GetMountOrientation(fYaw, fPitch, fRoll);
    EXPECT_EQ(fYaw, 5.0f);
    EXPECT_EQ(fPitch, -20.0f);
    d->SetRoll(725.0f);
    EXPECT_EQ(d->GetRoll(), 5.0f);
    d->SetCleanRim(true);
    EXPECT_TRUE(d->GetCleanRim());
    const SViewShape sShape = {100.0f, 40.0f, 120.0f, 30.0f, true};
    EXPECT_TRUE(d->SetViewShape(sShape));
    EXPECT_EQ(d->GetViewShape(), sShape);
}

TEST_P(CAnyLensStates, WhatCannotBeIsRefusedAndSaid)
{
    CEngineDewarper d(GetParam(), WIDTH, HEIGHT);
    if (!d.Started())
        GTEST_SKIP();
    const float fNone = std::nanf("");
    const auto ExpectSaid = [&](const char* pPart) {
        EXPECT_NE(d->GetLastErrorText().find(pPart), std::string::npos) << d->GetLastErrorText();
    };
    EXPECT_FALSE(d->SetLens(SLens::FromTable({0.0, 5.0, 4.0}, {0.0, 1.0, 2.0})));
    ExpectSaid("angles do not rise at row 2");
    EXPECT_FALSE(d->SetImageCircle(fNone, 0.0f, 5.0f, 5.0f));
    ExpectSaid("not a finite number");
    EXPECT_FALSE(d->SetImageCircle(5.0f, 5.0f, 5.0f, 0.0f));
    ExpectSaid("no circle");
    EXPECT_FALSE(d->SetImageCircle(2e6f, 5.0f, 5.0f, 5.0f));
    ExpectSaid("out of reach");
    EXPECT_FALSE(d->SetMountOrientation(0.0f, fNone, 0.0f));
    d->SetRoll(fNone);
    EXPECT_EQ(d->GetRoll(), 0.0f);
    EXPECT_FALSE(d->SetViewShape({5.0f, 0.0f, 0.0f, 0.0f, false}));
    ExpectSaid("span");
    EXPECT_FALSE(d->SetViewShape({0.0f, 0.0f, 60.0f, 58.0f, false}));
    ExpectSaid("band");
}
