// Pan, tilt, zoom and mouse: the rules are the control room's.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/LockScope.h"
#include "dewarp/Rooms.h"

bool CCustomGPUDewarper::IsViewDrawn() const
{
    return pActiveViewObject != nullptr && pActiveViewObject == pRequestedViewObject;
}

void CCustomGPUDewarper::AbsolutePTZ(float fPan, float fTilt, float fZoom)
{
    CLockScope oScope(*this);
    if (pRooms->oControl.AbsolutePTZ(fPan, fTilt, fZoom))
        RequestFrame();
}

void CCustomGPUDewarper::RelativePTZ(float fPan, float fTilt, float fZoom)
{
    CLockScope oScope(*this);
    if (pRooms->oControl.RelativePTZ(fPan, fTilt, fZoom, IsViewDrawn()))
        RequestFrame();
}

void CCustomGPUDewarper::AnaloguePTZ(float fPan, float fTilt, float fZoom)
{
    pRooms->oControl.AnaloguePTZ(fPan, fTilt, fZoom);
}

void CCustomGPUDewarper::GetPTZAnalog(float& fPan, float& fTilt, float& fZoom)
{
    pRooms->oControl.GetPTZAnalog(fPan, fTilt, fZoom);
}

void CCustomGPUDewarper::GetPTZ(float& fPan, float& fTilt, float& fZoom)
{
    CLockScope oScope(*this);
    pRooms->oControl.GetPTZ(fPan, fTilt, fZoom);
}

void CCustomGPUDewarper::CheckPTZ()
{
    if (IsViewDrawn())
        pRooms->oControl.LimitPTZ();
}

void CCustomGPUDewarper::OnMouseDown(int x, int y)
{
    CLockScope oScope(*this);
    pRooms->oControl.OnMouseDown(x, y);
}

void CCustomGPUDewarper::OnMouseMove(int x, int y, bool bLockX, bool bLockY)
{
    CLockScope oScope(*this);
    const SDrawnPicture sPicture = {pMatrices->nViewportWidth, pMatrices->nViewportHeight,
                                    sMainShader.anClipPlanes[0], sMainShader.anClipPlanes[2]};
    if (pRooms->oControl.OnMouseMove(x, y, bLockX, bLockY, sPicture, IsViewDrawn()))
        RequestFrame();
}

void CCustomGPUDewarper::OnMouseUp()
{
    CLockScope oScope(*this);
    pRooms->oControl.OnMouseUp();
}

void CCustomGPUDewarper::OnMouseWheel(double fDelta)
{
    CLockScope oScope(*this);
    if (pRooms->oControl.OnMouseWheel(fDelta, IsViewDrawn()))
        RequestFrame();
}

void CCustomGPUDewarper::CheckViewTypeRequest()
{
    if (pRooms->oControl.ApplyViewRequest())
        pRequestedViewObject = ObjectInForce();
}

void CCustomGPUDewarper::CheckMountTypeRequest()
{
    const bool bPanorama = pRequestedViewObject == nullptr || pRequestedViewObject == pPanorama ||
                           pRequestedViewObject == pPanoramaWall;
    if (pRooms->oControl.ApplyMountRequest() && bPanorama && pParams->eViewType != VIEW_UNSET)
        pRequestedViewObject = ObjectInForce();
}

CCGPUObjBase* CCustomGPUDewarper::ObjectInForce()
{
    switch (static_cast<int>(pRooms->oControl.View().Mesh())) {
    case MESH_VCAM:
        return pVCAM;
    case MESH_PANORAMA:
        return pPanorama;
    case MESH_PANORAMA_WALL:
        return pPanoramaWall;
    case MESH_PANORAMA_DUAL:
        return pPanoramaDual;
    case MESH_PANORAMA_TRIPLE:
        return pPanoramaTriple;
    case MESH_FISHEYE_CIRCULAR:
        return pFisheyeCircular;
    case MESH_OF_VIEW:
    case MESH_EQUIRECTANGULAR:
    case MESH_CYLINDRICAL:
    case MESH_PANINI:
        pRooms->sViews.oAnyView.Show(pRooms->oControl.View());
        return &pRooms->sViews.oAnyView;
    default:
        return pFisheye;
    }
}
