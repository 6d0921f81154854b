// Bytes that no one meant as a lens: each is a lens without a fault, or one line for the user.
#include "LensFile.h"

#include "LensTexts.h"
#include "ToolError.h"

#include <gtest/gtest.h>

#include <chrono>

using namespace LENS_TEXTS;

namespace
{

const char* const TEXTS[] = {pModel,         pTable,      pFisheye, pUnified, pOpenCVFisheye,
                             pOpenCVUnified, pOpenCVJSON, pROS,     pPinhole};

/// Whether it was refused; what is not can be drawn with and written.
bool IsRefused(const std::string& strBytes)
{
    try {
        const SLensFile sFile = ParseLensFile("lens", strBytes);
        EXPECT_EQ(FindLensFault(sFile.sLens), "");
        EXPECT_GT(LensEdgeAngle(sFile.sLens), 0.0);
        EXPECT_EQ(ParseLensFile("again", FormatLensFile(sFile)).sLens, sFile.sLens);
    } catch (const CToolError& rError) {
        EXPECT_EQ(rError.GetStatus(), EXIT_FAILED);
        EXPECT_LT(std::string(rError.what()).size(), 600u) << rError.what();
        return true;
    }
    return false;
}

std::string Repeated(const std::string& strPart, std::size_t nBytes)
{
    std::string strText;
    while (strText.size() < nBytes)
        strText += strPart;
    return strText;
}

} // namespace

TEST(LensFileHostile, EveryBeginningOfAFileIsRefusedOrALens)
{
    for (const char* pText : TEXTS) {
        const std::string strText = pText;
        for (std::size_t n = 0; n < strText.size(); ++n)
            IsRefused(strText.substr(0, n));
    }
    EXPECT_FALSE(IsRefused(pModel));
}

TEST(LensFileHostile, MutatedFilesAreRefusedOrALens)
{
    std::mt19937 oRandom(20240607);
    const auto Below = [&oRandom](std::size_t n) { return oRandom() % n; };
    const std::string strLetters = "{}[]:,\"'-&*!%#|>?@`\n \t0123456789.eE+\\\xff\x80";
    int nRefused = 0;
    int nRead = 0;
    for (int i = 0; i < 6000; ++i) {
        std::string strText = TEXTS[Below(std::size(TEXTS))];
        for (std::size_t n = 1 + Below(4); n > 0; --n) {
            const std::size_t nAt = Below(strText.size());
            switch (Below(4)) {
            case 0:
                strText[nAt] = strLetters[Below(strLetters.size())];
                break;
            case 1:
                strText.insert(nAt, 1, strLetters[Below(strLetters.size())]);
                break;
            case 2:
                strText.erase(nAt, 1 + Below(8));
                break;
            default:
                strText.insert(nAt, strText.substr(Below(strText.size()), 1 + Below(40)));
                break;
            }
            strText += strText.empty() ? "{" : "";
        }
        ++(IsRefused(strText) ? nRefused : nRead);
    }
    EXPECT_GT(nRefused, 1000);
    EXPECT_GT(nRead, 100);
}

TEST(LensFileHostile, BombsAreRefusedAtOnce)
{
    const std::size_t nBytes = 1000000;
    const std::string strHead = "%YAML:1.0\n---\n";
    const std::string strLaughs =
        "a: &a [x, x, x, x, x, x, x, x, x]\nb: &b [*a, *a, *a, *a, *a, *a]\nK: [*b]\n";
    const auto oStart = std::chrono::steady_clock::now();
    for (const std::string& strText :
         {"{\"model\": " + Repeated("[", nBytes),
          Repeated("{\"a\":", nBytes),
          "{\"a\":" + Repeated("9", nBytes) + "}",
          "{\"" + Repeated("k", nBytes) + "\": 1}",
          "{\"model\": \"" + Repeated("\\u0000", nBytes) + "\"}",
          "{\"table\": {\"angles\": [" + Repeated("0,", nBytes) + "0], \"heights\": [0, 1]}}",
          "{" + Repeated("\n", nBytes),
          strHead + "K: " + Repeated("[", nBytes),
          strHead + Repeated("- ", nBytes),
          strHead + Repeated("? ", nBytes),
          strHead + Repeated("{a: ", nBytes),
          strHead + Repeated("!!a ", nBytes),
          strHead + strLaughs,
          strHead + Repeated("&a ", nBytes),
          strHead + "K: \"" + Repeated("\\n", nBytes),
          strHead + "D: |\n" + Repeated(" x\n", nBytes),
          Repeated("%a b\n", nBytes),
          strHead + Repeated("a", nBytes),
          strHead + "K: [" + Repeated("1, ", nBytes) + "1]\n",
          strHead + Repeated("[a]: ", nBytes)})
        EXPECT_TRUE(IsRefused(strText)) << strText.substr(0, 40);
    const std::chrono::duration<double> oSeconds = std::chrono::steady_clock::now() - oStart;
    EXPECT_LT(oSeconds.count(), 60.0);
}

TEST(LensFileHostile, NumbersWithoutMeasureAreRefused)
{
    for (const char* pNumber :
         {"1e999", "-1e999", "1e308", "99999999999999999999999999", "-0.0001", "NaN", "Infinity", "-1",
          "true", "null", "\"200\"", "[200]", "{\"a\": 200}", "0x10", "1e-400"}) {
        EXPECT_TRUE(IsRefused(Replaced(pModel, "200", pNumber))) << pNumber;
        EXPECT_TRUE(IsRefused(Replaced(pFisheye, "610.25", pNumber))) << pNumber;
        EXPECT_TRUE(IsRefused(Replaced(pFisheye, "1920", pNumber))) << pNumber;
        EXPECT_TRUE(IsRefused(Replaced(pTable, "95.5", pNumber))) << pNumber;
        EXPECT_TRUE(IsRefused(Replaced(pOpenCVFisheye, "1280", pNumber))) << pNumber;
    }
}

TEST(LensFileHostile, BytesOfAnyKindAreRefused)
{
    std::mt19937 oRandom(7);
    for (int i = 0; i < 300; ++i) {
        std::string strBytes(1 + oRandom() % 200, '\0');
        for (char& rChar : strBytes)
            rChar = static_cast<char>(oRandom() % 256);
        EXPECT_TRUE(IsRefused(strBytes));
        EXPECT_TRUE(IsRefused("{" + strBytes));
        EXPECT_TRUE(IsRefused("%YAML:1.0\n---\n" + strBytes));
    }
}
