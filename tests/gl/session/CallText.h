/// \file
/// A GL or EGL call as a line of text that is the same in every run.
#pragma once

#include "tests/support/GLRecorder.h"

#include <cstddef>
#include <string>

/// 64-bit FNV-1a.
unsigned long long HashBytes(const void* pData, std::size_t nBytes, unsigned long long nHash = 0);
/// 16 hexadecimal digits.
std::string HashText(unsigned long long nHash);

/// Writes calls as lines: the name, then the arguments. Names of GL objects stand as they are, pointers as
/// "null" or "ptr", EGL attribute lists number by number, shader texts as their hash.
class CCallText
{
public:
    /// bData: lines also tell the hash of what matrices, buffers and texture pixels hold. These depend on the
    /// last bits of the mathematics library.
    explicit CCallText(bool bData) : m_bData(bData) {}

    /// One line, with its end.
    std::string Line(const SGLCall& sCall);

private:
    std::string Argument(const SGLCall& sCall, int nArg) const;
    std::string Data(const SGLCall& sCall) const;
    unsigned long long HashPixels(const SGLCall& sCall, int nFirst) const;

    bool m_bData;
    int m_nUnpackAlignment = 4;
    int m_nUnpackRowLength = 0; ///< pixels; 0: the rows' own
};
