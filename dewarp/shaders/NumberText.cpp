#include "dewarp/shaders/NumberText.h"

#include <iomanip>
#include <locale>
#include <sstream>

namespace
{

template <typename TNumber>
std::string ClassicText(TNumber number)
{
    std::ostringstream oStream;
    oStream.imbue(std::locale::classic());
    oStream << number;
    return oStream.str();
}

} // namespace

std::string NumberText(float fNumber)
{
    return ClassicText(fNumber);
}

std::string NumberText(int nNumber)
{
    return ClassicText(nNumber);
}

std::string NumberTextFixed(float fNumber, int nDecimals)
{
    std::ostringstream oStream;
    oStream.imbue(std::locale::classic());
    oStream << std::fixed << std::setprecision(nDecimals) << fNumber;
    return oStream.str();
}

std::string NumberTextWithPoint(float fNumber)
{
    std::string strText = NumberText(fNumber);
    if (strText.find('.') == std::string::npos)
        strText += ".0";
    return strText;
}
