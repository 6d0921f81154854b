#include "lens/LensCommands.h"

#include "FileIO.h"
#include "OptionValues.h"
#include "ToolError.h"
#include "lens/FitReport.h"
#include "lens/LensChart.h"
#include "lens/LensFit.h"
#include "lens/LensHelp.h"
#include "lens/LensReport.h"
#include "lens/NumberText.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <string>

namespace
{

using TText = std::optional<std::string>;

/// The words behind "lens check" or "lens fit", which CLI11 takes from the last to the first.
void ParseWords(CLI::App& oApp, int nArguments, const char* const* ppArguments, const char* pHelp)
{
    std::vector<std::string> vWords(ppArguments + std::min(nArguments, 3), ppArguments + nArguments);
    std::reverse(vWords.begin(), vWords.end());
    try {
        oApp.parse(vWords);
    } catch (const CLI::ParseError& oError) {
        ThrowUsage(std::string(oError.what()) + "; " + pHelp + " --help lists the options");
    }
}

void Print(const std::string& strText)
{
    std::fputs(strText.c_str(), stdout);
}

void WriteChart(const std::string& strPath, const std::string& strTitle, const SLensFile& rFile,
                const SLensSurvey& rSurvey)
{
    const CCanvas oCanvas = DrawLensChart(strTitle, rFile, rSurvey);
    const std::vector<unsigned char> vBytes = EncodePicture(oCanvas.Picture(), EOutputKind::PNG);
    WriteFile(strPath, vBytes.data(), vBytes.size());
    Print("\n" + OneLine(strPath) + ": the curve, 640x480\n");
}

int RunCheck(int nArguments, const char* const* ppArguments)
{
    CLI::App oApp("", "lumor-dewarp lens check");
    TText oLens;
    TText oPNG;
    bool bHelp = false;
    oApp.set_help_flag();
    oApp.add_flag("-h,--help", bHelp);
    oApp.add_option("LENS", oLens);
    oApp.add_option("PNG", oPNG);
    ParseWords(oApp, nArguments, ppArguments, "lumor-dewarp lens check");
    if (bHelp) {
        Print(LENS_CHECK_HELP);
        return EXIT_DONE;
    }
    if (!oLens || oLens->empty())
        ThrowUsage("a lens is needed: lumor-dewarp lens check LENS [PNG]");
    if (oPNG) {
        if (GetOutputKind(*oPNG) != EOutputKind::PNG)
            ThrowUsage(*oPNG + ": the curve is drawn as a PNG; give a name ending in .png");
        CheckOutputPath(*oLens, *oPNG);
    }
    const SLensFile sFile = ReadLensArgument(*oLens);
    const SLensSurvey sSurvey = SurveyLens(sFile);
    Print(ReportLens(*oLens, sFile, sSurvey));
    if (oPNG)
        WriteChart(*oPNG, sFile.strName.empty() ? *oLens : sFile.strName, sFile, sSurvey);
    return EXIT_DONE;
}

struct SFitTexts
{
    TText oPoints;
    TText oLines;
    TText oSize;
    TText oCircle;
    TText oModel;
    TText oOut;
    bool bKeepCenter = false;
    bool bHelp = false;
};

SLensCircle ReadFitCircle(const std::string& strText)
{
    double aValues[3] = {};
    std::size_t nBegin = 0;
    std::size_t nCount = 0;
    bool bRead = true;
    for (std::size_t nEnd = 0; bRead && nEnd != std::string::npos; nBegin = nEnd + 1) {
        nEnd = strText.find(',', nBegin);
        bRead = nCount < 3 && ReadNumber(strText.substr(nBegin, nEnd - nBegin), aValues[nCount++]);
    }
    const double fMost = 1e5;
    if (!bRead || nCount != 3 || !(std::fabs(aValues[0]) <= fMost) || !(std::fabs(aValues[1]) <= fMost) ||
        !(aValues[2] >= 1.0 && aValues[2] <= fMost))
        ThrowUsage("--circle: '" + strText +
                   "' is not CX,CY,R, centre and radius in frame pixels, R from 1 on");
    const float fRadius = static_cast<float>(aValues[2]);
    return {static_cast<float>(aValues[0]), static_cast<float>(aValues[1]), fRadius, fRadius};
}

SFitSetup ReadSetup(const SFitTexts& rTexts)
{
    SFitSetup sSetup;
    if (!rTexts.oSize && !rTexts.oCircle)
        ThrowUsage("the frames are not known; give their --size WxH, or the --circle CX,CY,R of the lens");
    if (rTexts.oSize) {
        const SSize sSize = ReadSize("--size", *rTexts.oSize);
        sSetup.nWidth = sSize.nWidth;
        sSetup.nHeight = sSize.nHeight;
    }
    if (rTexts.oCircle)
        sSetup.oCircle = ReadFitCircle(*rTexts.oCircle);
    sSetup.bKeepCenter = rTexts.bKeepCenter;
    return sSetup;
}

/// Why the model that comes nearest to the data is out of question.
const std::string& NearestReason(const std::vector<SLensFit>& vFits)
{
    const auto IsNearer = [](const SLensFit& a, const SLensFit& b) {
        return a.fFocal > 0.0 && (!(b.fFocal > 0.0) || a.fRMS < b.fRMS);
    };
    return std::min_element(vFits.begin(), vFits.end(), IsNearer)->strReason;
}

/// The fit that was asked for; throws with the reason where there is none.
const SLensFit& ChooseFit(const std::vector<SLensFit>& vFits, const std::string& strModel)
{
    if (strModel == "auto") {
        const SLensFit* pBest = BestFit(vFits);
        if (pBest == nullptr)
            ThrowFailure("no lens can be told from these measurements: " + NearestReason(vFits));
        return *pBest;
    }
    const auto it = std::find_if(vFits.begin(), vFits.end(), [&strModel](const SLensFit& rFit) {
        return FitModelName(rFit.sModel) == strModel;
    });
    if (!it->strReason.empty())
        ThrowFailure("no " + strModel + " lens can be told from these measurements: " + it->strReason);
    return *it;
}

void CheckModelName(const std::string& strModel)
{
    ELensModel eModel = LENS_EQUIDISTANT;
    if (strModel != "auto" && strModel != "polynomial" && !FindLensModel(strModel, eModel))
        ThrowUsage("--model: '" + strModel +
                   "' is not known; give auto, equidistant, equisolid, stereographic, "
                   "orthographic, rectilinear or polynomial");
}

void Fit(const SFitTexts& rTexts)
{
    if (!rTexts.oPoints && !rTexts.oLines)
        ThrowUsage("nothing was measured; give --points FILE or --lines FILE, or both");
    const std::string strModel = rTexts.oModel.value_or("auto");
    CheckModelName(strModel);
    const SFitSetup sSetup = ReadSetup(rTexts);
    SFitData sData;
    for (const TText* pInput : {&rTexts.oPoints, &rTexts.oLines})
        if (*pInput && rTexts.oOut)
            CheckOutputPath(**pInput, *rTexts.oOut);
    if (rTexts.oPoints)
        sData.vPoints = ReadFitPoints(*rTexts.oPoints);
    if (rTexts.oLines)
        sData.vLines = ReadFitLines(*rTexts.oLines);

    const std::vector<SLensFit> vFits = FitLenses(sData, sSetup, strModel == "polynomial");
    const SLensFit& rChosen = ChooseFit(vFits, strModel);
    const SLensFile sLens = LensOfFit(rChosen, sSetup);
    Print(ReportFits(sData, sSetup, vFits, rChosen));
    if (!rTexts.oOut)
        return;
    const std::string strText = FormatLensFile(sLens);
    WriteFile(*rTexts.oOut, reinterpret_cast<const unsigned char*>(strText.data()), strText.size());
    Print("\n" + OneLine(*rTexts.oOut) + ": " + LensTitle(sLens.sLens) + "\n");
}

int RunFit(int nArguments, const char* const* ppArguments)
{
    CLI::App oApp("", "lumor-dewarp lens fit");
    SFitTexts sTexts;
    oApp.set_help_flag();
    oApp.add_flag("-h,--help", sTexts.bHelp);
    oApp.add_flag("--keep-center", sTexts.bKeepCenter);
    const std::pair<const char*, TText*> aSingle[] = {
        {"--points", &sTexts.oPoints}, {"--lines", &sTexts.oLines}, {"--size", &sTexts.oSize},
        {"--circle", &sTexts.oCircle}, {"--model", &sTexts.oModel}, {"--out", &sTexts.oOut},
    };
    for (const auto& [pName, pText] : aSingle)
        oApp.add_option(pName, *pText)->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    ParseWords(oApp, nArguments, ppArguments, "lumor-dewarp lens fit");
    if (sTexts.bHelp)
        Print(LENS_FIT_HELP);
    else
        Fit(sTexts);
    return EXIT_DONE;
}

} // namespace

bool IsLensCommand(int nArguments, const char* const* ppArguments)
{
    return nArguments >= 2 && std::string(ppArguments[1]) == "lens";
}

int RunLensCommand(int nArguments, const char* const* ppArguments)
{
    const std::string strCommand = nArguments >= 3 ? ppArguments[2] : "";
    if (strCommand == "check")
        return RunCheck(nArguments, ppArguments);
    if (strCommand == "fit")
        return RunFit(nArguments, ppArguments);
    if (strCommand != "-h" && strCommand != "--help")
        ThrowUsage(
            (strCommand.empty() ? "lens: a command is missing" : "lens: '" + strCommand + "' is no command") +
            "; give check or fit (lumor-dewarp lens --help), or ./lens for a picture of that name");
    Print(LENS_HELP);
    return EXIT_DONE;
}
