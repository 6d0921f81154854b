#include "bench/accuracy/Cases.h"

namespace
{

struct SViewRow
{
    const char* pView;
    EViewType eView;
    EMountType eMount;
    double fPan;
    double fTilt;
    double fZoom;
    double fMountTilt;
};

// Angles are of no special place: neither axis of the frame nor a vertex lies in the middle.
const SViewRow VIEWS[] = {
    {"fisheye", VIEW_FISHEYE, MOUNT_CEILING, 4, -3, 170, 0},
    {"fisheye", VIEW_FISHEYE, MOUNT_FLOOR, 4, -3, 170, 0},
    {"fisheye", VIEW_FISHEYE, MOUNT_WALL, 4, -3, 170, 0},
    {"circular", VIEW_FISHEYE_CIRCULAR, MOUNT_CEILING, 4, -3, 170, 0},
    {"circular", VIEW_FISHEYE_CIRCULAR, MOUNT_FLOOR, 4, -3, 170, 0},
    {"circular", VIEW_FISHEYE_CIRCULAR, MOUNT_WALL, 4, -3, 170, 0},
    {"virtual camera", VIEW_VCAM, MOUNT_CEILING, 67, 55, 120, 0},
    {"virtual camera", VIEW_VCAM, MOUNT_FLOOR, 67, 125, 120, 0},
    {"virtual camera", VIEW_VCAM, MOUNT_WALL, 72, 98, 150, 0},
    {"virtual camera, 180", VIEW_VCAM, MOUNT_CEILING, 200, 25, 180, 0},
    {"virtual camera, narrow", VIEW_VCAM, MOUNT_CEILING, 310, 76, 25, 0},
    {"quad", VIEW_VCAM_QUAD, MOUNT_CEILING, 67, 55, 120, 0},
    {"quad", VIEW_VCAM_QUAD, MOUNT_FLOOR, 67, 125, 120, 0},
    {"quad (one camera)", VIEW_VCAM_QUAD, MOUNT_WALL, 72, 98, 150, 0},
    {"panorama", VIEW_PANORAMA_FULL, MOUNT_CEILING, 33, 0, 180, 0},
    {"panorama", VIEW_PANORAMA_FULL, MOUNT_FLOOR, 33, 0, 180, 0},
    {"half panorama", VIEW_PANORAMA_HALF, MOUNT_CEILING, -51, 0, 180, 0},
    {"half panorama", VIEW_PANORAMA_HALF, MOUNT_FLOOR, -51, 0, 180, 0},
    {"quarter panorama", VIEW_PANORAMA_QUARTER, MOUNT_CEILING, 33, 0, 180, 0},
    {"quarter panorama", VIEW_PANORAMA_QUARTER, MOUNT_FLOOR, -51, 0, 180, 0},
    {"dual", VIEW_PANORAMA_DUAL, MOUNT_CEILING, 35, 11, 180, 0},
    {"dual", VIEW_PANORAMA_DUAL, MOUNT_FLOOR, 35, 11, 180, 0},
    {"triple", VIEW_PANORAMA_TRIPLE, MOUNT_CEILING, 35, 11, 180, 0},
    {"triple", VIEW_PANORAMA_TRIPLE, MOUNT_FLOOR, 35, 11, 180, 0},
    {"wall panorama", VIEW_PANORAMA_FULL, MOUNT_WALL, 0, 12, 180, 0},
    {"wall panorama, rolled", VIEW_PANORAMA_HALF, MOUNT_WALL, 17, 0, 180, 0},
    {"wall panorama, inclined", VIEW_PANORAMA_QUARTER, MOUNT_WALL, 0, 12, 180, 20},
};

struct SLensRow
{
    int nLens;
    int nWidth; ///< of a sensor that carries the lens
    int nHeight;
};

const SLensRow LENSES[] = {
    {215, 2144, 1944}, {239, 2240, 2000}, {418, 1920, 1920}, {419, 1920, 1920}, {0, 1920, 1920},
};

const char* MountName(EMountType eMount)
{
    switch (eMount) {
    case MOUNT_WALL:
        return "wall";
    case MOUNT_FLOOR:
        return "floor";
    default:
        return "ceiling";
    }
}

/// What is known of the meshes at frames of 1920 pixels, and a margin. Displacements grow with the frame. The
/// radii of three lenses' tables jump at 90 degrees, so that strips stray far in their outermost cells.
SPlaceLimits LimitsOf(const SReferenceSetup& s)
{
    const double fSize = s.nImageWidth / 1920.0;
    switch (s.eView) {
    case VIEW_FISHEYE:
    case VIEW_FISHEYE_CIRCULAR:
        return {0.01, 0.02, 0.02, 0.3};
    case VIEW_VCAM:
    case VIEW_VCAM_QUAD:
        return {0.20 * fSize + 0.01, 0.36 * fSize + 0.02, 0.02, 11.0};
    default:
        break;
    }
    // A row of cells reaches beyond 90 degrees where the camera is inclined.
    const bool bInclined = s.fMountTilt != 0.0;
    if (s.nLensType == 0)
        return {0.18 * fSize + 0.01, (bInclined ? 3.8 : 0.45) * fSize + 0.02, 0.02, 1.5};
    if (s.nLensType == 419)
        return {0.24 * fSize + 0.01, (bInclined ? 2.4 : 1.3) * fSize + 0.02, 0.02, 2.5};
    return {0.43 * fSize + 0.01, 10.0 * fSize + 0.02, 0.02, 21.5};
}

} // namespace

SPlaceLimits ProcessorLimits(const SPlaceLimits& rLimits, bool bExact)
{
    SPlaceLimits s = rLimits;
    // A coarse grid, which is exact where the mesh bends more.
    s.fMean += 0.01;
    s.fMost += 0.05;
    s.fDriver = 0.14;
    s.bOpticsOnly = bExact;
    return s;
}

std::string LensName(int nLens)
{
    return nLens == 0 ? "equidistant" : std::to_string(nLens);
}

std::vector<SCaseGroup> ListGroups(bool bQuick)
{
    const int nPart = bQuick ? 4 : 1;
    std::vector<SCaseGroup> vGroups;
    for (const SLensRow& sLens : LENSES) {
        for (const SViewRow& sView : VIEWS) {
            SAccuracyCase sCase;
            sCase.strView = sView.pView;
            sCase.strMount = MountName(sView.eMount);
            SReferenceSetup& s = sCase.sSetup;
            s.eView = sView.eView;
            s.eMount = sView.eMount;
            s.nLensType = sLens.nLens;
            s.nImageWidth = sLens.nWidth / nPart / 2 * 2;
            s.nImageHeight = sLens.nHeight / nPart / 2 * 2;
            s.nTargetWidth = 1280 / nPart;
            s.nTargetHeight = 720 / nPart;
            s.fPan = sView.fPan;
            s.fTilt = sView.fTilt;
            s.fZoom = sView.fZoom;
            s.fMountTilt = sView.fMountTilt;
            sCase.sLimits = LimitsOf(s);
            SCaseGroup* pGroup = nullptr;
            for (SCaseGroup& sGroup : vGroups)
                if (sGroup.nLens == s.nLensType && sGroup.eMount == s.eMount &&
                    sGroup.fMountTilt == s.fMountTilt)
                    pGroup = &sGroup;
            if (pGroup == nullptr) {
                vGroups.push_back({s.nLensType, s.eMount, s.fMountTilt, s.nImageWidth, s.nImageHeight, {}});
                pGroup = &vGroups.back();
            }
            pGroup->vCases.push_back(sCase);
        }
    }
    return vGroups;
}
