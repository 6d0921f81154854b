// lumor-dewarp: a fisheye picture in, a dewarped picture out.
#include "CameraOptions.h"
#include "FFmpegHandles.h"
#include "FileIO.h"
#include "HelpText.h"
#include "ImageReader.h"
#include "ImageWriter.h"
#include "Notes.h"
#include "Options.h"
#include "PaneOptions.h"
#include "RawFrame.h"
#include "Session.h"
#include "Stats.h"
#include "ToolError.h"
#include "ToolLog.h"
#include "lens/LensCommands.h"

#include <cstdio>
#include <exception>
#include <memory>

namespace
{

/// One line, whatever bytes file names and texts hold.
std::string Clean(std::string strLine)
{
    for (char& nChar : strLine)
        if (static_cast<unsigned char>(nChar) < 32 || static_cast<unsigned char>(nChar) == 127)
            nChar = '?';
    return strLine;
}

void PrintLine(const char* pKind, const std::string& strLine)
{
    std::fprintf(stderr, "lumor-dewarp: %s%s\n", pKind, Clean(strLine).c_str());
}

void PrintNotes(const std::vector<std::string>& vNotes)
{
    for (const std::string& strNote : vNotes)
        PrintLine("note: ", strNote);
}

/// The cost of one frame of a video: programs, meshes and textures exist already.
SPicture MeasureFrame(CDewarpSession& oSession, SFrame& sFrame, CStats& oStats)
{
    // Drawing may still go on when its call has returned, but not when the picture has been read back. Read
    // once more, the picture costs the read-back alone.
    oSession.Draw(sFrame);
    oSession.ReadBack();
    const double fDrawAndRead = oStats.Lap();
    const SPicture sPicture = oSession.ReadBack();
    const double fRead = oStats.Lap();
    if (oSession.GetEngine() == ENGINE_CPU) {
        oStats.AddStage("draw", fDrawAndRead - fRead);
        return sPicture;
    }
    oStats.AddStage("upload and draw", fDrawAndRead - fRead);
    oStats.AddStage("read back", fRead);
    return sPicture;
}

/// What was written, how large it is and who drew it.
void PrintResult(const SToolOptions& sOptions, const SPicture& sPicture, const std::string& strEngine)
{
    std::printf("%s: %dx%d, %s\n", Clean(sOptions.strOutput).c_str(), sPicture.nWidth, sPicture.nHeight,
                Clean(strEngine).c_str());
}

void Dewarp(SToolOptions sOptions)
{
    const EOutputKind eKind = GetOutputKind(sOptions.strOutput);
    CheckOutputPath(sOptions.strInput, sOptions.strOutput);
    av_log_set_level(sOptions.bVerbose ? AV_LOG_INFO : AV_LOG_QUIET);

    const CToolLog oLog(sOptions.bVerbose);
    CStats oStats;
    SFrame sFrame =
        sOptions.oRaw ? ReadRawFrame(sOptions.strInput, *sOptions.oRaw) : ReadImage(sOptions.strInput);
    SOverlays sOverlays = LoadOverlays(sOptions);
    oStats.EndStage("decode");
    LoadLens(sOptions);
    const std::vector<std::string> vCircleNotes = SettleCircle(sFrame, sOptions);
    PrintNotes(sOptions.vPanes.empty() ? ListIgnoredOptions(sOptions, sFrame.nFormat)
                                       : ListIgnoredInPanes(sOptions, sFrame.nFormat));
    PrintNotes(ListUndrawableTexts(sOverlays.vTexts));

    const std::unique_ptr<CDewarpSession> pSession =
        StartSession(sOptions, {sFrame.nWidth, sFrame.nHeight}, oLog);
    CDewarpSession& oSession = *pSession;
    oStats.EndStage("set up: engine");
    oSession.DrawFirst(sFrame, sOverlays);
    SPicture sPicture = oSession.ReadBack();
    oStats.EndStage("set up: first frame");
    if (sOptions.bStats)
        sPicture = MeasureFrame(oSession, sFrame, oStats);
    PrintNotes(oSession.GetNotes());

    const std::vector<unsigned char> vBytes = EncodePicture(sPicture, eKind);
    oStats.EndStage("encode");
    WriteFile(sOptions.strOutput, vBytes.data(), vBytes.size());
    oStats.EndStage("write");
    PrintNotes(vCircleNotes);
    if (!sOptions.strMapName.empty()) {
        WriteViewMap(sOptions.strMapName, oSession.GetMap(sPicture));
        oStats.EndStage("map");
    }
    PrintResult(sOptions, sPicture, oSession.GetEngineText());
    if (sOptions.bStats)
        std::fputs(oStats.Format().c_str(), stdout);
}

int Run(int nArguments, const char* const* ppArguments)
{
    if (IsLensCommand(nArguments, ppArguments))
        return RunLensCommand(nArguments, ppArguments);
    const SCommandLine sLine = ParseCommandLine(nArguments, ppArguments);
    switch (sLine.eAction) {
    case EToolAction::SHOW_HELP:
        std::fputs(HELP_TEXT, stdout);
        break;
    case EToolAction::SHOW_VERSION:
        std::puts("lumor-dewarp " LUMOR_DEWARP_VERSION);
        break;
    case EToolAction::DEWARP:
        Dewarp(sLine.sOptions);
        break;
    }
    return EXIT_DONE;
}

} // namespace

int main(int nArguments, char** ppArguments)
{
    try {
        return Run(nArguments, ppArguments);
    } catch (const CToolError& oError) {
        PrintLine("", oError.what());
        return oError.GetStatus();
    } catch (const std::bad_alloc&) {
        PrintLine("", "memory is not enough for this picture; try a smaller --size");
    } catch (const std::exception& oError) {
        PrintLine("", std::string(oError.what()) + "; please report this");
    }
    return EXIT_FAILED;
}
