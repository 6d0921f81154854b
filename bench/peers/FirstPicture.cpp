#include "bench/peers/FirstPicture.h"

#include "bench/Frames.h"
#include "bench/peers/EnginePeer.h"

#include <cstdio>

namespace
{

const char* const CONTENDERS[] = {"processor", "lumor", "v360", "OpenCV"};

double FirstPictureOf(const std::string& strProgram, const std::string& strContender)
{
    const std::string strCommand = "'" + strProgram + "' --first-picture-of " + strContender;
    std::FILE* pPipe = popen(strCommand.c_str(), "r");
    double fMilliseconds = 0.0;
    if (pPipe == nullptr || std::fscanf(pPipe, "%lf", &fMilliseconds) != 1)
        PeerFailed("a process that draws one view gave no answer");
    pclose(pPipe);
    return fMilliseconds;
}

} // namespace

bool PrintFirstPicture(const std::string& strContender)
{
    SPeerCase sCase;
    sCase.bYUVOut = strContender == "processor"; // as the peers do
    CPeerFrame oFrame(sCase.nInputSide[0], sCase.nInputSide[1]);
    PPeer pPeer;
    const double fMilliseconds = MillisecondsOf([&] {
        if (strContender == "processor")
            pPeer = MakeEnginePeer(sCase, oFrame, ENGINE_CPU);
        else if (strContender == "lumor")
            pPeer = MakeOurPeer(sCase, oFrame, true);
        else if (strContender == "v360")
            pPeer = MakeV360Peer(sCase, oFrame, false);
        else if (strContender == "OpenCV")
            pPeer = MakeRemapPeer(sCase, oFrame, false);
    });
    if (pPeer == nullptr)
        return false;
    std::printf("%.2f\n", fMilliseconds);
    return true;
}

std::string FirstPictureTitle()
{
    return CaseTitle({}) + ", first view of a process";
}

SPeerReport ComparePrograms(const std::string& strProgram, int nRounds)
{
    SPeerReport sReport;
    sReport.strGroup = "first view";
    sReport.strTitle = FirstPictureTitle();
    std::vector<SPeerTimes>& rTimes = sReport.sResult.vTimes;
    for (const char* pContender : CONTENDERS) {
        FirstPictureOf(strProgram, pContender); // fills caches
        rTimes.push_back({pContender, {}, {}});
    }
    for (int i = 0; i < nRounds; ++i) {
        for (SPeerTimes& rContender : rTimes)
            rContender.vMilliseconds.push_back(FirstPictureOf(strProgram, rContender.strName));
    }
    std::printf("\n%s\n  %-22s %12s %14s %12s\n", sReport.strTitle.c_str(), "", "median ms", "processor / it",
                "lumor / it");
    for (const SPeerTimes& rContender : rTimes)
        std::printf("  %-22s %12.1f %14.3f %12.3f\n", rContender.strName.c_str(),
                    Median(rContender.vMilliseconds),
                    MedianRatio(rTimes[0].vMilliseconds, rContender.vMilliseconds),
                    MedianRatio(rTimes[1].vMilliseconds, rContender.vMilliseconds));
    return sReport;
}
