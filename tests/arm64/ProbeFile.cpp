#include "ProbeFile.h"

#include <cstdint>
#include <fstream>

namespace
{

void PutSize(std::ostream& rStream, std::size_t nSize)
{
    const std::uint64_t n = nSize;
    rStream.write(reinterpret_cast<const char*>(&n), sizeof n);
}

void PutBytes(std::ostream& rStream, const void* pBytes, std::size_t nCount)
{
    PutSize(rStream, nCount);
    rStream.write(static_cast<const char*>(pBytes), static_cast<std::streamsize>(nCount));
}

std::string GetBytes(std::istream& rStream)
{
    std::uint64_t n = 0;
    rStream.read(reinterpret_cast<char*>(&n), sizeof n);
    std::string strBytes;
    if (rStream && n < (std::uint64_t{1} << 32))
        strBytes.resize(n);
    rStream.read(strBytes.data(), static_cast<std::streamsize>(strBytes.size()));
    return strBytes;
}

} // namespace

void CProbeFile::Add(const std::string& strName, const float* pNumbers, int nCount)
{
    mNumbers[strName].assign(pNumbers, pNumbers + nCount);
}

void CProbeFile::Add(const std::string& strName, const std::string& strBytes)
{
    mBytes[strName] = strBytes;
}

bool CProbeFile::Write(const std::string& strPath) const
{
    std::ofstream oStream(strPath, std::ios::binary);
    PutSize(oStream, mNumbers.size());
    for (const auto& [strName, vNumbers] : mNumbers) {
        PutBytes(oStream, strName.data(), strName.size());
        PutBytes(oStream, vNumbers.data(), vNumbers.size() * sizeof(float));
    }
    PutSize(oStream, mBytes.size());
    for (const auto& [strName, strBytes] : mBytes) {
        PutBytes(oStream, strName.data(), strName.size());
        PutBytes(oStream, strBytes.data(), strBytes.size());
    }
    return oStream.good();
}

bool CProbeFile::Read(const std::string& strPath)
{
    std::ifstream oStream(strPath, std::ios::binary);
    std::uint64_t nRows = 0;
    oStream.read(reinterpret_cast<char*>(&nRows), sizeof nRows);
    for (std::uint64_t i = 0; i < nRows && oStream; ++i) {
        const std::string strName = GetBytes(oStream);
        const std::string strBytes = GetBytes(oStream);
        const auto* const pNumbers = reinterpret_cast<const float*>(strBytes.data());
        mNumbers[strName].assign(pNumbers, pNumbers + strBytes.size() / sizeof(float));
    }
    oStream.read(reinterpret_cast<char*>(&nRows), sizeof nRows);
    for (std::uint64_t i = 0; i < nRows && oStream; ++i) {
        const std::string strName = GetBytes(oStream);
        mBytes[strName] = GetBytes(oStream);
    }
    return oStream.good();
}
