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
