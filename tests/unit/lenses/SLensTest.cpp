#include "dewarp/lenses/SLens.h"

#include "dewarp/lenses/RadialCurve.h"

#include <gtest/gtest.h>

#include <limits>
#include <numbers>

namespace
{

const double RADIANS = std::numbers::pi / 180.0;
const double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

/// An ideal lens by its textbook formula, focal length 1.
double ModelHeight(ELensModel eModel, double fAngle)
{
    switch (eModel) {
    case LENS_EQUIDISTANT:
        return fAngle;
    case LENS_EQUISOLID:
        return 2.0 * std::sin(fAngle / 2.0);
    case LENS_STEREOGRAPHIC:
        return 2.0 * std::tan(fAngle / 2.0);
    case LENS_ORTHOGRAPHIC:
        return std::sin(fAngle);
    default:
        return std::tan(fAngle);
    }
}

SLensCalibration GoodCalibration()
{
    SLensCalibration s;
    s.fFocalX = 600.0;
    s.fFocalY = 601.0;
    s.fCenterX = 959.5;
    s.fCenterY = 539.5;
    s.afRadial[0] = -0.02;
    s.afRadial[1] = 0.003;
    return s;
}

std::string FaultOf(SLensCalibration s, double SLensCalibration::*pMember, double f)
{
    s.*pMember = f;
    return FindLensFault(SLens::FromCalibration(s));
}

} // namespace

TEST(SLens, ModelsFollowTheirFormulas)
{
    for (const ELensModel eModel :
         {LENS_EQUIDISTANT, LENS_EQUISOLID, LENS_STEREOGRAPHIC, LENS_ORTHOGRAPHIC, LENS_RECTILINEAR}) {
        for (const double fField : {1.0, 90.0, 170.0, MostLensField(eModel)}) {
            const SLens sLens = SLens::FromModel(eModel, fField);
            ASSERT_EQ(FindLensFault(sLens), "");
            EXPECT_DOUBLE_EQ(LensEdgeAngle(sLens), fField / 2.0);
            const double fEdge = ModelHeight(eModel, fField / 2.0 * RADIANS);
            for (double f = 0.0; f <= 1.0; f += 0.03125)
                EXPECT_NEAR(LensHeightAt(sLens, f * fField / 2.0),
                            ModelHeight(eModel, f * fField / 2.0 * RADIANS) / fEdge, 1e-12)
                    << LensModelName(eModel) << fField;
        }
    }
}

TEST(SLens, ModelsAreFoundByTheirNames)
{
    ELensModel eModel = LENS_EQUIDISTANT;
    EXPECT_TRUE(FindLensModel("stereographic", eModel));
    EXPECT_EQ(eModel, LENS_STEREOGRAPHIC);
    EXPECT_FALSE(FindLensModel("Stereographic", eModel));
    EXPECT_FALSE(FindLensModel("", eModel));
    EXPECT_STREQ(LensModelName(LENS_RECTILINEAR), "rectilinear");
    EXPECT_EQ(LensModelName(static_cast<ELensModel>(17)), nullptr);
    EXPECT_EQ(MostLensField(static_cast<ELensModel>(17)), 0.0);
}

TEST(SLens, FieldsBeyondAModelAreRefused)
{
    EXPECT_EQ(FindLensFault(SLens::FromModel(LENS_ORTHOGRAPHIC, 180.5)),
              "the field of this model lies between 1 and 180 degrees");
    EXPECT_NE(FindLensFault(SLens::FromModel(LENS_EQUIDISTANT, 281.0)), "");
    EXPECT_NE(FindLensFault(SLens::FromModel(LENS_EQUIDISTANT, 0.0)), "");
    EXPECT_NE(FindLensFault(SLens::FromModel(LENS_EQUIDISTANT, NOT_A_NUMBER)), "");
    EXPECT_EQ(FindLensFault(SLens::FromModel(static_cast<ELensModel>(9), 180.0)), "there is no such model");
    EXPECT_EQ(LensEdgeAngle(SLens::FromModel(LENS_RECTILINEAR, 180.0)), 0.0);
}

