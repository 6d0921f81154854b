#include "dewarp/shaders/DiscardText.h"

#include <gtest/gtest.h>

namespace
{

SDiscardInput Bands(int nXMin, int nXMax, int nYMin, int nYMax)
{
    SDiscardInput sInput;
    sInput.anClipPlanes[0] = nXMin;
    sInput.anClipPlanes[1] = nXMax;
    sInput.anClipPlanes[2] = nYMin;
    sInput.anClipPlanes[3] = nYMax;
    return sInput;
}

} // namespace

TEST(DiscardText, NoLimitGivesNoText)
{
    EXPECT_EQ(DiscardText(SDiscardInput()), "");
}

TEST(DiscardText, HorizontalBandIsWrittenWithPoints)
{
    EXPECT_EQ(DiscardText(Bands(0, 959, -1, -1)),
              "   if (gl_FragCoord.x<0.0 || gl_FragCoord.x>959.0) discard;        \n");
}

TEST(DiscardText, VerticalBandIsWrittenWithPoints)
{
    EXPECT_EQ(DiscardText(Bands(-1, -1, 10, 1069)),
              "   if (gl_FragCoord.y<10.0 || gl_FragCoord.y>1069.0) discard;        \n");
}

TEST(DiscardText, HalfABandIsNoBand)
{
    EXPECT_EQ(DiscardText(Bands(-1, 500, -1, -1)), "");
    EXPECT_EQ(DiscardText(Bands(500, -1, -1, -1)), "");
    EXPECT_EQ(DiscardText(Bands(-1, -1, -1, 500)), "");
    EXPECT_EQ(DiscardText(Bands(-1, -1, 500, -1)), "");
}

TEST(DiscardText, OtherNegativeLimitsAreLimits)
{
    EXPECT_EQ(DiscardText(Bands(-2, 5, -1, -1)),
              "   if (gl_FragCoord.x<-2.0 || gl_FragCoord.x>5.0) discard;        \n");
}

TEST(DiscardText, DepthIsWrittenAsItFormats)
{
    SDiscardInput sInput;
    sInput.fClipValue = 0.25f;
    EXPECT_EQ(DiscardText(sInput), "   if (gl_FragCoord.z<0.25) discard;        \n");
    sInput.fClipValue = 0.475f;
    EXPECT_EQ(DiscardText(sInput), "   if (gl_FragCoord.z<0.475) discard;        \n");
    sInput.fClipValue = 1.0f;
    EXPECT_EQ(DiscardText(sInput), "   if (gl_FragCoord.z<1) discard;        \n");
    sInput.fClipValue = -0.0f; // equal to 0: no limit
    EXPECT_EQ(DiscardText(sInput), "");
}

TEST(DiscardText, TextureRowsHaveOneBlankAtTheEnd)
{
    SDiscardInput sInput;
    sInput.bTexCoordClip = true;
    EXPECT_EQ(DiscardText(sInput), "   if (v_TexCoordinate.y<0.0 || v_TexCoordinate.y>1.0) discard; \n");
}

TEST(DiscardText, AllTestsFollowInOrder)
{
    SDiscardInput sInput = Bands(1, 2, 3, 4);
    sInput.fClipValue = 0.5f;
    sInput.bTexCoordClip = true;
    EXPECT_EQ(DiscardText(sInput), "   if (gl_FragCoord.x<1.0 || gl_FragCoord.x>2.0) discard;        \n"
                                   "   if (gl_FragCoord.y<3.0 || gl_FragCoord.y>4.0) discard;        \n"
                                   "   if (gl_FragCoord.z<0.5) discard;        \n"
                                   "   if (v_TexCoordinate.y<0.0 || v_TexCoordinate.y>1.0) discard; \n");
}
