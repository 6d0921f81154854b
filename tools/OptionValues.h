/// \file
/// Option texts to values. Every function throws CToolError (EXIT_USAGE) that names the option, the text
/// and what is expected. Numbers are read the same way in every locale.
#pragma once

#include "Options.h"

#include <cstddef>
#include <string>
#include <vector>

/// A finite number within the limits, both included.
float ReadFloat(const char* pOption, const std::string& strText, float fMin, float fMax, const char* pUnit);
int ReadInt(const char* pOption, const std::string& strText, int nMin, int nMax, const char* pUnit);

SSize ReadSize(const char* pOption, const std::string& strText);    ///< WxH
SRawLayout ReadRawLayout(const std::string& strText);               ///< FORMAT:WxH[:STRIDE]
SGains ReadGains(const std::string& strText);                       ///< LUMA:CHROMA
SGPoint ReadPoint(const char* pOption, const std::string& strText); ///< X,Y
/// #RRGGBB (opaque) or #RRGGBBAA to 0xRRGGBBAA.
unsigned int ReadColor(const char* pOption, const std::string& strText);
SGPolygon ReadMask(const std::string& strText); ///< "x,y x,y x,y ... #RRGGBBAA"
/// rectilinear, stereographic or a number from 0 to 1.
float ReadProjection(const std::string& strText);
/// Numbers with commas between, none beyond fMost either way.
std::vector<float> ReadNumbers(const char* pOption, const std::string& strText, std::size_t nLeast,
                               std::size_t nMost, float fMost, const char* pExpected);
/// H or H,V with left, center, right and top, middle, bottom.
void ReadTextAlign(const std::string& strText, SGPUString& sString);
