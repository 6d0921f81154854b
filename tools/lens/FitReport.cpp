#include "lens/FitReport.h"

#include "lens/LensReport.h"
#include "lens/NumberText.h"

#include <cstddef>

namespace
{

std::string Head(const SFitData& rData, const SFitSetup& rSetup)
{
    std::size_t nPlaces = 0;
    for (const SFitLine& rLine : rData.vLines)
        nPlaces += rLine.vPlaces.size();
    std::string strText;
    if (!rData.vPoints.empty())
        strText = std::to_string(rData.vPoints.size()) + " points";
    if (!rData.vLines.empty())
        strText += (strText.empty() ? "" : ", ") + std::to_string(rData.vLines.size()) + " lines of " +
                   std::to_string(nPlaces) + " points";
    const SLensCircle sCircle = rSetup.Circle();
    return strText + "; the field is that of a circle of radius " +
           FixedText(static_cast<double>(sCircle.fRadiusX), 1) + "\n";
}

std::string FitRow(const SLensFit& rFit, bool bChosen)
{
    std::string strRow = FitModelName(rFit.sModel);
    strRow.resize(14, ' ');
    strRow = "  " + strRow;
    if (!rFit.strReason.empty())
        return strRow + "  " + rFit.strReason + "\n";
    strRow += Padded(FixedText(rFit.fField, 2), 8) + " +- " + FixedText(rFit.fFieldDoubt, 2);
    strRow += Padded(FixedText(rFit.fFocal, 2), 10);
    strRow += Padded(FixedText(rFit.fCenterX, 2), 10) + "," + Padded(FixedText(rFit.fCenterY, 2), 8);
    strRow += Padded(FixedText(rFit.fRMS, 3), 9) + Padded(FixedText(rFit.fLargest, 2), 9);
    return strRow + (bChosen ? "  <- chosen" : "") + "\n";
}

std::string Remark(const std::string& strText)
{
    return "  note: " + strText + "\n";
}

std::string Remarks(const SFitData& rData, const SFitSetup& rSetup, const SLensFit& rChosen)
{
    std::string strText;
    const double fRadius = static_cast<double>(rSetup.Circle().fRadiusX);
    if (rChosen.bCenterFitted && rChosen.fCenterDoubt > 0.01 * fRadius)
        strText += Remark("the centre is known to " + FixedText(rChosen.fCenterDoubt, 0) +
                          " pixels only; measure on all sides of it, or give --keep-center");
    if (rChosen.fReach < 0.8 * fRadius)
        strText += Remark("the measurements reach to " + FixedText(100.0 * rChosen.fReach / fRadius, 0) +
                          " % of the radius; beyond them the lens may be another");
    if (rData.vPoints.empty())
        strText +=
            Remark("lines tell the field well, and the curve between centre and edge less; a few --points "
                   "would tell it");
    if (rChosen.fRMS > 3.0)
        strText += Remark("no model is near: look for places that were picked wrongly");
    return strText;
}

} // namespace

std::string ReportFits(const SFitData& rData, const SFitSetup& rSetup, const std::vector<SLensFit>& vFits,
                       const SLensFit& rChosen)
{
    std::string strText = Head(rData, rSetup);
    strText +=
        "\n  model               field          focal       centre               rms  largest  (degrees, "
        "pixels)\n";
    for (const SLensFit& rFit : vFits)
        strText += FitRow(rFit, &rFit == &rChosen);
    const std::string strRemarks = Remarks(rData, rSetup, rChosen);
    return strText + (strRemarks.empty() ? "" : "\n") + strRemarks;
}
