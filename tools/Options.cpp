#include "Options.h"

#include "CameraOptions.h"
#include "Names.h"
#include "OptionValues.h"
#include "PaneOptions.h"
#include "ToolError.h"

#include <CLI/CLI.hpp>
#include <cstddef>

namespace
{

using TText = std::optional<std::string>;
using TTexts = std::vector<std::string>;

/// The command line as text, before anything is understood.
struct SOptionTexts
{
    TText oInput, oOutput, oRaw;
    TText oView, oMount, oLens, oPan, oTilt, oZoom, oMountTilt, oProjection, oSize;
    TText oInterpolation, oYUVSpace, oYUVRange, oGain, oFlip, oRotation;
    TText oInputOverlay, oOutputOverlay, oMaskFile, oStringsFile;
    TText oEngine, oThreads;
    TText oCircle, oOrientation, oRoll, oSpan, oBand, oMap, oSampling, oPaneGap;
    TTexts vMasks, vTexts, vTextPlaces, vTextHeights, vTextColors, vTextAligns, vPanes;
    bool bNoStrictTilt = false;
    bool bBuffers = false;
    bool bStats = false;
    bool bVerbose = false;
    bool bHelp = false;
    bool bVersion = false;
    bool bExactGeometry = false;
    bool bGivenRim = false;
    bool bFloorFlip = false;
    bool bMinification = false;
};

void DeclareFlags(CLI::App& oApp, SOptionTexts& sTexts)
{
    oApp.set_help_flag();
    oApp.add_flag("-h,--help", sTexts.bHelp);
    oApp.add_flag("--version", sTexts.bVersion);
    oApp.add_flag("--buffers", sTexts.bBuffers);
    oApp.add_flag("--exact-geometry", sTexts.bExactGeometry);
    oApp.add_flag("--stats", sTexts.bStats);
    oApp.add_flag("--verbose", sTexts.bVerbose);
    oApp.add_flag("--no-strict-tilt", sTexts.bNoStrictTilt);
    oApp.add_flag("--no-clean-rim", sTexts.bGivenRim);
    oApp.add_flag("--floor-flip", sTexts.bFloorFlip);
    oApp.add_flag("--minification", sTexts.bMinification);
}

void DeclareOptions(CLI::App& oApp, SOptionTexts& sTexts)
{
    oApp.add_option("INPUT", sTexts.oInput);
    oApp.add_option("OUTPUT", sTexts.oOutput);
    const std::pair<const char*, TText*> aSingle[] = {
        {"--raw", &sTexts.oRaw},
        {"--view", &sTexts.oView},
        {"--mount", &sTexts.oMount},
        {"--lens", &sTexts.oLens},
        {"--pan", &sTexts.oPan},
        {"--tilt", &sTexts.oTilt},
        {"--zoom", &sTexts.oZoom},
        {"--mount-tilt", &sTexts.oMountTilt},
        {"--projection", &sTexts.oProjection},
        {"--size", &sTexts.oSize},
        {"--interpolation", &sTexts.oInterpolation},
        {"--yuv-space", &sTexts.oYUVSpace},
        {"--yuv-range", &sTexts.oYUVRange},
        {"--gain", &sTexts.oGain},
        {"--flip", &sTexts.oFlip},
        {"--rotation", &sTexts.oRotation},
        {"--input-overlay", &sTexts.oInputOverlay},
        {"--output-overlay", &sTexts.oOutputOverlay},
        {"--mask-file", &sTexts.oMaskFile},
        {"--strings-file", &sTexts.oStringsFile},
        {"--engine", &sTexts.oEngine},
        {"--threads", &sTexts.oThreads},
        {"--circle", &sTexts.oCircle},
        {"--mount-orientation", &sTexts.oOrientation},
        {"--roll", &sTexts.oRoll},
        {"--span", &sTexts.oSpan},
        {"--band", &sTexts.oBand},
        {"--map", &sTexts.oMap},
        {"--sampling", &sTexts.oSampling},
        {"--pane-gap", &sTexts.oPaneGap},
    };
    for (const auto& [pName, pText] : aSingle)
        oApp.add_option(pName, *pText)->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    const std::pair<const char*, TTexts*> aRepeated[] = {
        {"--mask", &sTexts.vMasks},
        {"--text", &sTexts.vTexts},
        {"--text-at", &sTexts.vTextPlaces},
        {"--text-height", &sTexts.vTextHeights},
        {"--text-color", &sTexts.vTextColors},
        {"--text-align", &sTexts.vTextAligns},
        {"--pane", &sTexts.vPanes},
    };
    for (const auto& [pName, pTexts] : aRepeated)
        oApp.add_option(pName, *pTexts)->allow_extra_args(false);
}

void ReadFileOptions(const SOptionTexts& sTexts, SToolOptions& sOptions)
{
    sOptions.strInput = sTexts.oInput.value_or("");
    sOptions.strOutput = sTexts.oOutput.value_or("");
    if (sOptions.strInput.empty() || sOptions.strOutput.empty())
        ThrowUsage("an input and an output file are needed: lumor-dewarp [options] INPUT OUTPUT");
    if (sTexts.oRaw)
        sOptions.oRaw = ReadRawLayout(*sTexts.oRaw);
}

void ReadViewOptions(const SOptionTexts& sTexts, SToolOptions& sOptions)
{
    if (sTexts.oView)
        sOptions.eView = ReadView(*sTexts.oView);
    if (sTexts.oMount)
        sOptions.eMount = ReadMount(*sTexts.oMount);
    if (sTexts.oPan)
        sOptions.oPan = ReadFloat("--pan", *sTexts.oPan, -360.0f, 360.0f, "degrees");
    if (sTexts.oTilt)
        sOptions.oTilt = ReadFloat("--tilt", *sTexts.oTilt, -180.0f, 180.0f, "degrees");
    if (sTexts.oZoom)
        sOptions.oZoom = ReadFloat("--zoom", *sTexts.oZoom, 5.0f, 180.0f, "degrees");
    if (sTexts.oMountTilt)
        sOptions.oMountTilt = ReadFloat("--mount-tilt", *sTexts.oMountTilt, -90.0f, 90.0f, "degrees");
    sOptions.bStrictTilt = !sTexts.bNoStrictTilt;
    if (sTexts.oProjection)
        sOptions.oEyeDistance = ReadProjection(*sTexts.oProjection);
}

void ReadCameraOptions(const SOptionTexts& sTexts, SToolOptions& sOptions)
{
    if (sTexts.oLens)
        ReadLens(*sTexts.oLens, sOptions);
    if (sTexts.oCircle)
        ReadCircle(*sTexts.oCircle, sOptions);
    if (sTexts.oOrientation)
        sOptions.oOrientation = ReadOrientation(*sTexts.oOrientation);
    if (sTexts.oRoll)
        sOptions.oRoll = ReadFloat("--roll", *sTexts.oRoll, -360.0f, 360.0f, "degrees");
    sOptions.bCleanRim = !sTexts.bGivenRim;
    if (sTexts.oSpan)
        ReadSpan(*sTexts.oSpan, sOptions.sShape);
    if (sTexts.oBand)
        ReadBand(*sTexts.oBand, sOptions.sShape);
    sOptions.sShape.bFloorFlip = sTexts.bFloorFlip;
}

void ReadPictureOptions(const SOptionTexts& sTexts, SToolOptions& sOptions)
{
    if (sTexts.oSize)
        sOptions.oSize = ReadSize("--size", *sTexts.oSize);
    if (sTexts.oInterpolation)
        sOptions.eInterpolation = ReadInterpolation(*sTexts.oInterpolation);
    if (sTexts.oSampling)
        sOptions.eSampling = ReadSampling(*sTexts.oSampling);
    sOptions.bMinification = sTexts.bMinification;
    if (sTexts.oYUVSpace)
        sOptions.oYUVSpace = ReadYUVSpace(*sTexts.oYUVSpace);
    if (sTexts.oYUVRange)
        sOptions.oYUVRange = ReadYUVRange(*sTexts.oYUVRange);
    if (sTexts.oGain)
        sOptions.oGains = ReadGains(*sTexts.oGain);
    if (sTexts.oFlip) {
        sOptions.bFlipHorizontal = *sTexts.oFlip == "h" || *sTexts.oFlip == "hv";
        sOptions.bFlipVertical = *sTexts.oFlip == "v" || *sTexts.oFlip == "hv";
        if (!sOptions.bFlipHorizontal && !sOptions.bFlipVertical)
            ThrowUsage("--flip: '" + *sTexts.oFlip + "' is not known; give h, v or hv");
    }
    if (sTexts.oRotation) {
        sOptions.oRotation = ReadInt("--rotation", *sTexts.oRotation, 0, 270, "degrees");
        if (*sOptions.oRotation % 90 != 0)
            ThrowUsage("--rotation: '" + *sTexts.oRotation + "' is not 0, 90, 180 or 270 (degrees)");
    }
}

/// The n-th value belongs to the n-th text; a text without one looks as the text before it and stands one
/// line below it.
void ReadTexts(const SOptionTexts& sTexts, SToolOptions& sOptions)
{
    const std::pair<const char*, const TTexts*> aLists[] = {{"--text-at", &sTexts.vTextPlaces},
                                                            {"--text-height", &sTexts.vTextHeights},
                                                            {"--text-color", &sTexts.vTextColors},
                                                            {"--text-align", &sTexts.vTextAligns}};
    for (const auto& [pName, pValues] : aLists)
        if (pValues->size() > sTexts.vTexts.size())
            ThrowUsage(std::string(pName) + ": given " + std::to_string(pValues->size()) + " times for " +
                       std::to_string(sTexts.vTexts.size()) + " --text; give one --text for each");
    SGPUString sString;
    sString.nColor = 0xFFFFFFFF;
    for (std::size_t i = 0; i < sTexts.vTexts.size(); i++) {
        sString.strText = sTexts.vTexts[i];
        if (i > 0)
            sString.nY += (sString.nVRef == 2 ? -1 : 1) * sString.nHeight;
        if (i < sTexts.vTextHeights.size())
            sString.nHeight = ReadInt("--text-height", sTexts.vTextHeights[i], 4, 1024, "pixels");
        if (i < sTexts.vTextColors.size())
            sString.nColor = ReadColor("--text-color", sTexts.vTextColors[i]);
        if (i < sTexts.vTextAligns.size())
            ReadTextAlign(sTexts.vTextAligns[i], sString);
        if (i < sTexts.vTextPlaces.size()) {
            const SGPoint sPlace = ReadPoint("--text-at", sTexts.vTextPlaces[i]);
            sString.nX = sPlace.x;
            sString.nY = sPlace.y;
            // Negative positions count from the right and from the bottom edge.
            sString.nHRef = sPlace.x < 0 ? 2 : 0;
            sString.nVRef = sPlace.y < 0 ? 2 : 0;
        }
        sOptions.vTexts.push_back(sString);
    }
}

/// What panes leave out was read before.
void ReadPaneOptions(const SOptionTexts& sTexts, SToolOptions& sOptions)
{
    for (const std::string& strPane : sTexts.vPanes)
        sOptions.vPanes.push_back(ReadPane(strPane, sOptions));
    if (sTexts.oPaneGap)
        ReadPaneGap(*sTexts.oPaneGap, sOptions);
}

void ReadOverlayOptions(const SOptionTexts& sTexts, SToolOptions& sOptions)
{
    const std::pair<const TText*, std::string*> aFiles[] = {
        {&sTexts.oInputOverlay, &sOptions.strInputOverlay},
        {&sTexts.oOutputOverlay, &sOptions.strOutputOverlay},
        {&sTexts.oMaskFile, &sOptions.strMaskFile},
        {&sTexts.oStringsFile, &sOptions.strStringsFile},
    };
    for (const auto& [pText, pFile] : aFiles) {
        *pFile = pText->value_or("");
        if (*pText && pFile->empty())
            ThrowUsage("an overlay, mask or strings option has an empty file name; give a file");
    }
    for (const std::string& strMask : sTexts.vMasks)
        sOptions.vMasks.push_back(ReadMask(strMask));
    ReadTexts(sTexts, sOptions);
}

void ReadEngineOptions(const SOptionTexts& sTexts, SToolOptions& sOptions)
{
    if (sTexts.oEngine)
        sOptions.eEngine = ReadEngine(*sTexts.oEngine);
    if (sTexts.oThreads)
        sOptions.oThreads = ReadInt("--threads", *sTexts.oThreads, 0, 1024, "threads");
    sOptions.bBuffers = sTexts.bBuffers;
    if (sOptions.bBuffers && sOptions.eEngine == ENGINE_CPU)
        ThrowUsage("--engine: 'cpu' does not draw graphic buffers; leave out --buffers or give gl");
    sOptions.bExactGeometry = sTexts.bExactGeometry;
    if (!sOptions.bExactGeometry)
        return;
    if (sOptions.bBuffers || sOptions.eEngine == ENGINE_GL)
        ThrowUsage("--exact-geometry: only the processor draws it; leave out --buffers and --engine gl");
    sOptions.eEngine = ENGINE_CPU;
}

} // namespace

