/// \file
/// One privacy mask polygon while it is painted.
#pragma once

#include "dewarp/gl/GPUObjBase.h"

class CCGPUObjPolygon : public CCGPUObjBase
{
public:
    explicit CCGPUObjPolygon(SGPolygon sPolygon);
    /// Triangulates the polygon; fewer than 3 points give no mesh.
    void Activate(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams) override;

    SGPolygon m_sPolygon;
};
