/// \file
/// Any camera's lens as a value that a host makes and hands over.
#pragma once

#include "platform/Export.h"

#include <string>
#include <vector>

/// What an SLens is described by.
enum ELensKind : int
{
    LENS_KIND_TABLE,
    LENS_KIND_MODEL,
    LENS_KIND_CALIBRATION,
};

/// Ideal lenses: image height h of a ray t off the optical axis, for a focal length f.
enum ELensModel : int
{
    LENS_EQUIDISTANT,   ///< h = f t: most fisheye lenses of surveillance cameras, nearly
    LENS_EQUISOLID,     ///< h = 2 f sin(t / 2)
    LENS_STEREOGRAPHIC, ///< h = 2 f tan(t / 2)
    LENS_ORTHOGRAPHIC,  ///< h = f sin t; up to 180 degrees
    LENS_RECTILINEAR,   ///< h = f tan t, no fisheye; up to 178 degrees
};

/// What calibration programs fit to pictures of a board.
enum ECalibrationModel : int
{
    /// h = t (1 + k1 t^2 + k2 t^4 + k3 t^6 + k4 t^8): Kannala and Brandt, "A generic camera model and
    /// calibration method for conventional, wide-angle, and fish-eye lenses", 2006.
    CALIBRATION_FISHEYE,
    /// A unit sphere seen from xi behind its centre, then k1, k2 (radial) and p1, p2 (tangential): Mei and
    /// Rives, "Single view point omnidirectional camera calibration from planar grids", 2007.
    CALIBRATION_UNIFIED,
};

/// A calibration. Units: pixels of the frames that it was made with; a centre of whole numbers lies in the
/// middle of a pixel, as calibration programs count, so that 959.5 is the middle of 1920 columns.
struct LUMOR_API SLensCalibration
{
    ECalibrationModel eModel = CALIBRATION_FISHEYE;
    int nWidth = 0; ///< of those frames; 0: the same as of the frames that come. Others are scaled
    int nHeight = 0;
    double fFocalX = 0.0;
    double fFocalY = 0.0;
    double fCenterX = 0.0;
    double fCenterY = 0.0;
    double fSkew = 0.0;          ///< pixels to the right for each focal length down
    double afRadial[4] = {};     ///< k1 to k4; the unified model has two
    double afTangential[2] = {}; ///< p1 and p2, of the unified model
    double fXi = 0.0;            ///< of the unified model
    double fField = 0.0;         ///< degrees across that are to be used; 0: all that the model describes

    bool operator==(const SLensCalibration& sOther) const = default;
};

/// A lens that is none of the known ones. Made by one of the functions below; FindLensFault says whether it
/// can be drawn with. Units: degrees. Owns: its rows. Thread: any. Fails: never.
struct LUMOR_API SLens
{
    /// Field angles in degrees off the optical axis against image heights, both rising from 0; 2 to 4096
    /// rows. Between rows goes a monotone cubic, so that no kinks show. Heights are millimetres on a sensor
    /// whose pixels are fPixelPitch millimetres wide; with 0 they count in parts of the last one, which is
    /// the circle's edge.
    static SLens FromTable(std::vector<double> vAngles, std::vector<double> vHeights,
                           double fPixelPitch = 0.0);
    /// An ideal lens whose circle shows fField degrees across: up to 280, as far as the model allows.
    static SLens FromModel(ELensModel eModel, double fField);
    static SLens FromCalibration(const SLensCalibration& rCalibration);

    bool operator==(const SLens& sOther) const = default;

    ELensKind eKind = LENS_KIND_MODEL;
    std::vector<double> vAngles;
    std::vector<double> vHeights;
    double fPixelPitch = 0.0;
    ELensModel eModel = LENS_EQUIDISTANT;
    double fField = 180.0;
    SLensCalibration sCalibration;
};

/// What is wrong with a lens, in words; empty when it can be drawn with. Thread: any. Fails: never.
LUMOR_API std::string FindLensFault(const SLens& rLens);

/// The lens's curve at an angle off the axis, degrees: its height in parts of that at the edge, or for
/// calibrations in focal lengths. Beyond the edge it goes on in a straight line. Thread: any.
/// Fails: 0 for a lens with a fault.
LUMOR_API double LensHeightAt(const SLens& rLens, double fDegrees);
/// Degrees off the axis up to which the lens describes rays; 0 for one with a fault.
LUMOR_API double LensEdgeAngle(const SLens& rLens);

/// A model by its name, as command lines and files write it, and back: "equidistant", "equisolid",
/// "stereographic", "orthographic", "rectilinear". False, or null, for one there is not.
LUMOR_API bool FindLensModel(const std::string& strName, ELensModel& rModel);
LUMOR_API const char* LensModelName(ELensModel eModel);
/// Degrees across that a model can show at most.
LUMOR_API double MostLensField(ELensModel eModel);
