// lumor-dewarp lens, as a user runs it.
#include "LensFile.h"

#include "FitScene.h"
#include "LensTexts.h"
#include "ToolRunner.h"

#include <gtest/gtest.h>

namespace
{

void SaveText(const std::string& strPath, const std::string& strText)
{
    SaveBytes(strPath, TBytes(strText.begin(), strText.end()));
}

std::string PointRows(const SFitScene& rScene)
{
    std::string strRows = "# a turntable\nangle,x,y\n";
    for (const SFitPoint& r : SpokePoints(rScene, 8, 5).vPoints)
        strRows += std::to_string(r.fAngle) + ", " + std::to_string(r.sPlace.x) + ", " +
                   std::to_string(r.sPlace.y) + "\r\n";
    return strRows;
}

std::string LineRows(const SFitScene& rScene)
{
    std::string strRows;
    for (const SFitLine& rLine : RoomLines(rScene, 10, 15).vLines)
        for (const SFitPlace& r : rLine.vPlaces)
            strRows += rLine.strName + "," + std::to_string(r.x) + "," + std::to_string(r.y) + "\n";
    return strRows;
}

class RunLens : public testing::Test
{
protected:
    RunLens()
    {
        m_sScene.sLens = SLens::FromModel(LENS_EQUISOLID, 190.0);
        SaveText(m_strPoints, PointRows(m_sScene));
        SaveText(m_strLines, LineRows(m_sScene));
    }

    static SToolRun RunLensTool(std::vector<std::string> vArguments)
    {
        vArguments.insert(vArguments.begin(), "lens");
        return RunTool(vArguments);
    }
    static void ExpectRefusal(const std::vector<std::string>& vArguments, int nStatus,
                              const std::string& strPart)
    {
        const SToolRun sRun = RunLensTool(vArguments);
        EXPECT_EQ(sRun.nStatus, nStatus) << strPart << "\n" << sRun.strErrors;
        EXPECT_EQ(CountLines(sRun.strErrors), 1) << sRun.strErrors;
        EXPECT_EQ(sRun.strErrors.rfind("lumor-dewarp: ", 0), 0u) << sRun.strErrors;
        EXPECT_NE(sRun.strErrors.find(strPart), std::string::npos) << strPart << "\n" << sRun.strErrors;
        EXPECT_EQ(sRun.strOutput, "");
    }
    static void ExpectParts(const SToolRun& rRun, const std::vector<std::string>& vParts)
    {
        EXPECT_EQ(rRun.nStatus, 0) << rRun.strErrors;
        EXPECT_EQ(rRun.strErrors, "");
        for (const std::string& strPart : vParts)
            EXPECT_NE(rRun.strOutput.find(strPart), std::string::npos) << strPart << "\n" << rRun.strOutput;
    }

    SFitScene m_sScene;
    CTempFolder m_oFolder;
    std::string m_strPoints = m_oFolder.Path("points.csv");
    std::string m_strLines = m_oFolder.Path("lines.csv");
    std::string m_strLens = m_oFolder.Path("lens.json");
    std::string m_strPNG = m_oFolder.Path("lens.png");
};

} // namespace

TEST_F(RunLens, CheckTellsWhatALensIs)
{
    ExpectParts(RunLensTool({"check", "equidistant:200"}),
                {"equidistant:200, an ideal lens", "200.0 degrees across, up to 100.0 off the axis",
                 "0.5730 of the height at the edge", "     45   0.4500     1.000 %          100 %\n",
                 "equidistant     the same  <- nearest\n", "rectilinear     cannot show it"});
    SaveText(m_strLens, LENS_TEXTS::pTable);
    ExpectParts(RunLensTool({"check", m_strLens}),
                {"a table of 4 rows, pixels of 0.003 mm", "191.0 degrees across", " mm, ", "500.0",
                 "   95.5   1.0000    500.0"});
    SaveText(m_strLens, LENS_TEXTS::pOpenCVFisheye);
    ExpectParts(RunLensTool({"check", m_strLens}), {"a calibration, fisheye model, of frames of 1280x960",
                                                    "333.1 pixels", "from left to right"});
    SaveText(m_strLens, LENS_TEXTS::pFisheye);
    ExpectParts(RunLensTool({"check", m_strLens}),
                {"name            yard\n", "board of 9 x 6", "radius 900.0 and down 901.5"});
    SaveText(m_strLens, LENS_TEXTS::pUnified);
    ExpectParts(RunLensTool({"check", m_strLens}), {"unified model"});
}