SCommandLine ParseCommandLine(int nArguments, const char* const* ppArguments)
{
    CLI::App oApp("", "lumor-dewarp");
    SOptionTexts sTexts;
    DeclareFlags(oApp, sTexts);
    DeclareOptions(oApp, sTexts);
    try {
        oApp.parse(nArguments, ppArguments);
    } catch (const CLI::ParseError& oError) {
        ThrowUsage(std::string(oError.what()) + "; lumor-dewarp --help lists the options");
    }

    SCommandLine sLine;
    if (sTexts.bHelp || sTexts.bVersion) {
        sLine.eAction = sTexts.bHelp ? EToolAction::SHOW_HELP : EToolAction::SHOW_VERSION;
        return sLine;
    }
    ReadFileOptions(sTexts, sLine.sOptions);
    ReadViewOptions(sTexts, sLine.sOptions);
    ReadCameraOptions(sTexts, sLine.sOptions);
    ReadPictureOptions(sTexts, sLine.sOptions);
    ReadPaneOptions(sTexts, sLine.sOptions);
    ReadOverlayOptions(sTexts, sLine.sOptions);
    ReadEngineOptions(sTexts, sLine.sOptions);
    sLine.sOptions.bStats = sTexts.bStats;
    sLine.sOptions.bVerbose = sTexts.bVerbose;
    sLine.sOptions.strMapName = sTexts.oMap.value_or("");
    return sLine;
}
