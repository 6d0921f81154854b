#include "Options.h"

#include "HelpText.h"
#include "ToolError.h"

#include <gtest/gtest.h>

namespace
{

SCommandLine Parse(std::vector<const char*> vArguments)
{
    vArguments.insert(vArguments.begin(), "lumor-dewarp");
    return ParseCommandLine(static_cast<int>(vArguments.size()), vArguments.data());
}

SToolOptions ParseWithFiles(std::vector<const char*> vArguments)
{
    vArguments.push_back("in.png");
    vArguments.push_back("out.png");
    return Parse(std::move(vArguments)).sOptions;
}

bool IsRefused(const std::vector<const char*>& vArguments)
{
    try {
        Parse(vArguments);
    } catch (const CToolError& oError) {
        EXPECT_EQ(oError.GetStatus(), EXIT_USAGE);
        EXPECT_EQ(std::string(oError.what()).find('\n'), std::string::npos) << oError.what();
        return true;
    }
    return false;
}

/// Every option with a value it takes (null: none).
const std::pair<const char*, const char*> OPTIONS[] = {
    {"--raw", "nv12:64x64"},
    {"--view", "quad"},
    {"--mount", "wall"},
    {"--lens", "ideal"},
    {"--pan", "-30"},
    {"--tilt", "-1.5"},
    {"--zoom", "60"},
    {"--mount-tilt", "-20"},
    {"--no-strict-tilt", nullptr},
    {"--projection", "stereographic"},
    {"--size", "64x32"},
    {"--interpolation", "nearest"},
    {"--yuv-space", "bt601-scaled"},
    {"--yuv-range", "limited"},
    {"--gain", "1:2"},
    {"--flip", "hv"},
    {"--rotation", "90"},
    {"--input-overlay", "a.png"},
    {"--output-overlay", "b.png"},
    {"--mask", "1,1 2,2 3,1 #000000"},
    {"--mask-file", "m"},
    {"--strings-file", "s"},
    {"--text", "hello"},
    {"--text-at", "-10,-10"},
    {"--text-height", "20"},
    {"--text-color", "#FF0000"},
    {"--text-align", "center"},
    {"--engine", "gl"},
    {"--threads", "3"},
    {"--buffers", nullptr},
    {"--stats", nullptr},
    {"--verbose", nullptr},
    {"--circle", "960,540.5,530"},
    {"--mount-orientation", "1,-2,3.5"},
    {"--roll", "-15"},
    {"--no-clean-rim", nullptr},
    {"--span", "200,70"},
    {"--band", "110,40"},
    {"--floor-flip", nullptr},
    {"--map", "m"},
    {"--sampling", "lanczos"},
    {"--minification", nullptr},
    {"--pane", "0,0,32,16 view=fisheye pan=5 roll=-3"},
    {"--pane-gap", "4,#11223344"},
};

} // namespace

TEST(Options, ExactGeometryIsTheProcessors)
{
    EXPECT_NE(std::string(HELP_TEXT).find("\n  --exact-geometry "), std::string::npos);
    const SToolOptions sOptions = ParseWithFiles({"--exact-geometry"});
    EXPECT_TRUE(sOptions.bExactGeometry);
    EXPECT_EQ(sOptions.eEngine, ENGINE_CPU);
    EXPECT_FALSE(ParseWithFiles({"--engine", "cpu"}).bExactGeometry);
}

