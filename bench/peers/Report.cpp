#include "bench/peers/Report.h"

#include "bench/Frames.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <fstream>

namespace
{

double MedianDifference(const std::vector<double>& vTimes, const std::vector<double>& vOthers)
{
    std::vector<double> vDifferences;
    for (std::size_t i = 0; i < std::min(vTimes.size(), vOthers.size()); ++i)
        vDifferences.push_back(vTimes[i] - vOthers[i]);
    return Median(vDifferences);
}

double CostOf(const SPeerCost& rCost, const SRoundsResult& rResult)
{
    return MedianDifference(rResult.vTimes[rCost.nWith].vMilliseconds,
                            rResult.vTimes[rCost.nWithout].vMilliseconds);
}

nlohmann::json CaseJSON(const SPeerReport& rReport)
{
    const SRoundsResult& rResult = rReport.sResult;
    nlohmann::json oContenders = nlohmann::json::array();
    for (const SPeerTimes& rTimes : rResult.vTimes)
        oContenders.push_back(
            {{"name", rTimes.strName},
             {"median_ms", Median(rTimes.vMilliseconds)},
             {"rounds_ms", rTimes.vMilliseconds},
             {"cpu_ms", Median(rTimes.vCPU)},
             {"lumor_ratio", MedianRatio(rResult.vTimes[0].vMilliseconds, rTimes.vMilliseconds)}});
    nlohmann::json oCase = {{"group", rReport.strGroup},           {"case", rReport.strTitle},
                            {"moving", rReport.bMoving},           {"repeated_rounds", rResult.nRepeated},
                            {"others_share", rResult.fWorstShare}, {"contenders", oContenders}};
    for (const auto& [strName, fDecibels] : rReport.vPSNR)
        oCase["psnr"][strName] = fDecibels;
    for (const SPeerCost& rCost : rReport.vCosts)
        oCase["cost_ms"][rCost.strName] = CostOf(rCost, rResult);
    return oCase;
}

} // namespace

std::string CaseTitle(const SPeerCase& rCase)
{
    char szTitle[120];
    std::snprintf(szTitle, sizeof szTitle, "%dx%d %s to %dx%d", rCase.nInputSide[0], rCase.nInputSide[1],
                  rCase.ePixels == PEER_RGBA ? "RGBA" : "NV12/yuv420p", rCase.nWidth, rCase.nHeight);
    return szTitle;
}

void PrintHead(const std::string& strEngine, int nThreads)
{
    std::printf("processor engine: %s; every contender may use %d threads\n", strEngine.c_str(), nThreads);
    std::fflush(stdout);
}

void PrintReport(const SPeerReport& rReport)
{
    const SRoundsResult& rResult = rReport.sResult;
    const char* pMotion = rReport.bMoving ? ", view moving" : ", view still";
    std::printf("\n%s%s (%d rounds repeated, others had at most %.1f %% of the machine)\n",
                rReport.strTitle.c_str(), rReport.vCosts.empty() ? pMotion : "", rResult.nRepeated,
                rResult.fWorstShare * 100.0);
    std::printf("  %-33s %9s %9s %9s %9s %9s %12s\n", "", "median ms", "min ms", "max ms", "CPU ms",
                "Mpixel/s", "first / it");
    const double fMegapixels = rReport.sCase.nWidth * 1e-6 * rReport.sCase.nHeight * rReport.nViews;
    for (const SPeerTimes& rTimes : rResult.vTimes) {
        const auto [pMin, pMax] =
            std::minmax_element(rTimes.vMilliseconds.begin(), rTimes.vMilliseconds.end());
        const double fMedian = Median(rTimes.vMilliseconds);
        std::printf("  %-33s %9.2f %9.2f %9.2f %9.2f %9.1f %12.3f\n", rTimes.strName.c_str(), fMedian, *pMin,
                    *pMax, Median(rTimes.vCPU), fMegapixels / fMedian * 1000.0,
                    MedianRatio(rResult.vTimes[0].vMilliseconds, rTimes.vMilliseconds));
    }
    for (const SPeerCost& rCost : rReport.vCosts)
        std::printf("  %s: %.3f ms\n", rCost.strName.c_str(), CostOf(rCost, rResult));
    for (const auto& [strName, fDecibels] : rReport.vPSNR)
        std::printf("  same picture as %s: %.1f dB\n", strName.c_str(), fDecibels);
    std::fflush(stdout);
}

bool WriteJSON(const std::vector<SPeerReport>& vReports, const std::string& strEngine,
               const std::string& strPath)
{
    nlohmann::json oAll = nlohmann::json::array();
    for (const SPeerReport& rReport : vReports) {
        oAll.push_back(CaseJSON(rReport));
        oAll.back()["engine"] = strEngine;
    }
    std::ofstream oFile(strPath);
    oFile << oAll.dump(1) << '\n';
    return oFile.good();
}
