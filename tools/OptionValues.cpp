#include "OptionValues.h"

#include "Frame.h"
#include "Names.h"
#include "ToolError.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <vector>

namespace
{

/// Sizes the library draws.
const int MIN_SIDE = 2;
const int MAX_SIDE = 16384;
/// Coordinates of masks and strings are 16-bit numbers in their byte forms.
const int MIN_COORDINATE = -32768;
const int MAX_COORDINATE = 32767;

[[noreturn]] void Refuse(const char* pOption, const std::string& strText, const std::string& strExpected)
{
    ThrowUsage(std::string(pOption) + ": '" + strText + "' is not " + strExpected);
}

/// The whole text as one number; a leading + is allowed.
template <class TNumber>
bool ParseWhole(const std::string& strText, TNumber& nValue)
{
    const char* pFirst = strText.data();
    const char* pLast = pFirst + strText.size();
    if (strText.size() > 1 && *pFirst == '+' && pFirst[1] != '-')
        ++pFirst;
    const std::from_chars_result sResult = std::from_chars(pFirst, pLast, nValue);
    return sResult.ec == std::errc() && sResult.ptr == pLast;
}

std::string FormatNumber(float fValue)
{
    char aText[32];
    const std::to_chars_result sResult = std::to_chars(aText, aText + sizeof(aText), fValue);
    return std::string(aText, sResult.ptr);
}

std::string RangeText(const std::string& strMin, const std::string& strMax, const char* pUnit)
{
    std::string strRange = " from " + strMin + " to " + strMax;
    if (*pUnit != '\0')
        strRange += std::string(" (") + pUnit + ")";
    return strRange;
}

std::vector<std::string> Split(const std::string& strText, char nSeparator)
{
    std::vector<std::string> vParts(1);
    for (char nChar : strText) {
        if (nChar == nSeparator)
            vParts.emplace_back();
        else
            vParts.back() += nChar;
    }
    return vParts;
}

/// Words between blanks.
std::vector<std::string> SplitWords(const std::string& strText)
{
    std::vector<std::string> vWords;
    std::string strWord;
    for (char nChar : strText + " ") {
        if (nChar != ' ' && nChar != '\t' && nChar != '\n') {
            strWord += nChar;
        } else if (!strWord.empty()) {
            vWords.push_back(strWord);
            strWord.clear();
        }
    }
    return vWords;
}

} // namespace

float ReadFloat(const char* pOption, const std::string& strText, float fMin, float fMax, const char* pUnit)
{
    float fValue = 0.0f;
    if (!ParseWhole(strText, fValue) || !std::isfinite(fValue) || fValue < fMin || fValue > fMax)
        Refuse(pOption, strText, "a number" + RangeText(FormatNumber(fMin), FormatNumber(fMax), pUnit));
    return fValue;
}

int ReadInt(const char* pOption, const std::string& strText, int nMin, int nMax, const char* pUnit)
{
    int nValue = 0;
    if (!ParseWhole(strText, nValue) || nValue < nMin || nValue > nMax)
        Refuse(pOption, strText,
               "a whole number" + RangeText(std::to_string(nMin), std::to_string(nMax), pUnit));
    return nValue;
}

SSize ReadSize(const char* pOption, const std::string& strText)
{
    const std::vector<std::string> vSides = Split(strText, 'x');
    if (vSides.size() != 2)
        Refuse(pOption, strText, "a size WIDTHxHEIGHT in pixels, such as 1280x720");
    return {ReadInt(pOption, vSides[0], MIN_SIDE, MAX_SIDE, "pixels"),
            ReadInt(pOption, vSides[1], MIN_SIDE, MAX_SIDE, "pixels")};
}

SRawLayout ReadRawLayout(const std::string& strText)
{
    const std::vector<std::string> vParts = Split(strText, ':');
    if (vParts.size() != 2 && vParts.size() != 3)
        Refuse("--raw", strText, "FORMAT:WIDTHxHEIGHT[:STRIDE], such as nv12:1920x1080");
    SRawLayout sLayout;
    sLayout.nFormat = ReadRawFormat(vParts[0]);
    sLayout.sSize = ReadSize("--raw", vParts[1]);
    const int nRowBytes = sLayout.sSize.nWidth * GetBytesPerPixel(sLayout.nFormat);
    sLayout.nStride = nRowBytes;
    if (vParts.size() == 3)
        sLayout.nStride = ReadInt("--raw", vParts[2], nRowBytes, MAX_SIDE * 8, "bytes a row");
    return sLayout;
}

