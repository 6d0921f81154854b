// The factors that shaders compute with are those of the colour table: read back out of the texts.
#include "dewarp/records/ColourMatrix.h"
#include "dewarp/shaders/FragmentText.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

namespace
{

std::string TextOf(int nFormat, int nYUVSpace, bool bGain)
{
    SFragmentTextInput sInput;
    sInput.nFormat = nFormat;
    sInput.nYUVSpace = nYUVSpace;
    sInput.bGain = bGain;
    return FragmentText(sInput);
}

/// A number at pText, its sign perhaps apart from it ("- 0.5"), into vFactors; what follows it.
const char* TakeFactor(const char* pText, std::vector<float>& vFactors)
{
    const bool bSign = *pText == '-' || *pText == '+';
    const float fSign = *pText == '-' ? -1.0f : 1.0f;
    pText += bSign ? 1 : 0;
    pText += bSign && *pText == ' ' ? 1 : 0;
    char* pEnd = nullptr;
    vFactors.push_back(fSign * std::strtof(pText, &pEnd));
    return pEnd;
}

/// Whether a line, without the blanks around it, is the pattern, in which each # stands for a number.
bool Matches(const char* pLine, const char* pPattern, std::vector<float>& vFactors)
{
    pLine += std::strspn(pLine, " ");
    for (; *pPattern != '\0'; ++pPattern) {
        if (*pPattern == '#')
            pLine = TakeFactor(pLine, vFactors);
        else if (*pLine++ != *pPattern)
            return false;
    }
    return pLine[std::strspn(pLine, " ")] == '\0';
}

/// The factors of the only line that is the pattern; empty when there is not exactly one.
std::vector<float> FactorsIn(const std::string& strText, const std::string& strPattern)
{
    std::vector<float> vFound;
    std::istringstream oStream(strText);
    std::string strLine;
    while (std::getline(oStream, strLine)) {
        std::vector<float> vFactors;
        if (!Matches(strLine.c_str(), strPattern.c_str(), vFactors))
            continue;
        if (!vFound.empty())
            return {};
        vFound = vFactors;
    }
    return vFound;
}

void ExpectConversion(const std::string& strText, const SColourMatrix& sMatrix)
{
    using VFactors = std::vector<float>;
    EXPECT_EQ(FactorsIn(strText, "rgba.r = clamp(y + # * v, 0.0, 1.0);"), VFactors{sMatrix.fRedV});
    EXPECT_EQ(FactorsIn(strText, "rgba.g = clamp(y - # * u - # * v, 0.0, 1.0);"),
              (VFactors{sMatrix.fGreenU, sMatrix.fGreenV}));
    EXPECT_EQ(FactorsIn(strText, "rgba.b = clamp(y + # * u, 0.0, 1.0);"), VFactors{sMatrix.fBlueU});
}

} // namespace

TEST(ColourText, EverySpaceIsWrittenWithTheTablesNumbers)
{
    for (const int nFormat : {5, 6, 10}) {
        for (int nSpace = YUV_SPACE_BT601; nSpace <= YUV_SPACE_BT601_SCALED; ++nSpace) {
            for (const bool bGain : {false, true}) {
                SCOPED_TRACE("format " + std::to_string(nFormat) + " space " + std::to_string(nSpace));
                ExpectConversion(TextOf(nFormat, nSpace, bGain),
                                 ColourMatrixOf(static_cast<EYUVSpace>(nSpace)));
            }
        }
    }
}

TEST(ColourText, AdjustmentsOfRGBAreWrittenWithTheTablesNumbers)
{
    const std::string strWeights = " = (#*rgba.r #*rgba.g #*rgba.b);";
    const SYUVMatrix& rMatrix = AdjustmentToYUV();
    for (const int nFormat : {0, 4, 7, 8}) {
        SCOPED_TRACE(nFormat);
        const std::string strText = TextOf(nFormat, YUV_SPACE_BT709, true);
        EXPECT_EQ(FactorsIn(strText, "y" + strWeights), std::vector<float>(rMatrix.fY, rMatrix.fY + 3));
        EXPECT_EQ(FactorsIn(strText, "u" + strWeights), std::vector<float>(rMatrix.fU, rMatrix.fU + 3));
        EXPECT_EQ(FactorsIn(strText, "v" + strWeights), std::vector<float>(rMatrix.fV, rMatrix.fV + 3));
        ExpectConversion(strText, AdjustmentToRGB());
    }
}
