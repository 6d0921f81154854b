#include "bench/peers/EngineCases.h"

#include "bench/peers/EnginePeer.h"
#include "bench/peers/Pictures.h"

#include <cstdio>

namespace
{

const int COLD_BUFFERS = 16;
const int CAMERAS = 16;

using TReports = std::vector<SPeerReport>;

/// A contender that moves, or not, whatever the rest of its case does.
class CEitherWay final : public CPeer
{
public:
    CEitherWay(PPeer pPeer, bool bMoving) : m_pPeer(std::move(pPeer)), m_bMoving(bMoving) {}

    std::string Name() const override { return m_pPeer->Name() + (m_bMoving ? ", moving" : ", still"); }
    void SetPan(float fPan) override { m_pPeer->SetPan(fPan); }
    void Frame() override { m_pPeer->Frame(); }
    SLuma Luma() override { return m_pPeer->Luma(); }
    void Frames(int nFrames, bool /*bMoving*/) override { m_pPeer->Frames(nFrames, m_bMoving); }

private:
    PPeer m_pPeer;
    bool m_bMoving;
};

std::string EngineTitle(const SPeerCase& rCase)
{
    const char* const apViews[] = {"", " panorama", " quad"};
    char szTitle[160];
    std::snprintf(szTitle, sizeof szTitle, "processor: %dx%d %s to %dx%d %s%s%s%s", rCase.nInputSide[0],
                  rCase.nInputSide[1], rCase.ePixels == PEER_RGBA ? "RGBA" : "NV12", rCase.nWidth,
                  rCase.nHeight, rCase.bYUVOut ? "NV12" : "BGRA", apViews[rCase.eView],
                  rCase.bNearest ? ", nearest" : "", rCase.nBuffers > 1 ? ", buffers in turn" : "");
    return szTitle;
}

bool IsWanted(const SCasesPlan& rPlan, const std::string& strTitle)
{
    return strTitle.find(rPlan.strOnly) != std::string::npos;
}

/// Times contenders that are made already, and adds the report.
void RunContenders(const std::vector<PPeer>& vOwners, const SCasesPlan& rPlan, SPeerReport sReport,
                   TReports& vReports)
{
    std::vector<CPeer*> vPeers;
    for (const PPeer& pPeer : vOwners)
        vPeers.push_back(pPeer.get());
    sReport.sResult = RunRounds(vPeers, sReport.bMoving, rPlan.sRounds);
    PrintReport(sReport);
    vReports.push_back(sReport);
}

std::vector<SPeerCase> ListCases(const SCasesPlan& rPlan)
{
    std::vector<SPeerCase> vCases;
    SPeerCase sCase;
    sCase.nThreads = rPlan.nThreads;
    struct SFormats
    {
        EPeerPixels ePixels;
        bool bYUVOut;
    };
    const SFormats aFormats[] = {{PEER_YUV420, true}, {PEER_YUV420, false}, {PEER_RGBA, false}};
    struct SSizes
    {
        int anInput[2];
        int anView[2];
    };
    const SSizes aSizes[] = {{{1920, 1920}, {1280, 720}},
                             {{1920, 1920}, {1920, 1080}},
                             {{1920, 1920}, {3840, 2160}},
                             {{3200, 3000}, {1920, 1080}}};
    for (const SSizes& rSizes : aSizes) {
        sCase.nInputSide[0] = rSizes.anInput[0];
        sCase.nInputSide[1] = rSizes.anInput[1];
        sCase.nWidth = rSizes.anView[0];
        sCase.nHeight = rSizes.anView[1];
        for (const SFormats& rFormats : aFormats) {
            sCase.ePixels = rFormats.ePixels;
            sCase.bYUVOut = rFormats.bYUVOut;
            vCases.push_back(sCase);
            if (rSizes.anView[0] != 1920)
                continue;
            sCase.nBuffers = COLD_BUFFERS;
            vCases.push_back(sCase);
            sCase.nBuffers = 1;
        }
        sCase.ePixels = PEER_YUV420;
        sCase.bYUVOut = sCase.bNearest = true;
        vCases.push_back(sCase);
        sCase.bNearest = false;
    }
    SPeerCase sView;
    sView.nThreads = rPlan.nThreads;
    sView.bYUVOut = true;
    sView.eView = PEER_QUAD;
    vCases.push_back(sView);
    sView.eView = PEER_PANORAMA;
    sView.nWidth = 2500;
    sView.nHeight = 350;
    vCases.push_back(sView);
    return vCases;
}

std::vector<PPeer> MakeContenders(const SPeerCase& rCase, CPeerFrame& rFrame)
{
    std::vector<PPeer> vOwners;
    vOwners.push_back(MakeEnginePeer(rCase, rFrame, ENGINE_CPU));
    if (!EngineText(ENGINE_GL, rCase.nThreads).empty())
        vOwners.push_back(MakeEnginePeer(rCase, rFrame, ENGINE_GL));
    if (rCase.eView == PEER_QUAD)
        vOwners.push_back(MakeV360Quad(rCase, rFrame));
    else
        vOwners.push_back(MakeV360Peer(rCase, rFrame, false));
    if (!rCase.bYUVOut)
        vOwners.push_back(MakeV360Peer(rCase, rFrame, true));
    if (rCase.eView == PEER_CAMERA && !rCase.bNearest)
        vOwners.push_back(MakeRemapPeer(rCase, rFrame, !rCase.bYUVOut));
    return vOwners;
}

void RunBesideOthers(const SPeerCase& rCase, const SCasesPlan& rPlan, TReports& vReports)
{
    CPeerFrame oFrame(rCase.nInputSide[0], rCase.nInputSide[1]);
    const std::vector<PPeer> vOwners = MakeContenders(rCase, oFrame);
    std::vector<CPeer*> vPeers;
    for (const PPeer& pPeer : vOwners)
        vPeers.push_back(pPeer.get());
    SPeerReport sReport;
    sReport.strGroup = "processor";
    sReport.strTitle = EngineTitle(rCase);
    sReport.sCase = rCase;
    sReport.vPSNR = ComparePictures(vPeers);
    RunContenders(vOwners, rPlan, sReport, vReports);
    if (rCase.bNearest || rCase.nBuffers > 1)
        return;
    sReport.vPSNR.clear();
    sReport.bMoving = true;
    RunContenders(vOwners, rPlan, sReport, vReports);
}

SPeerReport OwnReport(const char* pGroup, const char* pTitle, const SPeerCase& rCase)
{
    SPeerReport sReport;
    sReport.strGroup = pGroup;
    sReport.strTitle = EngineTitle(rCase) + ", " + pTitle;
    sReport.sCase = rCase;
    return sReport;
}

/// Masks, text and a clock beside the bare frame.
void RunLayers(const SPeerCase& rCase, const SCasesPlan& rPlan, TReports& vReports)
{
    SPeerReport sReport = OwnReport("layers", "masks and text", rCase);
    if (!IsWanted(rPlan, sReport.strTitle))
        return;
    CPeerFrame oFrame(rCase.nInputSide[0], rCase.nInputSide[1]);
    const SPeerLayers asLayers[] = {
        {}, {true, false, false}, {false, true, false}, {false, false, true}, {true, true, true}};
    std::vector<PPeer> vOwners;
    for (const SPeerLayers& rLayers : asLayers) {
        vOwners.push_back(MakeEnginePeer(rCase, oFrame, ENGINE_CPU, rLayers));
        const std::size_t nLast = vOwners.size() - 1;
        if (nLast > 0)
            sReport.vCosts.push_back({vOwners[nLast]->Name() + " beside the bare frame", nLast, 0});
    }
    RunContenders(vOwners, rPlan, sReport, vReports);
}

/// What it costs that a view moves.
void RunMove(const SPeerCase& rCase, const SCasesPlan& rPlan, TReports& vReports)
{
    SPeerReport sReport = OwnReport("move", "cost of a move", rCase);
    if (!IsWanted(rPlan, sReport.strTitle))
        return;
    CPeerFrame oFrame(rCase.nInputSide[0], rCase.nInputSide[1]);
    std::vector<PPeer> vOwners;
    for (const bool bMoving : {false, true}) {
        for (PPeer& pPeer : MakeContenders(rCase, oFrame))
            vOwners.push_back(std::make_unique<CEitherWay>(std::move(pPeer), bMoving));
    }
    const std::size_t nHalf = vOwners.size() / 2;
    for (std::size_t i = 0; i < nHalf; ++i)
        sReport.vCosts.push_back({vOwners[nHalf + i]->Name() + " less still", nHalf + i, i});
    RunContenders(vOwners, rPlan, sReport, vReports);
}

/// Many cameras in one process beside one that draws as many frames.
void RunCameras(const SPeerCase& rCase, const SCasesPlan& rPlan, TReports& vReports)
{
    SPeerReport sReport = OwnReport("cameras", "sixteen cameras", rCase);
    sReport.nViews = CAMERAS;
    if (!IsWanted(rPlan, sReport.strTitle))
        return;
    CPeerFrame oFrame(rCase.nInputSide[0], rCase.nInputSide[1]);
    SPeerCase sCold = rCase;
    sCold.nBuffers = COLD_BUFFERS;
    std::vector<PPeer> vOwners;
    vOwners.push_back(MakeRepeatedPeer(rCase, oFrame, CAMERAS));
    vOwners.push_back(MakeRepeatedPeer(sCold, oFrame, CAMERAS));
    vOwners.push_back(MakeCamerasPeer(rCase, oFrame, CAMERAS, false));
    vOwners.push_back(MakeCamerasPeer(rCase, oFrame, CAMERAS, true));
    RunContenders(vOwners, rPlan, sReport, vReports);
}

} // namespace

void RunEngineCases(const SCasesPlan& rPlan, TReports& vReports)
{
    for (const SPeerCase& rCase : ListCases(rPlan)) {
        if (IsWanted(rPlan, EngineTitle(rCase)))
            RunBesideOthers(rCase, rPlan, vReports);
    }
    SPeerCase sCase;
    sCase.nThreads = rPlan.nThreads;
    for (const bool bYUVOut : {true, false}) {
        sCase.bYUVOut = bYUVOut;
        RunMove(sCase, rPlan, vReports);
        RunLayers(sCase, rPlan, vReports);
        RunCameras(sCase, rPlan, vReports);
    }
}
