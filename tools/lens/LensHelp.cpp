#include "lens/LensHelp.h"

const char* const LENS_HELP =
    R"(Usage: lumor-dewarp lens check LENS [PNG]
       lumor-dewarp lens fit [--points FILE] [--lines FILE] [options]

check    tells what a lens is like, and draws its curve
fit      finds the lens from what was measured in its pictures

Each of them has a --help of its own. An input picture whose name is just "lens"
is given as ./lens.
)";

const char* const LENS_CHECK_HELP =
    R"(Usage: lumor-dewarp lens check LENS [PNG]

Tells what a lens is: its field, its focal length, how high a ray lands for every
five degrees off the axis, how finely it draws there, and which ideal lens comes
nearest. Draws the curve when a PNG is given.

LENS     a file, or MODEL:FIELD such as equidistant:200 (degrees across).
         MODEL: equidistant, equisolid, stereographic, orthographic, rectilinear
PNG      NAME.png, a picture of 640x480 pixels

Files are JSON, one of
  {"model": "equidistant", "field": 200}
  {"table": {"angles": [0, 30, 60, 90], "heights": [0, 0.35, 0.69, 1]}}
  {"calibration": {"model": "fisheye", "width": 1920, "height": 1080, "fx": 610,
   "fy": 610, "cx": 959.5, "cy": 539.5, "k": [0.01, 0, 0, 0], "field": 190}}
  {"calibration": {"model": "unified", ..., "xi": 1.1, "k": [k1, k2], "p": [p1, p2]}}
Angles are degrees off the axis. Heights are parts of the last one; with
"pixel_pitch", millimetres a pixel, they are millimetres, too. Beside each may
stand "circle": [cx, cy, rx, ry], where the lens's circle lies in the frame, and
"name" and "comment". What OpenCV and ROS write after a fisheye calibration is
read as it is, YAML or JSON.
)";

const char* const LENS_FIT_HELP =
    R"(Usage: lumor-dewarp lens fit [--points FILE] [--lines FILE] [options]

Finds the lens that explains best what was measured in its pictures: its field,
and its centre where the measurements tell. Prints how far each of the ideal
lenses and a polynomial stay from the measurements, and takes the best.

  --points FILE         rows angle,x,y or angle,radius: a known angle off the
                        axis, degrees, and the pixel where it is seen, or the
                        pixels from the centre to there
  --lines FILE          rows line,x,y: pixels along edges that are straight in the
                        world, three or more for each, named by the first column.
                        Long edges far from the centre tell most
  --size WxH            of the frames, pixels
  --circle CX,CY,R      the lens's circle in them. Default: in the middle, touching
                        the shorter sides. One of --size and --circle is needed
  --keep-center         the circle's centre is exact: do not look for a better one
  --model NAME          auto (default), equidistant, equisolid, stereographic,
                        orthographic, rectilinear or polynomial (a fisheye
                        calibration, k1 to k4; needs --points)
  --out FILE            where to write the lens file

Pixels count from the top left of the frame, with halves in the middles of pixels.
Rows that begin with # are passed over. Lines alone tell the field well, but of the
curve only which ideal lens is nearest; a few points of known angles tell the rest.
)";
