#include "LensFile.h"

#include "FileIO.h"
#include "ToolError.h"
#include "lens/LensForms.h"
#include "lens/LensKeys.h"
#include "lens/NumberText.h"

#include <charconv>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <system_error>

namespace
{

const std::size_t MOST_BYTES = std::size_t{1} << 20;

using TOrdered = nlohmann::ordered_json;

/// The shortest number that is the same in single precision.
double Shortest(float fValue)
{
    char aText[32];
    double fShortest = 0.0;
    const char* pEnd = std::to_chars(aText, aText + sizeof(aText), fValue).ptr;
    std::from_chars(aText, pEnd, fShortest);
    return fShortest;
}

TOrdered CalibrationTree(const SLensCalibration& c)
{
    const bool bUnified = c.eModel == CALIBRATION_UNIFIED;
    TOrdered oTree;
    oTree["model"] = bUnified ? "unified" : "fisheye";
    if (c.nWidth > 0) {
        oTree["width"] = c.nWidth;
        oTree["height"] = c.nHeight;
    }
    oTree["fx"] = c.fFocalX;
    oTree["fy"] = c.fFocalY;
    oTree["cx"] = c.fCenterX;
    oTree["cy"] = c.fCenterY;
    oTree["skew"] = c.fSkew;
    oTree["k"] = std::vector<double>(std::begin(c.afRadial), std::begin(c.afRadial) + (bUnified ? 2 : 4));
    if (bUnified) {
        oTree["p"] = std::vector<double>(std::begin(c.afTangential), std::end(c.afTangential));
        oTree["xi"] = c.fXi;
    }
    oTree["field"] = c.fField;
    return oTree;
}

TOrdered LensTree(const SLensFile& rFile)
{
    const SLens& rLens = rFile.sLens;
    TOrdered oTree;
    if (!rFile.strName.empty())
        oTree["name"] = rFile.strName;
    if (!rFile.strComment.empty())
        oTree["comment"] = rFile.strComment;
    if (rLens.eKind == LENS_KIND_MODEL) {
        const char* pName = LensModelName(rLens.eModel);
        oTree["model"] = pName != nullptr ? pName : "";
        oTree["field"] = rLens.fField;
    } else if (rLens.eKind == LENS_KIND_TABLE) {
        oTree["table"]["angles"] = rLens.vAngles;
        oTree["table"]["heights"] = rLens.vHeights;
        oTree["table"]["pixel_pitch"] = rLens.fPixelPitch;
    } else {
        oTree["calibration"] = CalibrationTree(rLens.sCalibration);
    }
    if (rFile.oCircle) {
        const SLensCircle& c = *rFile.oCircle;
        oTree["circle"] = {Shortest(c.fCenterX), Shortest(c.fCenterY), Shortest(c.fRadiusX),
                           Shortest(c.fRadiusY)};
    }
    return oTree;
}

/// Groups take a line for each key, lists one line.
std::string Print(const TOrdered& rTree, const std::string& strIndent)
{
    if (!rTree.is_object())
        return rTree.dump(-1, ' ', false, TOrdered::error_handler_t::replace);
    std::string strText = "{\n";
    std::string strEnd;
    for (const auto& rItem : rTree.items()) {
        strText +=
            strEnd + strIndent + "  \"" + rItem.key() + "\": " + Print(rItem.value(), strIndent + "  ");
        strEnd = ",\n";
    }
    return strText + "\n" + strIndent + "}";
}

/// The model and the text behind its colon; false for a text that is no such pair.
bool SplitModel(const std::string& strText, ELensModel& rModel, std::string& strField)
{
    const std::size_t nColon = strText.find(':');
    if (nColon == std::string::npos || !FindLensModel(strText.substr(0, nColon), rModel))
        return false;
    strField = strText.substr(nColon + 1);
    return true;
}

} // namespace

SLensFile ParseLensFile(const std::string& strName, const std::string& strBytes)
{
    const TLensTree oTree = ParseLensTree(strName, strBytes);
    const CLensKeys oKeys(strName, "", oTree);
    SLensFile sFile = IsProgramForm(oKeys) ? ReadProgramForm(oKeys) : ReadOwnForm(oKeys);
    const std::string strFault = FindLensFault(sFile.sLens);
    if (!strFault.empty())
        ThrowFailure(strName + ": nothing can be drawn with this lens: " + strFault);
    return sFile;
}

SLensFile ReadLensFile(const std::string& strPath)
{
    const std::vector<unsigned char> vBytes = ReadFile(strPath, MOST_BYTES);
    return ParseLensFile(strPath, std::string(vBytes.begin(), vBytes.end()));
}

SLensFile ReadLensArgument(const std::string& strText)
{
    ELensModel eModel = LENS_EQUIDISTANT;
    std::string strField;
    if (!SplitModel(strText, eModel, strField)) {
        std::error_code oError;
        if (strText.find(':') != std::string::npos && !std::filesystem::exists(strText, oError))
            ThrowUsage("'" + strText +
                       "': is neither a file nor MODEL:FIELD with equidistant, equisolid, "
                       "stereographic, orthographic or rectilinear");
        return ReadLensFile(strText);
    }
    double fField = 0.0;
    const double fMost = MostLensField(eModel);
    if (!ReadNumber(strField, fField) || !(fField >= 1.0 && fField <= fMost))
        ThrowUsage("'" + strText + "': '" + strField + "' is not a field from 1 to " + NumberText(fMost) +
                   " (degrees across)");
    SLensFile sFile;
    sFile.sLens = SLens::FromModel(eModel, fField);
    return sFile;
}

std::string FormatLensFile(const SLensFile& rFile)
{
    return Print(LensTree(rFile), "") + "\n";
}
