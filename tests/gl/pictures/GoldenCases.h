/// \file
/// The golden pictures: what is drawn for them.
#pragma once

#include "tests/support/ReferenceView.h"
#include "tests/support/TestScene.h"

struct SGoldenCase
{
    const char* pName; ///< of the file too
    EViewType eView;
    EMountType eMount;
    double fPan;
    double fTilt;
    double fZoom;
    int nLens;
    int nFormat;
    EYUVSpace eSpace;
    bool bLimited;
    bool bLinear;
    double fMountTilt;
    double fMinRemap; ///< dB against the same frame, sampled without a mesh
    double fMinRoom;  ///< dB against the room, drawn without frame, lens and mesh
};

inline const SGoldenCase GOLDEN_CASES[] = {
    {"fisheye-ceiling", VIEW_FISHEYE, MOUNT_CEILING, 0, 0, 180, 419, IMAGE_FORMAT_NV12, YUV_SPACE_BT601,
     false, true, 0, 35, 28},
    {"fisheye-floor", VIEW_FISHEYE, MOUNT_FLOOR, 10, -20, 120, 239, IMAGE_FORMAT_RGB24, YUV_SPACE_BT601,
     false, true, 0, 50, 30},
    {"fisheye-wall", VIEW_FISHEYE, MOUNT_WALL, 0, 0, 180, 215, IMAGE_FORMAT_RGB24, YUV_SPACE_BT601, false,
     false, 0, 50, 24},
    {"circular-ceiling", VIEW_FISHEYE_CIRCULAR, MOUNT_CEILING, 0, 0, 180, 419, IMAGE_FORMAT_YUV420P,
     YUV_SPACE_BT709, true, true, 0, 35, 28},
    {"circular-floor", VIEW_FISHEYE_CIRCULAR, MOUNT_FLOOR, 0, 0, 180, 418, IMAGE_FORMAT_BGRA32,
     YUV_SPACE_BT601, false, true, 0, 50, 26},
    {"circular-wall", VIEW_FISHEYE_CIRCULAR, MOUNT_WALL, -15, 15, 140, 0, IMAGE_FORMAT_NV21, YUV_SPACE_BT2020,
     false, true, 0, 32, 28},
    {"vcam-ceiling", VIEW_VCAM, MOUNT_CEILING, 67, 55, 120, 419, IMAGE_FORMAT_NV12, YUV_SPACE_BT601, false,
     true, 0, 33, 22},
    {"vcam-ceiling-nearest", VIEW_VCAM, MOUNT_CEILING, 200, 25, 180, 419, IMAGE_FORMAT_YUV420P,
     YUV_SPACE_BT601, true, false, 0, 30, 22},
    {"vcam-floor", VIEW_VCAM, MOUNT_FLOOR, 67, 125, 120, 239, IMAGE_FORMAT_RGB24, YUV_SPACE_BT601, false,
     true, 0, 50, 21},
    {"vcam-wall", VIEW_VCAM, MOUNT_WALL, 72, 98, 150, 418, IMAGE_FORMAT_RGBA32, YUV_SPACE_BT601, false, true,
     0, 50, 21},
    {"quad-ceiling", VIEW_VCAM_QUAD, MOUNT_CEILING, 67, 55, 120, 419, IMAGE_FORMAT_NV12, YUV_SPACE_BT709,
     true, true, 0, 32, 24},
    {"quad-floor", VIEW_VCAM_QUAD, MOUNT_FLOOR, 67, 125, 120, 0, IMAGE_FORMAT_RGB24, YUV_SPACE_BT601, false,
     true, 0, 50, 21},
    {"quad-wall", VIEW_VCAM_QUAD, MOUNT_WALL, 110, 80, 120, 215, IMAGE_FORMAT_RGB24, YUV_SPACE_BT601, false,
     true, 0, 50, 20},
    {"panorama-ceiling", VIEW_PANORAMA_FULL, MOUNT_CEILING, 33, 0, 180, 419, IMAGE_FORMAT_NV12,
     YUV_SPACE_BT601, false, true, 0, 38, 30},
    {"panorama-floor", VIEW_PANORAMA_FULL, MOUNT_FLOOR, 33, 0, 180, 0, IMAGE_FORMAT_YUV420P, YUV_SPACE_BT601,
     false, true, 0, 36, 28},
    {"half-ceiling", VIEW_PANORAMA_HALF, MOUNT_CEILING, -51, 0, 180, 419, IMAGE_FORMAT_RGB24, YUV_SPACE_BT601,
     false, true, 0, 50, 33},
    {"half-floor", VIEW_PANORAMA_HALF, MOUNT_FLOOR, -51, 0, 180, 418, IMAGE_FORMAT_NV21, YUV_SPACE_BT709,
     false, true, 0, 32, 23},
    {"quarter-ceiling", VIEW_PANORAMA_QUARTER, MOUNT_CEILING, 33, 0, 180, 419, IMAGE_FORMAT_NV12,
     YUV_SPACE_BT601, true, true, 0, 32, 28},
    {"quarter-floor", VIEW_PANORAMA_QUARTER, MOUNT_FLOOR, -51, 0, 180, 239, IMAGE_FORMAT_RGB24,
     YUV_SPACE_BT601, false, true, 0, 36, 20},
    {"dual-ceiling", VIEW_PANORAMA_DUAL, MOUNT_CEILING, 35, 11, 180, 419, IMAGE_FORMAT_NV12, YUV_SPACE_BT601,
     false, true, 0, 33, 28},
    {"dual-floor", VIEW_PANORAMA_DUAL, MOUNT_FLOOR, 35, 11, 180, 0, IMAGE_FORMAT_RGB24, YUV_SPACE_BT601,
     false, true, 0, 50, 25},
    {"triple-ceiling", VIEW_PANORAMA_TRIPLE, MOUNT_CEILING, 0, 0, 180, 419, IMAGE_FORMAT_YUV420P,
     YUV_SPACE_BT2020, true, true, 0, 35, 27},
    {"triple-floor", VIEW_PANORAMA_TRIPLE, MOUNT_FLOOR, 35, 11, 180, 215, IMAGE_FORMAT_RGB24, YUV_SPACE_BT601,
     false, true, 0, 39, 23},
    {"wall-panorama", VIEW_PANORAMA_FULL, MOUNT_WALL, 0, 12, 180, 419, IMAGE_FORMAT_NV12, YUV_SPACE_BT601,
     false, true, 0, 31, 28},
    {"wall-panorama-rolled", VIEW_PANORAMA_HALF, MOUNT_WALL, 17, 0, 180, 239, IMAGE_FORMAT_RGB24,
     YUV_SPACE_BT601, false, true, 0, 40, 23},
    {"wall-panorama-inclined", VIEW_PANORAMA_QUARTER, MOUNT_WALL, 0, 12, 180, 0, IMAGE_FORMAT_NV12,
     YUV_SPACE_BT601, true, true, 20, 31, 27},
};

inline SReferenceSetup SetupOf(const SGoldenCase& sCase)
{
    SReferenceSetup s;
    s.eView = sCase.eView;
    s.eMount = sCase.eMount;
    s.nLensType = sCase.nLens;
    // Lenses 215 and 239 sit on sensors that are wider than high.
    s.nImageWidth = sCase.nLens == 215 ? 268 : sCase.nLens == 239 ? 280 : 256;
    s.nImageHeight = sCase.nLens == 215 ? 242 : sCase.nLens == 239 ? 250 : 256;
    s.nTargetWidth = 128;
    s.nTargetHeight = 72;
    s.fPan = sCase.fPan;
    s.fTilt = sCase.fTilt;
    s.fZoom = sCase.fZoom;
    s.fMountTilt = sCase.fMountTilt;
    return s;
}

/// The room as its camera sees it.
inline STestImage InputOf(const SGoldenCase& sCase)
{
    const SReferenceSetup s = SetupOf(sCase);
    return RenderFisheye(RoomColour, s.nLensType, s.nImageWidth, s.nImageHeight, s.eMount, s.fMountTilt, 3);
}
