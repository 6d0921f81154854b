#include "dewarp/records/SQPInfo.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>

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

template <class T>
void Replace(T*& rpArray, std::unique_ptr<T[]>& rpNew)
{
    delete[] rpArray;
    rpArray = rpNew.release();
}

} // namespace

SQPInfo::SQPInfo(const SQPInfo& sOther) : SQPInfo()
{
    *this = sOther;
}

SQPInfo& SQPInfo::operator=(const SQPInfo& sOther)
{
    if (this == &sOther)
        return *this;
    if (sOther.pQP == nullptr) {
        FreeArrays();
    } else {
        const std::size_t nEntries = EntryCount(sOther);
        const bool bGrows = pQP == nullptr || EntryCount(*this) < nEntries;
        // The optional arrays follow the source: absent there, absent here; the capacity is that of pQP.
        const std::size_t nCapacity = bGrows ? nEntries : EntryCount(*this);
        const bool bNewMotion = sOther.pMotion != nullptr && (bGrows || pMotion == nullptr);
        const bool bNewTypes = sOther.pMBType != nullptr && (bGrows || pMBType == nullptr);
        // What must be made comes first: if one cannot be had, this record stays as it is.
        std::unique_ptr<unsigned char[]> pNewQP(bGrows ? new unsigned char[nEntries] : nullptr);
        std::unique_ptr<unsigned int[]> pNewMotion(bNewMotion ? new unsigned int[MotionWords(nCapacity)]
                                                              : nullptr);
        std::unique_ptr<unsigned char[]> pNewTypes(bNewTypes ? new unsigned char[nCapacity] : nullptr);
        if (bGrows)
            Replace(pQP, pNewQP);
        if (bNewMotion || sOther.pMotion == nullptr)
            Replace(pMotion, pNewMotion);
        if (bNewTypes || sOther.pMBType == nullptr)
            Replace(pMBType, pNewTypes);
        std::memcpy(pQP, sOther.pQP, nEntries);
        if (pMotion != nullptr)
            std::memcpy(pMotion, sOther.pMotion, MotionWords(nEntries) * sizeof(unsigned int));
        if (pMBType != nullptr)
            std::memcpy(pMBType, sOther.pMBType, nEntries);
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