TEST(Options, EveryOptionIsTakenAndExplained)
{
    std::vector<const char*> vArguments;
    const std::string strHelp = HELP_TEXT;
    for (const auto& [pName, pValue] : OPTIONS) {
        EXPECT_NE(strHelp.find("\n  " + std::string(pName) + " "), std::string::npos) << pName;
        vArguments.push_back(pName);
        if (pValue != nullptr)
            vArguments.push_back(pValue);
    }
    const SToolOptions sOptions = ParseWithFiles(vArguments);
    EXPECT_EQ(sOptions.strInput, "in.png");
    EXPECT_EQ(sOptions.strOutput, "out.png");
    EXPECT_EQ(sOptions.oRaw->nFormat, IMAGE_FORMAT_NV12);
    EXPECT_EQ(sOptions.eView, VIEW_VCAM_QUAD);
    EXPECT_EQ(sOptions.eMount, MOUNT_WALL);
    EXPECT_EQ(sOptions.eLens, LENS_UNKNOWN);
    EXPECT_FLOAT_EQ(*sOptions.oPan, -30.0f);
    EXPECT_FLOAT_EQ(*sOptions.oTilt, -1.5f);
    EXPECT_FLOAT_EQ(*sOptions.oZoom, 60.0f);
    EXPECT_FLOAT_EQ(*sOptions.oMountTilt, -20.0f);
    EXPECT_FALSE(sOptions.bStrictTilt);
    EXPECT_FLOAT_EQ(*sOptions.oEyeDistance, 1.0f);
    EXPECT_EQ(sOptions.oSize->nHeight, 32);
    EXPECT_EQ(sOptions.eInterpolation, INTERPOLATION_NEAREST);
    EXPECT_EQ(*sOptions.oYUVSpace, YUV_SPACE_BT601_SCALED);
    EXPECT_EQ(*sOptions.oYUVRange, YUV_RANGE_LIMITED);
    EXPECT_FLOAT_EQ(sOptions.oGains->fChroma, 2.0f);
    EXPECT_TRUE(sOptions.bFlipHorizontal && sOptions.bFlipVertical);
    EXPECT_EQ(*sOptions.oRotation, 90);
    EXPECT_EQ(sOptions.strInputOverlay, "a.png");
    EXPECT_EQ(sOptions.strOutputOverlay, "b.png");
    EXPECT_EQ(sOptions.strMaskFile, "m");
    EXPECT_EQ(sOptions.strStringsFile, "s");
    EXPECT_EQ(sOptions.vMasks.size(), 1u);
    EXPECT_EQ(sOptions.vTexts.size(), 1u);
    ASSERT_EQ(sOptions.vPanes.size(), 1u);
    EXPECT_EQ(sOptions.vPanes[0].sRect.width, 32);
    EXPECT_EQ(sOptions.vPanes[0].eView, VIEW_FISHEYE);
    EXPECT_FLOAT_EQ(sOptions.vPanes[0].fPan, 5.0f);
    EXPECT_FLOAT_EQ(sOptions.vPanes[0].fTilt, -1.5f) << "as --tilt says";
    EXPECT_FLOAT_EQ(sOptions.vPanes[0].fRoll, -3.0f);
    EXPECT_FLOAT_EQ(sOptions.vPanes[0].fEyeDistance, 1.0f);
    EXPECT_EQ(sOptions.nPaneGap, 4);
    EXPECT_EQ(sOptions.nPaneGapColor, 0x11223344u);
    EXPECT_EQ(sOptions.eEngine, ENGINE_GL);
    EXPECT_EQ(*sOptions.oThreads, 3);
    EXPECT_TRUE(sOptions.bBuffers && sOptions.bStats && sOptions.bVerbose);
    EXPECT_FLOAT_EQ(sOptions.oCircle->fCenterY, 540.5f);
    EXPECT_FLOAT_EQ(sOptions.oCircle->fRadiusY, 530.0f);
    EXPECT_FLOAT_EQ(sOptions.oOrientation->fPitch, -2.0f);
    EXPECT_FLOAT_EQ(*sOptions.oRoll, -15.0f);
    EXPECT_FALSE(sOptions.bCleanRim);
    EXPECT_EQ(sOptions.sShape, (SViewShape{200.0f, 70.0f, 110.0f, 40.0f, true}));
    EXPECT_EQ(sOptions.strMapName, "m");
    EXPECT_EQ(sOptions.eSampling, SAMPLING_LANCZOS);
    EXPECT_TRUE(sOptions.bMinification);
}

TEST(Options, LensesAreKnownOnesOrModelsWithAField)
{
    EXPECT_EQ(ParseWithFiles({"--lens", "419"}).eLens, LENS_DSL419);
    EXPECT_FALSE(ParseWithFiles({"--lens", "auto"}).oLens);
    const SToolOptions sOptions = ParseWithFiles({"--lens", "equisolid:212.5"});
    ASSERT_TRUE(sOptions.oLens);
    EXPECT_EQ(sOptions.oLens->eModel, LENS_EQUISOLID);
    EXPECT_DOUBLE_EQ(sOptions.oLens->fField, 212.5);
    EXPECT_EQ(ParseWithFiles({"--lens", "lens.json"}).strLensFile, "lens.json");
    EXPECT_EQ(ParseWithFiles({"--lens", "./420"}).strLensFile, "./420");
    for (const char* pLens : {"420", "", "equidistant", "equidistant:", "equidistant:0", "orthographic:181",
                              "fisheye:180", "equidistant:180:1", ":180"})
        EXPECT_TRUE(IsRefused({"in.png", "out.png", "--lens", pLens})) << pLens;
}

