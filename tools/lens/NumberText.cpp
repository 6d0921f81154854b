#include "lens/NumberText.h"

#include <charconv>
#include <cmath>

std::string NumberText(double fValue)
{
    char aText[32];
    const std::to_chars_result sResult = std::to_chars(aText, aText + sizeof(aText), fValue);
    return std::string(aText, sResult.ptr);
}

std::string FixedText(double fValue, int nDecimals)
{
    if (!(std::fabs(fValue) < 1e15))
        return NumberText(fValue);
    // No minus before what is rounded to nothing.
    const double fHalfStep = 0.5 * std::pow(10.0, -nDecimals);
    const double fShown = std::fabs(fValue) < fHalfStep ? 0.0 : fValue;
    char aText[64];
    const std::to_chars_result sResult =
        std::to_chars(aText, aText + sizeof(aText), fShown, std::chars_format::fixed, nDecimals);
    return std::string(aText, sResult.ptr);
}

bool ReadNumber(const std::string& strText, double& rValue)
{
    const char* pFirst = strText.data();
    const char* pLast = pFirst + strText.size();
    if (strText.size() > 1 && *pFirst == '+' && pFirst[1] != '-')
        ++pFirst;
    double fValue = 0.0;
    const std::from_chars_result sResult = std::from_chars(pFirst, pLast, fValue);
    if (sResult.ec != std::errc() || sResult.ptr != pLast || !std::isfinite(fValue))
        return false;
    rValue = fValue;
    return true;
}
