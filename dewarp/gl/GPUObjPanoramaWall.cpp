#include "dewarp/gl/GPUObjPanoramaWall.h"

#include "dewarp/views/PanoramaWallView.h"
#include "dewarp/views/ViewList.h"

CCGPUObjPanoramaWall::CCGPUObjPanoramaWall() : CCGPUObjView(FindView(VIEW_PANORAMA_FULL, MOUNT_WALL)) {}

void CCGPUObjPanoramaWall::CheckTilt(float fWallAngle, float& fTilt, bool bStrict)
{
    CPanoramaWallView::LimitTilt(CPanoramaWallView::TiltBand(fWallAngle, bStrict), fTilt);
}

void CCGPUObjPanoramaWall::AdjustPTZ(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams,
                                     SDewarpMatrices* pMatrices, float fAspect, int nRotation)
{
    CheckTilt(pParams->fMountTilt, pParams->fTilt, pParams->bStrictTiltLimits);
    CCGPUObjView::AdjustPTZ(pGeometry, pParams, pMatrices, fAspect, nRotation);
}