TEST(Options, CirclesAreGivenOrLookedFor)
{
    EXPECT_TRUE(ParseWithFiles({"--circle", "auto"}).bFindCircle);
    EXPECT_FALSE(ParseWithFiles({"--circle", "auto"}).oCircle);
    const SToolOptions sOptions = ParseWithFiles({"--circle", "-20,10.5,300,310"});
    EXPECT_FLOAT_EQ(sOptions.oCircle->fCenterX, -20.0f);
    EXPECT_FLOAT_EQ(sOptions.oCircle->fRadiusY, 310.0f);
    for (const char* pCircle :
         {"", "1,2", "1,2,3,4,5", "1,2,0", "1,2,-5", "1,2,3,0.5", "1,2,x", "nan,1,2", "1e9,1,2"})
        EXPECT_TRUE(IsRefused({"in.png", "out.png", "--circle", pCircle})) << pCircle;
}

TEST(Options, HelpNamesNoOptionThatIsNotTaken)
{
    // Options begin a line of the help, indented by two blanks.
    const std::string strHelp = HELP_TEXT;
    int nFound = 0;
    for (std::size_t n = strHelp.find("\n  --"); n != std::string::npos; n = strHelp.find("\n  --", n + 1)) {
        const std::size_t nBegin = n + 3;
        const std::string strName = strHelp.substr(nBegin, strHelp.find_first_of(" \n", nBegin) - nBegin);
        // These two go with few others.
        bool bKnown = strName == "--version" || strName == "--exact-geometry";
        for (const auto& [pName, pValue] : OPTIONS)
            bKnown = bKnown || strName == pName;
        EXPECT_TRUE(bKnown) << strName;
        nFound++;
    }
    EXPECT_EQ(nFound, static_cast<int>(std::size(OPTIONS)) + 2);
}

TEST(Options, NothingIsAskedForByDefault)
{
    const SToolOptions sOptions = ParseWithFiles({});
    EXPECT_EQ(sOptions.eView, VIEW_VCAM);
    EXPECT_EQ(sOptions.eMount, MOUNT_CEILING);
    EXPECT_EQ(sOptions.eLens, LENS_AUTO);
    EXPECT_EQ(sOptions.eInterpolation, INTERPOLATION_LINEAR);
    EXPECT_EQ(sOptions.eEngine, ENGINE_AUTO);
    EXPECT_TRUE(sOptions.bStrictTilt);
    EXPECT_FALSE(sOptions.oThreads);
    EXPECT_FALSE(sOptions.oPan || sOptions.oTilt || sOptions.oZoom || sOptions.oSize || sOptions.oRaw ||
                 sOptions.oGains || sOptions.oRotation || sOptions.oEyeDistance);
}

TEST(Options, HelpAndVersionNeedNoFiles)
{
    EXPECT_EQ(Parse({"--help"}).eAction, EToolAction::SHOW_HELP);
    EXPECT_EQ(Parse({"-h", "--view", "nonsense"}).eAction, EToolAction::SHOW_HELP);
    EXPECT_EQ(Parse({"--version"}).eAction, EToolAction::SHOW_VERSION);
}

TEST(Options, TheLastOfARepeatedOptionCounts)
{
    EXPECT_FLOAT_EQ(*ParseWithFiles({"--pan", "1", "--pan=2"}).oPan, 2.0f);
}

TEST(Options, MasksAndTextsAddUp)
{
    const SToolOptions sOptions = ParseWithFiles(
        {"--mask", "1,1 2,2 3,1 #000000", "--text", "a", "--mask", "4,1 5,2 6,1 #FFFFFF", "--text", "b"});
    ASSERT_EQ(sOptions.vMasks.size(), 2u);
    EXPECT_EQ(sOptions.vMasks[1].vPoints[0].x, 4);
    ASSERT_EQ(sOptions.vTexts.size(), 2u);
    EXPECT_EQ(sOptions.vTexts[1].strText, "b");
}

TEST(Options, FurtherTextsLookAsTheOneBeforeAndStandBelowIt)
{
    const SToolOptions sOptions =
        ParseWithFiles({"--text", "a", "--text", "b", "--text", "c", "--text-at", "10,20", "--text-height",
                        "16", "--text-color", "#01020304"});
    EXPECT_EQ(sOptions.vTexts[1].nX, 10);
    EXPECT_EQ(sOptions.vTexts[1].nY, 36);
    EXPECT_EQ(sOptions.vTexts[2].nY, 52);
    EXPECT_EQ(sOptions.vTexts[2].nHeight, 16);
    EXPECT_EQ(sOptions.vTexts[2].nColor, 0x01020304u);
}

