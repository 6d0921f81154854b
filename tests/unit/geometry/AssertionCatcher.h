/// \file
/// In this test program a failed assertion of the library is thrown instead of stopping the program.
#pragma once

#include <string>

struct SAssertion
{
    std::string strFile;
    std::string strFunction;
    std::string strExpression;
};
