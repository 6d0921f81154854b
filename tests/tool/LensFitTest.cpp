#include "lens/LensFit.h"

#include "FitScene.h"
#include "ToolError.h"

#include <gtest/gtest.h>

#include <iterator>
#include <span>

namespace
{

struct SModelCase
{
    ELensModel eModel;
    double fField;
};

const SModelCase MODELS[] = {
    {LENS_EQUIDISTANT, 200.0},   {LENS_EQUIDISTANT, 170.0},  {LENS_EQUISOLID, 190.0},
    {LENS_STEREOGRAPHIC, 205.0}, {LENS_ORTHOGRAPHIC, 150.0}, {LENS_RECTILINEAR, 110.0},
};

/// Those in whose pictures lines bend.
const std::span<const SModelCase> BENT_MODELS(MODELS, std::size(MODELS) - 1);

SFitScene SceneOf(const SModelCase& rCase, double fNoise = 0.0, unsigned int nSeed = 1)
{
    SFitScene sScene;
    sScene.sLens = SLens::FromModel(rCase.eModel, rCase.fField);
    sScene.fNoise = fNoise;
    sScene.nSeed = nSeed;
    return sScene;
}

/// A calibrated lens that is near none of the ideal ones.
SFitScene BentScene(double fNoise = 0.0)
{
    SLensCalibration s;
    s.fFocalX = s.fFocalY = 300.0;
    s.afRadial[0] = 0.06;
    s.afRadial[1] = -0.03;
    s.fField = 190.0;
    SFitScene sScene;
    sScene.sLens = SLens::FromCalibration(s);
    sScene.fNoise = fNoise;
    return sScene;
}

std::string ListOf(const std::vector<SLensFit>& vFits)
{
    std::string strList;
    for (const SLensFit& rFit : vFits)
        strList += FitModelName(rFit.sModel) + " " + std::to_string(rFit.fField) + " rms " +
                   std::to_string(rFit.fRMS) + " score " + std::to_string(rFit.fScore) + " " +
                   rFit.strReason + "\n";
    return strList;
}

void ExpectFit(const SFitScene& rScene, const SFitData& rData, const SModelCase& rCase, double fDegrees,
               double fPixels)
{
    const std::vector<SLensFit> vFits = FitLenses(rData, SetupOf(rScene));
    const SLensFit* pBest = BestFit(vFits);
    ASSERT_NE(pBest, nullptr) << ListOf(vFits);
    EXPECT_EQ(FitModelName(pBest->sModel), LensModelName(rCase.eModel)) << rCase.fField << "\n"
                                                                        << ListOf(vFits);
    for (const SLensFit& rFit : vFits) {
        if (rFit.sModel != SFitModel{rCase.eModel, 0})
            continue;
        EXPECT_NEAR(rFit.fField, rCase.fField, fDegrees) << ListOf(vFits);
        EXPECT_NEAR(rFit.fCenterX, rScene.fCenterX, fPixels);
        EXPECT_NEAR(rFit.fCenterY, rScene.fCenterY, fPixels);
        // What it says of itself is what it is.
        EXPECT_LT(std::fabs(rFit.fField - rCase.fField), 5.0 * rFit.fFieldDoubt + 0.01);
    }
}

std::string RefusalOf(const SFitData& rData, const SFitSetup& rSetup)
{
    try {
        const std::vector<SLensFit> vFits = FitLenses(rData, rSetup);
        return BestFit(vFits) == nullptr ? vFits[0].strReason : "nothing was refused: " + ListOf(vFits);
    } catch (const CToolError& rError) {
        return rError.what();
    }
}

/// The largest distance of two lenses' curves, pixels, up to an angle.
double CurveDistance(const SFitScene& rScene, const SLens& rLens, double fScale, double fMost)
{
    double fLargest = 0.0;
    for (double t = 1.0; t <= fMost; t += 1.0) {
        const SFitPlace sPlace = PlaceOf(rScene, t, 0.0);
        fLargest =
            std::max(fLargest, std::fabs(sPlace.x - rScene.fCenterX - fScale * LensHeightAt(rLens, t)));
    }
    return fLargest;
}

} // namespace