TEST(Options, NegativePlacesCountFromTheOtherEdge)
{
    const SToolOptions sOptions =
        ParseWithFiles({"--text", "a", "--text-at", "-10,20", "--text", "b", "--text-at", "5,-6"});
    EXPECT_EQ(sOptions.vTexts[0].nHRef, 2);
    EXPECT_EQ(sOptions.vTexts[0].nVRef, 0);
    EXPECT_EQ(sOptions.vTexts[1].nHRef, 0);
    EXPECT_EQ(sOptions.vTexts[1].nVRef, 2);
    EXPECT_EQ(sOptions.vTexts[1].nY, -6);
}

TEST(Options, CommandLinesThatCannotBeFollowedAreRefused)
{
    EXPECT_TRUE(IsRefused({}));
    EXPECT_TRUE(IsRefused({"in.png"}));
    EXPECT_TRUE(IsRefused({"", "out.png"}));
    EXPECT_TRUE(IsRefused({"in.png", "out.png", "more.png"}));
    EXPECT_TRUE(IsRefused({"--nonsense", "in.png", "out.png"}));
    EXPECT_TRUE(IsRefused({"in.png", "out.png", "--pan"}));
    EXPECT_TRUE(IsRefused({"in.png", "out.png", "--pan", "nan"}));
    EXPECT_TRUE(IsRefused({"in.png", "out.png", "--pan=-inf"}));
    EXPECT_TRUE(IsRefused({"in.png", "out.png", "--zoom", "4"}));
    EXPECT_TRUE(IsRefused({"in.png", "out.png", "--rotation", "45"}));
    EXPECT_TRUE(IsRefused({"in.png", "out.png", "--flip", "x"}));
    EXPECT_TRUE(IsRefused({"in.png", "out.png", "--view="}));
    EXPECT_TRUE(IsRefused({"in.png", "out.png", "--stats=maybe"}));
    EXPECT_TRUE(IsRefused({"in.png", "out.png", "--engine", "opengl"}));
    EXPECT_TRUE(IsRefused({"in.png", "out.png", "--threads", "-1"}));
    EXPECT_TRUE(IsRefused({"in.png", "out.png", "--threads", "1025"}));
    EXPECT_TRUE(IsRefused({"in.png", "out.png", "--buffers", "--engine", "cpu"}));
    EXPECT_TRUE(IsRefused({"in.png", "out.png", "--exact-geometry", "--engine", "gl"}));
    EXPECT_TRUE(IsRefused({"in.png", "out.png", "--exact-geometry", "--buffers"}));
    for (const auto& [pName, pValue] :
         {std::pair("--span", "5"), std::pair("--span", "200,190"), std::pair("--span", "a"),
          std::pair("--band", "40"), std::pair("--band", "40,110"), std::pair("--band", "171,40"),
          std::pair("--sampling", "bicubic"), std::pair("--mount-orientation", "1,2"),
          std::pair("--roll", "400")})
        EXPECT_TRUE(IsRefused({"in.png", "out.png", pName, pValue})) << pName << pValue;
    EXPECT_TRUE(IsRefused({"in.png", "out.png", "--mask-file", ""}));
    EXPECT_TRUE(IsRefused({"in.png", "out.png", "--text-at", "1,1"}));
    EXPECT_TRUE(IsRefused({"in.png", "out.png", "--text", "a", "--text-height", "9", "--text-height", "9"}));
}

TEST(Options, PanesThatCannotBeDrawnAreRefused)
{
    for (const char* pPane : {"", "0,0,32", "0,0,32,0", "-1,0,32,32", "0.5,0,32,32", "0,0,20000,32",
                              "16000,0,1000,32", "0,0,32,32 pan", "0,0,32,32 pan=x", "0,0,32,32 pan=400",
                              "0,0,32,32 view=none", "0,0,32,32 colour=red", "0,0,32,32 roll=nan"})
        EXPECT_TRUE(IsRefused({"--pane", pPane, "in.png", "out.png"})) << pPane;
    EXPECT_TRUE(IsRefused({"--size", "64x64", "--pane", "40,0,32,32", "in.png", "out.png"}));
    EXPECT_TRUE(IsRefused({"--pane-gap", "-1", "in.png", "out.png"}));
    EXPECT_TRUE(IsRefused({"--pane-gap", "2,red", "in.png", "out.png"}));
    EXPECT_TRUE(IsRefused({"--pane-gap", "32", "--pane", "8,8,64,32", "in.png", "out.png"}));
    std::vector<const char*> vMany = {"in.png", "out.png"};
    for (int n = 0; n < 17; ++n)
        vMany.insert(vMany.end(), {"--pane", "0,0,8,8"});
    EXPECT_TRUE(IsRefused(vMany));
}
