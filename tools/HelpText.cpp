#include "HelpText.h"

const char* const HELP_TEXT =
    R"(Usage: lumor-dewarp [options] INPUT OUTPUT
       lumor-dewarp lens --help    checks lens files, and fits lenses

Draws a corrected view of a fisheye picture, on the GPU or on the processor.
Tells on stdout what was written and who drew it.

INPUT    a PNG or JPEG picture (or another still format FFmpeg reads), or bare
         pixels with --raw. A turn noted in the picture's EXIF data is not
         applied.
OUTPUT   NAME.png, or NAME.raw for bare pixels: rows of B, G, R, A bytes, top
         row first.

Input
  --raw FORMAT:WxH[:STRIDE]  INPUT is one bare frame. FORMAT: rgb24, bgr24, nv12,
                        nv21, yuv420p, rgba, bgra or gray. W, H: 2..16384 pixels.
                        STRIDE: bytes a row of the first plane (default: no
                        padding); yuv420p chroma rows take half of it.
  --yuv-space NAME      auto (default: as the picture says, else bt601), bt601,
                        bt709, bt2020 or bt601-scaled
  --yuv-range NAME      auto (default: as the picture says, else full), full
                        (0..255) or limited (luma 16..235)
  --gain LUMA:CHROMA    factors on brightness and colour, 0..16 each

View
  --view NAME           what to draw, by name or number:
                          vcam (1, default)     one virtual pan-tilt-zoom camera
                          quad (8)              four of them, 90 degrees apart
                          panorama (4)          the whole strip
                          panorama-half (5)     half of the strip
                          panorama-quarter (2)  the strip in two rows
                          dual (6), triple (7)  two or three panes, for ceilings
                          equirectangular       bearings and heights, in degrees
                          cylindrical           the same with straight verticals
                          panini                wide rooms, hardly bent
                          fisheye (3)           the whole input picture, flat
                          circular (9)          the lens circle only, flat
  --mount NAME          how the camera hangs: ceiling (default), floor or wall
  --lens NAME           auto (default: from the size of the picture), 215, 239,
                        418, 419 or ideal (image height grows with the angle); or
                        MODEL:FIELD, an ideal lens and the degrees across its
                        circle: equidistant:200, equisolid, stereographic,
                        orthographic or rectilinear; or a lens file
  --circle CX,CY,R[,RY] where the lens's circle lies in INPUT, pixels, or auto: it
                        is looked for in the picture. Without --lens and --circle
                        it is looked for where the size is no known camera's
  --mount-orientation YAW,PITCH,ROLL  how the camera's body is turned away from
                        where its mount says it looks, degrees: to the right, up,
                        clockwise as seen from behind it
  --no-clean-rim        views of the known lenses end as they do on the cameras,
                        not in a smooth edge where the lens's light ends
  --pan DEGREES         -360..360. Cameras: 0 and up (wall: 0..180, default 90);
                        flat views: -90..90 moves the picture by half its width;
                        equirectangular, cylindrical, panini: 0 (default) looks
                        where INPUT's top is (wall: ahead), right when positive
  --tilt DEGREES        -180..180. Cameras: ceiling 0 (down)..90, floor 90..180
                        (up), wall 0..180 (default 90: level); dual, triple and
                        wall panorama: -54..54; flat views: -90..90;
                        equirectangular, cylindrical, panini: above the horizon
  --zoom DEGREES        5..180, cameras and flat views. A rectilinear camera sees
                        half of it from top to bottom
  --roll DEGREES        turns cameras and panini clockwise, -360..360
  --span H[,V]          degrees that equirectangular, cylindrical and panini show
                        across and upright; panorama: across
  --band UPPER,LOWER    edges of ceiling and floor panoramas, degrees off the
                        optical axis (default 90,39.6)
  --floor-flip          dual and triple of a floor camera the right way up
  --projection NAME     cameras: rectilinear (default), stereographic or a number
                        between, 0..1
  --mount-tilt DEGREES  -90..90: inclination of a wall camera (wall panoramas)
  --no-strict-tilt      lets the wall panorama widen its span by the mount tilt
  --pane "X,Y,W,H [view=NAME] [pan=N] [tilt=N] [zoom=N] [roll=N] [projection=NAME]"
                        a view of its own in that rectangle of OUTPUT; up to 16,
                        later ones lie over earlier ones. What is left out is
                        that of the options; --size is as large as they need
  --pane-gap PIXELS[,#RRGGBBAA]  between panes that touch each other (default 0),
                        and the colour there and beside them (default #000000FF)
  --flip AXES           mirror: h (left to right), v (top to bottom) or hv
  --rotation DEGREES    turn clockwise, fisheye and circular view: 0, 90, 180, 270
  --interpolation NAME  nearest or linear (default)
  --sampling NAME       nearest, linear, cubic (Catmull-Rom) or lanczos (three
                        lobes); stands above --interpolation
  --minification        averages where the view shrinks INPUT: no sparkle
  --size WxH            size of the output, 2..16384 pixels each way. Default:
                        flat views as the input, cameras 1280x720, panoramas a
                        size without bars at the sides

Overlays (input pixels count from the top left of INPUT, output pixels from that
of OUTPUT)
  --input-overlay PNG   picture with transparency laid over INPUT
  --output-overlay PNG  picture with transparency laid over OUTPUT
  --mask "X,Y X,Y X,Y ... #RRGGBBAA"  filled polygon over INPUT, input pixels; may
                        be repeated
  --mask-file FILE      polygons in the library's byte form
  --text TEXT           line of text over OUTPUT; may be repeated, and the n-th of
                        the following options belongs to the n-th text
  --text-at X,Y         where it starts, output pixels; negative numbers count from
                        the right and the bottom edge (default 0,0, further texts
                        one line below the one before)
  --text-height PIXELS  4..1024 (default 32)
  --text-color #RRGGBBAA  (default #FFFFFFFF)
  --text-align H[,V]    which point of the text lies at X,Y: left (default), center
                        or right; top (default), middle or bottom
  --strings-file FILE   texts in the library's byte form

Who draws
  --engine NAME         auto (default: OpenGL ES where a GPU is, otherwise the
                        processor), cpu or gl (OpenGL ES, by a software driver
                        too)
  --threads N           processor: 1..1024 threads draw; 0 (default): one a core
  --exact-geometry      the processor draws, and takes what a pixel shows from the
                        view's definition instead of its mesh: within 0.01 input
                        pixels of the lens, for measuring and for straight lines
  --buffers             draws from graphic buffer to graphic buffer, NV12 in and
                        out, as the library does on Android, with OpenGL ES. The
                        picture stays YUV; --interpolation, --flip and --gain
                        have no effect

Files for other programs
  --map NAME            where each pixel of OUTPUT comes from: NAME-x.f32 and
                        NAME-y.f32 (floats, 0 in the middle of INPUT's first
                        pixel), NAME-x.png and NAME-y.png (16 bits, in sixteenths
                        of a pixel), NAME-x.pgm and NAME-y.pgm (16 bits, whole
                        pixels, for FFmpeg: -lavfi remap)

Reports
  --stats               milliseconds spent in each stage; one more frame is drawn to
                        tell the cost of a frame from that of the first. The line
                        above them names engine and threads
  --verbose             what the library and FFmpeg log, shader texts included, on
                        stderr
  --version
  -h, --help

Exit status: 0 done, 1 failed, 2 the command line cannot be followed.
)";
