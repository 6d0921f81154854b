#include "CameraOptions.h"

#include "Names.h"
#include "OptionValues.h"
#include "ToolError.h"

#include "dewarp/lenses/CircleFinder.h"
#include "dewarp/lenses/LensSizes.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <filesystem>

namespace
{

/// Pixels; no circle lies farther away.
const float MOST_CIRCLE = 100000.0f;
/// How far a found circle may lie from the rule of a known camera before it is worth a note, in parts of the
/// radius.
const double CONTRADICTION = 0.02;

SLens ReadLensModel(const std::string& strText, std::size_t nColon)
{
    const std::string strModel = strText.substr(0, nColon);
    ELensModel eModel = LENS_EQUIDISTANT;
    if (!FindLensModel(strModel, eModel))
        ThrowUsage(
            "--lens: '" + strModel +
            "' is not a model; give equidistant, equisolid, stereographic, orthographic or rectilinear");
    const float fMost = static_cast<float>(MostLensField(eModel));
    return SLens::FromModel(eModel, static_cast<double>(ReadFloat("--lens", strText.substr(nColon + 1), 1.0f,
                                                                  fMost, "degrees across the circle")));
}

/// The picture's brightness, row by row without padding.
std::vector<unsigned char> LumaOf(const SFrame& rFrame)
{
    const auto nWidth = static_cast<std::size_t>(rFrame.nWidth);
    const auto nHeight = static_cast<std::size_t>(rFrame.nHeight);
    const auto nBytes = static_cast<std::size_t>(GetBytesPerPixel(rFrame.nFormat));
    const bool bBlueFirst = rFrame.nFormat == IMAGE_FORMAT_BGR24 || rFrame.nFormat == IMAGE_FORMAT_BGRA32;
    std::vector<unsigned char> vLuma(nWidth * nHeight);
    for (std::size_t y = 0; y < nHeight; ++y) {
        const unsigned char* pFrom = rFrame.avPlanes[0].data() + y * static_cast<std::size_t>(rFrame.nStride);
        for (std::size_t x = 0; x < nWidth; ++x, pFrom += nBytes) {
            const int nRed = pFrom[bBlueFirst && nBytes > 1 ? 2 : 0];
            const int nGreen = pFrom[nBytes > 1 ? 1 : 0];
            const int nBlue = pFrom[nBytes == 1 || bBlueFirst ? 0 : 2];
            vLuma[y * nWidth + x] = static_cast<unsigned char>((77 * nRed + 150 * nGreen + 29 * nBlue) >> 8);
        }
    }
    return vLuma;
}

std::string Describe(const SCircle& c)
{
    char aText[128];
    if (c.fRadiusX == c.fRadiusY)
        std::snprintf(aText, sizeof aText, "%.1f,%.1f,%.1f", static_cast<double>(c.fCenterX),
                      static_cast<double>(c.fCenterY), static_cast<double>(c.fRadiusX));
    else
        std::snprintf(aText, sizeof aText, "%.1f,%.1f,%.1f,%.1f", static_cast<double>(c.fCenterX),
                      static_cast<double>(c.fCenterY), static_cast<double>(c.fRadiusX),
                      static_cast<double>(c.fRadiusY));
    return aText;
}

SFoundCircle Find(const SFrame& rFrame, SCircle& rCircle)
{
    const std::vector<unsigned char> vLuma = LumaOf(rFrame);
    SFoundCircle sFound = FindImageCircle(vLuma.data(), rFrame.nWidth, rFrame.nHeight, rFrame.nWidth);
    rCircle = {static_cast<float>(sFound.fCenterX), static_cast<float>(sFound.fCenterY),
               static_cast<float>(sFound.fRadiusX), static_cast<float>(sFound.fRadiusY)};
    return sFound;
}

std::string Because(const SFoundCircle& rFound)
{
    return rFound.strReason.empty() ? "" : " (" + rFound.strReason + ")";
}

/// A known camera's circle fills the side that its lens says; the picture may show another.
void NoteContradiction(const SFrame& rFrame, ELensType eLens, std::vector<std::string>& rNotes)
{
    SCircle c;
    const SFoundCircle sFound = Find(rFrame, c);
    if (sFound.eCertainty != CIRCLE_CERTAIN)
        return;
    // Lens 239 fills the width; of frames that are known, all others fill the height or the larger side.
    const double fRule = 0.5 * (eLens == LENS_DSL215   ? std::max(rFrame.nWidth, rFrame.nHeight)
                                : eLens == LENS_DSL239 ? rFrame.nWidth
                                                       : rFrame.nHeight);
    const double fOff = std::max(std::fabs(sFound.fCenterX - 0.5 * rFrame.nWidth),
                                 std::fabs(sFound.fCenterY - 0.5 * rFrame.nHeight));
    const double fRadius = std::max(std::fabs(sFound.fRadiusX - fRule), std::fabs(sFound.fRadiusY - fRule));
    if (std::max(fOff, fRadius) <= CONTRADICTION * fRule)
        return;
    rNotes.push_back("lens " + std::to_string(eLens) +
                     " was taken from the size of the picture, but the picture shows a circle at " +
                     Describe(c) + "; --circle auto takes that, --lens MODEL:FIELD another lens");
}

} // namespace

