#include "dewarp/lenses/SLens.h"

#include "dewarp/lenses/RadialCurve.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <numbers>
#include <utility>

static const double DEGREES = 180.0 / std::numbers::pi;
static const std::size_t MOST_ROWS = 4096;
static const double MOST_TABLE_ANGLE = 179.0;
/// Pixels; also the ratio of a height to the pixels under it.
static const double MOST_PIXELS = 1e6;
/// Rows nearer than this cannot be told apart in the arithmetic that follows.
static const double LEAST_STEP = 1e-9;

namespace
{

struct SModelName
{
    ELensModel eModel;
    const char* pName;
    double fMostField;
};

constexpr SModelName MODELS[] = {
    {LENS_EQUIDISTANT, "equidistant", 280.0},     {LENS_EQUISOLID, "equisolid", 280.0},
    {LENS_STEREOGRAPHIC, "stereographic", 280.0}, {LENS_ORTHOGRAPHIC, "orthographic", 180.0},
    {LENS_RECTILINEAR, "rectilinear", 178.0},
};

const SModelName* NameOf(ELensModel eModel)
{
    for (const SModelName& rModel : MODELS) {
        if (rModel.eModel == eModel)
            return &rModel;
    }
    return nullptr;
}

bool AreFinite(std::initializer_list<double> vValues)
{
    return std::all_of(vValues.begin(), vValues.end(), [](double f) { return std::isfinite(f); });
}

/// What is wrong with angles or heights alone.
std::string FindRowFault(const std::vector<double>& vRows, const char* pName)
{
    if (vRows[0] != 0.0)
        return std::string(pName) + " do not start at 0";
    for (std::size_t n = 1; n < vRows.size(); ++n) {
        if (!std::isfinite(vRows[n]))
            return std::string(pName) + " are not finite at row " + std::to_string(n);
        if (!(vRows[n] - vRows[n - 1] > LEAST_STEP * vRows.back()))
            return std::string(pName) + " do not rise at row " + std::to_string(n);
    }
    return std::string();
}

std::string FindTableFault(const SLens& rLens)
{
    if (rLens.vAngles.size() != rLens.vHeights.size())
        return "as many heights as angles are needed";
    if (rLens.vAngles.size() < 2)
        return "a table needs two rows at least";
    if (rLens.vAngles.size() > MOST_ROWS)
        return "a table has 4096 rows at most";
    std::string strFault = FindRowFault(rLens.vAngles, "angles");
    if (strFault.empty())
        strFault = FindRowFault(rLens.vHeights, "heights");
    if (!strFault.empty())
        return strFault;
    if (rLens.vAngles.back() > MOST_TABLE_ANGLE)
        return "angles go beyond 179 degrees off the axis";
    if (rLens.vAngles.back() < 0.5)
        return "no angle of half a degree is reached";
    if (!(rLens.fPixelPitch >= 0.0) || !std::isfinite(rLens.fPixelPitch))
        return "the pixel pitch is not a size";
    const double fPixels = rLens.fPixelPitch > 0.0 ? rLens.vHeights.back() / rLens.fPixelPitch : 1.0;
    if (!(fPixels < MOST_PIXELS && fPixels > 1.0 / MOST_PIXELS) || rLens.vHeights.back() > 1e30 ||
        rLens.vHeights.back() < 1e-30)
        return "heights are out of proportion";
    return std::string();
}

std::string FindModelFault(const SLens& rLens)
{
    const SModelName* pModel = NameOf(rLens.eModel);
    if (pModel == nullptr)
        return "there is no such model";
    if (!(rLens.fField >= 1.0 && rLens.fField <= pModel->fMostField))
        return "the field of this model lies between 1 and " +
               std::to_string(static_cast<int>(pModel->fMostField)) + " degrees";
    return std::string();
}

std::string FindCalibrationFault(const SLens& rLens)
{
    const SLensCalibration& c = rLens.sCalibration;
    if (c.eModel != CALIBRATION_FISHEYE && c.eModel != CALIBRATION_UNIFIED)
        return "there is no such calibration";
    if (!AreFinite({c.fFocalX, c.fFocalY, c.fCenterX, c.fCenterY, c.fSkew, c.fXi, c.fField, c.afRadial[0],
                    c.afRadial[1], c.afRadial[2], c.afRadial[3], c.afTangential[0], c.afTangential[1]}))
        return "a value is not finite";
    if (!(c.fFocalX > 1e-3 && c.fFocalX < MOST_PIXELS && c.fFocalY > 1e-3 && c.fFocalY < MOST_PIXELS))
        return "the focal lengths are no sizes in pixels";
    if (std::fabs(c.fCenterX) > MOST_PIXELS || std::fabs(c.fCenterY) > MOST_PIXELS ||
        std::fabs(c.fSkew) > MOST_PIXELS)
        return "the centre lies out of reach";
    if ((c.nWidth != 0 || c.nHeight != 0) && (c.nWidth < 1 || c.nHeight < 1))
        return "the size of the calibrated frames is none";
    if (c.fXi < 0.0 || c.fXi > 1e3)
        return "xi is negative or too large";
    if (c.fField < 0.0 || c.fField > 360.0)
        return "the field lies outside 0 to 360 degrees";
    if (CRadialCurve(rLens).Edge() * DEGREES < 1.0)
        return "no angle is reached: heights do not rise from the axis on";
    return std::string();
}

} // namespace

