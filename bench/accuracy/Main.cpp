// Every view, mount and lens beside an exact rendering of the same scene, and every colour space beside exact
// arithmetic. Exits with 1 when a limit is broken.
//     lumor-bench-accuracy [--quick] [--json FILE] [--markdown FILE] [--pictures DIR] [--only TEXT] [--engine
//     gl|cpu]
// bench/accuracy/run.sh builds and runs it.

#include "bench/accuracy/Report.h"
#include "bench/accuracy/ViewSession.h"

#include "FileIO.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <mutex>
#include <thread>
#include <utility>

namespace
{

struct SRunOptions
{
    bool bQuick = false;
    bool bProcessor = false;
    bool bExact = false; ///< its exact geometry
    std::string strJSON;
    std::string strMarkdown;
    std::string strPictures;
    std::string strOnly;
};

/// Works through the groups on as many threads as there are processors. Each has a dewarper of its own.
class CCaseRun
{
public:
    CCaseRun(const SRunOptions& sOptions, std::vector<SCaseGroup> vGroups)
        : m_sOptions(sOptions), m_vGroups(std::move(vGroups)), m_vvResults(m_vGroups.size())
    {}

    std::vector<SCaseResult> Run()
    {
        std::vector<std::thread> vThreads;
        for (unsigned int n = 0; n < std::max(1u, std::thread::hardware_concurrency()); ++n)
            vThreads.emplace_back([this] { Work(); });
        for (std::thread& oThread : vThreads)
            oThread.join();
        if (m_pError != nullptr)
            std::rethrow_exception(m_pError);
        std::vector<SCaseResult> vResults;
        for (const std::vector<SCaseResult>& vGroup : m_vvResults)
            vResults.insert(vResults.end(), vGroup.begin(), vGroup.end());
        return vResults;
    }

private:
    void Work()
    {
        try {
            for (std::size_t n = m_nNext++; n < m_vGroups.size(); n = m_nNext++)
                RunGroup(m_vGroups[n], m_vvResults[n]);
        } catch (...) {
            const std::lock_guard<std::mutex> oLock(m_oMutex);
            m_pError = std::current_exception();
            m_nNext = m_vGroups.size();
        }
    }

    void RunGroup(const SCaseGroup& sGroup, std::vector<SCaseResult>& vResults)
    {
        const SReferenceSetup& s = sGroup.vCases.front().sSetup;
        CViewSession oSession(s.nTargetWidth, s.nTargetHeight);
        CPlaceMeter oMeter(s.nImageWidth, s.nImageHeight);
        CRoomFrame oRoom(sGroup);
        for (SAccuracyCase sCase : sGroup.vCases) {
            if (m_sOptions.bProcessor)
                sCase.sLimits = ProcessorLimits(sCase.sLimits, m_sOptions.bExact);
            const SPlaceResult sPlaces = oMeter.Measure(sCase, oSession);
            vResults.push_back({sCase, sPlaces, oRoom.Compare(sCase, oSession, m_sOptions.strPictures)});
            const std::lock_guard<std::mutex> oLock(m_oMutex);
            std::fprintf(stderr, "lens %s, %s, %s\n", LensName(s.nLensType).c_str(), sCase.strView.c_str(),
                         sCase.strMount.c_str());
        }
    }