TEST(LensFit, PointsTellModelFieldAndCentre)
{
    for (const SModelCase& rCase : MODELS) {
        const SFitScene sScene = SceneOf(rCase);
        ExpectFit(sScene, SpokePoints(sScene, 8, 6), rCase, 0.01, 0.05);
    }
}

TEST(LensFit, PointsWithNoiseTellThemToo)
{
    for (const SModelCase& rCase : MODELS) {
        for (unsigned int nSeed = 1; nSeed <= 5; ++nSeed) {
            const SFitScene sScene = SceneOf(rCase, 0.5, nSeed);
            ExpectFit(sScene, SpokePoints(sScene, 8, 6), rCase, 0.4, 0.5);
        }
    }
}

TEST(LensFit, LinesTellModelFieldAndCentre)
{
    for (const SModelCase& rCase : BENT_MODELS) {
        const SFitScene sScene = SceneOf(rCase);
        ExpectFit(sScene, RoomLines(sScene, 10, 15), rCase, 0.01, 0.05);
    }
}

TEST(LensFit, LinesWithNoiseTellThemToo)
{
    for (const SModelCase& rCase : BENT_MODELS) {
        for (unsigned int nSeed = 1; nSeed <= 3; ++nSeed) {
            const SFitScene sScene = SceneOf(rCase, 0.5, nSeed);
            ExpectFit(sScene, RoomLines(sScene, 12, 20), rCase, 0.4, 0.8);
        }
    }
}

TEST(LensFit, RadiiTellTheFieldOfACentreThatIsKnown)
{
    for (const SModelCase& rCase : MODELS) {
        const SFitScene sScene = SceneOf(rCase);
        SFitData sData = SpokePoints(sScene, 1, 9);
        for (SFitPoint& rPoint : sData.vPoints) {
            rPoint.bPlace = false;
            rPoint.fRadius = std::hypot(rPoint.sPlace.x - sScene.fCenterX, rPoint.sPlace.y - sScene.fCenterY);
        }
        const std::vector<SLensFit> vFits = FitLenses(sData, SetupOf(sScene));
        const SLensFit* pBest = BestFit(vFits);
        ASSERT_NE(pBest, nullptr);
        EXPECT_EQ(pBest->sModel, (SFitModel{rCase.eModel, 0})) << ListOf(vFits);
        EXPECT_NEAR(pBest->fField, rCase.fField, 0.01);
        EXPECT_FALSE(pBest->bCenterFitted);
        EXPECT_EQ(pBest->fCenterX, 960.0);
    }
}

TEST(LensFit, AKeptCentreIsNotMoved)
{
    const SFitScene sScene = SceneOf(MODELS[0]);
    SFitSetup sSetup = SetupOf(sScene);
    sSetup.bKeepCenter = true;
    for (const SLensFit& rFit : FitLenses(SpokePoints(sScene, 8, 6), sSetup)) {
        EXPECT_FALSE(rFit.bCenterFitted);
        EXPECT_TRUE(rFit.fFocal == 0.0 || rFit.fCenterX == 960.0);
    }
}

TEST(LensFit, ALensLikeNoneOfTheModelsGetsAPolynomial)
{
    for (const double fNoise : {0.0, 0.5}) {
        const SFitScene sScene = BentScene(fNoise);
        // Points of known angles, and a few of them beside lines.
        SFitData sBoth = RoomLines(sScene, 12, 20, 1.0);
        sBoth.vPoints = SpokePoints(sScene, 4, 5, 1.0).vPoints;
        for (const SFitData& rData : {SpokePoints(sScene, 8, 12, 1.0), sBoth}) {
            const std::vector<SLensFit> vFits = FitLenses(rData, SetupOf(sScene));
            const SLensFit* pBest = BestFit(vFits);
            ASSERT_NE(pBest, nullptr) << ListOf(vFits);
            EXPECT_TRUE(pBest->sModel.IsPolynomial()) << ListOf(vFits);
            const SLensFile sFile = LensOfFit(*pBest, SetupOf(sScene));
            ASSERT_EQ(sFile.sLens.eKind, LENS_KIND_CALIBRATION);
            const SLensCalibration& c = sFile.sLens.sCalibration;
            EXPECT_NEAR(c.fCenterX, sScene.fCenterX - 0.5, fNoise > 0.0 ? 1.0 : 0.05);
            EXPECT_LT(CurveDistance(sScene, sFile.sLens, c.fFocalX, 90.0), fNoise > 0.0 ? 1.5 : 0.1)
                << ListOf(vFits);
            EXPECT_NEAR(c.fField, 190.0, fNoise > 0.0 ? 1.0 : 0.1);
        }
    }
}

