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
    if (pRooms->oPanes.Steered().AbsolutePTZ(fPan, fTilt, fZoom))
        RequestFrame();
}

void CCustomGPUDewarper::RelativePTZ(float fPan, float fTilt, float fZoom)
{
    CLockScope oScope(*this);
    if (pRooms->oPanes.Steered().RelativePTZ(fPan, fTilt, fZoom, pRooms->oPanes.IsDrawn(IsViewDrawn())))
        RequestFrame();
}

void CCustomGPUDewarper::AnaloguePTZ(float fPan, float fTilt, float fZoom)
{
    if (!pRooms->oPanes.IsSet()) {
        pRooms->oControl.AnaloguePTZ(fPan, fTilt, fZoom);
        return;
    }
    CLockScope oScope(*this);
    pRooms->oPanes.Steered().AnaloguePTZ(fPan, fTilt, fZoom);
}

void CCustomGPUDewarper::GetPTZAnalog(float& fPan, float& fTilt, float& fZoom)
{
    if (!pRooms->oPanes.IsSet()) {
        pRooms->oControl.GetPTZAnalog(fPan, fTilt, fZoom);
        return;
    }
    CLockScope oScope(*this);
    pRooms->oPanes.Asked().GetPTZAnalog(fPan, fTilt, fZoom);
}

void CCustomGPUDewarper::GetPTZ(float& fPan, float& fTilt, float& fZoom)
{
    CLockScope oScope(*this);
    pRooms->oPanes.Asked().GetPTZ(fPan, fTilt, fZoom);
}

void CCustomGPUDewarper::CheckPTZ()
{
    if (IsViewDrawn())
        pRooms->oControl.LimitPTZ();
}

void CCustomGPUDewarper::OnMouseDown(int x, int y)
{
    CLockScope oScope(*this);
    if (pRooms->oPanes.PointAt(x, y))
        pRooms->oPanes.Steered().OnMouseDown(x, y);
}

void CCustomGPUDewarper::OnMouseMove(int x, int y, bool bLockX, bool bLockY)
{
    CLockScope oScope(*this);
    const SDrawnPicture sPicture = {pMatrices->nViewportWidth, pMatrices->nViewportHeight,
                                    sMainShader.anClipPlanes[0], sMainShader.anClipPlanes[2]};
    if (pRooms->oPanes.Follow(x, y) &&
        pRooms->oPanes.Steered().OnMouseMove(x, y, bLockX, bLockY, pRooms->oPanes.Picture(sPicture),
                                             pRooms->oPanes.IsDrawn(IsViewDrawn())))
        RequestFrame();
}

void CCustomGPUDewarper::OnMouseUp()
{
    CLockScope oScope(*this);
    pRooms->oPanes.Steered().OnMouseUp();
}

void CCustomGPUDewarper::OnMouseWheel(double fDelta)
{
    CLockScope oScope(*this);
    if (pRooms->oPanes.Steered().OnMouseWheel(fDelta, pRooms->oPanes.IsDrawn(IsViewDrawn())))
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