void ReadLens(const std::string& strText, SToolOptions& rOptions)
{
    const std::size_t nColon = strText.find(':');
    if (FindLensName(strText, rOptions.eLens))
        return;
    if (nColon == std::string::npos || std::filesystem::exists(strText))
        ThrowUsage(
            "--lens: '" + strText +
            "' is not known; give auto, 215, 239, 418, 419, ideal, or MODEL:FIELD such as equidistant:200");
    rOptions.oLens = ReadLensModel(strText, nColon);
}

void ReadCircle(const std::string& strText, SToolOptions& rOptions)
{
    rOptions.bFindCircle = strText == "auto";
    if (rOptions.bFindCircle)
        return;
    const std::vector<float> vNumbers =
        ReadNumbers("--circle", strText, 3, 4, MOST_CIRCLE,
                    "CENTREX,CENTREY,RADIUS[,RADIUSY] in input pixels, such as 960,540,530, or auto");
    const float fRadiusY = vNumbers.size() == 4 ? vNumbers[3] : vNumbers[2];
    if (!(vNumbers[2] >= 1.0f && fRadiusY >= 1.0f))
        ThrowUsage("--circle: '" + strText + "': a radius is 1 pixel at least");
    rOptions.oCircle = {vNumbers[0], vNumbers[1], vNumbers[2], fRadiusY};
}

SOrientation ReadOrientation(const std::string& strText)
{
    const std::vector<float> vNumbers = ReadNumbers("--mount-orientation", strText, 3, 3, 360.0f,
                                                    "YAW,PITCH,ROLL in degrees, such as 0,5,-2");
    return {vNumbers[0], vNumbers[1], vNumbers[2]};
}

void ReadSpan(const std::string& strText, SViewShape& rShape)
{
    const char* const pExpected = "HORIZONTAL[,VERTICAL] in degrees, 10 to 360 and 10 to 180, such as 180,60";
    const std::vector<float> vNumbers = ReadNumbers("--span", strText, 1, 2, 360.0f, pExpected);
    rShape.fSpanX = vNumbers[0];
    rShape.fSpanY = vNumbers.size() > 1 ? vNumbers[1] : 0.0f;
    if (rShape.fSpanX < 10.0f || (vNumbers.size() > 1 && (rShape.fSpanY < 10.0f || rShape.fSpanY > 180.0f)))
        ThrowUsage("--span: '" + strText + "' is not " + pExpected);
}

void ReadBand(const std::string& strText, SViewShape& rShape)
{
    const char* const pExpected =
        "UPPER,LOWER in degrees off the optical axis, 5 apart at least and up to 170, such as 110,40";
    const std::vector<float> vNumbers = ReadNumbers("--band", strText, 2, 2, 170.0f, pExpected);
    rShape.fBandUpper = vNumbers[0];
    rShape.fBandLower = vNumbers[1];
    if (rShape.fBandLower < 0.0f || rShape.fBandUpper < rShape.fBandLower + 5.0f)
        ThrowUsage("--band: '" + strText + "' is not " + pExpected);
}

std::vector<std::string> SettleCircle(const SFrame& rFrame, SToolOptions& rOptions)
{
    std::vector<std::string> vNotes;
    SCircle sCircle;
    if (rOptions.bFindCircle) {
        const SFoundCircle sFound = Find(rFrame, sCircle);
        if (sFound.eCertainty == CIRCLE_NONE)
            ThrowFailure("--circle auto: no circle was found" + Because(sFound) +
                         "; give it as --circle CENTREX,CENTREY,RADIUS");
        rOptions.oCircle = sCircle;
        vNotes.push_back("the circle was found at " + Describe(sCircle) +
                         (sFound.eCertainty == CIRCLE_LIKELY ? ", without certainty" + Because(sFound) : ""));
        return vNotes;
    }
    const bool bFrameAlone = rOptions.eView == VIEW_FISHEYE;
    if (rOptions.oCircle || rOptions.oLens || rOptions.eLens != LENS_AUTO || bFrameAlone)
        return vNotes;
    const ELensType eKnown = AutoDetectLensType(rFrame.nWidth, rFrame.nHeight);
    if (eKnown != LENS_UNKNOWN) {
        NoteContradiction(rFrame, eKnown, vNotes);
        return vNotes;
    }
    const SFoundCircle sFound = Find(rFrame, sCircle);
    const std::string strElse = "; --lens and --circle say otherwise";
    if (sFound.eCertainty == CIRCLE_NONE) {
        vNotes.push_back("no known camera's size and no circle found" + Because(sFound) +
                         ": an ideal lens of 180 degrees across the longer side was taken" + strElse);
        return vNotes;
    }
    rOptions.oCircle = sCircle;
    rOptions.oLens = SLens::FromModel(LENS_EQUIDISTANT, 180.0);
    vNotes.push_back("no known camera's size: --lens equidistant:180 --circle " + Describe(sCircle) +
                     " was taken from the picture" +
                     (sFound.eCertainty == CIRCLE_LIKELY ? ", without certainty" : "") + strElse);
    return vNotes;
}
