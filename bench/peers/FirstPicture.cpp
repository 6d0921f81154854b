#include "bench/peers/FirstPicture.h"

#include "bench/Frames.h"
#include "bench/peers/Peer.h"
#include "bench/peers/Rounds.h"

#include <cstdio>
#include <cstdlib>
#include <map>

namespace
{

const char* const CONTENDERS[] = {"lumor", "v360", "OpenCV"};

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
    const SPeerCase sCase;
    CPeerFrame oFrame(sCase.nInputSide[0], sCase.nInputSide[1]);
    PPeer pPeer;
    const double fMilliseconds = MillisecondsOf([&] {
        if (strContender == "lumor")
            pPeer = MakeOurPeer(sCase, oFrame, true);
        else if (strContender == "v360")
            pPeer = MakeV360Peer(sCase, oFrame);
        else if (strContender == "OpenCV")
            pPeer = MakeRemapPeer(sCase, oFrame);
    });
    if (pPeer == nullptr)
        return false;
    std::printf("%.2f\n", fMilliseconds);
    return true;
}

void ComparePrograms(const std::string& strProgram, int nRounds)
{
    std::map<std::string, std::vector<double>> mTimes;
    for (const char* pContender : CONTENDERS)
        FirstPictureOf(strProgram, pContender); // fills caches
    for (int i = 0; i < nRounds; ++i) {
        for (const char* pContender : CONTENDERS)
            mTimes[pContender].push_back(FirstPictureOf(strProgram, pContender));
    }
    std::printf("\n1920x1920 NV12/yuv420p to 1920x1080, first view of a process\n");
    for (const char* pContender : CONTENDERS)
        std::printf("  %-22s %9.1f ms %12.3f\n", pContender, Median(mTimes[pContender]),
                    MedianRatio(mTimes["lumor"], mTimes[pContender]));
}
