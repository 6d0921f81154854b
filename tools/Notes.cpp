#include "Notes.h"

#include "dewarp/cpu/CustomCPUDewarper.h"

#include <cmath>
#include <cstdio>
#include <initializer_list>

namespace
{

bool IsYUVFormat(int nFormat)
{
    return nFormat == IMAGE_FORMAT_NV12 || nFormat == IMAGE_FORMAT_NV21 || nFormat == IMAGE_FORMAT_YUV420P;
}

/// Those of the view itself, whatever the mount's tilt makes of them.
SPTZLimits GetLimits(const SToolOptions& sOptions)
{
    return CCustomCPUDewarper().GetViewLimits(sOptions.eView, sOptions.eMount);
}

bool IsMovable(const SPTZRange& sRange)
{
    return sRange.fLow != sRange.fHigh;
}

bool HasZoom(const SToolOptions& sOptions)
{
    return IsMovable(GetLimits(sOptions).sZoom);
}

bool HasTilt(const SToolOptions& sOptions)
{
    return IsMovable(GetLimits(sOptions).sTilt);
}

bool IsCameraView(EViewType eView)
{
    return eView == VIEW_VCAM || eView == VIEW_VCAM_QUAD;
}

/// Panorama, half, quarter.
bool IsStripView(EViewType eView)
{
    return eView == VIEW_PANORAMA_FULL || eView == VIEW_PANORAMA_HALF || eView == VIEW_PANORAMA_QUARTER;
}

/// Equirectangular, cylindrical, panini.
bool IsSurfaceView(EViewType eView)
{
    return eView >= VIEW_EQUIRECTANGULAR && eView <= VIEW_PANINI;
}

bool IsFloorPanes(const SToolOptions& sOptions)
{
    return sOptions.eMount == MOUNT_FLOOR &&
           (sOptions.eView == VIEW_PANORAMA_DUAL || sOptions.eView == VIEW_PANORAMA_TRIPLE);
}

std::string FormatDegrees(float fDegrees)
{
    char aText[32];
    std::snprintf(aText, sizeof(aText), "%g", static_cast<double>(fDegrees));
    return aText;
}

void AddLimited(const char* pOption, float fAsked, float fInForce, std::vector<std::string>& vNotes)
{
    vNotes.push_back(std::string(pOption) + " " + FormatDegrees(fAsked) + " is beyond the view's limits; " +
                     FormatDegrees(fInForce) + " was taken");
}

} // namespace

bool IsFlatView(EViewType eView)
{
    return eView == VIEW_FISHEYE || eView == VIEW_FISHEYE_CIRCULAR;
}

