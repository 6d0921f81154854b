#include "dewarp/geometry/Matrix.h"

#include <gtest/gtest.h>

TEST(Matrix, AnAxisOfAnyLengthTurnsTheSame)
{
    float afUnit[16] = {};
    float afLong[16] = {};
    setRotateM(afUnit, 0, 35.0f, 0.0f, 0.6f, 0.8f);
    setRotateM(afLong, 0, 35.0f, 0.0f, 3.0f, 4.0f);
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(afLong[i], afUnit[i], 1e-6f) << i;
    EXPECT_NEAR(afUnit[0], 0.819152f, 1e-6f) << "the cosine: the axis has no x";
    EXPECT_NEAR(afUnit[1], 0.8f * 0.573576f, 1e-6f);
}

TEST(Matrix, RotationsReadAndWriteTheMatrixAtTheOffset)
{
    // Three matrices in a row; the outer two must stay.
    float afRow[48];
    for (int i = 0; i < 48; ++i)
        afRow[i] = static_cast<float>(i);
    float afAlone[16];
    for (int i = 0; i < 16; ++i)
        afAlone[i] = afRow[16 + i];
    rotateM(afRow, 16, 35.0f, 0.0f, 0.6f, 0.8f);
    rotateM(afAlone, 0, 35.0f, 0.0f, 0.6f, 0.8f);
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(afRow[i], static_cast<float>(i));
        EXPECT_EQ(afRow[16 + i], afAlone[i]) << i;
        EXPECT_EQ(afRow[32 + i], static_cast<float>(32 + i));
    }
    float afRotation[16];
    setRotateM(afRow, 16, 35.0f, 0.0f, 0.6f, 0.8f);
    setRotateM(afRotation, 0, 35.0f, 0.0f, 0.6f, 0.8f);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(afRow[16 + i], afRotation[i]) << i;
    EXPECT_NE(afAlone[0], 16.0f) << "nothing was turned";
}
