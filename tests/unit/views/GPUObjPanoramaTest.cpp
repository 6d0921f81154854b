#include "dewarp/gl/GPUObjPanorama.h"

#include "dewarp/gl/GPUObjPanoramaMulti.h"
#include "tests/unit/views/ViewCase.h"

#include <gtest/gtest.h>

static constexpr float STRIP_ASPECT = 7.142857f;

TEST(GPUObjPanorama, WrapsThePanByOneTurnAndFixesTheRest)
{
    CCGPUObjPanorama oView;
    SViewCase sCase(VIEW_PANORAMA_FULL, MOUNT_CEILING);
    const float afPans[][2] = {
        {180.0f, -180.0f}, {-180.0f, 180.0f}, {179.9f, 179.9f}, {600.0f, 240.0f}, {-200.0f, 160.0f}};
    for (const float(&f)[2] : afPans) {
        sCase.SetPTZ(f[0], 33.0f, 90.0f);
        oView.CheckPTZ(&sCase.sParams);
        EXPECT_PTZ(sCase, f[1], 0.0f, 180.0f);
    }
}

TEST(GPUObjPanorama, ReportsTheAspectOfWhatItShows)
{
    CCGPUObjPanorama oView;
    oView.m_fGeometryAspect = STRIP_ASPECT;
    SViewCase sCase(VIEW_PANORAMA_FULL, MOUNT_CEILING);
    EXPECT_FLOAT_EQ(oView.GetGeometryAspect(&sCase.sParams), STRIP_ASPECT);
    EXPECT_EQ(oView.GetScaleMultiplier(&sCase.sParams), 1.0f);
    sCase.sParams.eViewType = VIEW_PANORAMA_HALF;
    EXPECT_FLOAT_EQ(oView.GetGeometryAspect(&sCase.sParams), STRIP_ASPECT * 0.5f);
    sCase.sParams.eViewType = VIEW_PANORAMA_QUARTER;
    EXPECT_FLOAT_EQ(oView.GetGeometryAspect(&sCase.sParams), STRIP_ASPECT * 0.25f);
    EXPECT_EQ(oView.GetScaleMultiplier(&sCase.sParams), 2.0f);
    sCase.sParams.eViewType = VIEW_FISHEYE;
    EXPECT_EQ(oView.GetGeometryAspect(&sCase.sParams), 1.0f);
}

TEST(GPUObjPanorama, ADragCarriesTheStripWithThePointer)
{
    CCGPUObjPanorama oView;
    SViewCase sCase(VIEW_PANORAMA_FULL, MOUNT_CEILING, 720, 480);
    sCase.SetPTZ(0.0f, 0.0f, 180.0f);
    sCase.Drag(oView, 20, 30);
    EXPECT_PTZ(sCase, -10.0f, 0.0f, 180.0f);
    sCase.sParams.eMountType = MOUNT_FLOOR;
    sCase.SetPTZ(0.0f, 0.0f, 180.0f);
    sCase.Drag(oView, 20, 0);
    EXPECT_PTZ(sCase, 10.0f, 0.0f, 180.0f);
    sCase.sParams.eMountType = MOUNT_CEILING;
    sCase.sParams.eViewType = VIEW_PANORAMA_HALF;
    sCase.SetPTZ(0.0f, 0.0f, 180.0f);
    sCase.Drag(oView, 20, 0);
    EXPECT_PTZ(sCase, -5.0f, 0.0f, 180.0f);
    // Letterboxed: only the picture between the bands counts.
    sCase.sShader.anClipPlanes[0] = 60;
    sCase.sShader.anClipPlanesRequested[0] = 100;
    sCase.SetPTZ(0.0f, 0.0f, 180.0f);
    sCase.Drag(oView, 20, 0);
    EXPECT_PTZ(sCase, -6.0f, 0.0f, 180.0f);
}

