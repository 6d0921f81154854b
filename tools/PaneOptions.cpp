#include "PaneOptions.h"

#include "Names.h"
#include "Notes.h"
#include "OptionValues.h"
#include "ToolError.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <sstream>

namespace
{

const std::size_t MOST_PANES = 16;
const char* const KEYS = "view, pan, tilt, zoom, roll, projection";
const int MOST_PIXELS = 16384;

/// One word KEY=VALUE.
void ReadWord(const std::string& strWord, const std::string& strText, SPane& rPane)
{
    const std::size_t nEqual = strWord.find('=');
    const std::string strKey = strWord.substr(0, nEqual);
    if (nEqual == std::string::npos)
        ThrowUsage("--pane: '" + strWord + "' in '" + strText + "' is no KEY=VALUE; keys are " + KEYS);
    const std::string strValue = strWord.substr(nEqual + 1);
    const auto Degrees = [&](float fLow, float fHigh) {
        return ReadFloat(("--pane " + strKey).c_str(), strValue, fLow, fHigh, "degrees");
    };
    if (strKey == "view")
        rPane.eView = ReadView(strValue);
    else if (strKey == "pan")
        rPane.fPan = Degrees(-360.0f, 360.0f);
    else if (strKey == "tilt")
        rPane.fTilt = Degrees(-180.0f, 180.0f);
    else if (strKey == "zoom")
        rPane.fZoom = Degrees(5.0f, 180.0f);
    else if (strKey == "roll")
        rPane.fRoll = Degrees(-360.0f, 360.0f);
    else if (strKey == "projection")
        rPane.fEyeDistance = ReadProjection(strValue);
    else
        ThrowUsage("--pane: '" + strKey + "' in '" + strText + "' is not known; keys are " + KEYS);
}

SGRect ReadRectangle(const std::string& strWord, const std::string& strText)
{
    const char* const pExpected = "\"X,Y,W,H KEY=VALUE ...\" with whole pixels of the output";
    const std::vector<float> v =
        ReadNumbers("--pane", strWord, 4, 4, static_cast<float>(MOST_PIXELS), pExpected);
    const bool bWhole = std::all_of(v.begin(), v.end(), [](float f) { return f == std::floor(f); });
    if (!bWhole || v[0] < 0.0f || v[1] < 0.0f || v[2] < 1.0f || v[3] < 1.0f)
        ThrowUsage("--pane: '" + strText + "' is not " + pExpected);
    return {static_cast<int>(v[0]), static_cast<int>(v[1]), static_cast<int>(v[2]), static_cast<int>(v[3])};
}

std::optional<float> Given(float f)
{
    return std::isnan(f) ? std::nullopt : std::optional<float>(f);
}

} // namespace

SPane ReadPane(const std::string& strText, const SToolOptions& rOptions)
{
    std::istringstream oWords(strText);
    std::string strWord;
    oWords >> strWord;
    SPane sPane;
    sPane.sRect = ReadRectangle(strWord, strText);
    sPane.eView = rOptions.eView;
    sPane.fPan = rOptions.oPan.value_or(SPane::BY_VIEW);
    sPane.fTilt = rOptions.oTilt.value_or(SPane::BY_VIEW);
    sPane.fZoom = rOptions.oZoom.value_or(SPane::BY_VIEW);
    sPane.fRoll = rOptions.oRoll.value_or(0.0f);
    sPane.fEyeDistance = rOptions.oEyeDistance.value_or(0.0f);
    while (oWords >> strWord)
        ReadWord(strWord, strText, sPane);
    const SSize sSize = SizeOfPanes({sPane});
    if (sSize.nWidth > MOST_PIXELS || sSize.nHeight > MOST_PIXELS ||
        (rOptions.oSize &&
         (sSize.nWidth > rOptions.oSize->nWidth || sSize.nHeight > rOptions.oSize->nHeight)))
        ThrowUsage("--pane: '" + strText + "' reaches beyond the output; give a larger --size, or none");
    if (rOptions.vPanes.size() >= MOST_PANES)
        ThrowUsage("--pane: there may be 16 of them");
    return sPane;
}

void ReadPaneGap(const std::string& strText, SToolOptions& rOptions)
{
    const std::size_t nComma = strText.find(',');
    rOptions.nPaneGap = ReadInt("--pane-gap", strText.substr(0, nComma), 0, MOST_PIXELS, "pixels");
    if (nComma != std::string::npos)
        rOptions.nPaneGapColor = ReadColor("--pane-gap", strText.substr(nComma + 1));
    for (const SPane& rPane : rOptions.vPanes) {
        if (rOptions.nPaneGap >= std::min(rPane.sRect.width, rPane.sRect.height))
            ThrowUsage("--pane-gap: " + std::to_string(rOptions.nPaneGap) +
                       " pixels leave nothing of a pane of " + std::to_string(rPane.sRect.width) + "x" +
                       std::to_string(rPane.sRect.height));
    }
}

SSize SizeOfPanes(const std::vector<SPane>& vPanes)
{
    // No output is smaller.
    SSize sSize = {2, 2};
    for (const SPane& rPane : vPanes) {
        sSize.nWidth = std::max(sSize.nWidth, rPane.sRect.x + rPane.sRect.width);
        sSize.nHeight = std::max(sSize.nHeight, rPane.sRect.y + rPane.sRect.height);
    }
    return sSize;
}

SToolOptions OptionsOfPane(const SToolOptions& rOptions, const SPane& rPane)
{
    SToolOptions sOptions = rOptions;
    sOptions.vPanes.clear();
    sOptions.nPaneGap = 0;
    sOptions.eView = rPane.eView;
    sOptions.oPan = Given(rPane.fPan);
    sOptions.oTilt = Given(rPane.fTilt);
    sOptions.oZoom = Given(rPane.fZoom);
    sOptions.oRoll = rPane.fRoll == 0.0f ? std::nullopt : std::optional<float>(rPane.fRoll);
    sOptions.oEyeDistance =
        rPane.fEyeDistance == 0.0f ? std::nullopt : std::optional<float>(rPane.fEyeDistance);
    return sOptions;
}

std::vector<std::string> ListIgnoredInPanes(const SToolOptions& rOptions, int nInputFormat)
{
    std::vector<std::vector<std::string>> vOfPanes;
    for (const SPane& rPane : rOptions.vPanes)
        vOfPanes.push_back(ListIgnoredOptions(OptionsOfPane(rOptions, rPane), nInputFormat));
    std::vector<std::string> vNotes;
    const auto AllHave = [&](const std::string& strNote) {
        return std::all_of(vOfPanes.begin(), vOfPanes.end(), [&](const std::vector<std::string>& v) {
            return std::find(v.begin(), v.end(), strNote) != v.end();
        });
    };
    for (const std::string& strNote : vOfPanes.front()) {
        if (AllHave(strNote))
            vNotes.push_back(strNote);
    }
    return vNotes;
}

std::vector<std::string> ListLimitedPanes(const SToolOptions& rOptions, const std::vector<SPane>& vNow)
{
    std::vector<std::string> vNotes;
    for (std::size_t n = 0; n < std::min(vNow.size(), rOptions.vPanes.size()); ++n) {
        const SToolOptions sAsked = OptionsOfPane(rOptions, rOptions.vPanes[n]);
        for (const std::string& strNote : ListLimitedPTZ(sAsked, vNow[n].fPan, vNow[n].fTilt, vNow[n].fZoom))
            vNotes.push_back("pane " + std::to_string(n + 1) + ": " + strNote);
    }
    return vNotes;
}
