#include "bench/accuracy/Report.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <map>

namespace
{

__attribute__((format(printf, 1, 2))) std::string Format(const char* pFormat, ...)
{
    char szText[400];
    va_list pArguments;
    va_start(pArguments, pFormat);
    std::vsnprintf(szText, sizeof szText, pFormat, pArguments);
    va_end(pArguments);
    return szText;
}

std::string CaseName(const SAccuracyCase& sCase)
{
    return sCase.strView + ", " + sCase.strMount;
}

std::string SpreadText(const SSpread& s)
{
    return Format("%6.3f %6.3f %6.2f", s.fMean, s.fMost, s.fMax);
}

std::string CaseRow(const SCaseResult& sResult)
{
    const SPlaceResult& s = sResult.sPlaces;
    return Format("| %-34s | %s | %s | %s | %s | %s | %5.1f | %5.1f |\n", CaseName(sResult.sCase).c_str(),
                  SpreadText(s.sOptics).c_str(), SpreadText(s.sRule).c_str(), SpreadText(s.sDrawn).c_str(),
                  SpreadText(s.sMesh).c_str(), SpreadText(s.sDriver).c_str(), sResult.sPicture.fView,
                  sResult.sPicture.fRemap);
}

const char* const CASE_HEAD = "| view, mount                        |   drawn from optics  |    rule from "
                              "optics  |     drawn from rule  |"
                              "      mesh from rule  |     drawn from mesh  |  PSNR | exact |\n"
                              "|------------------------------------|---------------------:|-----------------"
                              "----:|---------------------:|"
                              "---------------------:|---------------------:|------:|------:|\n";

/// Means of means, the largest of the others.
struct SSummary
{
    SSpread sOptics;
    SSpread sDrawn;
    SSpread sMesh;
    SSpread sDriver;
    double fLeast = 99.0;     ///< PSNR
    double fFarthest = -99.0; ///< below the exact remap
    int nCases = 0;

