/// \file
/// Draws the fisheye image itself, flat.
#pragma once

#include "dewarp/gl/GPUObjView.h"
#include "platform/Export.h"

/// With the primitive mode GL_TRIANGLE_FAN the object shows the lens circle only; MakeCircular sets it.
class LUMOR_API CCGPUObjFisheye : public CCGPUObjView
{
public:
    explicit CCGPUObjFisheye(bool bCircular = false);
    /// A picture of another shape takes new buffers; those there were are Reset's to delete.
    void Activate(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams) override;
};
