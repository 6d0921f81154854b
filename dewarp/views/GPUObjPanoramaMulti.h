/// \file
/// Two or three panorama panes of a ceiling or floor camera.
#pragma once

#include "dewarp/views/GPUObjBase.h"

/// What both have in common: pan and tilt live in the mesh, which is built anew whenever they change.
class CCGPUObjPanoramaMulti : public CCGPUObjBase
{
public:
    void CheckPTZ(SDewarpParams* pParams) override;
    void AdjustPTZ(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                   float fAspect, int nRotation) override;
    void OnMouseMove(SGPoint* pFrom, SGPoint* pTo, SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                     SShaderProperties* pShader) override;
    void CheckClipPlanes(SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                         SShaderProperties* pShader) override;
    float GetScaleMultiplier(SDewarpParams* pParams) override;
    void Activate(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams) override;

protected:
    /// Runs the view's generator.
    virtual void Generate(CCustomGPUGeometry& rGeometry, const SDewarpParams& rParams) = 0;
    /// Width to height of the panes side by side.
    virtual float FixedAspect() const = 0;
};

class CCGPUObjPanoramaDual : public CCGPUObjPanoramaMulti
{
protected:
    void Generate(CCustomGPUGeometry& rGeometry, const SDewarpParams& rParams) override;
    float FixedAspect() const override { return 1.6f; }
};

class CCGPUObjPanoramaTriple : public CCGPUObjPanoramaMulti
{
protected:
    void Generate(CCustomGPUGeometry& rGeometry, const SDewarpParams& rParams) override;
    float FixedAspect() const override { return 2.4f; }
};