TEST(GPUObjPanorama, CutsBandsOfOneWidthWhereTheTargetIsTooWide)
{
    CCGPUObjPanorama oView;
    oView.m_fGeometryAspect = 4.0f;
    SViewCase sCase(VIEW_PANORAMA_FULL, MOUNT_CEILING, 1920, 1080);
    oView.CheckClipPlanes(&sCase.sParams, &sCase.sMatrices, &sCase.sShader);
    EXPECT_EQ(sCase.sShader.anClipPlanesRequested[0], -1);
    EXPECT_EQ(sCase.sShader.anClipPlanesRequested[1], -1);
    oView.m_fGeometryAspect = 2.0f;
    sCase.sMatrices.nViewportWidth = 2520;
    sCase.sParams.eLensType = LENS_DSL239;
    oView.CheckClipPlanes(&sCase.sParams, &sCase.sMatrices, &sCase.sShader);
    EXPECT_EQ(sCase.sShader.anClipPlanesRequested[0], 180);
    EXPECT_EQ(sCase.sShader.anClipPlanesRequested[1], 2520 - 180);
    EXPECT_EQ(sCase.sShader.anClipPlanesRequested[2], -1);
    EXPECT_EQ(sCase.sShader.anClipPlanesRequested[3], -1);
    EXPECT_TRUE(sCase.sShader.bTexCoordClipRequested);
    // Any other view changes nothing.
    sCase.sParams.eViewType = VIEW_FISHEYE;
    sCase.sMatrices.nViewportWidth = 100;
    oView.CheckClipPlanes(&sCase.sParams, &sCase.sMatrices, &sCase.sShader);
    EXPECT_EQ(sCase.sShader.anClipPlanesRequested[0], 180);
}

TEST(GPUObjPanorama, TheLowerHalfGoesOnWhereTheUpperEnds)
{
    CCGPUObjPanorama oView;
    oView.m_fGeometryAspect = STRIP_ASPECT;
    for (const float fPan : {30.0f, -30.0f})
        for (const EMountType eMount : {MOUNT_CEILING, MOUNT_FLOOR}) {
            SViewCase sCase(VIEW_PANORAMA_QUARTER, eMount);
            sCase.SetPTZ(fPan, 0.0f, 180.0f);
            sCase.Adjust(oView);
            const bool bFloor = eMount == MOUNT_FLOOR;
            const float fShift = fPan * STRIP_ASPECT / -180.0f * (bFloor ? -1.0f : 1.0f);
            const float fEnd = (fPan >= 0.0f) != bFloor ? STRIP_ASPECT : -STRIP_ASPECT;
            EXPECT_NEAR(oView.m_fUpperMVP[12], fShift, 1e-5f);
            EXPECT_NEAR(oView.m_fUpperMVP[13], 1.0f, 1e-6f);
            EXPECT_NEAR(oView.m_fLowerMVP[12], fShift + fEnd, 1e-5f);
            EXPECT_NEAR(oView.m_fLowerMVP[13], -1.0f, 1e-6f);
            EXPECT_NEAR(oView.m_fUpperMVP[0], bFloor ? -1.0f : 1.0f, 1e-6f);
            // The whole strip slides the same way.
            EXPECT_NEAR(sCase.Moved(0, 0, 0, 0), fShift, 1e-5f);
        }
}

template <typename TView>
static void ExpectMultiRules()
{
    TView oView;
    SViewCase sCase(VIEW_PANORAMA_DUAL, MOUNT_CEILING, 600, 300);
    sCase.SetPTZ(1000.0f, 60.0f, 77.0f);
    oView.CheckPTZ(&sCase.sParams);
    EXPECT_PTZ(sCase, 1000.0f, 54.0f, 180.0f);
    sCase.SetPTZ(-1000.0f, -60.0f, 500.0f);
    oView.CheckPTZ(&sCase.sParams);
    EXPECT_PTZ(sCase, -1000.0f, -54.0f, 180.0f);
    sCase.SetPTZ(0.0f, 0.0f, 180.0f);
    sCase.Drag(oView, 60, -30);
    EXPECT_PTZ(sCase, 18.0f, -18.0f, 180.0f);
    EXPECT_EQ(oView.GetScaleMultiplier(&sCase.sParams), 0.5f);
    sCase.sParams.eLensType = LENS_DSL215;
    sCase.sShader.anClipPlanesRequested[0] = 4;
    oView.CheckClipPlanes(&sCase.sParams, &sCase.sMatrices, &sCase.sShader);
    EXPECT_EQ(sCase.sShader.anClipPlanesRequested[0], -1);
    EXPECT_TRUE(sCase.sShader.bTexCoordClipRequested);
    sCase.sParams.eLensType = LENS_DSL418;
    oView.CheckClipPlanes(&sCase.sParams, &sCase.sMatrices, &sCase.sShader);
    EXPECT_FALSE(sCase.sShader.bTexCoordClipRequested);
}

TEST(GPUObjPanoramaMulti, DualAndTripleShareTheirRules)
{
    ExpectMultiRules<CCGPUObjPanoramaDual>();
    ExpectMultiRules<CCGPUObjPanoramaTriple>();
}