TEST(LensFit, LinesAloneGiveNoPolynomial)
{
    // Depth that is stretched keeps straight edges straight: a curve of any form may be stretched with it.
    const SFitScene sScene = BentScene();
    const std::vector<SLensFit> vFits = FitLenses(RoomLines(sScene, 16, 20, 1.0), SetupOf(sScene));
    EXPECT_NE(vFits.back().strReason.find("lines alone leave its scale open"), std::string::npos);
}

TEST(LensFit, TheLensOfAFitDrawsWhatWasMeasured)
{
    const SFitScene sScene = SceneOf(MODELS[2]);
    const std::vector<SLensFit> vFits = FitLenses(SpokePoints(sScene, 8, 6), SetupOf(sScene));
    for (const SLensFit& rFit : vFits) {
        if (!rFit.strReason.empty())
            continue;
        const SLensFile sFile = LensOfFit(rFit, SetupOf(sScene));
        const CFitCurve oCurve(rFit.sModel, rFit.fFocal, rFit.vCoefficients);
        const bool bModel = sFile.sLens.eKind == LENS_KIND_MODEL;
        ASSERT_TRUE(sFile.oCircle);
        const double fScale =
            bModel ? static_cast<double>(sFile.oCircle->fRadiusX) : sFile.sLens.sCalibration.fFocalX;
        for (double t = 0.0; t < LensEdgeAngle(sFile.sLens); t += 5.0)
            EXPECT_NEAR(fScale * LensHeightAt(sFile.sLens, t),
                        oCurve.Height(t * 3.14159265358979323846 / 180.0), 2e-3)
                << FitModelName(rFit.sModel) << " " << t;
    }
}

TEST(LensFit, ACircleOnlyStandsInTheFileWhenItIsNotTheOneThatLensesHave)
{
    const SFitScene sScene = {SLens::FromModel(LENS_EQUIDISTANT, 180.0), 960.0, 540.0, 540.0, 0.0, 1};
    SFitSetup sSetup;
    sSetup.nWidth = 1920;
    sSetup.nHeight = 1080;
    sSetup.bKeepCenter = true;
    const std::vector<SLensFit> vFits = FitLenses(SpokePoints(sScene, 4, 6), sSetup);
    EXPECT_FALSE(LensOfFit(*BestFit(vFits), sSetup).oCircle);
    sSetup.bKeepCenter = false;
    const std::vector<SLensFit> vMoved = FitLenses(SpokePoints(sScene, 4, 6), sSetup);
    EXPECT_TRUE(LensOfFit(*BestFit(vMoved), sSetup).oCircle);
}

TEST(LensFit, TooFewMeasurementsAreRefused)
{
    const SFitScene sScene = SceneOf(MODELS[0]);
    EXPECT_NE(RefusalOf(SpokePoints(sScene, 1, 1), SetupOf(sScene)).find("too few measurements"),
              std::string::npos);
    EXPECT_NE(
        RefusalOf(RoomLines(sScene, 1, 3), SetupOf(sScene)).find("too few measurements: 3 for 3 unknowns"),
        std::string::npos);
}

TEST(LensFit, LinesThroughTheCentreAreRefused)
{
    SFitScene sScene = SceneOf(MODELS[0]);
    sScene.fCenterX = 960.0;
    sScene.fCenterY = 540.0;
    SFitData sData;
    for (int i = 0; i < 6; ++i) {
        SFitLine sLine = {std::to_string(i), {}};
        for (int j = -9; j <= 9; ++j)
            sLine.vPlaces.push_back(PlaceOf(sScene, std::abs(j) * 9.0, i * 29.0 + (j < 0 ? 180.0 : 0.0)));
        sData.vLines.push_back(sLine);
    }
    EXPECT_NE(RefusalOf(sData, SetupOf(sScene)).find("do not tell its field"), std::string::npos)
        << RefusalOf(sData, SetupOf(sScene));
}

