/// \file
/// Named rows of numbers and of bytes in a file, to compare what two processors made.
#pragma once

#include <map>
#include <string>
#include <vector>

/// Owns its rows. Thread: one. Fails: with false.
class CProbeFile
{
public:
    void Add(const std::string& strName, const float* pNumbers, int nCount);
    void Add(const std::string& strName, const std::string& strBytes);
    bool Write(const std::string& strPath) const;
    bool Read(const std::string& strPath);

    std::map<std::string, std::vector<float>> mNumbers;
    std::map<std::string, std::string> mBytes;
};
