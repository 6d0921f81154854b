/// \file
/// One privacy mask polygon while it is painted.
#pragma once

#include "dewarp/gl/GPUObjBase.h"
#include "platform/Export.h"

class LUMOR_API CCGPUObjPolygon : public CCGPUObjBase
{
public:
    explicit CCGPUObjPolygon(SGPolygon sPolygon);
    /// Triangulates the polygon; fewer than 3 points give no mesh.
    void Activate(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams) override;

    SGPolygon m_sPolygon;
};
