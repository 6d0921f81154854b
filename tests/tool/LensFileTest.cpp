#include "LensFile.h"

#include "LensTexts.h"
#include "TestPictures.h"
#include "ToolError.h"

#include <gtest/gtest.h>

using namespace LENS_TEXTS;

namespace
{

SLensFile Parse(const std::string& strText)
{
    return ParseLensFile("lens.json", strText);
}

std::string MessageOf(const std::string& strText)
{
    try {
        Parse(strText);
    } catch (const CToolError& rError) {
        EXPECT_EQ(rError.GetStatus(), EXIT_FAILED);
        return rError.what();
    }
    return "nothing was refused";
}

void ExpectRefusal(const std::string& strText, const std::string& strPart)
{
    const std::string strMessage = MessageOf(strText);
    EXPECT_EQ(strMessage.rfind("lens.json: ", 0), 0u) << strMessage;
    EXPECT_NE(strMessage.find(strPart), std::string::npos) << strPart << "\n" << strMessage;
}

} // namespace

TEST(LensFile, AModelIsReadByItsName)
{
    EXPECT_EQ(Parse(pModel).sLens, SLens::FromModel(LENS_EQUIDISTANT, 200.0));
    EXPECT_EQ(Parse(R"({"field": 175.5, "model": "orthographic"})").sLens,
              SLens::FromModel(LENS_ORTHOGRAPHIC, 175.5));
    EXPECT_FALSE(Parse(pModel).oCircle);
}

TEST(LensFile, ATableIsReadWithItsUnits)
{
    EXPECT_EQ(Parse(pTable).sLens, SLens::FromTable({0.0, 30.0, 60.0, 95.5}, {0.0, 0.5, 0.98, 1.5}, 0.003));
    EXPECT_EQ(Parse(R"({"table": {"angles": [0, 90], "heights": [0, 1]}})").sLens,
              SLens::FromTable({0.0, 90.0}, {0.0, 1.0}));
}

TEST(LensFile, AFisheyeCalibrationIsReadWithEverythingBesideIt)
{
    const SLensFile sFile = Parse(pFisheye);
    const SLensCalibration& c = sFile.sLens.sCalibration;
    EXPECT_EQ(sFile.sLens.eKind, LENS_KIND_CALIBRATION);
    EXPECT_EQ(c.eModel, CALIBRATION_FISHEYE);
    EXPECT_EQ(c.nWidth, 1920);
    EXPECT_EQ(c.nHeight, 1080);
    EXPECT_EQ(c.fFocalX, 610.25);
    EXPECT_EQ(c.fFocalY, 609.5);
    EXPECT_EQ(c.fCenterX, 951.125);
    EXPECT_EQ(c.fCenterY, 547.75);
    EXPECT_EQ(c.fSkew, 0.5);
    EXPECT_EQ(c.afRadial[3], 0.00004);
    EXPECT_EQ(c.fField, 190.0);
    ASSERT_TRUE(sFile.oCircle);
    EXPECT_EQ(*sFile.oCircle, (SLensCircle{952.0f, 548.5f, 900.0f, 901.5f}));
    EXPECT_EQ(sFile.strName, "yard");
    EXPECT_EQ(sFile.strComment, "board of 9 x 6");
}

TEST(LensFile, AUnifiedCalibrationIsRead)
{
    const SLensCalibration c = Parse(pUnified).sLens.sCalibration;
    EXPECT_EQ(c.eModel, CALIBRATION_UNIFIED);
    EXPECT_EQ(c.nWidth, 0);
    EXPECT_EQ(c.fXi, 1.2);
    EXPECT_EQ(c.afRadial[1], 0.002);
    EXPECT_EQ(c.afTangential[0], 0.0012);
    EXPECT_EQ(c.afTangential[1], -0.0007);
}

TEST(LensFile, ARoundCircleHasOneRadius)
{
    const SLensFile sFile = Parse(R"({"model": "equisolid", "field": 180, "circle": [10.5, 20, 300]})");
    ASSERT_TRUE(sFile.oCircle);
    EXPECT_EQ(*sFile.oCircle, (SLensCircle{10.5f, 20.0f, 300.0f, 300.0f}));
}

