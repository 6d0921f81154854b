#include "lens/LensForms.h"

#include "lens/LensKeys.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace
{

const double MOST_PIXELS = 1e6;

SLens ReadModel(const CLensKeys& rKeys)
{
    const char* pNames = "equidistant, equisolid, stereographic, orthographic or rectilinear";
    ELensModel eModel = LENS_EQUIDISTANT;
    if (!FindLensModel(rKeys.Text("model", pNames), eModel))
        rKeys.Refuse("model", pNames);
    return SLens::FromModel(eModel, rKeys.Number("field", 1.0, MostLensField(eModel), "degrees across"));
}

SLens ReadTable(const CLensKeys& rKeys)
{
    rKeys.RefuseOthers({"angles", "heights", "pixel_pitch"});
    std::vector<double> vAngles = rKeys.Numbers("angles", 2, 4096);
    std::vector<double> vHeights = rKeys.Numbers("heights", vAngles.size(), vAngles.size());
    return SLens::FromTable(std::move(vAngles), std::move(vHeights),
                            rKeys.NumberOr("pixel_pitch", 0.0, 0.0, 1000.0, "millimetres"));
}

void ReadDistortion(const CLensKeys& rKeys, SLensCalibration& rCalibration)
{
    const bool bUnified = rCalibration.eModel == CALIBRATION_UNIFIED;
    if (rKeys.Has("k")) {
        const std::vector<double> vRadial = rKeys.Numbers("k", 0, bUnified ? 2 : 4);
        std::copy(vRadial.begin(), vRadial.end(), std::begin(rCalibration.afRadial));
    }
    if (!bUnified) {
        if (rKeys.Has("xi") || rKeys.Has("p"))
            rKeys.RefuseAll("xi and p belong to a calibration whose model is unified; leave them out");
        return;
    }
    if (rKeys.Has("p")) {
        const std::vector<double> vTangential = rKeys.Numbers("p", 2, 2);
        std::copy(vTangential.begin(), vTangential.end(), std::begin(rCalibration.afTangential));
    }
    rCalibration.fXi = rKeys.Number("xi", 0.0, 1000.0, "radii of the unit sphere");
}

SLens ReadCalibration(const CLensKeys& rKeys)
{
    rKeys.RefuseOthers({"model", "width", "height", "fx", "fy", "cx", "cy", "skew", "k", "p", "xi", "field"});
    SLensCalibration sCalibration;
    const std::string strModel = rKeys.Text("model", "fisheye or unified");
    if (strModel != "fisheye" && strModel != "unified")
        rKeys.Refuse("model", "fisheye or unified");
    sCalibration.eModel = strModel == "unified" ? CALIBRATION_UNIFIED : CALIBRATION_FISHEYE;
    if (rKeys.Has("width") || rKeys.Has("height")) {
        sCalibration.nWidth = rKeys.Whole("width", 1, 1000000, "pixels");
        sCalibration.nHeight = rKeys.Whole("height", 1, 1000000, "pixels");
    }
    sCalibration.fFocalX = rKeys.Number("fx", 0.01, MOST_PIXELS, "pixels");
    sCalibration.fFocalY = rKeys.Number("fy", 0.01, MOST_PIXELS, "pixels");
    sCalibration.fCenterX = rKeys.Number("cx", -MOST_PIXELS, MOST_PIXELS, "pixels");
    sCalibration.fCenterY = rKeys.Number("cy", -MOST_PIXELS, MOST_PIXELS, "pixels");
    sCalibration.fSkew = rKeys.NumberOr("skew", 0.0, -MOST_PIXELS, MOST_PIXELS, "pixels");
    sCalibration.fField = rKeys.NumberOr("field", 0.0, 0.0, 360.0, "degrees across; 0: all");
    ReadDistortion(rKeys, sCalibration);
    return SLens::FromCalibration(sCalibration);
}

SLensCircle ReadCircle(const CLensKeys& rKeys)
{
    const std::vector<double> vNumbers = rKeys.Numbers("circle", 3, 4);
    const SLensCircle sCircle = {static_cast<float>(vNumbers[0]), static_cast<float>(vNumbers[1]),
                                 static_cast<float>(vNumbers[2]), static_cast<float>(vNumbers.back())};
    const float fMost = static_cast<float>(MOST_PIXELS);
    const auto IsPlace = [fMost](float f) { return f >= -fMost && f <= fMost; };
    const auto IsRadius = [fMost](float f) { return f >= 0.5f && f <= fMost; };
    if (!IsPlace(sCircle.fCenterX) || !IsPlace(sCircle.fCenterY) || !IsRadius(sCircle.fRadiusX) ||
        !IsRadius(sCircle.fRadiusY))
        rKeys.Refuse("circle", "[centre x, centre y, radius x, radius y] in frame pixels, radii from 0.5 on");
    return sCircle;
}

SLens ReadDescription(const CLensKeys& rKeys)
{
    const bool bModel = rKeys.Has("model");
    const bool bTable = rKeys.Has("table");
    const bool bCalibration = rKeys.Has("calibration");
    if (bModel + bTable + bCalibration != 1)
        rKeys.RefuseAll("one of model, table and calibration is needed, and not two of them");
    if (rKeys.Has("field") && !bModel)
        rKeys.RefuseAll("field stands beside a model only; a calibration has its own");
    if (bModel)
        return ReadModel(rKeys);
    return bTable ? ReadTable(rKeys.Group("table")) : ReadCalibration(rKeys.Group("calibration"));
}

} // namespace

SLensFile ReadOwnForm(const CLensKeys& rKeys)
{
    rKeys.RefuseOthers({"model", "field", "table", "calibration", "circle", "name", "comment"});
    SLensFile sFile;
    sFile.sLens = ReadDescription(rKeys);
    if (rKeys.Has("circle"))
        sFile.oCircle = ReadCircle(rKeys);
    if (rKeys.Has("name"))
        sFile.strName = rKeys.Text("name", "a text");
    if (rKeys.Has("comment"))
        sFile.strComment = rKeys.Text("comment", "a text");
    return sFile;
}
