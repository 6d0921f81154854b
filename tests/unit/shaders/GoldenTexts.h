/// \file
/// Shader texts written by tests/golden/shaders/make_golden.py.
#pragma once

#include <string>
#include <vector>

struct SGoldenCase
{
    std::string strKey;                 ///< kind and parameters, separated by blanks
    std::vector<std::string> vWords;    ///< the parameters
    std::string strText;                ///< the text that must come out
    int Number(std::size_t nWord) const ///< a parameter as a whole number
    {
        return std::stoi(vWords.at(nWord));
    }
    bool Flag(std::size_t nWord) const { return Number(nWord) != 0; }
};

/// All cases of a kind ("fragment", "vertex", ...), in the script's order; read once. Throws
/// std::runtime_error when the files cannot be read or contradict each other.
std::vector<SGoldenCase> GoldenCases(const std::string& strKind);

/// What the discard statements of the golden texts limit: x from 0 to 959.
extern const char* const pGoldenDiscard;
