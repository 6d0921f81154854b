#include "dewarp/gl/GPUObjPanoramaMulti.h"

#include "dewarp/views/View.h"
#include "dewarp/views/ViewList.h"

CCGPUObjPanoramaDual::CCGPUObjPanoramaDual()
    : CCGPUObjPanoramaMulti(FindView(VIEW_PANORAMA_DUAL, MOUNT_CEILING))
{}

CCGPUObjPanoramaTriple::CCGPUObjPanoramaTriple()
    : CCGPUObjPanoramaMulti(FindView(VIEW_PANORAMA_TRIPLE, MOUNT_CEILING))
{}

void CCGPUObjPanoramaMulti::AdjustPTZ(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams,
                                      SDewarpMatrices* pMatrices, float fAspect, int nRotation)
{
    Rebuild(pGeometry, pParams);
    m_pView->Move(*pParams, m_fGeometryAspect, fAspect, nRotation, pMatrices->fModel);
}
