/// \file
/// Values of a lens file by their keys, with errors that say which key and what belongs there.
#pragma once

#include "lens/LensTree.h"

#include <cstddef>
#include <string>
#include <vector>

/// One group of a file. Owns: nothing; file name and tree must outlive it. Thread: any.
/// Fails: throws CToolError (EXIT_FAILED).
class CLensKeys
{
public:
    /// strPath: the keys that lead to the group, "" for the whole file.
    CLensKeys(const std::string& strFile, const std::string& strPath, const TLensTree& rTree);

    /// Refuses keys that are none of these, and says which was perhaps meant.
    void RefuseOthers(const std::vector<std::string>& vKnown) const;

    const std::string& File() const { return m_strFile; }
    bool Has(const std::string& strKey) const { return m_rTree.contains(strKey); }
    bool IsList(const std::string& strKey) const { return Has(strKey) && m_rTree.at(strKey).is_array(); }
    bool IsNumber(const std::string& strKey) const { return Has(strKey) && m_rTree.at(strKey).is_number(); }
    /// The group below a key.
    CLensKeys Group(const std::string& strKey) const;
    std::string Text(const std::string& strKey, const char* pExpected) const;
    /// Within limits, both included.
    double Number(const std::string& strKey, double fMin, double fMax, const char* pUnit) const;
    double NumberOr(const std::string& strKey, double fElse, double fMin, double fMax,
                    const char* pUnit) const;
    int Whole(const std::string& strKey, int nMin, int nMax, const char* pUnit) const;
    /// A list of numbers of any size.
    std::vector<double> Numbers(const std::string& strKey, std::size_t nLeast, std::size_t nMost) const;

    /// The key's value is not this: "a number from 1 to 280 (degrees)".
    [[noreturn]] void Refuse(const std::string& strKey, const std::string& strExpected) const;
    /// What is wrong with the group as a whole.
    [[noreturn]] void RefuseAll(const std::string& strWhat) const;
    std::string PathTo(const std::string& strKey) const;

private:
    const TLensTree& Find(const std::string& strKey, const std::string& strExpected) const;

    const std::string& m_strFile;
    std::string m_strPath;
    const TLensTree& m_rTree;
};