    static void Take(SSpread& sInto, const SSpread& sFrom)
    {
        sInto.fMean += sFrom.fMean;
        sInto.fMost = std::max(sInto.fMost, sFrom.fMost);
        sInto.fMax = std::max(sInto.fMax, sFrom.fMax);
    }
    void Add(const SCaseResult& sResult)
    {
        Take(sOptics, sResult.sPlaces.sOptics);
        Take(sDrawn, sResult.sPlaces.sDrawn);
        Take(sMesh, sResult.sPlaces.sMesh);
        Take(sDriver, sResult.sPlaces.sDriver);
        fLeast = std::min(fLeast, sResult.sPicture.fView);
        fFarthest = std::max(fFarthest, sResult.sPicture.fRemap - sResult.sPicture.fView);
        ++nCases;
    }
    std::string Row(const std::string& strName) const
    {
        std::string strRow = Format("| %-26s |", strName.c_str());
        for (SSpread s : {sOptics, sDrawn, sMesh, sDriver}) {
            s.fMean /= nCases;
            strRow.append(" ").append(SpreadText(s)).append(" |");
        }
        return strRow + Format(" %5.1f | %5.1f |\n", fLeast, fFarthest);
    }
};

std::string SummaryTable(const SAccuracyReport& sReport)
{
    std::vector<std::string> vOrder;
    std::map<std::string, SSummary> mSummaries;
    for (const SCaseResult& sResult : sReport.vCases) {
        const std::string& strView = sResult.sCase.strView;
        if (mSummaries.count(strView) == 0)
            vOrder.push_back(strView);
        mSummaries[strView].Add(sResult);
    }
    std::string strText =
        "| view, all mounts and lenses |    drawn from optics |      drawn from rule |       mesh from rule |"
        "      drawn from mesh | least PSNR | most below exact |\n"
        "|----------------------------|---------------------:|---------------------:|---------------------:|"
        "---------------------:|------:|------:|\n";
    for (const std::string& strView : vOrder)
        strText += mSummaries[strView].Row(strView);
    return strText;
}

std::string ColourText(const SColourSpread& s, bool bShare)
{
    return Format("%5.2f %5.2f", s.fMean, s.fMax) + (bShare ? Format(" %6.4f %%", s.fBeyond2 * 100.0) : "");
}

std::string ColourTable(const std::vector<SColourResult>& vColours)
{
    std::string strText = "| layout  | space         | range   |     nearest |        linear, chance |       "
                          "   linear, room |\n"
                          "|---------|---------------|---------|------------:|----------------------:|-------"
                          "---------------:|\n";
    for (const SColourResult& s : vColours)
        strText += Format("| %-7s | %-13s | %-7s | %s | %s | %s |%s\n", s.strLayout.c_str(),
                          s.strSpace.c_str(), s.strRange.c_str(), ColourText(s.sNearest, false).c_str(),
                          ColourText(s.sLinear, true).c_str(), ColourText(s.sLinearScene, true).c_str(),
                          s.IsGood() ? "" : " LIMIT BROKEN");
    return strText;
}

std::string SpreadJSON(const char* pName, const SSpread& s)
{
    return Format("\"%s\": {\"mean\": %.4f, \"p999\": %.4f, \"max\": %.4f}", pName, s.fMean, s.fMost, s.fMax);
}

std::string ColourJSON(const char* pName, const SColourSpread& s)
{
    return Format("\"%s\": {\"mean\": %.4f, \"max\": %.4f, \"beyond_2\": %.6f}", pName, s.fMean, s.fMax,
                  s.fBeyond2);
}

/// Elements of an array, one a line.
std::string ArrayJSON(const std::vector<std::string>& vElements)
{
    std::string strText = "[";
    for (std::size_t i = 0; i < vElements.size(); ++i)
        strText.append(i == 0 ? "\n    " : ",\n    ").append(vElements[i]);
    return strText + "\n  ]";
}

bool EndsByRows(const SReferenceSetup& s)
{
    const bool bCamera = s.eView == VIEW_VCAM || s.eView == VIEW_VCAM_QUAD;
    return !bCamera && (s.nLensType == 215 || s.nLensType == 239);
}

} // namespace

std::string SCaseResult::Broken() const
{
    const SPlaceLimits& sLimits = sCase.sLimits;
    std::string strText;
    if (sPlaces.nPixels * 5 < sCase.sSetup.nTargetWidth * sCase.sSetup.nTargetHeight)
        strText += " too few pixels drawn;";
    // Strips of lenses whose circle leaves the frame end where their rule leaves it, which is not where the
    // optics do.
    const bool bOtherEnd = sLimits.bOpticsOnly && EndsByRows(sCase.sSetup);
    if (sPlaces.nWronglyDrawn > sPlaces.nPixels / 1000 && !bOtherEnd)
        strText += Format(" %d pixels drawn or not drawn wrongly;", sPlaces.nWronglyDrawn);
    if (sLimits.bOpticsOnly)
        return strText.append(BrokenOptics());
    if (sPlaces.sDrawn.fMean > sLimits.fMean)
        strText += Format(" drawn from rule: mean above %.3f;", sLimits.fMean);
    if (sPlaces.sDrawn.fMost > sLimits.fMost)
        strText += Format(" drawn from rule: 99.9 %% above %.2f;", sLimits.fMost);
    if (sPlaces.sDriver.fMax > sLimits.fDriver)
        strText += Format(" drawn from mesh: above %.2f;", sLimits.fDriver);
    if (sPicture.fView < sPicture.fRemap - sLimits.fDecibel)
        strText += Format(" picture: more than %.1f dB below an exact remap;", sLimits.fDecibel);
    return strText;
}

