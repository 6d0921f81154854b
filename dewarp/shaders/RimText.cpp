#include "dewarp/shaders/RimText.h"

#include "dewarp/shaders/NumberText.h"

static const char* const pCover =
    "   highp float rimOut = length(rimPlace) - 1.0;\n"
    "   highp vec2 rimSide = abs(v_TexCoordinate - 0.5) - 0.5;\n"
    "   highp float rimStep = max(length(vec2(dFdx(rimOut), dFdy(rimOut))), 1e-9);\n"
    "   highp vec2 rimSteps = max(sqrt(dFdx(rimSide) * dFdx(rimSide) + dFdy(rimSide) * dFdy(rimSide)), "
    "1e-9);\n"
    "   highp vec2 rimSides = clamp(0.5 - rimSide / rimSteps, 0.0, 1.0);\n"
    "   highp float rimCover = clamp(0.5 - rimOut / rimStep, 0.0, 1.0) * rimSides.x * rimSides.y;\n";

/// Two numbers as a vector.
static std::string Pair(float fFirst, float fSecond)
{
    const int nDecimals = 9;
    return "vec2(" + NumberTextFixed(fFirst, nDecimals) + ", " + NumberTextFixed(fSecond, nDecimals) + ")";
}

std::string RimText(const SRimInput& sInput)
{
    if (sInput.fInverseU == 0.0f)
        return std::string();
    return "   highp vec2 rimPlace = (v_TexCoordinate - " + Pair(sInput.fCenterU, sInput.fCenterV) + ") * " +
           Pair(sInput.fInverseU, sInput.fInverseV) + ";\n" + pCover;
}

std::string HighTexCoords(std::string strText)
{
    const std::string strPlain = "in vec2 v_TexCoordinate;";
    const std::size_t nAt = strText.find(strPlain);
    if (nAt != std::string::npos)
        strText.replace(nAt, strPlain.size(), "in highp vec2 v_TexCoordinate;");
    return strText;
}
