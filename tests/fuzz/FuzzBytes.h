/// \file
/// Turns the bytes of a fuzz input into numbers of every kind.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <vector>

/// Reads an input from its front. Behind its end every byte is 0.
class CFuzzBytes
{
public:
    CFuzzBytes(const std::uint8_t* pData, std::size_t nSize) : m_pData(pData), m_nLeft(nSize) {}

    bool IsEmpty() const { return m_nLeft == 0; }
    unsigned int Byte()
    {
        if (m_nLeft == 0)
            return 0;
        --m_nLeft;
        return *m_pData++;
    }
    bool Bool() { return Byte() % 2 != 0; }
    /// nLow to nHigh; at most 256 values apart.
    int Between(int nLow, int nHigh)
    {
        return nLow + static_cast<int>(Byte() % (static_cast<unsigned int>(nHigh - nLow) + 1));
    }
    unsigned int Word()
    {
        unsigned int nWord = 0;
        for (int i = 0; i < 4; ++i)
            nWord = nWord << 8 | Byte();
        return nWord;
    }

    /// Mostly -60 to 179; also the ends of ranges that are checked somewhere, and any number of 32 bits.
    int Int()
    {
        static const int SPECIAL[] = {0,
                                      1,
                                      -1,
                                      2,
                                      255,
                                      256,
                                      8192,
                                      16384,
                                      16385,
                                      32767,
                                      65536,
                                      -32768,
                                      1 << 30,
                                      std::numeric_limits<int>::max(),
                                      std::numeric_limits<int>::min()};
        const unsigned int nKind = Byte();
        if (nKind < std::size(SPECIAL))
            return SPECIAL[nKind];
        if (nKind == 15)
            return static_cast<int>(Word());
        return static_cast<int>(nKind) - 76;
    }

    /// Mostly angles; also what is not one, and any 32 bits.
    float Float()
    {
        using CLimits = std::numeric_limits<float>;
        static const float SPECIAL[] = {0.0f,
                                        -0.0f,
                                        1.0f,
                                        -1.0f,
                                        0.5f,
                                        180.0f,
                                        -180.0f,
                                        360.0f,
                                        1e10f,
                                        -1e30f,
                                        CLimits::max(),
                                        CLimits::lowest(),
                                        CLimits::min(),
                                        CLimits::denorm_min(),
                                        CLimits::infinity(),
                                        -CLimits::infinity(),
                                        CLimits::quiet_NaN()};
        const unsigned int nKind = Byte();
        if (nKind < std::size(SPECIAL))
            return SPECIAL[nKind];
        if (nKind < 24)
            return std::bit_cast<float>(Word());
        return (static_cast<float>(nKind) - 140.0f) * 3.3f;
    }

    /// One of a few values mostly, for what every new value costs a compilation.
    template <class T, std::size_t N>
    T Few(const T (&atFew)[N], T (CFuzzBytes::*pAny)())
    {
        const unsigned int nKind = Byte();
        return nKind < 250 ? atFew[nKind % N] : (this->*pAny)();
    }

    /// As an enumeration of the library is stored: mostly one of the named values.
    template <class T, std::size_t N>
    T OneOf(const int (&anNamed)[N])
    {
        const unsigned int nKind = Byte();
        return static_cast<T>(nKind < 240 ? anNamed[nKind % N] : Int());
    }

    /// Up to nMost bytes in memory of exactly their number.
    std::vector<unsigned char> Block(std::size_t nMost)
    {
        const std::size_t nSize = Byte() % (nMost + 1);
        std::vector<unsigned char> vBlock(nSize);
        for (unsigned char& nByte : vBlock)
            nByte = static_cast<unsigned char>(Byte());
        return vBlock;
    }

private:
    const std::uint8_t* m_pData;
    std::size_t m_nLeft;
};
