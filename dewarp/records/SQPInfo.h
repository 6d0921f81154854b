/// \file
/// Side information of a decoded frame: one value per macroblock.
#pragma once

#include "platform/Export.h"

/// Owns its arrays (new[]). Each byte array holds nHeight * nStride entries, pMotion as many 32-bit words; a
/// null pMotion or pMBType is carried as null.
struct LUMOR_API SQPInfo
{
    unsigned char* pQP = nullptr;     ///< quantiser
    unsigned int* pMotion = nullptr;  ///< carried, never uploaded
    unsigned char* pMBType = nullptr; ///< macroblock type
    int nWidth = 0;                   ///< macroblock columns
    int nHeight = 0;                  ///< macroblock rows
    int nStride = 0;                  ///< bytes a row of pQP and pMBType
    int nReserved0 = 0;
    int nReserved1 = 0;

    SQPInfo() = default;
    SQPInfo(const SQPInfo& sOther);

    /// Deep copy. Arrays that are large enough are kept; a source without pQP frees them. Without memory it
    /// throws and changes nothing.
    SQPInfo& operator=(const SQPInfo& sOther);
    ~SQPInfo();

private:
    void FreeArrays();
};