TEST(LensFit, LinesThatAreStraightInThePictureAreRefused)
{
    for (const double fNoise : {0.0, 0.5}) {
        const SFitScene sScene = SceneOf({LENS_RECTILINEAR, 110.0}, fNoise);
        const std::string strRefusal = RefusalOf(RoomLines(sScene, 12, 20), SetupOf(sScene));
        EXPECT_NE(strRefusal.find("do not tell its field"), std::string::npos) << strRefusal;
    }
}

TEST(LensFit, PointsOnTheAxisAndShortLinesAreRefused)
{
    const SFitScene sScene = SceneOf(MODELS[0]);
    SFitData sAxis;
    sAxis.vPoints.assign(9, SFitPoint{0.0, true, {970.0, 531.0}, 0.0});
    EXPECT_NE(RefusalOf(sAxis, SetupOf(sScene)).find("do not tell its field"), std::string::npos);
    SFitData sSame;
    sSame.vLines.assign(3, SFitLine{"a", std::vector<SFitPlace>(5, SFitPlace{700.0, 300.0})});
    EXPECT_NE(RefusalOf(sSame, SetupOf(sScene)).find("do not tell its field"), std::string::npos);
    SFitData sShort;
    for (int i = 0; i < 3; ++i)
        sShort.vLines.push_back(
            {"b", {{700.0 + i, 300.0}, {702.0 + i, 303.0}, {704.0 + i, 306.0}, {706.0 + i, 309.0}}});
    EXPECT_NE(RefusalOf(sShort, SetupOf(sScene)).find("do not tell its field"), std::string::npos)
        << RefusalOf(sShort, SetupOf(sScene));
}

TEST(LensFit, AModelThatEndsBeforeThePointsIsOutOfQuestion)
{
    const SFitScene sScene = SceneOf(MODELS[0]);
    const std::vector<SLensFit> vFits = FitLenses(SpokePoints(sScene, 8, 6), SetupOf(sScene));
    EXPECT_EQ(vFits[3].strReason, "it ends at 90 degrees off the axis, the points at 95");
    EXPECT_EQ(vFits[4].strReason, "it ends at 89 degrees off the axis, the points at 95");
}

TEST(LensFit, WithoutDataAtTheEdgeThereIsNoPolynomial)
{
    const SFitScene sScene = SceneOf(MODELS[0]);
    const SFitData sData = SpokePoints(sScene, 8, 8, 0.6);
    EXPECT_NE(FitLenses(sData, SetupOf(sScene)).back().strReason.find("reach to 60 % of the radius"),
              std::string::npos)
        << FitLenses(sData, SetupOf(sScene)).back().strReason;
    EXPECT_EQ(FitLenses(sData, SetupOf(sScene), true).back().strReason, "");
}

TEST(LensFit, DataOfAnyKindEndsInALensOrARefusal)
{
    std::mt19937 oRandom(5);
    const auto Any = [&oRandom](double fMost) {
        return fMost * static_cast<double>(oRandom()) / 4294967295.0;
    };
    for (int i = 0; i < 60; ++i) {
        SFitData sData;
        const double fSize = std::pow(10.0, Any(6.0));
        for (unsigned int n = oRandom() % 8; n > 0; --n)
            sData.vPoints.push_back({Any(179.0), true, {Any(fSize), Any(fSize)}, 0.0});
        for (unsigned int n = oRandom() % 4; n > 0; --n)
            sData.vLines.push_back({"a", std::vector<SFitPlace>(3 + oRandom() % 5, SFitPlace{1.0, 2.0})});
        for (SFitLine& rLine : sData.vLines)
            for (SFitPlace& rPlace : rLine.vPlaces)
                rPlace = {Any(fSize), Any(fSize)};
        try {
            const SFitSetup sSetup = SetupOf(SFitScene{});
            const std::vector<SLensFit> vFits = FitLenses(sData, sSetup, true);
            std::vector<std::string> vFaults;
            for (const SLensFit& rFit : vFits) {
                if (rFit.strReason.empty())
                    vFaults.push_back(FindLensFault(LensOfFit(rFit, sSetup).sLens));
            }
            EXPECT_EQ(std::count(vFaults.begin(), vFaults.end(), ""), static_cast<long>(vFaults.size()));
        } catch (const CToolError& rError) {
            EXPECT_NE(std::string(rError.what()), "");
        }
    }
}
