/// \file
/// Matrices and viewport of one drawing pass.
#pragma once

#include "platform/Export.h"

/// Matrices are 4x4, column-major (element = column * 4 + row), as glUniformMatrix4fv takes them without
/// transposing. The viewport is in pixels.
struct LUMOR_API SDewarpMatrices
{
    float fModel[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    float fView[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    float fModelView[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}; ///< view x model
    float fProjection[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    float fMVP[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}; ///< projection x model-view
    int nViewportX = 0;
    int nViewportY = 0;
    int nViewportWidth = 0;
    int nViewportHeight = 0;
};
