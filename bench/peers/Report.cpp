#include "bench/peers/Report.h"

#include "bench/Frames.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <fstream>

std::string CaseTitle(const SPeerCase& rCase)
{
    char szTitle[120];
    std::snprintf(szTitle, sizeof szTitle, "%dx%d %s to %dx%d", rCase.nInputSide[0], rCase.nInputSide[1],
                  rCase.ePixels == PEER_RGBA ? "RGBA" : "NV12/yuv420p", rCase.nWidth, rCase.nHeight);
    return szTitle;
}

void PrintReport(const SPeerReport& rReport)
{
    const SRoundsResult& rResult = rReport.sResult;
    std::printf("\n%s, view %s (%d rounds repeated, others had at most %.1f %% of the machine)\n",
                CaseTitle(rReport.sCase).c_str(), rReport.bMoving ? "moving" : "still", rResult.nRepeated,
                rResult.fWorstShare * 100.0);
    std::printf("  %-22s %9s %9s %9s %9s %9s %12s\n", "", "median ms", "min ms", "max ms", "CPU ms",
                "Mpixel/s", "lumor / it");
    const double fMegapixels = rReport.sCase.nWidth * 1e-6 * rReport.sCase.nHeight;
    for (const SPeerTimes& rTimes : rResult.vTimes) {
        const auto [pMin, pMax] =
            std::minmax_element(rTimes.vMilliseconds.begin(), rTimes.vMilliseconds.end());
        const double fMedian = Median(rTimes.vMilliseconds);
        std::printf("  %-22s %9.2f %9.2f %9.2f %9.2f %9.1f %12.3f\n", rTimes.strName.c_str(), fMedian, *pMin,
                    *pMax, Median(rTimes.vCPU), fMegapixels / fMedian * 1000.0,
                    MedianRatio(rResult.vTimes[0].vMilliseconds, rTimes.vMilliseconds));
    }
    for (const auto& [strName, fDecibels] : rReport.vPSNR)
        std::printf("  same picture as %s: %.1f dB\n", strName.c_str(), fDecibels);
    std::fflush(stdout);
}

bool WriteJSON(const std::vector<SPeerReport>& vReports, const std::string& strPath)
{
    nlohmann::json oAll = nlohmann::json::array();
    for (const SPeerReport& rReport : vReports) {
        nlohmann::json oContenders = nlohmann::json::array();
        for (const SPeerTimes& rTimes : rReport.sResult.vTimes)
            oContenders.push_back({{"name", rTimes.strName},
                                   {"median_ms", Median(rTimes.vMilliseconds)},
                                   {"rounds_ms", rTimes.vMilliseconds},
                                   {"cpu_ms", Median(rTimes.vCPU)},
                                   {"lumor_ratio", MedianRatio(rReport.sResult.vTimes[0].vMilliseconds,
                                                               rTimes.vMilliseconds)}});
        nlohmann::json oCase = {{"case", CaseTitle(rReport.sCase)},
                                {"moving", rReport.bMoving},
                                {"repeated_rounds", rReport.sResult.nRepeated},
                                {"others_share", rReport.sResult.fWorstShare},
                                {"contenders", oContenders}};
        for (const auto& [strName, fDecibels] : rReport.vPSNR)
            oCase["psnr"][strName] = fDecibels;
        oAll.push_back(oCase);
    }
    std::ofstream oFile(strPath);
    oFile << oAll.dump(1) << '\n';
    return oFile.good();
}