SLens SLens::FromTable(std::vector<double> vAngles, std::vector<double> vHeights, double fPixelPitch)
{
    SLens sLens;
    sLens.eKind = LENS_KIND_TABLE;
    sLens.vAngles = std::move(vAngles);
    sLens.vHeights = std::move(vHeights);
    sLens.fPixelPitch = fPixelPitch;
    return sLens;
}

SLens SLens::FromModel(ELensModel eModel, double fField)
{
    SLens sLens;
    sLens.eKind = LENS_KIND_MODEL;
    sLens.eModel = eModel;
    sLens.fField = fField;
    return sLens;
}

SLens SLens::FromCalibration(const SLensCalibration& rCalibration)
{
    SLens sLens;
    sLens.eKind = LENS_KIND_CALIBRATION;
    sLens.sCalibration = rCalibration;
    return sLens;
}

std::string FindLensFault(const SLens& rLens)
{
    switch (static_cast<int>(rLens.eKind)) {
    case LENS_KIND_TABLE:
        return FindTableFault(rLens);
    case LENS_KIND_MODEL:
        return FindModelFault(rLens);
    case LENS_KIND_CALIBRATION:
        return FindCalibrationFault(rLens);
    default:
        return "there is no such kind of lens";
    }
}

double LensHeightAt(const SLens& rLens, double fDegrees)
{
    if (!FindLensFault(rLens).empty() || !(fDegrees >= 0.0) || !std::isfinite(fDegrees))
        return 0.0;
    return CRadialCurve(rLens).Height(fDegrees / DEGREES);
}

double LensEdgeAngle(const SLens& rLens)
{
    return FindLensFault(rLens).empty() ? CRadialCurve(rLens).Edge() * DEGREES : 0.0;
}

bool FindLensModel(const std::string& strName, ELensModel& rModel)
{
    for (const SModelName& r : MODELS) {
        if (strName != r.pName)
            continue;
        rModel = r.eModel;
        return true;
    }
    return false;
}

const char* LensModelName(ELensModel eModel)
{
    const SModelName* pModel = NameOf(eModel);
    return pModel == nullptr ? nullptr : pModel->pName;
}

double MostLensField(ELensModel eModel)
{
    const SModelName* pModel = NameOf(eModel);
    return pModel == nullptr ? 0.0 : pModel->fMostField;
}
