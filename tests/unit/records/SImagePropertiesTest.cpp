#include "dewarp/records/SImageProperties.h"

#include <gtest/gtest.h>

TEST(SImageProperties, StartsEmptyAndOwnsNothing)
{
    const SImageProperties sImage;
    EXPECT_EQ(sImage.pPlane0, nullptr);
    EXPECT_EQ(sImage.pPlane1, nullptr);
    EXPECT_EQ(sImage.pPlane2, nullptr);
    EXPECT_EQ(sImage.nWidth, 0);
    EXPECT_EQ(sImage.nHeight, 0);
    EXPECT_EQ(sImage.nStride, 0);
    EXPECT_EQ(sImage.nReserved, 0);
    EXPECT_EQ(sImage.nFormat, 0);
    EXPECT_EQ(sImage.eYUVSpace, 0);
    EXPECT_EQ(sImage.eYUVRange, 0);
    EXPECT_FALSE(sImage.bOwnsBuffers);
}

TEST(SImageProperties, PlanesOfTheHostAreLeftAlone)
{
    unsigned char aPlanes[3] = {1, 2, 3};
    SImageProperties sImage;
    sImage.pPlane0 = &aPlanes[0];
    sImage.pPlane1 = &aPlanes[1];
    sImage.pPlane2 = &aPlanes[2];
    sImage.FreeSelfBuffers();
    EXPECT_EQ(sImage.pPlane0, &aPlanes[0]);
    EXPECT_EQ(sImage.pPlane1, &aPlanes[1]);
    EXPECT_EQ(sImage.pPlane2, &aPlanes[2]);
    EXPECT_EQ(aPlanes[0], 1);
}

TEST(SImageProperties, OwnPlanesAreFreedAndForgotten)
{
    // Under AddressSanitizer this also shows that each plane is deleted, and once.
    SImageProperties sImage;
    sImage.bOwnsBuffers = true;
    sImage.pPlane0 = new unsigned char[16];
    sImage.pPlane1 = new unsigned char[8];
    sImage.pPlane2 = new unsigned char[8];
    sImage.FreeSelfBuffers();
    EXPECT_EQ(sImage.pPlane0, nullptr);
    EXPECT_EQ(sImage.pPlane1, nullptr);
    EXPECT_EQ(sImage.pPlane2, nullptr);
    EXPECT_TRUE(sImage.bOwnsBuffers);
    sImage.FreeSelfBuffers();
    EXPECT_EQ(sImage.pPlane0, nullptr);
}

TEST(SImageProperties, MissingPlanesAreSkipped)
{
    SImageProperties sImage;
    sImage.bOwnsBuffers = true;
    sImage.pPlane1 = new unsigned char[8];
    sImage.FreeSelfBuffers();
    EXPECT_EQ(sImage.pPlane1, nullptr);
}