TEST(LensFile, WhatOpenCVWritesOfAFisheyeIsRead)
{
    const SLensCalibration c = Parse(pOpenCVFisheye).sLens.sCalibration;
    EXPECT_EQ(c.eModel, CALIBRATION_FISHEYE);
    EXPECT_EQ(c.nWidth, 1280);
    EXPECT_EQ(c.nHeight, 960);
    EXPECT_EQ(c.fFocalX, 333.1245896230254);
    EXPECT_EQ(c.fFocalY, 332.98712345678901);
    EXPECT_EQ(c.fCenterX, 639.5);
    EXPECT_EQ(c.fCenterY, 479.5);
    EXPECT_EQ(c.afRadial[0], -0.012345678901234567);
    EXPECT_EQ(c.afRadial[2], -0.0015);
    EXPECT_EQ(c.fField, 0.0);
}

TEST(LensFile, WhatOpenCVWritesOfTheUnifiedModelIsRead)
{
    const SLensCalibration c = Parse(pOpenCVUnified).sLens.sCalibration;
    EXPECT_EQ(c.eModel, CALIBRATION_UNIFIED);
    EXPECT_EQ(c.nWidth, 1920);
    EXPECT_EQ(c.fSkew, 1.5);
    EXPECT_EQ(c.fXi, 1.2);
    EXPECT_EQ(c.afRadial[0], -0.02);
    EXPECT_EQ(c.afRadial[1], 0.002);
    EXPECT_EQ(c.afTangential[0], 0.0012);
    EXPECT_EQ(c.afTangential[1], -0.0007);
    // A bare number, as programs write it that keep it as one.
    const std::string strMatrix = std::string(pOpenCVUnified).substr(std::string(pOpenCVUnified).find("xi:"));
    EXPECT_EQ(Parse(Replaced(pOpenCVUnified, strMatrix, "xi: 1.25\n")).sLens.sCalibration.fXi, 1.25);
}

TEST(LensFile, OpenCVsJSONAndROSHaveTheSameKeys)
{
    const SLensFile sJSON = Parse(pOpenCVJSON);
    EXPECT_EQ(sJSON.sLens.sCalibration.fFocalX, 333.0);
    EXPECT_EQ(sJSON.sLens.sCalibration.afRadial[3], 0.0001);
    EXPECT_EQ(Parse(pROS), sJSON);
}

TEST(LensFile, EveryNameOfMatrixAndCoefficientsIsKnown)
{
    for (const char* pMatrix : {"K", "camera_matrix", "cameraMatrix"}) {
        for (const char* pCoefficients : {"D", "distortion_coefficients", "distCoeffs", "dist_coeffs"}) {
            const std::string strText = Replaced(Replaced(pOpenCVFisheye, "camera_matrix", pMatrix),
                                                 "distortion_coefficients", pCoefficients);
            EXPECT_EQ(Parse(strText).sLens.sCalibration.afRadial[3], 1.0e-04) << pMatrix << pCoefficients;
        }
    }
}

TEST(LensFile, APinholeCalibrationIsRefusedInWords)
{
    ExpectRefusal(pPinhole, "distortion_coefficients: 5 coefficients are those of a pinhole camera");
    ExpectRefusal(pPinhole, "rays end before 90 degrees");
    ExpectRefusal(Replaced(Replaced(pPinhole, "rows: 5", "rows: 8"), "-0.01", "-0.01, 0, 0, 0"),
                  "8 coefficients are those of a pinhole camera");
    ExpectRefusal(Replaced(pOpenCVFisheye, "fisheye_model: 1", "fisheye_model: 0"), "fisheye_model is 0");
    ExpectRefusal(Replaced(pROS, "equidistant", "plumb_bob"), "'plumb_bob' is the one of a pinhole camera");
    ExpectRefusal(Replaced(pROS, "equidistant", "other"), "'other' is not fisheye, equidistant or omnidir");
}

