#include "lens/LensForms.h"
#include "lens/LensKeys.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace
{

using TNames = std::vector<std::string>;

const TNames MATRIX_NAMES = {"K", "camera_matrix", "cameraMatrix"};
const TNames COEFFICIENT_NAMES = {"D", "distortion_coefficients", "distCoeffs", "dist_coeffs"};

/// The first of the names that a file has; empty: none.
std::string FindName(const CLensKeys& rKeys, const TNames& vNames)
{
    const auto it = std::find_if(vNames.begin(), vNames.end(),
                                 [&rKeys](const std::string& strName) { return rKeys.Has(strName); });
    return it == vNames.end() ? std::string() : *it;
}

std::string NeededName(const CLensKeys& rKeys, const TNames& vNames, const char* pWhat)
{
    std::string strName = FindName(rKeys, vNames);
    if (!strName.empty())
        return strName;
    std::string strNames;
    for (const std::string& strOther : vNames)
        strNames += (&strOther == &vNames.front()  ? ""
                     : &strOther == &vNames.back() ? " or "
                                                   : ", ") +
                    strOther;
    rKeys.RefuseAll(std::string(pWhat) + " is missing; it is expected under " + strNames);
}

/// Numbers of a matrix: rows, cols and data below its key, or a bare list.
std::vector<double> ReadMatrix(const CLensKeys& rKeys, const std::string& strName, std::size_t nLeast,
                               std::size_t nMost)
{
    if (rKeys.IsList(strName))
        return rKeys.Numbers(strName, nLeast, nMost);
    const CLensKeys oMatrix = rKeys.Group(strName);
    std::vector<double> vNumbers = oMatrix.Numbers("data", nLeast, nMost);
    const int nRows = oMatrix.Whole("rows", 1, 1000, "rows");
    const int nCols = oMatrix.Whole("cols", 1, 1000, "columns");
    if (static_cast<std::size_t>(nRows) * static_cast<std::size_t>(nCols) != vNumbers.size())
        oMatrix.RefuseAll("data has " + std::to_string(vNumbers.size()) + " numbers for " +
                          std::to_string(nRows) + " rows of " + std::to_string(nCols));
    return vNumbers;
}

void ReadCameraMatrix(const CLensKeys& rKeys, SLensCalibration& rCalibration)
{
    const std::string strName = NeededName(rKeys, MATRIX_NAMES, "the camera matrix");
    const std::vector<double> k = ReadMatrix(rKeys, strName, 9, 9);
    if (k[3] != 0.0 || k[6] != 0.0 || k[7] != 0.0 || k[8] != 1.0)
        rKeys.Refuse(strName, "a camera matrix, whose rows are fx skew cx, 0 fy cy, 0 0 1");
    rCalibration.fFocalX = k[0];
    rCalibration.fSkew = k[1];
    rCalibration.fCenterX = k[2];
    rCalibration.fFocalY = k[4];
    rCalibration.fCenterY = k[5];
}

void ReadFrameSize(const CLensKeys& rKeys, SLensCalibration& rCalibration)
{
    const int nMost = 1000000;
    if (rKeys.Has("image_size")) {
        const std::vector<double> vSides = ReadMatrix(rKeys, "image_size", 2, 2);
        for (const double fSide : vSides)
            if (!(fSide >= 1.0 && fSide <= nMost) || fSide != static_cast<int>(fSide))
                rKeys.Refuse("image_size", "a width and a height in pixels");
        rCalibration.nWidth = static_cast<int>(vSides[0]);
        rCalibration.nHeight = static_cast<int>(vSides[1]);
    } else if (rKeys.Has("image_width") || rKeys.Has("image_height")) {
        rCalibration.nWidth = rKeys.Whole("image_width", 1, nMost, "pixels");
        rCalibration.nHeight = rKeys.Whole("image_height", 1, nMost, "pixels");
    }
}

[[noreturn]] void RefusePinhole(const CLensKeys& rKeys, const std::string& strWhat)
{
    rKeys.RefuseAll(strWhat +
                    " of a pinhole camera, whose rays end before 90 degrees off the axis; calibrate "
                    "with a fisheye model, which gives 4 coefficients, or with the unified one, which "
                    "gives xi as well");
}

/// Programs that know several models name theirs in one of these ways.
void RefuseOtherModels(const CLensKeys& rKeys)
{
    if (rKeys.Has("fisheye_model") && rKeys.NumberOr("fisheye_model", 0.0, 0.0, 1.0, "0 or 1") == 0.0 &&
        !rKeys.Has("xi"))
        RefusePinhole(rKeys, "fisheye_model is 0, so these are coefficients");
    if (!rKeys.Has("distortion_model"))
        return;
    const char* pKnown = "fisheye, equidistant or omnidir";
    const std::string strModel = rKeys.Text("distortion_model", pKnown);
    if (strModel == "plumb_bob" || strModel == "rational_polynomial")
        RefusePinhole(rKeys, "distortion_model: '" + strModel + "' is the one");
    if (strModel != "fisheye" && strModel != "equidistant" && strModel != "omnidir")
        rKeys.Refuse("distortion_model", pKnown);
}

double ReadXi(const CLensKeys& rKeys)
{
    const double fXi = rKeys.IsNumber("xi") ? rKeys.Number("xi", 0.0, 1000.0, "radii of the unit sphere")
                                            : ReadMatrix(rKeys, "xi", 1, 1)[0];
    if (!(fXi >= 0.0 && fXi <= 1000.0))
        rKeys.Refuse("xi", "a number from 0 to 1000 (radii of the unit sphere)");
    return fXi;
}

void ReadCoefficients(const CLensKeys& rKeys, SLensCalibration& rCalibration)
{
    RefuseOtherModels(rKeys);
    const std::string strName = NeededName(rKeys, COEFFICIENT_NAMES, "the list of coefficients");
    const std::vector<double> vFound = ReadMatrix(rKeys, strName, 1, 14);
    const std::string strCount = strName + ": " + std::to_string(vFound.size());
    const bool bFisheye = rKeys.Has("fisheye_model") || rKeys.Has("distortion_model");
    if (vFound.size() > 4 && !bFisheye && !rKeys.Has("xi"))
        RefusePinhole(rKeys, strCount + " coefficients are those");
    if (vFound.size() != 4)
        rKeys.RefuseAll(strCount + " coefficients are none of a fisheye lens, which has 4");
    if (!rKeys.Has("xi")) {
        std::copy(vFound.begin(), vFound.end(), std::begin(rCalibration.afRadial));
        return;
    }
    rCalibration.eModel = CALIBRATION_UNIFIED;
    rCalibration.fXi = ReadXi(rKeys);
    std::copy(vFound.begin(), vFound.begin() + 2, std::begin(rCalibration.afRadial));
    std::copy(vFound.begin() + 2, vFound.end(), std::begin(rCalibration.afTangential));
}

} // namespace

bool IsProgramForm(const CLensKeys& rKeys)
{
    return !FindName(rKeys, MATRIX_NAMES).empty();
}

SLensFile ReadProgramForm(const CLensKeys& rKeys)
{
    SLensCalibration sCalibration;
    ReadCameraMatrix(rKeys, sCalibration);
    ReadFrameSize(rKeys, sCalibration);
    ReadCoefficients(rKeys, sCalibration);
    SLensFile sFile;
    sFile.sLens = SLens::FromCalibration(sCalibration);
    return sFile;
}