std::vector<std::string> ListIgnoredOptions(const SToolOptions& sOptions, int nInputFormat)
{
    const std::string strView = CDewarper::GetViewName(sOptions.eView);
    const bool bWallStrip = IsStripView(sOptions.eView) && sOptions.eMount == MOUNT_WALL;
    std::vector<std::string> vNotes;
    auto Note = [&](bool bGiven, const char* pOption, const std::string& strWhy) {
        if (bGiven)
            vNotes.push_back(std::string(pOption) + " has no effect: " + strWhy);
    };
    Note(sOptions.oTilt && !HasTilt(sOptions), "--tilt", "view " + strView + " tilts on a wall mount only");
    Note(sOptions.oZoom && !HasZoom(sOptions), "--zoom", "view " + strView + " does not zoom");
    const bool bWallSurface = IsSurfaceView(sOptions.eView) && sOptions.eMount == MOUNT_WALL;
    Note(sOptions.oMountTilt && !bWallStrip && !bWallSurface, "--mount-tilt",
         "it counts in the panoramas of a wall mount only");
    Note(!sOptions.bStrictTilt && !(bWallStrip && sOptions.oMountTilt.value_or(0.0f) != 0.0f),
         "--no-strict-tilt", "it counts in the panoramas of a wall mount with a --mount-tilt only");
    Note(sOptions.oRotation.value_or(0) != 0 && !IsFlatView(sOptions.eView), "--rotation",
         "only the views fisheye and circular turn");
    Note(sOptions.oEyeDistance && !IsCameraView(sOptions.eView), "--projection",
         "only the views vcam and quad have one");
    Note(sOptions.oRoll && !IsCameraView(sOptions.eView) && sOptions.eView != VIEW_PANINI, "--roll",
         "only the views vcam, quad and panini roll");
    const bool bDescribed = sOptions.oLens || sOptions.oCircle || sOptions.oOrientation;
    Note(!sOptions.bCleanRim && bDescribed, "--no-clean-rim",
         "views of a lens, circle or orientation of one's own end cleanly");
    const bool bBand = IsStripView(sOptions.eView) && sOptions.eMount != MOUNT_WALL;
    Note(sOptions.sShape.fSpanX > 0.0f && !IsSurfaceView(sOptions.eView) &&
             !(bBand && sOptions.eView == VIEW_PANORAMA_FULL),
         "--span", "view " + strView + " has one of its own");
    Note(sOptions.sShape.HasBand() && !bBand, "--band",
         "only the panoramas of ceiling and floor cameras have one");
    Note(sOptions.sShape.bFloorFlip && !IsFloorPanes(sOptions), "--floor-flip",
         "it counts for the views dual and triple of a floor camera");
    Note(sOptions.oOrientation && IsFlatView(sOptions.eView), "--mount-orientation",
         "flat views show the frame");
    if (sOptions.eView == VIEW_VCAM_QUAD && sOptions.eMount == MOUNT_WALL)
        vNotes.push_back("--view quad shows one camera only: the mount is a wall");
    Note(sOptions.nPaneGap > 0 && sOptions.vPanes.empty(), "--pane-gap", "there is no --pane");
    Note(sOptions.oGains && nInputFormat == IMAGE_FORMAT_GRAY8, "--gain", "the input is gray");
    const std::string strNotYUV = "the input is not YUV";
    const bool bYUV = IsYUVFormat(nInputFormat) || sOptions.bBuffers;
    Note(sOptions.oYUVSpace && !bYUV, "--yuv-space", strNotYUV);
    Note(sOptions.oYUVRange && !bYUV, "--yuv-range", strNotYUV);
    const std::string strBuffers = "graphic buffers pass as they are";
    Note(sOptions.bBuffers && sOptions.eInterpolation == INTERPOLATION_NEAREST, "--interpolation nearest",
         "graphic buffers are always filtered");
    Note(sOptions.bBuffers && (sOptions.bFlipHorizontal || sOptions.bFlipVertical), "--flip", strBuffers);
    Note(sOptions.bBuffers && sOptions.oGains, "--gain", strBuffers);
    const bool bMasks = !sOptions.vMasks.empty() || !sOptions.strMaskFile.empty();
    Note(bMasks && !sOptions.strInputOverlay.empty(), "--input-overlay", "masks take its place");
    return vNotes;
}

std::vector<std::string> ListUndrawableTexts(const std::vector<SGPUString>& vTexts)
{
    std::vector<std::string> vNotes;
    for (const SGPUString& sString : vTexts) {
        bool bDrawable = true;
        for (char nChar : sString.strText) {
            const auto nCode = static_cast<unsigned char>(nChar);
            bDrawable = bDrawable && nCode >= 32 && nCode <= 127;
        }
        if (!bDrawable)
            vNotes.push_back("text '" + sString.strText +
                             "': characters outside 32 to 127 are left blank; the font has ASCII only");
    }
    return vNotes;
}

std::vector<std::string> ListLimitedPTZ(const SToolOptions& sOptions, float fPan, float fTilt, float fZoom)
{
    std::vector<std::string> vNotes;
    // Pan comes back as another name of the same direction: 330 for -30.
    if (sOptions.oPan && std::fabs(std::remainder(*sOptions.oPan - fPan, 360.0f)) > 0.01f)
        AddLimited("--pan", *sOptions.oPan, fPan, vNotes);
    if (sOptions.oTilt && HasTilt(sOptions) && std::fabs(*sOptions.oTilt - fTilt) > 0.01f)
        AddLimited("--tilt", *sOptions.oTilt, fTilt, vNotes);
    if (sOptions.oZoom && HasZoom(sOptions) && std::fabs(*sOptions.oZoom - fZoom) > 0.01f)
        AddLimited("--zoom", *sOptions.oZoom, fZoom, vNotes);
    return vNotes;
}