TEST_F(RunLens, CheckDrawsTheCurve)
{
    ExpectParts(RunLensTool({"check", "stereographic:160", m_strPNG}), {"lens.png: the curve, 640x480"});
    // As a picture of its own; drawn flat it comes out as it is.
    const TBytes vRows = DewarpRaw(m_oFolder, {"--view", "fisheye", "--size", "640x480"}, m_strPNG);
    ASSERT_EQ(vRows.size(), 640u * 480u * 4u);
    int nRed = 0;
    int nGrey = 0;
    for (int y = 0; y < 480; ++y) {
        for (int x = 0; x < 640; ++x) {
            const SColor sColor = GetPixel(vRows, 640, x, y);
            nRed += sColor.nRed > 150 && sColor.nGreen < 90 && sColor.nBlue < 90;
            nGrey += std::abs(sColor.nRed - 0x90) < 12 && std::abs(sColor.nGreen - 0x90) < 12;
        }
    }
    EXPECT_GT(nRed, 500);
    EXPECT_GT(nGrey, 500);
}

TEST_F(RunLens, FitFindsTheLensOfPointsAndLines)
{
    for (const std::vector<std::string>& vData : {std::vector<std::string>{"--points", m_strPoints},
                                                  {"--lines", m_strLines},
                                                  {"--points", m_strPoints, "--lines", m_strLines}}) {
        std::vector<std::string> vArguments = {"fit", "--circle", "960,540,520", "--out", m_strLens};
        vArguments.insert(vArguments.end(), vData.begin(), vData.end());
        ExpectParts(RunLensTool(vArguments),
                    {"  equisolid       190.0", "<- chosen", "lens.json: equisolid:190"});
        const SLensFile sFile = ReadLensFile(m_strLens);
        EXPECT_EQ(sFile.sLens.eModel, LENS_EQUISOLID);
        EXPECT_NEAR(sFile.sLens.fField, 190.0, 0.1);
        ASSERT_TRUE(sFile.oCircle);
        EXPECT_NEAR(sFile.oCircle->fCenterX, 970.0f, 0.5f);
        EXPECT_NEAR(sFile.oCircle->fCenterY, 531.0f, 0.5f);
    }
    ExpectParts(RunLensTool({"check", m_strLens}), {"equisolid:190"});
}

TEST_F(RunLens, FitTakesTheModelThatIsAskedFor)
{
    ExpectParts(RunLensTool({"fit", "--size", "1920x1080", "--points", m_strPoints, "--model", "polynomial",
                             "--out", m_strLens}),
                {"a calibration, fisheye model, of frames of 1920x1080"});
    EXPECT_EQ(ReadLensFile(m_strLens).sLens.eKind, LENS_KIND_CALIBRATION);
    ExpectParts(
        RunLensTool({"fit", "--size", "1920x1080", "--points", m_strPoints, "--model", "equidistant"}),
        {"no model is near"});
    ExpectRefusal({"fit", "--size", "1920x1080", "--lines", m_strLines, "--model", "polynomial"}, 1,
                  "no polynomial lens can be told from these measurements: lines alone");
}

TEST_F(RunLens, HelpTellsTheOptions)
{
    ExpectParts(RunLensTool({"--help"}), {"lens check LENS [PNG]", "lens fit"});
    ExpectParts(RunLensTool({"check", "--help"}), {"equidistant:200", "\"pixel_pitch\""});
    ExpectParts(RunLensTool({"fit", "-h"}), {"--keep-center", "--points FILE"});
    ExpectParts(RunTool({"--help"}), {"lumor-dewarp lens --help"});
}

