#include "dewarp/gl/GPUObjBase.h"

#include "tests/unit/views/ViewCase.h"

#include <algorithm>
#include <gtest/gtest.h>

TEST(GPUObjBase, StartsEmpty)
{
    const CCGPUObjBase oBase;
    EXPECT_EQ(oBase.m_nVertexBuffer, 0u);
    EXPECT_EQ(oBase.m_nTexCoordBuffer, 0u);
    EXPECT_EQ(oBase.m_nVertexCount, 0);
    EXPECT_EQ(oBase.m_fGeometryAspect, 1.0f);
    EXPECT_EQ(oBase.m_nPrimitiveMode, 4u);
}

TEST(GPUObjBase, ResetOfAnEmptyObjectKeepsThePrimitiveMode)
{
    CCGPUObjBase oBase;
    oBase.m_nPrimitiveMode = 6;
    oBase.m_fGeometryAspect = 3.0f;
    oBase.Reset(); // would need a context if it deleted anything
    EXPECT_EQ(oBase.m_nPrimitiveMode, 6u);
    EXPECT_EQ(oBase.m_fGeometryAspect, 1.0f);
}

TEST(GPUObjBase, TheOrthographicProjectionIsWrittenElementByElement)
{
    CCGPUObjBase oBase;
    SDewarpMatrices sMatrices;
    oBase.SetProjectionMatrix(&sMatrices, -2.0f, 6.0f, -1.0f, 3.0f, 0.5f, 2.5f);
    const float afWanted[16] = {0.25f, 0, 0, 0, 0, 0.5f, 0, 0, 0, 0, -1.0f, 0, -0.5f, -0.5f, -1.5f, 1.0f};
    for (int i = 0; i < 16; ++i)
        EXPECT_FLOAT_EQ(sMatrices.fProjection[i], afWanted[i]) << "element " << i;
}

TEST(GPUObjBase, EqualBoundsLeaveTheProjectionAsItIs)
{
    CCGPUObjBase oBase;
    const float afBounds[3][6] = {{2, 2, -1, 1, 0.01f, 2}, {-1, 1, 5, 5, 0.01f, 2}, {-1, 1, -1, 1, 2, 2}};
    for (const float(&f)[6] : afBounds) {
        SDewarpMatrices sMatrices;
        std::fill_n(sMatrices.fProjection, 16, 7.0f);
        oBase.SetProjectionMatrix(&sMatrices, f[0], f[1], f[2], f[3], f[4], f[5]);
        for (const float fElement : sMatrices.fProjection)
            EXPECT_EQ(fElement, 7.0f);
    }
}

TEST(GPUObjBase, SwitchesTheClipBandsOffAndLeavesTheRowRule)
{
    CCGPUObjBase oBase;
    SViewCase sCase(VIEW_FISHEYE, MOUNT_CEILING);
    std::fill_n(sCase.sShader.anClipPlanesRequested, 4, 9);
    sCase.sShader.fClipValueRequested = 0.475f;
    sCase.sShader.bTexCoordClipRequested = true;
    oBase.CheckClipPlanes(&sCase.sParams, &sCase.sMatrices, &sCase.sShader);
    for (const int nPlane : sCase.sShader.anClipPlanesRequested)
        EXPECT_EQ(nPlane, -1);
    EXPECT_EQ(sCase.sShader.fClipValueRequested, 0.0f);
    EXPECT_TRUE(sCase.sShader.bTexCoordClipRequested);
}

TEST(GPUObjBase, LeavesPositionAndModelAlone)
{
    CCGPUObjBase oBase;
    SViewCase sCase(VIEW_FISHEYE, MOUNT_CEILING);
    sCase.SetPTZ(1000.0f, -1000.0f, 999.0f);
    oBase.CheckPTZ(&sCase.sParams);
    sCase.Drag(oBase, 10, 10);
    sCase.Adjust(oBase);
    EXPECT_PTZ(sCase, 1000.0f, -1000.0f, 999.0f);
    EXPECT_EQ(sCase.sMatrices.fModel[0], 1.0f);
    EXPECT_EQ(sCase.sMatrices.fModel[12], 0.0f);
    EXPECT_EQ(oBase.GetGeometryAspect(&sCase.sParams), 1.0f);
    EXPECT_EQ(oBase.GetScaleMultiplier(&sCase.sParams), 1.0f);
    EXPECT_FLOAT_EQ(oBase.GetEyeDistance(&sCase.sParams), 0.99f) << "a flat mesh must clear the near plane";
}