TEST(LensFile, ErrorsOfCalibrationProgramsFilesNameTheKey)
{
    ExpectRefusal(Replaced(pOpenCVFisheye, "camera_matrix", "matrix"), "the key 'avg_reprojection_error'");
    ExpectRefusal(Replaced(pOpenCVFisheye, "distortion_coefficients", "coefficients"),
                  "expected under D, distortion_coefficients, distCoeffs or dist_coeffs");
    ExpectRefusal(Replaced(pOpenCVFisheye, "rows: 4", "rows: 5"), "data has 4 numbers for 5 rows of 1");
    ExpectRefusal(Replaced(pOpenCVFisheye, "3.3312458962302540e+02", ".Nan"),
                  "camera_matrix.data: row 0, '.Nan', is not a finite number");
    ExpectRefusal(Replaced(pOpenCVFisheye, "3.3312458962302540e+02", "1e999"), "row 0, '1e999'");
    ExpectRefusal(Replaced(pOpenCVFisheye, "0., 0., 1. ]", "0., 0., 2. ]"), "camera_matrix: a group is not");
    ExpectRefusal(Replaced(pOpenCVFisheye, "image_width: 1280", "image_width: wide"),
                  "image_width: 'wide' is not a whole number");
    ExpectRefusal(Replaced(pOpenCVUnified, "[ 1920, 1080 ]", "[ 1920, 10.5 ]"), "image_size: a list of 2");
    ExpectRefusal(Replaced(pOpenCVUnified, "[ 1.2 ]", "[ -1.2 ]"), "xi: a group is not a number from 0");
    ExpectRefusal(Replaced(pOpenCVUnified, "-0.02, 0.002, 0.0012, -0.0007", "-0.02, 0.002, 0.0012"),
                  "data has 3 numbers");
    ExpectRefusal(Replaced(pOpenCVFisheye, "-1.2345678901234567e-02", "-1e6"), "heights do not rise");
}

TEST(LensFile, UnknownKeysAreRefusedByName)
{
    ExpectRefusal(R"({"modle": "equidistant", "field": 200})", "'modle' is not known; did you mean 'model'?");
    ExpectRefusal(R"({"calibration": {"model": "fisheye", "focalx": 3}})",
                  "calibration: the key 'focalx' is not known; known are model, width");
    ExpectRefusal(R"({"table": {"angle": [0, 90]}})", "did you mean 'angles'?");
    ExpectRefusal(R"({"model": "equidistant", "field": 200, "field": 100})", "'field' stands twice");
}

TEST(LensFile, ErrorsNameTheKeyAndWhatBelongsThere)
{
    ExpectRefusal(R"({})", "one of model, table and calibration is needed");
    ExpectRefusal(R"({"model": "equidistant", "table": {}})", "one of model, table and calibration");
    ExpectRefusal(R"({"table": {}, "field": 100})", "field stands beside a model only");
    ExpectRefusal(R"({"model": "equidistant"})", "field is missing; give a number from 1 to 280 (degrees");
    ExpectRefusal(R"({"model": "orthographic", "field": 181})", "field: 181 is not a number from 1 to 180");
    ExpectRefusal(R"({"model": "fishy", "field": 180})", "model: 'fishy' is not equidistant, equisolid");
    ExpectRefusal(R"({"model": 7, "field": 180})", "model: 7 is not equidistant");
    ExpectRefusal(R"({"model": "equidistant", "field": "wide"})", "field: 'wide' is not a number");
    ExpectRefusal(R"({"model": "equidistant", "field": 1e999})", "number overflow");
    ExpectRefusal(R"({"model": "equidistant", "field": null})", "field: 'null' is not a number");
    ExpectRefusal(R"({"table": {"angles": [0, 90], "heights": [0, 1, 2]}})",
                  "table.heights: a list of 3 is not a list of 2 numbers");
    ExpectRefusal(R"({"table": {"angles": [0, "x"], "heights": [0, 1]}})", "table.angles: row 1, 'x'");
    ExpectRefusal(R"({"table": {"angles": [0, 90, 60], "heights": [0, 1, 2]}})",
                  "angles do not rise at row 2");
    ExpectRefusal(R"({"table": [1]})", "table: a list of 1 is not a group");
    ExpectRefusal(Replaced(pFisheye, "\"fisheye\"", "\"pinhole\""),
                  "calibration.model: 'pinhole' is not fisheye");
    ExpectRefusal(Replaced(pFisheye, "\"fx\": 610.25, ", ""), "calibration.fx is missing");
    ExpectRefusal(Replaced(pFisheye, "610.25", "-1"), "calibration.fx: -1 is not a number from 0.01");
    ExpectRefusal(Replaced(pFisheye, "1920", "1920.5"), "calibration.width: 1920.5 is not a whole number");
    ExpectRefusal(Replaced(pFisheye, "0.00004]", "0.00004, 5]"),
                  "calibration.k: a list of 5 is not a list of 0 to 4");
    ExpectRefusal(Replaced(pFisheye, "\"skew\": 0.5", "\"xi\": 0.5"), "xi and p belong to");
    ExpectRefusal(Replaced(pUnified, "\"xi\": 1.2,", ""), "calibration.xi is missing");
    ExpectRefusal(Replaced(pFisheye, "901.5]", "0]"), "circle: a list of 4 is not [centre x");
    ExpectRefusal(Replaced(pFisheye, "\"yard\"", "3"), "name: 3 is not a text");
}

