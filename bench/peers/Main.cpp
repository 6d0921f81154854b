// Frame times of this library and of what people use for the same task, on the same frames in memory:
//     lumor-bench-peers [--rounds N] [--patience SECONDS] [--only TEXT] [--json FILE]
// bench/peers/run.sh installs what is needed, builds and runs it.

#include "bench/peers/FirstPicture.h"
#include "bench/peers/Report.h"

#include <CLI/CLI.hpp>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace
{

// Two bilinear renderings of one soft picture are above this; another view, or one upside down, is far below.
const double SAME_PICTURE = 30.0;

const std::string FIRST_VIEW = "first view of a process";

std::vector<SPeerCase> ListCases()
{
    std::vector<SPeerCase> vCases;
    for (const auto& [nWidth, nHeight] : {std::pair{1920, 1920}, std::pair{3200, 3000}}) {
        for (const EPeerPixels ePixels : {PEER_YUV420, PEER_RGBA}) {
            // As large as the input, too: what GStreamer's effect does when nobody asks for another size.
            for (const auto& [nViewWidth, nViewHeight] : {std::pair{1280, 720}, std::pair{1920, 1080},
                                                          std::pair{3840, 2160}, std::pair{nWidth, nHeight}})
                vCases.push_back({{nWidth, nHeight}, ePixels, nViewWidth, nViewHeight});
        }
    }
    return vCases;
}

double PSNR(const SLuma& rA, const SLuma& rB)
{
    if (rA.vPixels.size() != rB.vPixels.size())
        PeerFailed("views of different sizes");
    double fSum = 0.0;
    for (std::size_t i = 0; i < rA.vPixels.size(); ++i) {
        const double fDifference = static_cast<double>(rA.vPixels[i]) - static_cast<double>(rB.vPixels[i]);
        fSum += fDifference * fDifference;
    }
    const double fMean = fSum / static_cast<double>(rA.vPixels.size());
    return fMean == 0.0 ? 99.0 : 10.0 * std::log10(255.0 * 255.0 / fMean);
}

/// All contenders show one picture, here and after a turn.
std::vector<std::pair<std::string, double>> ComparePictures(CPeer& rOurs, const std::vector<CPeer*>& vPeers)
{
    std::vector<std::pair<std::string, double>> vPSNR;
    for (const float fPan : {PEER_FIRST_PAN + 33.0f, PEER_FIRST_PAN}) {
        rOurs.SetPan(fPan);
        rOurs.Frame();
        const SLuma sOurs = rOurs.Luma();
        vPSNR.clear();
        for (CPeer* pPeer : vPeers) {
            if (pPeer == &rOurs || pPeer->StandsStill())
                continue;
            pPeer->SetPan(fPan);
            pPeer->Frame();
            vPSNR.emplace_back(pPeer->Name(), PSNR(sOurs, pPeer->Luma()));
            if (vPSNR.back().second < SAME_PICTURE)
                PeerFailed(pPeer->Name() + " draws another picture: " + std::to_string(vPSNR.back().second) +
                           " dB");
        }
    }
    return vPSNR;
}

void RunCase(const SPeerCase& rCase, const SRoundsPlan& rPlan, std::vector<SPeerReport>& vReports)
{
    CPeerFrame oFrame(rCase.nInputSide[0], rCase.nInputSide[1]);
    std::vector<PPeer> vOwners;
    vOwners.push_back(MakeOurPeer(rCase, oFrame, true));
    vOwners.push_back(MakeOurPeer(rCase, oFrame, false));
    vOwners.push_back(MakeV360Peer(rCase, oFrame));
    vOwners.push_back(MakeRemapPeer(rCase, oFrame));
    vOwners.push_back(MakeGLEffectPeer(rCase, oFrame));
    std::vector<CPeer*> vStill;
    std::vector<CPeer*> vMoving;
    for (const PPeer& pPeer : vOwners) {
        vStill.push_back(pPeer.get());
        if (!pPeer->StandsStill())
            vMoving.push_back(pPeer.get());
    }
    SPeerReport sReport;
    sReport.sCase = rCase;
    sReport.vPSNR = ComparePictures(*vOwners[0], vStill);
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
    SRoundsPlan sPlan;
    std::string strOnly;
    std::string strJSON;
    std::string strFirstPicture;
    CLI::App oApp(
        "Frame times of this library beside FFmpeg's v360, OpenCV's remap and GStreamer's GL fisheye.");
    oApp.add_option("--rounds", sPlan.nRounds, "rounds that count (7)")->check(CLI::Range(1, 1000));
    oApp.add_option("--patience", sPlan.fPatience,
                    "seconds to go on while others disturb every round (60); then the quietest rounds count");
    oApp.add_option("--only", strOnly, "run what has this text in its title, such as 'first view'");
    oApp.add_option("--json", strJSON, "write all figures to this file");
    oApp.add_option("--first-picture-of", strFirstPicture)->group("");
    CLI11_PARSE(oApp, nArguments, ppArguments);
    if (!strFirstPicture.empty())
        return PrintFirstPicture(strFirstPicture) ? 0 : 2;

    std::vector<SPeerReport> vReports;
    for (const SPeerCase& rCase : ListCases()) {
        if (CaseTitle(rCase).find(strOnly) != std::string::npos)
            RunCase(rCase, sPlan, vReports);
    }
    if (FIRST_VIEW.find(strOnly) != std::string::npos)
        ComparePrograms(ppArguments[0], sPlan.nRounds);
    if (!strJSON.empty() && !WriteJSON(vReports, strJSON))
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