TEST(SLens, TablesGoThroughTheirRowsAndNeverFall)
{
    // Rows that a plain cubic would overshoot.
    const std::vector<double> vAngles = {0.0, 10.0, 20.0, 21.0, 60.0, 100.0};
    const std::vector<double> vHeights = {0.0, 1.0, 1.1, 5.0, 5.2, 8.0};
    const SLens sLens = SLens::FromTable(vAngles, vHeights);
    ASSERT_EQ(FindLensFault(sLens), "");
    for (std::size_t i = 0; i < vAngles.size(); ++i)
        EXPECT_NEAR(LensHeightAt(sLens, vAngles[i]), vHeights[i] / 8.0, 1e-12);
    double fLast = -1.0;
    for (int i = 0; i <= 2000; ++i) {
        const double fHeight = LensHeightAt(sLens, i * 0.05);
        EXPECT_GE(fHeight, fLast) << i;
        fLast = fHeight;
    }
}

TEST(SLens, TablesShowNoKinks)
{
    // Rows of a smooth curve, 5 degrees apart: between them the curve itself, where straight lines miss it.
    std::vector<double> vAngles;
    std::vector<double> vHeights;
    for (int i = 0; i <= 22; ++i) {
        vAngles.push_back(i * 5.0);
        vHeights.push_back(2.0 * std::sin(i * 2.5 * RADIANS));
    }
    const SLens sLens = SLens::FromTable(vAngles, vHeights);
    double fWorst = 0.0;
    for (int i = 0; i <= 1100; ++i)
        fWorst = std::max(fWorst, std::abs(LensHeightAt(sLens, i * 0.1) * vHeights.back() -
                                           2.0 * std::sin(i * 0.05 * RADIANS)));
    // Straight lines: 1.6e-4.
    EXPECT_LT(fWorst, 2e-5);
}

TEST(SLens, TwoRowsAreAStraightLine)
{
    const SLens sLens = SLens::FromTable({0.0, 90.0}, {0.0, 3.0}, 0.002);
    ASSERT_EQ(FindLensFault(sLens), "");
    EXPECT_NEAR(LensHeightAt(sLens, 30.0), 1.0 / 3.0, 1e-12);
}

TEST(SLens, EachFaultOfATableIsNamed)
{
    const double fInfinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(FindLensFault(SLens::FromTable({0.0, 90.0}, {0.0})), "as many heights as angles are needed");
    EXPECT_EQ(FindLensFault(SLens::FromTable({}, {})), "a table needs two rows at least");
    EXPECT_EQ(FindLensFault(SLens::FromTable({1.0, 90.0}, {0.0, 1.0})), "angles do not start at 0");
    EXPECT_EQ(FindLensFault(SLens::FromTable({0.0, 90.0}, {0.1, 1.0})), "heights do not start at 0");
    EXPECT_EQ(FindLensFault(SLens::FromTable({0.0, 50.0, 40.0}, {0.0, 1.0, 2.0})),
              "angles do not rise at row 2");
    EXPECT_EQ(FindLensFault(SLens::FromTable({0.0, 50.0, 60.0}, {0.0, 1.0, 1.0})),
              "heights do not rise at row 2");
    EXPECT_EQ(FindLensFault(SLens::FromTable({0.0, NOT_A_NUMBER}, {0.0, 1.0})),
              "angles are not finite at row 1");
    EXPECT_NE(FindLensFault(SLens::FromTable({0.0, 90.0}, {0.0, fInfinity})), "");
    EXPECT_NE(FindLensFault(SLens::FromTable({0.0, 180.0}, {0.0, 1.0})), "");
    EXPECT_NE(FindLensFault(SLens::FromTable({0.0, 0.1}, {0.0, 1.0})), "");
    EXPECT_NE(FindLensFault(SLens::FromTable({0.0, 90.0}, {0.0, 1.0}, -0.1)), "");
    EXPECT_NE(FindLensFault(SLens::FromTable({0.0, 90.0}, {0.0, 1.0}, 1e-9)), "");
    std::vector<double> vMany(4097);
    for (std::size_t i = 0; i < vMany.size(); ++i)
        vMany[i] = static_cast<double>(i) * 0.02;
    EXPECT_EQ(FindLensFault(SLens::FromTable(vMany, vMany)), "a table has 4096 rows at most");
    vMany.pop_back();
    EXPECT_EQ(FindLensFault(SLens::FromTable(vMany, vMany)), "");
}

