#include "lens/LensReport.h"

#include "lens/NumberText.h"

#include <cmath>
#include <numbers>

namespace
{

const double DEGREES = 180.0 / std::numbers::pi;

std::string Line(const char* pName, const std::string& strText)
{
    std::string strName = pName;
    strName.resize(16, ' ');
    return "  " + strName + strText + "\n";
}

std::string FocalText(const SLensFile& rFile, const SLensSurvey& rSurvey)
{
    const double fPart = SurveySlope(rFile, rSurvey, 0.0) * DEGREES;
    std::string strText = FixedText(fPart, 4) + " of the height at the edge";
    if (rSurvey.fMillimetres > 0.0)
        strText = FixedText(fPart * rSurvey.fMillimetres, 3) + " mm, " + strText;
    if (rSurvey.fPixels > 0.0)
        strText = FixedText(fPart * rSurvey.fPixels, 1) + " pixels, " + strText;
    return strText + " (in the middle)";
}

std::string Head(const std::string& strName, const SLensFile& rFile, const SLensSurvey& rSurvey)
{
    const std::string strTitle = LensTitle(rFile.sLens);
    std::string strText = strTitle.starts_with(strName + ",") ? "" : OneLine(strName) + ": ";
    strText += strTitle + "\n";
    if (!rFile.strName.empty())
        strText += Line("name", OneLine(rFile.strName));
    if (!rFile.strComment.empty())
        strText += Line("comment", OneLine(rFile.strComment));
    strText += Line("field", FixedText(2.0 * rSurvey.fEdge, 1) + " degrees across, up to " +
                                 FixedText(rSurvey.fEdge, 1) + " off the axis");
    strText += Line("focal length", FocalText(rFile, rSurvey));
    if (rFile.oCircle) {
        const SLensCircle& c = *rFile.oCircle;
        const auto Text = [](float f) { return FixedText(static_cast<double>(f), 1); };
        strText += Line(
            "circle", "around " + Text(c.fCenterX) + "," + Text(c.fCenterY) + ", radius " + Text(c.fRadiusX) +
                          (c.fRadiusX == c.fRadiusY ? "" : " and down " + Text(c.fRadiusY)) + " (pixels)");
    }
    if (rSurvey.fFrameAcross > 0.0)
        strText += Line("in the frame", FixedText(rSurvey.fFrameAcross, 1) + " degrees from left to right, " +
                                            FixedText(rSurvey.fFrameDown, 1) + " from top to bottom");
    const bool bFlat = SurveySlope(rFile, rSurvey, rSurvey.fEdge) < 0.05 * SurveySlope(rFile, rSurvey, 0.0);
    if (rFile.sLens.eKind == LENS_KIND_CALIBRATION && bFlat)
        strText += Line("note", "its heights hardly rise at " + FixedText(rSurvey.fEdge, 1) +
                                    " degrees; a field below that would leave out what it does not describe");
    return strText;
}

std::string CurveRow(const SLensFile& rFile, const SLensSurvey& rSurvey, double fAngle)
{
    const double fHeight = SurveyHeight(rFile, rSurvey, fAngle);
    const double fSlope = SurveySlope(rFile, rSurvey, fAngle);
    const bool bPixels = rSurvey.fPixels > 0.0;
    std::string strRow = Padded(FixedText(fAngle, fAngle == std::floor(fAngle) ? 0 : 1), 7);
    strRow += Padded(FixedText(fHeight, 4), 9);
    if (bPixels)
        strRow += Padded(FixedText(fHeight * rSurvey.fPixels, 1), 9);
    strRow += Padded(bPixels ? FixedText(fSlope * rSurvey.fPixels, 2) : FixedText(100.0 * fSlope, 3) + " %",
                     bPixels ? 15 : 12);
    strRow += Padded(FixedText(100.0 * fSlope / SurveySlope(rFile, rSurvey, 0.0), 0) + " %", 15);
    return strRow + "\n";
}

/// Heights, and how finely the lens draws: along a radius, per degree and beside the middle of the picture.
std::string Curve(const SLensFile& rFile, const SLensSurvey& rSurvey)
{
    std::string strText = rSurvey.fPixels > 0.0 ? "  angle   height   pixels  pixels/degree  of the middle\n"
                                                : "  angle   height  per degree  of the middle\n";
    for (int nAngle = 0; nAngle < rSurvey.fEdge - 0.05; nAngle += 5)
        strText += CurveRow(rFile, rSurvey, nAngle);
    return strText + CurveRow(rFile, rSurvey, rSurvey.fEdge);
}

std::string Models(const SLensSurvey& rSurvey)
{
    const SModelComparison& rNearest = NearestModel(rSurvey);
    std::string strText =
        "  Ideal lenses of this field, and by how much of the edge's height this one differs:\n";
    for (const SModelComparison& rModel : rSurvey.vModels) {
        std::string strName = LensModelName(rModel.eModel);
        strName.resize(14, ' ');
        strText += "  " + strName;
        if (!rModel.bPossible) {
            strText += "  cannot show it\n";
            continue;
        }
        const bool bSame = std::fabs(rModel.fDifference) < 5e-6;
        strText += bSame ? "  the same"
                         : Padded(FixedText(100.0 * rModel.fDifference, 2), 7) + " % at " +
                               FixedText(rModel.fAngle, 0) + " degrees";
        if (!bSame && rSurvey.fPixels > 0.0)
            strText += " (" + FixedText(rModel.fDifference * rSurvey.fPixels, 1) + " pixels)";
        strText += &rModel == &rNearest ? "  <- nearest\n" : "\n";
    }
    return strText;
}

} // namespace

std::string LensTitle(const SLens& rLens)
{
    if (rLens.eKind == LENS_KIND_MODEL)
        return std::string(LensModelName(rLens.eModel)) + ":" + NumberText(rLens.fField) + ", an ideal lens";
    if (rLens.eKind == LENS_KIND_TABLE)
        return "a table of " + std::to_string(rLens.vAngles.size()) + " rows" +
               (rLens.fPixelPitch > 0.0 ? ", pixels of " + NumberText(rLens.fPixelPitch) + " mm" : "");
    const SLensCalibration& c = rLens.sCalibration;
    return std::string("a calibration, ") + (c.eModel == CALIBRATION_UNIFIED ? "unified" : "fisheye") +
           " model" +
           (c.nWidth > 0 ? ", of frames of " + std::to_string(c.nWidth) + "x" + std::to_string(c.nHeight)
                         : "");
}

std::string Padded(const std::string& strText, std::size_t nWidth)
{
    return strText.size() < nWidth ? std::string(nWidth - strText.size(), ' ') + strText : " " + strText;
}

std::string OneLine(std::string strText)
{
    for (char& rChar : strText)
        if (static_cast<unsigned char>(rChar) < 32 || static_cast<unsigned char>(rChar) == 127)
            rChar = ' ';
    return strText;
}

std::string ReportLens(const std::string& strName, const SLensFile& rFile, const SLensSurvey& rSurvey)
{
    return Head(strName, rFile, rSurvey) + "\n" + Curve(rFile, rSurvey) + "\n" + Models(rSurvey);
}
