/// \file
/// Files that describe a lens.
///
/// The tool's own form is JSON, one of
///
///     {"model": "equidistant", "field": 200}
///     {"table": {"angles": [0, 30, 60, 90], "heights": [0, 0.35, 0.69, 1], "pixel_pitch": 0}}
///     {"calibration": {"model": "fisheye", "width": 1920, "height": 1080,
///                      "fx": 610, "fy": 610, "cx": 959.5, "cy": 539.5, "skew": 0,
///                      "k": [k1, k2, k3, k4], "field": 190}}
///     {"calibration": {"model": "unified", ..., "xi": 1.1, "k": [k1, k2], "p": [p1, p2]}}
///
/// with degrees across ("field"), degrees off the axis ("angles"), heights in parts of the last one or in
/// millimetres where "pixel_pitch" says how many of them a pixel is wide, and a calibration in pixels of
/// frames of width x height, whose centres of pixels are whole numbers. "skew", "k", "p", "xi", "field", and
/// both of "width" and "height" may be left out of a calibration. Beside each may stand "circle": [cx, cy,
/// rx, ry], frame pixels from the top left, halves in the middles of pixels ([cx, cy, r] for a round one),
/// "name" and "comment".
///
/// What OpenCV and ROS write after a calibration is read as well, YAML or JSON: the camera matrix as K,
/// camera_matrix or cameraMatrix; the coefficients as D, distortion_coefficients, distCoeffs or dist_coeffs;
/// xi; image_width and image_height, or image_size. Four coefficients are a fisheye's, with xi the unified
/// model's.
#pragma once

#include "dewarp/lenses/SLens.h"

#include <optional>
#include <string>

/// The circle of the lens's light. Units: frame pixels, halves in the middles of pixels.
struct SLensCircle
{
    float fCenterX = 0.0f;
    float fCenterY = 0.0f;
    float fRadiusX = 0.0f;
    float fRadiusY = 0.0f;

    bool operator==(const SLensCircle& sOther) const = default;
};

/// A lens without a fault, and what else its file says.
struct SLensFile
{
    SLens sLens;
    std::optional<SLensCircle> oCircle;
    std::string strName;
    std::string strComment;

    bool operator==(const SLensFile& sOther) const = default;
};

/// Reads a file of at most 1 MiB. Thread: any. Fails: throws CToolError (EXIT_FAILED) with the file, the key
/// and what is expected there.
SLensFile ReadLensFile(const std::string& strPath);
/// The same of a file's content. strName: what errors call it.
SLensFile ParseLensFile(const std::string& strName, const std::string& strBytes);
/// MODEL:FIELD, such as equidistant:200, or else the name of a file. Fails: throws CToolError, EXIT_USAGE for
/// a field that the model does not have.
SLensFile ReadLensArgument(const std::string& strText);

/// The tool's own form, for people to read and edit; ParseLensFile gives the same lens back, number by
/// number.
std::string FormatLensFile(const SLensFile& rFile);
