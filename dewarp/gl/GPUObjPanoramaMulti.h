/// \file
/// Draws two or three panorama panes of a ceiling or floor camera.
#pragma once

#include "dewarp/gl/GPUObjView.h"
#include "platform/Export.h"

/// What both have in common: pan and tilt live in the mesh, which is built anew whenever they change.
class LUMOR_API CCGPUObjPanoramaMulti : public CCGPUObjView
{
public:
    void AdjustPTZ(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                   float fAspect, int nRotation) override;

protected:
    using CCGPUObjView::CCGPUObjView;
};

class LUMOR_API CCGPUObjPanoramaDual : public CCGPUObjPanoramaMulti
{
public:
    CCGPUObjPanoramaDual();
};

class LUMOR_API CCGPUObjPanoramaTriple : public CCGPUObjPanoramaMulti
{
public:
    CCGPUObjPanoramaTriple();
};
