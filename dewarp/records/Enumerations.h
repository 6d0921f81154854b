/// \file
/// Named values that hosts and the library exchange. All are plain ints: a host may store a value that is
/// not listed, and every reader says what it does with one.
#pragma once

/// What the dewarper draws.
enum EViewType : int
{
    VIEW_UNSET = 0,            ///< nothing chosen yet; the first frame then shows VIEW_VCAM
    VIEW_VCAM = 1,             ///< one virtual pan-tilt-zoom camera
    VIEW_PANORAMA_QUARTER = 2, ///< the panorama cut into two halves, one above the other
    VIEW_FISHEYE = 3,          ///< the whole input image, flat
    VIEW_PANORAMA_FULL = 4,    ///< the whole panorama strip
    VIEW_PANORAMA_HALF = 5,    ///< half of the panorama strip
    VIEW_PANORAMA_DUAL = 6,    ///< two panorama panes
    VIEW_PANORAMA_TRIPLE = 7,  ///< three panorama panes
    VIEW_VCAM_QUAD = 8,        ///< four virtual cameras, 90 degrees of pan apart (one camera on a wall mount)
    VIEW_FISHEYE_CIRCULAR = 9, ///< the lens circle only, flat
    // Views about the vertical, whatever the mount: pan 0 looks where the top of the frame is (wall: ahead),
    // to the right when positive; tilt is the angle above the horizon.
    VIEW_EQUIRECTANGULAR = 201, ///< columns are bearings, rows are angles above the horizon
    VIEW_CYLINDRICAL = 202,     ///< columns are bearings, verticals stay straight
    VIEW_PANINI = 203,          ///< wide rooms: verticals and lines towards the middle stay straight
};

/// Lens model; the values are the lens model numbers.
enum ELensType : int
{
    LENS_OWN = -3,    ///< answer: the lens that the host made itself
    LENS_AUTO = -2,   ///< request: detect the lens from the frame size
    LENS_UNSET = -1,  ///< no lens chosen yet
    LENS_UNKNOWN = 0, ///< no lens matches; drawn as an ideal equidistant lens
    LENS_DSL215 = 215,
    LENS_DSL239 = 239,
    LENS_DSL418 = 418,
    LENS_DSL419 = 419,
};

/// How the camera hangs: the angle, in degrees, of its optical axis below the horizon.
enum EMountType : int
{
    MOUNT_WALL = 0,
    MOUNT_CEILING = 90,
    MOUNT_FLOOR = -90,
    MOUNT_UNSET = 1000, ///< nothing requested yet
};

/// Texture filter of the input image. Any value other than 1 means nearest.
enum EInterpolationType : int
{
    INTERPOLATION_NEAREST = 0,
    INTERPOLATION_LINEAR = 1,
};

/// How the input image is sampled. Beside SAMPLING_BY_TYPE each also says how an overlay that lies over the
/// image is: the nearest texel with SAMPLING_NEAREST, linear with all others.
enum ESampling : int
{
    SAMPLING_BY_TYPE = -1, ///< as EInterpolationType says
    SAMPLING_NEAREST = 0,
    SAMPLING_LINEAR = 1,  ///< four texels
    SAMPLING_CUBIC = 2,   ///< Catmull-Rom, sixteen texels
    SAMPLING_LANCZOS = 3, ///< Lanczos of three lobes, thirty-six texels
};

/// YUV colour space of the input image.
enum EYUVSpace : int
{
    YUV_SPACE_AUTO = 0, ///< as the frame says
    YUV_SPACE_BT601 = 1,
    YUV_SPACE_BT709 = 2,
    YUV_SPACE_BT2020 = 3,
    YUV_SPACE_BT601_SCALED = 4, ///< BT.601 with coefficients scaled for older encoders
};

/// YUV range of the input image.
enum EYUVRange : int
{
    YUV_RANGE_AUTO = 0, ///< as the frame says
    YUV_RANGE_FULL = 1,
    YUV_RANGE_LIMITED = 2, ///< rescaled with the levels of SYUV2RGBConversionParams
};

/// Layout of the input image's planes (SImageProperties::nFormat).
enum EImageFormat : int
{
    IMAGE_FORMAT_RGB24 = 0,
    IMAGE_FORMAT_BGR24 = 4,
    IMAGE_FORMAT_NV12 = 5,    ///< Y, then interleaved chroma, U first
    IMAGE_FORMAT_YUV420P = 6, ///< Y, U, V; chroma at half width and height
    IMAGE_FORMAT_RGBA32 = 7,
    IMAGE_FORMAT_BGRA32 = 8,
    IMAGE_FORMAT_GRAY8 = 9,
    IMAGE_FORMAT_NV21 = 10, ///< as NV12, V first
};
