#include "dewarp/shaders/NumberText.h"

#include "dewarp/shaders/DiscardText.h"
#include "dewarp/shaders/FragmentText.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <locale>
#include <sstream>

namespace
{

/// "1.234.567,5", as several European locales write.
class CGroupingPunctuation : public std::numpunct<char>
{
protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

/// The program's locale while in scope.
class CGroupingLocale
{
public:
    CGroupingLocale() = default;
    CGroupingLocale(const CGroupingLocale&) = delete;
    CGroupingLocale& operator=(const CGroupingLocale&) = delete;
    ~CGroupingLocale() { std::locale::global(m_oFormer); }

private:
    std::locale m_oFormer =
        std::locale::global(std::locale(std::locale::classic(), new CGroupingPunctuation));
};

} // namespace

TEST(NumberText, FloatsHaveSixSignificantDigits)
{
    EXPECT_EQ(NumberText(16.0f / 255.0f), "0.0627451");
    EXPECT_EQ(NumberText(235.0f / 255.0f - 16.0f / 255.0f), "0.858824");
    EXPECT_EQ(NumberText(1.0f - 16.0f / 255.0f - 16.0f / 255.0f), "0.87451");
    EXPECT_EQ(NumberText(123456.789f), "123457");
    EXPECT_EQ(NumberText(0.5f), "0.5");
}

TEST(NumberText, IntegralFloatsGetNoPoint)
{
    EXPECT_EQ(NumberText(1.0f), "1");
    EXPECT_EQ(NumberText(0.0f), "0");
    EXPECT_EQ(NumberText(-0.0f), "-0");
    EXPECT_EQ(NumberText(-20.0f), "-20");
}

TEST(NumberText, LargeAndSmallFloatsTakeTheExponentForm)
{
    EXPECT_EQ(NumberText(999999.0f), "999999");
    EXPECT_EQ(NumberText(1e6f), "1e+06");
    EXPECT_EQ(NumberText(1.5e6f), "1.5e+06");
    EXPECT_EQ(NumberText(0.0001f), "0.0001");
    EXPECT_EQ(NumberText(0.00001f), "1e-05");
    EXPECT_EQ(NumberText(std::numeric_limits<float>::max()), "3.40282e+38");
}

TEST(NumberText, AgreesWithPrintfOverAllMagnitudes)
{
    // The C library's %g is the same rule, and the C locale of a test program is the classic one.
    std::uint32_t nState = 12345;
    for (int i = 0; i < 20000; ++i) {
        nState = nState * 1664525u + 1013904223u;
        float fNumber = 0.0f;
        std::memcpy(&fNumber, &nState, sizeof fNumber);
        if (fNumber != fNumber) // the sign of NaN is written by some libraries only
            continue;
        char szExpected[64];
        std::snprintf(szExpected, sizeof szExpected, "%g", static_cast<double>(fNumber));
        ASSERT_EQ(NumberText(fNumber), szExpected);
    }
}

TEST(NumberText, IntegersAreWrittenInFull)
{
    EXPECT_EQ(NumberText(0), "0");
    EXPECT_EQ(NumberText(-1), "-1");
    EXPECT_EQ(NumberText(std::numeric_limits<int>::max()), "2147483647");
    EXPECT_EQ(NumberText(std::numeric_limits<int>::min()), "-2147483648");
}

TEST(NumberText, APointIsAddedOnlyWhereNoneIs)
{
    EXPECT_EQ(NumberTextWithPoint(1.0f), "1.0");
    EXPECT_EQ(NumberTextWithPoint(1.5f), "1.5");
    EXPECT_EQ(NumberTextWithPoint(-2.0f), "-2.0");
    EXPECT_EQ(NumberTextWithPoint(1e6f), "1e+06.0");
    EXPECT_EQ(NumberTextWithPoint(1.5e6f), "1.5e+06");
}

TEST(NumberText, TheProgramsLocaleIsIgnored)
{
    const CGroupingLocale oLocale;
    std::ostringstream oStream; // a default stream would follow it
    oStream << 1234567;
    ASSERT_EQ(oStream.str(), "1.234.567");

    EXPECT_EQ(NumberText(1234567), "1234567");
    EXPECT_EQ(NumberText(123456.0f), "123456");
    EXPECT_EQ(NumberText(0.25f), "0.25");
    EXPECT_EQ(NumberTextWithPoint(1.5f), "1.5");
    EXPECT_EQ(NumberTextFixed(1234.5f, 4), "1234.5000");
}

TEST(NumberText, FixedFormKeepsItsDecimals)
{
    EXPECT_EQ(NumberTextFixed(0.698f, 4), "0.6980");
    EXPECT_EQ(NumberTextFixed(1.3707f, 4), "1.3707");
    EXPECT_EQ(NumberTextFixed(-2.0f, 1), "-2.0");
    EXPECT_EQ(NumberTextFixed(0.96f, 1), "1.0");
    EXPECT_EQ(NumberTextFixed(3.0f, 0), "3");
}

TEST(NumberText, WholeTextsIgnoreTheProgramsLocale)
{
    SFragmentTextInput sFragment;
    sFragment.nFormat = 6;
    sFragment.nYUVRange = 2;
    sFragment.bGain = true;
    sFragment.fLumaGain = 12345.0f;
    SDiscardInput sDiscard;
    sDiscard.anClipPlanes[0] = 1234;
    sDiscard.anClipPlanes[1] = 5678901;
    sDiscard.fClipValue = 0.475f;
    const std::string strFragment = FragmentText(sFragment);
    const std::string strDiscard = DiscardText(sDiscard);

    const CGroupingLocale oLocale;
    EXPECT_EQ(FragmentText(sFragment), strFragment);
    EXPECT_EQ(DiscardText(sDiscard), strDiscard);
}
