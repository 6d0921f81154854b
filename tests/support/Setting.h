/// \file
/// Numbers that whoever starts a test gives it.
#pragma once

#include <cstdlib>

/// A number from the environment, or another one where there is none.
inline int Setting(const char* pVariable, int nElse)
{
    const char* const pValue = std::getenv(pVariable);
    return pValue == nullptr ? nElse : std::atoi(pValue);
}

inline double Setting(const char* pVariable, double fElse)
{
    const char* const pValue = std::getenv(pVariable);
    return pValue == nullptr ? fElse : std::atof(pValue);
}
