#include "dewarp/records/SDewarpMatrices.h"

#include <gtest/gtest.h>

TEST(SDewarpMatrices, StartsWithIdentitiesAndAnEmptyViewport)
{
    const SDewarpMatrices sMatrices;
    for (const float(*pMatrix)[16] : {&sMatrices.fModel, &sMatrices.fView, &sMatrices.fModelView,
                                      &sMatrices.fProjection, &sMatrices.fMVP}) {
        for (int nColumn = 0; nColumn < 4; ++nColumn) {
            for (int nRow = 0; nRow < 4; ++nRow)
                EXPECT_EQ((*pMatrix)[nColumn * 4 + nRow], nColumn == nRow ? 1.0f : 0.0f);
        }
    }
    EXPECT_EQ(sMatrices.nViewportX, 0);
    EXPECT_EQ(sMatrices.nViewportY, 0);
    EXPECT_EQ(sMatrices.nViewportWidth, 0);
    EXPECT_EQ(sMatrices.nViewportHeight, 0);
}
