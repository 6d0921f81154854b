// Frame times of this library and of what people use for the same task, on the same frames in memory:
//     lumor-bench-peers [--rounds N] [--patience SECONDS] [--threads N] [--only TEXT] [--json FILE]
// bench/peers/run.sh installs what is needed, builds and runs it.

#include "bench/peers/EngineCases.h"
#include "bench/peers/EnginePeer.h"
#include "bench/peers/FirstPicture.h"
#include "bench/peers/Pictures.h"

#include <CLI/CLI.hpp>

#include <cstdlib>
#include <exception>

namespace
{

/// The GL engine's rows.
std::vector<SPeerCase> ListCases(int nThreads)
{
    std::vector<SPeerCase> vCases;
    for (const auto& [nWidth, nHeight] : {std::pair{1920, 1920}, std::pair{3200, 3000}}) {
        for (const EPeerPixels ePixels : {PEER_YUV420, PEER_RGBA}) {
            // As large as the input, too: what GStreamer's effect does when nobody asks for another size.
            for (const auto& [nViewWidth, nViewHeight] :
                 {std::pair{1280, 720}, std::pair{1920, 1080}, std::pair{3840, 2160},
                  std::pair{nWidth, nHeight}}) {
                SPeerCase sCase{{nWidth, nHeight}, ePixels, nViewWidth, nViewHeight};
                sCase.nThreads = nThreads;
                vCases.push_back(sCase);
            }
        }
    }
    return vCases;
}

void RunCase(const SPeerCase& rCase, const SRoundsPlan& rPlan, std::vector<SPeerReport>& vReports)
{
    CPeerFrame oFrame(rCase.nInputSide[0], rCase.nInputSide[1]);
    std::vector<PPeer> vOwners;
    vOwners.push_back(MakeOurPeer(rCase, oFrame, true));
    vOwners.push_back(MakeOurPeer(rCase, oFrame, false));
    vOwners.push_back(MakeV360Peer(rCase, oFrame, false));
    vOwners.push_back(MakeRemapPeer(rCase, oFrame, false));
    vOwners.push_back(MakeGLEffectPeer(rCase, oFrame));
    std::vector<CPeer*> vStill;
    std::vector<CPeer*> vMoving;
    for (const PPeer& pPeer : vOwners) {
        vStill.push_back(pPeer.get());
        if (!pPeer->StandsStill())
            vMoving.push_back(pPeer.get());
    }
    SPeerReport sReport;
    sReport.strGroup = "OpenGL";
    sReport.strTitle = CaseTitle(rCase);
    sReport.sCase = rCase;
    sReport.vPSNR = ComparePictures(vStill);
    sReport.sResult = RunRounds(vStill, false, rPlan);
    PrintReport(sReport);
    vReports.push_back(sReport);
    sReport.vPSNR.clear();
    sReport.bMoving = true;
    sReport.sResult = RunRounds(vMoving, true, rPlan);
    PrintReport(sReport);
    vReports.push_back(sReport);
}

int Run(int nArguments, char** ppArguments)
{
    SCasesPlan sPlan;
    std::string strJSON;
    std::string strFirstPicture;
    CLI::App oApp(
        "Frame times of this library beside FFmpeg's v360, OpenCV's remap and GStreamer's GL fisheye.");
    oApp.add_option("--rounds", sPlan.sRounds.nRounds, "rounds that count (7)")->check(CLI::Range(1, 1000));
    oApp.add_option("--patience", sPlan.sRounds.fPatience,
                    "seconds to go on while others disturb every round (60); then the quietest rounds count");
    oApp.add_option("--threads", sPlan.nThreads, "threads that one contender may use (2)")
        ->check(CLI::Range(1, 1000));
    oApp.add_option("--only", sPlan.strOnly,
                    "run what has this text in its title, such as 'processor' or 'first view'");
    oApp.add_option("--json", strJSON, "write all figures to this file");
    oApp.add_option("--first-picture-of", strFirstPicture)->group("");
    CLI11_PARSE(oApp, nArguments, ppArguments);
    setenv("LP_NUM_THREADS", std::to_string(sPlan.nThreads).c_str(), 0);
    if (!strFirstPicture.empty())
        return PrintFirstPicture(strFirstPicture) ? 0 : 2;

    const std::string strEngine = EngineText(ENGINE_CPU, sPlan.nThreads);
    PrintHead(strEngine, sPlan.nThreads);
    std::vector<SPeerReport> vReports;
    for (const SPeerCase& rCase : ListCases(sPlan.nThreads)) {
        if (CaseTitle(rCase).find(sPlan.strOnly) != std::string::npos)
            RunCase(rCase, sPlan.sRounds, vReports);
    }
    RunEngineCases(sPlan, vReports);
    if (FirstPictureTitle().find(sPlan.strOnly) != std::string::npos)
        vReports.push_back(ComparePrograms(ppArguments[0], sPlan.sRounds.nRounds));
    if (!strJSON.empty() && !WriteJSON(vReports, strEngine, strJSON))
        PeerFailed("cannot write " + strJSON);
    return 0;
}

} // namespace

int main(int nArguments, char** ppArguments)
{
    setenv("EGL_PLATFORM", "surfaceless", 0);
    try {
        return Run(nArguments, ppArguments);
    } catch (const std::exception& rError) {
        PeerFailed(rError.what());
    }
}
