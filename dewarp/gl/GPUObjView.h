/// \file
/// Base of the objects that draw a view of the list.
#pragma once

#include "dewarp/gl/GPUObjBase.h"
#include "platform/Export.h"

class CView;
struct SViewPart;

/// Answers for its view: every question goes to the view's value, with the mesh that is held.
class LUMOR_API CCGPUObjView : public CCGPUObjBase
{
public:
    void CheckPTZ(SDewarpParams* pParams) override;
    void AdjustPTZ(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                   float fAspect, int nRotation) override;
    void OnMouseMove(SGPoint* pFrom, SGPoint* pTo, SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                     SShaderProperties* pShader) override;
    void CheckClipPlanes(SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                         SShaderProperties* pShader) override;
    void SetProjectionMatrix(SDewarpMatrices* pMatrices, float fLeft, float fRight, float fBottom, float fTop,
                             float fNear, float fFar) override;
    /// Draws the parts of the view, each with its matrix in its part of the viewport.
    void DrawArrays(SDewarpParams* pParams, SDewarpMatrices* pMatrices, SShaderProperties* pShader) override;
    float GetGeometryAspect(SDewarpParams* pParams) override;
    float GetScaleMultiplier(SDewarpParams* pParams) override;
    /// Builds the mesh when there is none.
    void Activate(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams) override;
    float GetEyeDistance(SDewarpParams* pParams) override;

    const CView& View() const { return *m_pView; }
    /// Into the buffers there are, or into new ones.
    void Rebuild(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams) override;

    /// Draws parts that were decided, each with its matrix in its viewport.
    void DrawEach(const SViewPart* pParts, int nParts, const SShaderProperties& rShader) const;

protected:
    explicit CCGPUObjView(const CView& rView) : m_pView(&rView) {}

    const CView* m_pView;

public:
    /// Row 0 of the target is the top of the picture: parts count their rows from the other end.
    bool m_bTopDownTarget = false;
};

/// Draws the views that have no object of their own, one after another.
class LUMOR_API CCGPUObjAnyView : public CCGPUObjView
{
public:
    CCGPUObjAnyView();
    /// The view to draw from now on; a mesh of another view is no longer fresh.
    void Show(const CView& rView) { m_pView = &rView; }
};