/// A hundredth of a pixel, and what the measurement itself leaves.
std::string SCaseResult::BrokenOptics() const
{
    std::string strText;
    if (sPlaces.sOptics.fMean > 0.012)
        strText += Format(" drawn from optics: mean above %.3f;", 0.012);
    if (sPlaces.sOptics.fMost > 0.025)
        strText += Format(" drawn from optics: 99.9 %% above %.3f;", 0.025);
    if (sPicture.fView < sPicture.fRemap - 0.3 && !EndsByRows(sCase.sSetup))
        strText += Format(" picture: more than %.1f dB below an exact remap;", 0.3);
    return strText;
}

std::string TablesText(const SAccuracyReport& sReport)
{
    std::string strText = "Driver: " + sReport.strDriver + "\n";
    if (!sReport.vCases.empty())
        strText += "\nDisplacements in input pixels (mean, 99.9 %, largest), PSNR in dB.\n\n" +
                   SummaryTable(sReport);
    int nLens = -1;
    for (const SCaseResult& sResult : sReport.vCases) {
        const SReferenceSetup& s = sResult.sCase.sSetup;
        if (s.nLensType != nLens) {
            nLens = s.nLensType;
            strText += Format("\n### Lens %s, %dx%d to %dx%d\n\n", LensName(nLens).c_str(), s.nImageWidth,
                              s.nImageHeight, s.nTargetWidth, s.nTargetHeight);
            strText += CASE_HEAD;
        }
        strText += CaseRow(sResult);
    }
    if (!sReport.vColours.empty())
        strText += "\n### Colours: mean, largest, share above 2 (255ths)\n\n" + ColourTable(sReport.vColours);
    return strText;
}

std::string JSONText(const SAccuracyReport& sReport)
{
    std::vector<std::string> vCases;
    for (const SCaseResult& sResult : sReport.vCases) {
        const SReferenceSetup& s = sResult.sCase.sSetup;
        const SPlaceResult& sPlaces = sResult.sPlaces;
        std::string strCase = Format(
            "{\"view\": \"%s\", \"mount\": \"%s\", \"lens\": %d, \"input\": [%d, %d], \"target\": [%d, %d], "
            "\"pixels\": %d, \"wrongly_drawn\": %d, ",
            sResult.sCase.strView.c_str(), sResult.sCase.strMount.c_str(), s.nLensType, s.nImageWidth,
            s.nImageHeight, s.nTargetWidth, s.nTargetHeight, sPlaces.nPixels, sPlaces.nWronglyDrawn);
        strCase += SpreadJSON("drawn_from_optics", sPlaces.sOptics) + ", ";
        strCase += SpreadJSON("rule_from_optics", sPlaces.sRule) + ", ";
        strCase += SpreadJSON("drawn_from_rule", sPlaces.sDrawn) + ", ";
        strCase += SpreadJSON("mesh_from_rule", sPlaces.sMesh) + ", ";
        strCase += SpreadJSON("drawn_from_mesh", sPlaces.sDriver) + ", ";
        strCase += Format("\"psnr\": %.2f, \"psnr_exact_remap\": %.2f, \"good\": %s}", sResult.sPicture.fView,
                          sResult.sPicture.fRemap, sResult.Broken().empty() ? "true" : "false");
        vCases.push_back(strCase);
    }
    std::vector<std::string> vColours;
    for (const SColourResult& s : sReport.vColours) {
        std::string strColour = Format("{\"layout\": \"%s\", \"space\": \"%s\", \"range\": \"%s\", ",
                                       s.strLayout.c_str(), s.strSpace.c_str(), s.strRange.c_str());
        strColour += ColourJSON("nearest", s.sNearest) + ", " + ColourJSON("linear_chance", s.sLinear) + ", ";
        strColour += ColourJSON("linear_room", s.sLinearScene);
        vColours.push_back(strColour + (s.IsGood() ? ", \"good\": true}" : ", \"good\": false}"));
    }
    return "{\n  \"driver\": \"" + sReport.strDriver + "\",\n  \"cases\": " + ArrayJSON(vCases) +
           ",\n  \"colours\": " + ArrayJSON(vColours) + "\n}\n";
}
