#include "dewarp/overlays/SGPUString.h"

#include <gtest/gtest.h>

#include <vector>

TEST(SGPUString, BeginsAsOpaqueGreenTextOf32PixelsAtTheTopLeft)
{
    const SGPUString sString;
    EXPECT_TRUE(sString.strText.empty());
    EXPECT_EQ(sString.nHeight, 32);
    EXPECT_EQ(sString.nColor, 0x00FF00FFU);
    for (const int nValue :
         {sString.nX, sString.nY, sString.nHAlign, sString.nVAlign, sString.nHRef, sString.nVRef,
          sString.nDrawnX, sString.nDrawnY, sString.nDrawnW, sString.nDrawnH, sString.nOverlapGroup})
        EXPECT_EQ(nValue, 0);
}

TEST(SGPUString, ListsThatDifferOnlyInWhatWasDrawnCompareEqual)
{
    std::vector<SGPUString> vDrawn(3);
    std::vector<SGPUString> vNew(3);
    for (std::size_t i = 0; i < vDrawn.size(); ++i) {
        vDrawn[i].strText = vNew[i].strText = "12:00:00";
        vDrawn[i].nDrawnX = vDrawn[i].nDrawnY = vDrawn[i].nDrawnW = vDrawn[i].nDrawnH = 7;
        vDrawn[i].nOverlapGroup = 2;
        EXPECT_FALSE(vDrawn[i] != vNew[i]);
    }
}

TEST(SGPUString, EveryFieldOfTheHostMakesADifference)
{
    static int SGPUString::*const FIELDS[] = {
        &SGPUString::nX,      &SGPUString::nY,    &SGPUString::nHeight, &SGPUString::nHAlign,
        &SGPUString::nVAlign, &SGPUString::nHRef, &SGPUString::nVRef};
    for (int SGPUString::*const pField : FIELDS) {
        SGPUString sOther;
        sOther.*pField += 1;
        EXPECT_TRUE(SGPUString() != sOther);
    }
    SGPUString sColor;
    sColor.nColor ^= 1;
    EXPECT_TRUE(SGPUString() != sColor);
    SGPUString sText;
    sText.strText.assign(1, '\0'); // as long as it is, no character at all
    EXPECT_TRUE(SGPUString() != sText);
}

TEST(SGPUString, AssigningKeepsWhatWasDrawn)
{
    SGPUString sDrawn;
    sDrawn.nDrawnX = 1;
    sDrawn.nDrawnY = 2;
    sDrawn.nDrawnW = 3;
    sDrawn.nDrawnH = 4;
    sDrawn.nOverlapGroup = 5;
    SGPUString sNew;
    sNew.strText = "new";
    sNew.nX = 10;
    sNew.nVRef = 2;
    sNew.nColor = 0x01020304;
    sNew.nDrawnX = sNew.nDrawnY = sNew.nDrawnW = sNew.nDrawnH = sNew.nOverlapGroup = 99;
    sDrawn = sNew;
    EXPECT_FALSE(sDrawn != sNew);
    EXPECT_EQ(sDrawn.strText, "new");
    EXPECT_EQ(sDrawn.nDrawnX, 1);
    EXPECT_EQ(sDrawn.nDrawnY, 2);
    EXPECT_EQ(sDrawn.nDrawnW, 3);
    EXPECT_EQ(sDrawn.nDrawnH, 4);
    EXPECT_EQ(sDrawn.nOverlapGroup, 5);
}
