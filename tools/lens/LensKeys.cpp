#include "lens/LensKeys.h"

#include "lens/NumberText.h"

#include "ToolError.h"

#include <algorithm>
#include <cmath>

namespace
{

/// How many characters have to be put in, left out or replaced.
std::size_t EditsBetween(const std::string& strFirst, const std::string& strSecond)
{
    std::vector<std::size_t> vRow(strSecond.size() + 1);
    for (std::size_t j = 0; j < vRow.size(); ++j)
        vRow[j] = j;
    for (std::size_t i = 0; i < strFirst.size(); ++i) {
        std::size_t nDiagonal = vRow[0];
        vRow[0] = i + 1;
        for (std::size_t j = 0; j < strSecond.size(); ++j) {
            const std::size_t nReplaced = nDiagonal + (strFirst[i] == strSecond[j] ? 0 : 1);
            nDiagonal = vRow[j + 1];
            vRow[j + 1] = std::min({nReplaced, vRow[j] + 1, nDiagonal + 1});
        }
    }
    return vRow.back();
}

std::string Nearest(const std::string& strKey, const std::vector<std::string>& vKnown)
{
    std::string strNearest;
    std::size_t nFewest = 3; // further away it is another word
    if (strKey.size() > 40)
        return strNearest;
    for (const std::string& strKnown : vKnown) {
        const std::size_t nEdits = EditsBetween(strKey, strKnown);
        if (nEdits >= nFewest || nEdits >= strKnown.size())
            continue;
        nFewest = nEdits;
        strNearest = strKnown;
    }
    return strNearest;
}

std::string Quoted(const std::string& strText)
{
    const std::size_t nMost = 40;
    return "'" + (strText.size() > nMost ? strText.substr(0, nMost) + "..." : strText) + "'";
}

std::string Describe(const TLensTree& rValue)
{
    if (rValue.is_object())
        return "a group";
    if (rValue.is_array())
        return "a list of " + std::to_string(rValue.size());
    if (rValue.is_string())
        return Quoted(rValue.get<std::string>());
    if (rValue.is_number())
        return NumberText(rValue.get<double>());
    return Quoted(rValue.dump());
}

std::string RangeText(double fMin, double fMax, const char* pUnit)
{
    return " from " + NumberText(fMin) + " to " + NumberText(fMax) + " (" + pUnit + ")";
}

} // namespace

CLensKeys::CLensKeys(const std::string& strFile, const std::string& strPath, const TLensTree& rTree)
    : m_strFile(strFile), m_strPath(strPath), m_rTree(rTree)
{
    if (rTree.is_object())
        return;
    ThrowFailure(strPath.empty() ? strFile + ": is no group of keys and values"
                                 : strFile + ": " + strPath + ": " + Describe(rTree) +
                                       " is not a group of keys and values");
}

std::string CLensKeys::PathTo(const std::string& strKey) const
{
    return m_strPath.empty() ? strKey : m_strPath + "." + strKey;
}

void CLensKeys::RefuseOthers(const std::vector<std::string>& vKnown) const
{
    for (const auto& rItem : m_rTree.items()) {
        const std::string& strKey = rItem.key();
        if (std::find(vKnown.begin(), vKnown.end(), strKey) != vKnown.end())
            continue;
        const std::string strNearest = Nearest(strKey, vKnown);
        std::string strAdvice = "known are";
        for (const std::string& strKnown : vKnown)
            strAdvice.append(&strKnown == &vKnown.front() ? " " : ", ").append(strKnown);
        if (!strNearest.empty())
            strAdvice = "did you mean '" + strNearest + "'?";
        RefuseAll("the key " + Quoted(strKey) + " is not known; " + strAdvice);
    }
}

void CLensKeys::Refuse(const std::string& strKey, const std::string& strExpected) const
{
    ThrowFailure(m_strFile + ": " + PathTo(strKey) + ": " + Describe(m_rTree.at(strKey)) + " is not " +
                 strExpected);
}

void CLensKeys::RefuseAll(const std::string& strWhat) const
{
    ThrowFailure(m_strFile + ": " + (m_strPath.empty() ? "" : m_strPath + ": ") + strWhat);
}

const TLensTree& CLensKeys::Find(const std::string& strKey, const std::string& strExpected) const
{
    const auto it = m_rTree.find(strKey);
    if (it == m_rTree.end())
        ThrowFailure(m_strFile + ": " + PathTo(strKey) + " is missing; give " + strExpected);
    return *it;
}

CLensKeys CLensKeys::Group(const std::string& strKey) const
{
    return CLensKeys(m_strFile, PathTo(strKey), Find(strKey, "a group of keys and values"));
}

std::string CLensKeys::Text(const std::string& strKey, const char* pExpected) const
{
    const TLensTree& rValue = Find(strKey, pExpected);
    if (!rValue.is_string())
        Refuse(strKey, pExpected);
    return rValue.get<std::string>();
}

double CLensKeys::Number(const std::string& strKey, double fMin, double fMax, const char* pUnit) const
{
    const std::string strExpected = "a number" + RangeText(fMin, fMax, pUnit);
    const TLensTree& rValue = Find(strKey, strExpected);
    const double fValue = rValue.is_number() ? rValue.get<double>() : std::nan("");
    if (!(fValue >= fMin && fValue <= fMax))
        Refuse(strKey, strExpected);
    return fValue;
}

double CLensKeys::NumberOr(const std::string& strKey, double fElse, double fMin, double fMax,
                           const char* pUnit) const
{
    return Has(strKey) ? Number(strKey, fMin, fMax, pUnit) : fElse;
}

int CLensKeys::Whole(const std::string& strKey, int nMin, int nMax, const char* pUnit) const
{
    const std::string strExpected = "a whole number" + RangeText(nMin, nMax, pUnit);
    const TLensTree& rValue = Find(strKey, strExpected);
    const double fValue = rValue.is_number() ? rValue.get<double>() : std::nan("");
    if (!(fValue >= nMin && fValue <= nMax) || fValue != std::floor(fValue))
        Refuse(strKey, strExpected);
    return static_cast<int>(fValue);
}

std::vector<double> CLensKeys::Numbers(const std::string& strKey, std::size_t nLeast, std::size_t nMost) const
{
    const std::string strExpected =
        "a list of " +
        (nLeast == nMost ? std::to_string(nLeast) : std::to_string(nLeast) + " to " + std::to_string(nMost)) +
        " numbers";
    const TLensTree& rValue = Find(strKey, strExpected);
    if (!rValue.is_array() || rValue.size() < nLeast || rValue.size() > nMost)
        Refuse(strKey, strExpected);
    std::vector<double> vNumbers;
    vNumbers.reserve(rValue.size());
    for (const TLensTree& rItem : rValue) {
        const double fValue = rItem.is_number() ? rItem.get<double>() : std::nan("");
        if (!std::isfinite(fValue))
            ThrowFailure(m_strFile + ": " + PathTo(strKey) + ": row " + std::to_string(vNumbers.size()) +
                         ", " + Describe(rItem) + ", is not a finite number");
        vNumbers.push_back(fValue);
    }
    return vNumbers;
}
