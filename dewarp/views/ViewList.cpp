#include "dewarp/views/ViewList.h"

#include "dewarp/views/FisheyeView.h"
#include "dewarp/views/PanoramaMultiView.h"
#include "dewarp/views/PanoramaView.h"
#include "dewarp/views/PanoramaWallView.h"
#include "dewarp/views/SurfaceView.h"
#include "dewarp/views/VCAMView.h"

namespace
{

const CFisheyeView FISHEYE(MESH_FISHEYE);
const CFisheyeView CIRCULAR(MESH_FISHEYE_CIRCULAR);
const CVCAMView VCAM;
const CPanoramaView PANORAMA;
const CPanoramaWallView WALL;
const CPanoramaMultiView DUAL(2);
const CPanoramaMultiView TRIPLE(3);
const CSurfaceView EQUIRECTANGULAR(MESH_EQUIRECTANGULAR);
const CSurfaceView CYLINDRICAL(MESH_CYLINDRICAL);
const CSurfaceView PANINI(MESH_PANINI);

const SViewEntry VIEWS[] = {
    {VIEW_FISHEYE, "fisheye", &FISHEYE, &FISHEYE},
    {VIEW_FISHEYE_CIRCULAR, "circular", &CIRCULAR, &CIRCULAR},
    {VIEW_VCAM, "vcam", &VCAM, &VCAM},
    {VIEW_VCAM_QUAD, "quad", &VCAM, &VCAM},
    {VIEW_PANORAMA_FULL, "panorama", &PANORAMA, &WALL},
    {VIEW_PANORAMA_HALF, "panorama-half", &PANORAMA, &WALL},
    {VIEW_PANORAMA_QUARTER, "panorama-quarter", &PANORAMA, &WALL},
    {VIEW_PANORAMA_DUAL, "dual", &DUAL, &DUAL},
    {VIEW_PANORAMA_TRIPLE, "triple", &TRIPLE, &TRIPLE},
    {VIEW_EQUIRECTANGULAR, "equirectangular", &EQUIRECTANGULAR, &EQUIRECTANGULAR},
    {VIEW_CYLINDRICAL, "cylindrical", &CYLINDRICAL, &CYLINDRICAL},
    {VIEW_PANINI, "panini", &PANINI, &PANINI},
};

} // namespace

std::span<const SViewEntry> ListViews()
{
    return VIEWS;
}

const CView& FindView(EViewType eType, EMountType eMount)
{
    for (const SViewEntry& rEntry : VIEWS) {
        if (rEntry.eType == eType)
            return eMount == MOUNT_WALL ? *rEntry.pWallView : *rEntry.pView;
    }
    return FISHEYE;
}