TEST_F(RunLens, UsageErrorsEndWithStatus2)
{
    ExpectRefusal({}, 2, "give check or fit");
    ExpectRefusal({"chek", "x.json"}, 2, "'chek' is no command; give check or fit");
    ExpectRefusal({m_strPNG}, 2, "or ./lens for a picture of that name");
    ExpectRefusal({"check"}, 2, "a lens is needed");
    ExpectRefusal({"check", "equidistant:900"}, 2, "'900' is not a field from 1 to 280");
    ExpectRefusal({"check", "fishy:180"}, 2, "neither a file nor MODEL:FIELD");
    ExpectRefusal({"check", "equidistant:180", "curve.jpg"}, 2, ".png");
    ExpectRefusal({"check", "equidistant:180", "curve.raw"}, 2, "give a name ending in .png");
    ExpectRefusal({"check", "a", "b.png", "c"}, 2, "lens check --help");
    ExpectRefusal({"fit"}, 2, "nothing was measured");
    ExpectRefusal({"fit", "--points", m_strPoints}, 2, "the frames are not known");
    ExpectRefusal({"fit", "--pionts", m_strPoints}, 2, "lens fit --help");
    ExpectRefusal({"fit", "--points", m_strPoints, "--size", "1920"}, 2, "--size: '1920'");
    ExpectRefusal({"fit", "--points", m_strPoints, "--circle", "1,2,x"}, 2,
                  "--circle: '1,2,x' is not CX,CY,R");
    ExpectRefusal({"fit", "--points", m_strPoints, "--circle", "1,2,3,4"}, 2, "--circle: '1,2,3,4'");
    ExpectRefusal({"fit", "--points", m_strPoints, "--circle", "1,2,0"}, 2, "R from 1 on");
    ExpectRefusal({"fit", "--points", m_strPoints, "--size", "1920x1080", "--model", "fish"}, 2,
                  "--model: 'fish'");
    ExpectRefusal({"fit", "--points", m_strPoints, "--size", "1920x1080", "--out", m_strPoints}, 2,
                  "input file itself");
}

TEST_F(RunLens, FilesThatCannotBeReadEndWithStatus1)
{
    ExpectRefusal({"check", m_oFolder.Path("none.json")}, 1, "No such file");
    ExpectRefusal({"check", m_oFolder.Path("")}, 1, "is a directory");
    SaveText(m_strLens, "{\"model\": \"equidistant\"}");
    ExpectRefusal({"check", m_strLens}, 1, "lens.json: field is missing");
    ExpectRefusal({"fit", "--points", m_oFolder.Path("none"), "--size", "640x480"}, 1, "No such file");
    const std::pair<const char*, const char*> aRows[] = {
        {"", "has no rows"},
        {"angle,x,y\n", "has no rows"},
        {"10,20,30\n20,abc,30\n", "row 2: 'abc' is not a number from -1e+06 to 1e+06 (pixels)"},
        {"10,20,30\n\n20,inf,30\n", "row 3: 'inf' is not a number"},
        {"-1,20,30\n", "row 1: '-1' is not a number from 0 to 179 (degrees off the axis)"},
        {"10,20,30\n10,20\n", "row 2: has 2 values, and the rows before it have not"},
        {"10\n", "row 1: give angle,x,y or angle,radius"},
        {"10;20;30\n", "row 1: give angle,x,y or angle,radius"},
        {"10,20,30\n", "too few measurements: 1 for 1 unknowns"},
    };
    for (const auto& [pRows, pPart] : aRows) {
        SaveText(m_strPoints, pRows);
        ExpectRefusal({"fit", "--points", m_strPoints, "--size", "640x480"}, 1, pPart);
    }
    const std::pair<const char*, const char*> aLines[] = {
        {"a,1,2\na,2,3\n", "line 'a' has 2 points"},
        {"a,1,2\na,2\n", "row 2: give line,x,y"},
        {",1,2\n", "row 1: give line,x,y"},
        {"a,1,2\na,2,3\na,5,9\nb,1,2\nb,2,3\nb,4,4\n", "no lens can be told from these measurements"},
    };
    for (const auto& [pRows, pPart] : aLines) {
        SaveText(m_strLines, pRows);
        ExpectRefusal({"fit", "--lines", m_strLines, "--size", "640x480"}, 1, pPart);
    }
}

TEST_F(RunLens, APictureNamedLensIsGivenWithItsFolder)
{
    const std::string strPicture = m_oFolder.Path("lens");
    SavePNG(strPicture, MakeGradient(64, 64));
    DewarpRaw(m_oFolder, {"--view", "fisheye"}, strPicture);
}
