/// \file
/// What tests of view objects share.
#pragma once

#include "dewarp/gl/SShaderProperties.h"
#include "dewarp/records/SDewarpMatrices.h"
#include "dewarp/records/SDewarpParams.h"
#include "dewarp/records/SGRect.h"

/// The records that a view object is handed.
struct SViewCase
{
    SDewarpParams sParams;
    SDewarpMatrices sMatrices;
    SShaderProperties sShader;

    SViewCase(EViewType eView, EMountType eMount, int nViewportWidth = 640, int nViewportHeight = 480)
    {
        sParams.eViewType = eView;
        sParams.eMountType = eMount;
        sParams.nImageWidth = 1000;
        sParams.nImageHeight = 800;
        sMatrices.nViewportWidth = nViewportWidth;
        sMatrices.nViewportHeight = nViewportHeight;
    }
    void SetPTZ(float fPan, float fTilt, float fZoom)
    {
        sParams.fPan = fPan;
        sParams.fTilt = fTilt;
        sParams.fZoom = fZoom;
    }
    template <typename TView>
    void Drag(TView& oView, int dx, int dy)
    {
        SGPoint sFrom{100, 50};
        SGPoint sTo{100 + dx, 50 + dy};
        oView.OnMouseMove(&sFrom, &sTo, &sParams, &sMatrices, &sShader);
    }
    template <typename TView>
    void Adjust(TView& oView, float fAspect = 1.25f, int nRotation = 0)
    {
        oView.AdjustPTZ(nullptr, &sParams, &sMatrices, fAspect, nRotation);
    }
    /// Where the model matrix puts a point; nAxis 0..2.
    float Moved(float x, float y, float z, int nAxis) const
    {
        const float* m = sMatrices.fModel;
        return m[nAxis] * x + m[4 + nAxis] * y + m[8 + nAxis] * z + m[12 + nAxis];
    }
};

#define EXPECT_PTZ(CASE, PAN, TILT, ZOOM)                                                                    \
    EXPECT_FLOAT_EQ((CASE).sParams.fPan, PAN);                                                               \
    EXPECT_FLOAT_EQ((CASE).sParams.fTilt, TILT);                                                             \
    EXPECT_FLOAT_EQ((CASE).sParams.fZoom, ZOOM)