    const SRunOptions& m_sOptions;
    std::vector<SCaseGroup> m_vGroups;
    std::vector<std::vector<SCaseResult>> m_vvResults;
    std::atomic<std::size_t> m_nNext = 0;
    std::mutex m_oMutex;
    std::exception_ptr m_pError;
};

/// Groups with the cases whose lens, view and mount have the text, such as "lens 239, panorama".
std::vector<SCaseGroup> ChosenGroups(const SRunOptions& sOptions)
{
    std::vector<SCaseGroup> vChosen;
    for (SCaseGroup sGroup : ListGroups(sOptions.bQuick)) {
        std::erase_if(sGroup.vCases, [&](const SAccuracyCase& sCase) {
            const std::string strName =
                "lens " + LensName(sGroup.nLens) + ", " + sCase.strView + ", " + sCase.strMount;
            return strName.find(sOptions.strOnly) == std::string::npos;
        });
        if (!sGroup.vCases.empty())
            vChosen.push_back(std::move(sGroup));
    }
    return vChosen;
}

void Write(const std::string& strPath, const std::string& strText)
{
    if (!strPath.empty())
        WriteFile(strPath, reinterpret_cast<const unsigned char*>(strText.data()), strText.size());
}

int Measure(const SRunOptions& sOptions)
{
    const auto oBegin = std::chrono::steady_clock::now();
    SAccuracyReport sReport;
    sReport.strDriver = DriverName();
    if (!sOptions.strPictures.empty())
        std::filesystem::create_directories(sOptions.strPictures);
    sReport.vCases = CCaseRun(sOptions, ChosenGroups(sOptions)).Run();
    if (std::string("colours").find(sOptions.strOnly) != std::string::npos)
        sReport.vColours = MeasureColours(sOptions.bQuick);

    const std::string strTables = TablesText(sReport);
    std::printf("%s", strTables.c_str());
    Write(sOptions.strMarkdown, strTables);
    Write(sOptions.strJSON, JSONText(sReport));
    bool bGood = true;
    for (const SCaseResult& sResult : sReport.vCases) {
        const std::string strBroken = sResult.Broken();
        bGood = bGood && strBroken.empty();
        if (!strBroken.empty())
            std::printf("LIMIT BROKEN: lens %s, %s, %s:%s\n",
                        LensName(sResult.sCase.sSetup.nLensType).c_str(), sResult.sCase.strView.c_str(),
                        sResult.sCase.strMount.c_str(), strBroken.c_str());
    }
    for (const SColourResult& sResult : sReport.vColours)
        bGood = bGood && sResult.IsGood();
    std::printf("\n%s %.0f seconds.\n",
                bGood ? "Every figure is within its limit." : "There are broken limits.",
                std::chrono::duration<double>(std::chrono::steady_clock::now() - oBegin).count());
    return bGood ? 0 : 1;
}

int Run(int nArguments, char** ppArguments)
{
    SRunOptions sOptions;
    CLI::App oApp("Every view beside an exact rendering of the same scene.");
    oApp.add_flag("--quick", sOptions.bQuick, "a quarter of the width and height");
    oApp.add_option("--json", sOptions.strJSON, "write all figures to this file");
    oApp.add_option("--markdown", sOptions.strMarkdown, "write the tables to this file");
    oApp.add_option("--pictures", sOptions.strPictures,
                    "write view, room and difference as PNG into this folder");
    oApp.add_option("--only", sOptions.strOnly,
                    "run what has this text in its name, such as 'lens 239' or 'colours'");
    std::string strEngine = "gl";
    oApp.add_option("--engine", strEngine, "whose pictures are measured")
        ->check(CLI::IsMember({"gl", "cpu"}));
    oApp.add_flag("--exact", sOptions.bExact, "the processor engine with exact geometry");
    CLI11_PARSE(oApp, nArguments, ppArguments);
    sOptions.bProcessor = strEngine == "cpu" || sOptions.bExact;
    UseEngine(sOptions.bProcessor ? ENGINE_CPU : ENGINE_GL, sOptions.bExact);
    return Measure(sOptions);
}

} // namespace

int main(int nArguments, char** ppArguments)
{
    // No window system is needed, also when started by hand.
    setenv("EGL_PLATFORM", "surfaceless", 0);
    try {
        return Run(nArguments, ppArguments);
    } catch (const std::exception& rError) {
        std::fprintf(stderr, "lumor-bench-accuracy: %s\n", rError.what());
        return 2;
    }
}
