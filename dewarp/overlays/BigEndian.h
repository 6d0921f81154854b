/// \file
/// Reads and writes big-endian numbers.
#pragma once

#include <cstddef>
#include <vector>

/// Walks over bytes it does not own. The caller asks for room first: the Read operations do not check.
/// Thread: any, serialised by the host.
class CByteReader
{
public:
    CByteReader(const unsigned char* pData, std::size_t nLength) : m_pData(pData), m_nLeft(nLength) {}

    std::size_t GetLeft() const { return m_nLeft; }
    const unsigned char* GetPosition() const { return m_pData; }
    void Skip(std::size_t nBytes)
    {
        m_pData += nBytes;
        m_nLeft -= nBytes;
    }
    unsigned int ReadUnsigned(std::size_t nBytes)
    {
        unsigned int nValue = 0;
        for (std::size_t i = 0; i < nBytes; ++i)
            nValue = nValue << 8 | m_pData[i];
        Skip(nBytes);
        return nValue;
    }
    int ReadSigned16()
    {
        const int nValue = static_cast<int>(ReadUnsigned(2));
        return nValue < 0x8000 ? nValue : nValue - 0x10000;
    }

private:
    const unsigned char* m_pData;
    std::size_t m_nLeft;
};

/// Appends the low nBytes bytes of a number, the highest first.
inline void AppendBigEndian(std::vector<unsigned char>& vBytes, unsigned int nValue, std::size_t nBytes)
{
    for (std::size_t i = nBytes; i > 0; --i)
        vBytes.push_back(static_cast<unsigned char>(nValue >> (8 * (i - 1)) & 0xFFU));
}