TEST(LensFile, FilesOfOtherKindsAreRefused)
{
    ExpectRefusal("", "is empty");
    ExpectRefusal(" \n\t", "is empty");
    ExpectRefusal("<?xml version=\"1.0\"?><opencv_storage/>", "is XML");
    ExpectRefusal("angles,heights\n0,0\n", "is no lens file; give JSON");
    ExpectRefusal("{\"model\": \"equidistant\", ", "is no JSON: parse error at line 1");
    ExpectRefusal("%YAML:1.0\n---\nK: [1, 2\n", "is no YAML of a calibration: line 4");
    ExpectRefusal("%YAML:1.0\n---\n- 1\n- 2\n", "is no group of keys and values");
}

TEST(LensFile, FormattedLensesAreReadBackTheSame)
{
    for (const char* pText : {pModel, pTable, pFisheye, pUnified, pOpenCVFisheye, pOpenCVUnified, pROS}) {
        const SLensFile sFile = Parse(pText);
        const std::string strText = FormatLensFile(sFile);
        EXPECT_EQ(Parse(strText), sFile) << strText;
        EXPECT_EQ(FormatLensFile(Parse(strText)), strText);
    }
    SLensFile sOdd;
    sOdd.sLens = SLens::FromModel(LENS_STEREOGRAPHIC, 200.0 / 3.0);
    sOdd.oCircle = SLensCircle{0.1f, 1.0f / 3.0f, 1e5f / 7.0f, 3.3f};
    sOdd.strName = "quotes \" and \\ and\nlines";
    EXPECT_EQ(Parse(FormatLensFile(sOdd)), sOdd);
    sOdd.strName = "not UTF-8: \xff";
    EXPECT_EQ(Parse(FormatLensFile(sOdd)).strName, "not UTF-8: \xEF\xBF\xBD");
}

TEST(LensFile, TheFormattedTextIsForPeople)
{
    SLensFile sFile;
    sFile.sLens = SLens::FromModel(LENS_EQUISOLID, 183.5);
    sFile.oCircle = SLensCircle{960.1f, 540.0f, 530.0f, 530.0f};
    EXPECT_EQ(FormatLensFile(sFile), "{\n  \"model\": \"equisolid\",\n  \"field\": 183.5,\n"
                                     "  \"circle\": [960.1,540.0,530.0,530.0]\n}\n");
}

TEST(LensFile, FilesAreReadFromDisk)
{
    const CTempFolder oFolder;
    const std::string strPath = oFolder.Path("lens.json");
    const std::string strText = std::string("\xEF\xBB\xBF") + pModel;
    SaveBytes(strPath, TBytes(strText.begin(), strText.end()));
    EXPECT_EQ(ReadLensFile(strPath).sLens, SLens::FromModel(LENS_EQUIDISTANT, 200.0));
    EXPECT_EQ(ReadLensArgument(strPath).sLens, SLens::FromModel(LENS_EQUIDISTANT, 200.0));
    EXPECT_THROW(ReadLensFile(oFolder.Path("none.json")), CToolError);
    SaveBytes(strPath, TBytes((std::size_t{1} << 20) + 1, ' '));
    EXPECT_THROW(ReadLensFile(strPath), CToolError);
}

TEST(LensFile, AModelWithItsFieldNeedsNoFile)
{
    EXPECT_EQ(ReadLensArgument("equisolid:183.5").sLens, SLens::FromModel(LENS_EQUISOLID, 183.5));
    for (const char* pText :
         {"equisolid:", "equisolid:x", "equisolid:0.5", "orthographic:181", "equisolid:nan"}) {
        try {
            ReadLensArgument(pText);
            ADD_FAILURE() << pText;
        } catch (const CToolError& rError) {
            EXPECT_EQ(rError.GetStatus(), EXIT_USAGE);
            EXPECT_NE(std::string(rError.what()).find("is not a field from 1 to"), std::string::npos);
        }
    }
}
