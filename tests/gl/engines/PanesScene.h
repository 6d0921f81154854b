/// \file
/// Panes that tests of several views in one picture use.
#pragma once

#include "tests/support/TestFrame.h"

#include "dewarp/records/SPane.h"

#include <vector>

namespace PANES_SCENE
{

inline constexpr int WIDTH = 240;
inline constexpr int HEIGHT = 160;

inline SPane PaneAt(int x, int y, int w, int h, EViewType eView = VIEW_VCAM)
{
    SPane sPane;
    sPane.sRect = {x, y, w, h};
    sPane.eView = eView;
    return sPane;
}

inline CTestFrame NewFrame(int nFormat = IMAGE_FORMAT_NV12)
{
    return CTestFrame(AsymmetricPicture(96, 96), nFormat);
}

inline constexpr EViewType VIEWS[] = {
    VIEW_VCAM,          VIEW_FISHEYE,          VIEW_FISHEYE_CIRCULAR, VIEW_PANORAMA_FULL,
    VIEW_PANORAMA_HALF, VIEW_PANORAMA_QUARTER, VIEW_PANORAMA_DUAL,    VIEW_PANORAMA_TRIPLE,
    VIEW_VCAM_QUAD,     VIEW_EQUIRECTANGULAR,  VIEW_CYLINDRICAL,      VIEW_PANINI};

/// Every view, four in a row.
inline std::vector<SPane> AllViews()
{
    std::vector<SPane> vPanes;
    for (const EViewType eView : VIEWS) {
        const int n = static_cast<int>(vPanes.size());
        vPanes.push_back(PaneAt(n % 4 * 60, n / 4 * 50, 60, 50, eView));
    }
    vPanes[0].fPan = 40.0f;
    vPanes[0].fTilt = 30.0f;
    vPanes[0].fZoom = 70.0f;
    vPanes[0].fRoll = 25.0f;
    vPanes[0].fEyeDistance = 1.0f;
    return vPanes;
}

} // namespace PANES_SCENE