SGains ReadGains(const std::string& strText)
{
    const std::vector<std::string> vGains = Split(strText, ':');
    if (vGains.size() != 2)
        Refuse("--gain", strText, "two factors LUMA:CHROMA, such as 1.2:1.5");
    return {ReadFloat("--gain", vGains[0], 0.0f, 16.0f, "factor"),
            ReadFloat("--gain", vGains[1], 0.0f, 16.0f, "factor")};
}

SGPoint ReadPoint(const char* pOption, const std::string& strText)
{
    const std::vector<std::string> vNumbers = Split(strText, ',');
    if (vNumbers.size() != 2)
        Refuse(pOption, strText, "a position X,Y in pixels");
    return {ReadInt(pOption, vNumbers[0], MIN_COORDINATE, MAX_COORDINATE, "pixels"),
            ReadInt(pOption, vNumbers[1], MIN_COORDINATE, MAX_COORDINATE, "pixels")};
}

unsigned int ReadColor(const char* pOption, const std::string& strText)
{
    const bool bAlpha = strText.size() == 9;
    unsigned int nColor = 0;
    const char* pLast = strText.data() + strText.size();
    if ((strText.size() != 7 && !bAlpha) || strText[0] != '#')
        Refuse(pOption, strText, "a colour #RRGGBB or #RRGGBBAA");
    const std::from_chars_result sResult = std::from_chars(strText.data() + 1, pLast, nColor, 16);
    if (sResult.ec != std::errc() || sResult.ptr != pLast)
        Refuse(pOption, strText, "a colour #RRGGBB or #RRGGBBAA");
    return bAlpha ? nColor : nColor << 8 | 0xFFu;
}

SGPolygon ReadMask(const std::string& strText)
{
    const std::vector<std::string> vWords = SplitWords(strText);
    if (vWords.size() < 4)
        Refuse("--mask", strText, "\"x,y x,y x,y ... #RRGGBBAA\" with three corners or more");
    SGPolygon sPolygon;
    sPolygon.nColor = ReadColor("--mask", vWords.back());
    for (std::size_t i = 0; i + 1 < vWords.size(); i++)
        sPolygon.vPoints.push_back(ReadPoint("--mask", vWords[i]));
    return sPolygon;
}

float ReadProjection(const std::string& strText)
{
    if (strText == "rectilinear")
        return 0.0f;
    if (strText == "stereographic")
        return 1.0f;
    float fDistance = 0.0f;
    if (!ParseWhole(strText, fDistance) || !(fDistance >= 0.0f && fDistance <= 1.0f))
        Refuse("--projection", strText, "rectilinear, stereographic or a number from 0 to 1");
    return fDistance;
}

std::vector<float> ReadNumbers(const char* pOption, const std::string& strText, std::size_t nLeast,
                               std::size_t nMost, float fMost, const char* pExpected)
{
    const std::vector<std::string> vParts = Split(strText, ',');
    if (vParts.size() < nLeast || vParts.size() > nMost)
        Refuse(pOption, strText, pExpected);
    std::vector<float> vNumbers;
    for (const std::string& strPart : vParts) {
        float fValue = 0.0f;
        if (!ParseWhole(strPart, fValue) || !(std::fabs(fValue) <= fMost))
            Refuse(pOption, strText, pExpected);
        vNumbers.push_back(fValue);
    }
    return vNumbers;
}

void ReadTextAlign(const std::string& strText, SGPUString& sString)
{
    const char* pExpected = "left, center or right, if wanted followed by ,top ,middle or ,bottom";
    const std::vector<std::string> vParts = Split(strText, ',');
    auto Find = [&](const std::string& strPart, const char* pFirst, const char* pSecond, const char* pThird) {
        if (strPart == pFirst)
            return 0;
        if (strPart == pSecond)
            return 1;
        if (strPart != pThird)
            Refuse("--text-align", strText, pExpected);
        return 2;
    };
    if (vParts.size() > 2)
        Refuse("--text-align", strText, pExpected);
    sString.nHAlign = Find(vParts[0], "left", "center", "right");
    sString.nVAlign = vParts.size() == 2 ? Find(vParts[1], "top", "middle", "bottom") : 0;
}
