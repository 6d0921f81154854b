#include "dewarp/records/SQPInfo.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

namespace
{

/// Entries of one array; a record with a negative or empty size holds none.
std::size_t EntryCount(const SQPInfo& sInfo)
{
    if (sInfo.nHeight < 1 || sInfo.nStride < 1)
        return 0;
    return static_cast<std::size_t>(sInfo.nHeight) * static_cast<std::size_t>(sInfo.nStride);
}

/// Words for the motion array; the byte count saturates at the largest 32-bit value, so that an absurd size
/// fails to allocate instead of wrapping round to a small one.
std::size_t MotionWords(std::size_t nEntries)
{
    const std::uint64_t nLimit = std::numeric_limits<std::uint32_t>::max() / sizeof(std::uint32_t);
    return nEntries > nLimit ? static_cast<std::size_t>(nLimit) : nEntries;
}

} // namespace

SQPInfo::SQPInfo(const SQPInfo& sOther)
{
    *this = sOther;
}

SQPInfo& SQPInfo::operator=(const SQPInfo& sOther)
{
    if (this == &sOther)
        return *this;
    const std::size_t nEntries = EntryCount(sOther);
    if (sOther.pQP == nullptr) {
        FreeArrays();
    } else {
        if (pQP == nullptr || EntryCount(*this) < nEntries) {
            FreeArrays();
            nHeight = 0; // no entries until all arrays are there, should one of them not be had
            pQP = new unsigned char[nEntries];
        }
        std::memcpy(pQP, sOther.pQP, nEntries);
        // The optional arrays follow the source: absent there, absent here; the capacity is that of pQP.
        const std::size_t nCapacity = EntryCount(*this) > nEntries ? EntryCount(*this) : nEntries;
        if (sOther.pMotion == nullptr) {
            delete[] pMotion;
            pMotion = nullptr;
        } else {
            if (pMotion == nullptr)
                pMotion = new unsigned int[MotionWords(nCapacity)];
            std::memcpy(pMotion, sOther.pMotion, MotionWords(nEntries) * sizeof(unsigned int));
        }
        if (sOther.pMBType == nullptr) {
            delete[] pMBType;
            pMBType = nullptr;
        } else {
            if (pMBType == nullptr)
                pMBType = new unsigned char[nCapacity];
            std::memcpy(pMBType, sOther.pMBType, nEntries);
        }
    }
    nWidth = sOther.nWidth;
    nHeight = sOther.nHeight;
    nStride = sOther.nStride;
    nReserved0 = sOther.nReserved0;
    nReserved1 = sOther.nReserved1;
    return *this;
}

SQPInfo::~SQPInfo()
{
    FreeArrays();
    nWidth = nHeight = nStride = nReserved0 = nReserved1 = 0;
}

void SQPInfo::FreeArrays()
{
    delete[] pQP;
    delete[] pMotion;
    delete[] pMBType;
    pQP = nullptr;
    pMotion = nullptr;
    pMBType = nullptr;
}