TEST(SLens, EachFaultOfACalibrationIsNamed)
{
    const SLensCalibration sGood = GoodCalibration();
    ASSERT_EQ(FindLensFault(SLens::FromCalibration(sGood)), "");
    EXPECT_EQ(FaultOf(sGood, &SLensCalibration::fFocalX, 0.0), "the focal lengths are no sizes in pixels");
    EXPECT_EQ(FaultOf(sGood, &SLensCalibration::fFocalY, -5.0), "the focal lengths are no sizes in pixels");
    EXPECT_EQ(FaultOf(sGood, &SLensCalibration::fXi, NOT_A_NUMBER), "a value is not finite");
    EXPECT_NE(FaultOf(sGood, &SLensCalibration::fXi, -0.5), "");
    EXPECT_NE(FaultOf(sGood, &SLensCalibration::fField, 400.0), "");
    EXPECT_NE(FaultOf(sGood, &SLensCalibration::fCenterX, 1e12), "");
    SLensCalibration sFalling = sGood;
    sFalling.afRadial[0] = -5000.0;
    EXPECT_EQ(FindLensFault(SLens::FromCalibration(sFalling)),
              "no angle is reached: heights do not rise from the axis on");
}

TEST(SLens, ACalibrationEndsWhereItsHeightsFall)
{
    SLensCalibration s = GoodCalibration();
    s.afRadial[0] = -0.1;
    s.afRadial[1] = 0.0;
    // 1 - 0.3 t^2 = 0
    EXPECT_NEAR(LensEdgeAngle(SLens::FromCalibration(s)), std::sqrt(1.0 / 0.3) / RADIANS, 0.06);
    s.fField = 120.0;
    EXPECT_DOUBLE_EQ(LensEdgeAngle(SLens::FromCalibration(s)), 60.0);
}

TEST(RadialCurve, AnglesAreTheInverseOfHeights)
{
    SLensCalibration sUnified = GoodCalibration();
    sUnified.eModel = CALIBRATION_UNIFIED;
    sUnified.fXi = 1.3;
    for (const SLens& rLens :
         {SLens::FromModel(LENS_EQUIDISTANT, 280.0), SLens::FromModel(LENS_STEREOGRAPHIC, 280.0),
          SLens::FromModel(LENS_ORTHOGRAPHIC, 180.0), SLens::FromModel(LENS_RECTILINEAR, 178.0),
          SLens::FromModel(LENS_EQUISOLID, 220.0), SLens::FromTable({0.0, 30.0, 95.0}, {0.0, 2.0, 5.0}),
          SLens::FromCalibration(GoodCalibration()), SLens::FromCalibration(sUnified)}) {
        const CRadialCurve oCurve(rLens);
        for (int i = 0; i <= 1000; ++i) {
            double fAngle = -1.0;
            const double fHeight = oCurve.EdgeHeight() * i / 1000.0;
            ASSERT_TRUE(oCurve.Angle(fHeight, fAngle)) << i;
            EXPECT_NEAR(oCurve.Height(fAngle), fHeight, 1e-12 * (1.0 + fHeight)) << i;
        }
        double fAngle = 0.0;
        EXPECT_FALSE(oCurve.Angle(oCurve.EdgeHeight() * 1.001, fAngle));
        EXPECT_FALSE(oCurve.Angle(NOT_A_NUMBER, fAngle));
        EXPECT_FALSE(oCurve.Angle(-0.1, fAngle));
    }
}

TEST(RadialCurve, HeightsGoOnBeyondTheEdge)
{
    for (const SLens& rLens :
         {SLens::FromModel(LENS_ORTHOGRAPHIC, 180.0), SLens::FromModel(LENS_EQUIDISTANT, 200.0),
          SLens::FromTable({0.0, 80.0, 90.0}, {0.0, 1.0, 1.0000001})}) {
        const CRadialCurve oCurve(rLens);
        const double fEdge = oCurve.Edge();
        EXPECT_NEAR(oCurve.Height(fEdge + 1e-9), oCurve.EdgeHeight(), 1e-7);
        // Two degrees farther the height must be told from the edge's.
        EXPECT_GT(oCurve.Height(fEdge + 2.0 * RADIANS), oCurve.EdgeHeight() * 1.004);
    }
}
