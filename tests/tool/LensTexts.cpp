#include "LensTexts.h"

#include <gtest/gtest.h>

namespace LENS_TEXTS
{

const char* const pModel = R"({"model": "equidistant", "field": 200})";

const char* const pTable = R"({"table": {"angles": [0, 30, 60, 95.5], "heights": [0, 0.5, 0.98, 1.5],
                                         "pixel_pitch": 0.003}})";

const char* const pFisheye = R"({
  "name": "yard",
  "comment": "board of 9 x 6",
  "calibration": {"model": "fisheye", "width": 1920, "height": 1080,
                  "fx": 610.25, "fy": 609.5, "cx": 951.125, "cy": 547.75, "skew": 0.5,
                  "k": [-0.013, 0.0021, -0.0007, 0.00004], "field": 190},
  "circle": [952, 548.5, 900, 901.5]
})";

const char* const pUnified =
    R"({"calibration": {"model": "unified", "fx": 1100, "fy": 1101, "cx": 960, "cy": 540,
    "xi": 1.2, "k": [-0.02, 0.002], "p": [0.0012, -0.0007], "field": 200}})";

const char* const pOpenCVFisheye = R"(%YAML:1.0
---
calibration_time: "Sat 01 Jan 2022 10:00:00 AM CET"
nr_of_frames: 25
image_width: 1280
image_height: 960
board_width: 9
flags: 14
fisheye_model: 1
camera_matrix: !!opencv-matrix
   rows: 3
   cols: 3
   dt: d
   data: [ 3.3312458962302540e+02, 0., 6.3950000000000000e+02, 0.,
       3.3298712345678901e+02, 4.7950000000000000e+02, 0., 0., 1. ]
distortion_coefficients: !!opencv-matrix
   rows: 4
   cols: 1
   dt: d
   data: [ -1.2345678901234567e-02, 2.5e-03, -.0015, 1.0e-04 ]
avg_reprojection_error: 2.1e-01
)";

const char* const pOpenCVUnified = R"(%YAML:1.0
---
image_size: [ 1920, 1080 ]
K: !!opencv-matrix
   rows: 3
   cols: 3
   dt: d
   data: [ 1.1e+03, 1.5, 960., 0., 1.101e+03, 540., 0., 0., 1. ]
D: !!opencv-matrix
   rows: 1
   cols: 4
   dt: d
   data: [ -0.02, 0.002, 0.0012, -0.0007 ]
xi: !!opencv-matrix
   rows: 1
   cols: 1
   dt: d
   data: [ 1.2 ]
)";

const char* const pOpenCVJSON = R"({
    "image_width": 1280,
    "image_height": 960,
    "cameraMatrix": {"type_id": "opencv-matrix", "rows": 3, "cols": 3, "dt": "d",
        "data": [ 333.0, 0.0, 639.5, 0.0, 332.0, 479.5, 0.0, 0.0, 1.0 ]},
    "distCoeffs": {"type_id": "opencv-matrix", "rows": 4, "cols": 1, "dt": "d",
        "data": [ -0.0125, 0.0025, -0.0015, 0.0001 ]}
})";

const char* const pROS = R"(---
image_width: 1280
image_height: 960
camera_name: yard
camera_matrix:
  rows: 3
  cols: 3
  data: [333.0, 0.0, 639.5, 0.0, 332.0, 479.5, 0.0, 0.0, 1.0]
distortion_model: equidistant
distortion_coefficients:
  rows: 1
  cols: 4
  data: [-0.0125, 0.0025, -0.0015, 0.0001]
)";

const char* const pPinhole = R"(%YAML:1.0
---
image_width: 640
image_height: 480
camera_matrix: !!opencv-matrix
   rows: 3
   cols: 3
   dt: d
   data: [ 500., 0., 320., 0., 500., 240., 0., 0., 1. ]
distortion_coefficients: !!opencv-matrix
   rows: 5
   cols: 1
   dt: d
   data: [ -0.2, 0.1, 0., 0., -0.01 ]
)";

} // namespace LENS_TEXTS

std::string Replaced(const std::string& strText, const std::string& strPart, const std::string& strNew)
{
    std::string strCopy = strText;
    const std::size_t nAt = strCopy.find(strPart);
    EXPECT_NE(nAt, std::string::npos) << strPart;
    if (nAt != std::string::npos)
        strCopy.replace(nAt, strPart.size(), strNew);
    return strCopy;
}
