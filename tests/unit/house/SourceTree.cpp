#include "SourceTree.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

namespace
{

const std::filesystem::path oRoot = std::filesystem::path(TEST_SOURCE_DIR).parent_path();

bool EndsWith(const std::string& strText, const std::string& strEnding)
{
    return strText.size() >= strEnding.size() &&
           strText.compare(strText.size() - strEnding.size(), strEnding.size(), strEnding) == 0;
}

std::string ReadFile(const std::filesystem::path& oPath)
{
    std::ifstream oFile(oPath, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(oFile), std::istreambuf_iterator<char>());
}

} // namespace

std::size_t BehindRawLiteral(const std::string& strSource, std::size_t nQuote)
{
    const std::size_t nOpen = std::min(strSource.find('(', nQuote), strSource.size() - 1);
    const std::string strEnd = Concatenate({")", strSource.substr(nQuote + 1, nOpen - nQuote - 1), "\""});
    const std::size_t nEnd = strSource.find(strEnd, nOpen);
    return nEnd == std::string::npos ? strSource.size() : nEnd + strEnd.size();
}

MSources ReadSources(const std::vector<std::string>& vFolders, const std::vector<std::string>& vEndings)
{
    MSources oSources;
    for (const std::string& strFolder : vFolders) {
        if (!std::filesystem::is_directory(oRoot / strFolder))
            continue;
        for (const auto& oEntry : std::filesystem::recursive_directory_iterator(oRoot / strFolder)) {
            const std::string strPath = oEntry.path().lexically_relative(oRoot).generic_string();
            if (oEntry.is_regular_file() &&
                std::any_of(vEndings.begin(), vEndings.end(),
                            [&](const std::string& strEnding) { return EndsWith(strPath, strEnding); }))
                oSources[strPath] = ReadFile(oEntry.path());
        }
    }
    return oSources;
}

std::vector<std::string> IncludesOf(const std::string& strSource)
{
    static const std::string BLANKS = " \t";
    static const std::string INCLUDE = "include";
    std::vector<std::string> vIncludes;
    std::istringstream oStream(WithoutComments(strSource));
    std::string strLine;
    while (std::getline(oStream, strLine)) {
        const std::size_t nHash = strLine.find_first_not_of(BLANKS);
        if (nHash == std::string::npos || strLine[nHash] != '#')
            continue;
        const std::size_t nWord = std::min(strLine.find_first_not_of(BLANKS, nHash + 1), strLine.size());
        if (strLine.compare(nWord, INCLUDE.size(), INCLUDE) != 0)
            continue;
        const std::size_t nOpen = strLine.find_first_not_of(BLANKS, nWord + INCLUDE.size());
        if (nOpen == std::string::npos || (strLine[nOpen] != '<' && strLine[nOpen] != '"'))
            continue;
        const std::size_t nClose = strLine.find(strLine[nOpen] == '<' ? '>' : '"', nOpen + 1);
        if (nClose != std::string::npos)
            vIncludes.push_back(strLine.substr(nOpen, nClose - nOpen + 1));
    }
    return vIncludes;
}

std::string WithoutComments(const std::string& strSource)
{
    std::string strCode;
    char cQuote = '\0'; // of the literal being read
    for (std::size_t i = 0; i < strSource.size(); ++i) {
        const char c = strSource[i];
        const char cNext = i + 1 < strSource.size() ? strSource[i + 1] : '\0';
        if (cQuote != '\0') {
            strCode += c;
            if (c == '\\' && cNext != '\0')
                strCode += strSource[++i];
            else if (c == cQuote || c == '\n')
                cQuote = '\0';
        } else if (c == '/' && cNext == '/') {
            i = std::min(strSource.find('\n', i), strSource.size()) - 1;
        } else if (c == '/' && cNext == '*') {
            const std::size_t nEnd = std::min(strSource.find("*/", i + 2), strSource.size());
            strCode.append(static_cast<std::size_t>(
                               std::count(strSource.begin() + static_cast<std::ptrdiff_t>(i),
                                          strSource.begin() + static_cast<std::ptrdiff_t>(nEnd), '\n')),
                           '\n');
            i = nEnd + 1;
        } else {
            // 1'000: a quote between digits separates them.
            const bool bSeparator = c == '\'' && !strCode.empty() && std::isalnum(strCode.back()) != 0;
            const bool bRaw = c == '"' && strCode.ends_with('R');
            if ((c == '"' || c == '\'') && !bSeparator && !bRaw)
                cQuote = c;
            const std::size_t nEnd = bRaw ? BehindRawLiteral(strSource, i) : i + 1;
            strCode.append(strSource, i, nEnd - i);
            i = nEnd - 1;
        }
    }
    return strCode;
}

std::vector<std::string> IncludesReached(const MSources& oSources, const std::string& strPath)
{
    std::set<std::string> oSeen;
    std::vector<std::string> vReached;
    std::vector<std::string> vOpen = {strPath};
    while (!vOpen.empty()) {
        const auto itSource = oSources.find(vOpen.back());
        vOpen.pop_back();
        if (itSource == oSources.end())
            continue;
        for (const std::string& strInclude : IncludesOf(itSource->second)) {
            if (!oSeen.insert(strInclude).second)
                continue;
            vReached.push_back(strInclude);
            vOpen.push_back(strInclude.substr(1, strInclude.size() - 2));
        }
    }
    return vReached;
}

std::string Concatenate(std::initializer_list<std::string> vPieces)
{
    std::string strText;
    for (const std::string& strPiece : vPieces)
        strText += strPiece;
    return strText;
}

int CountLines(const std::string& strSource)
{
    const auto nEnds = std::count(strSource.begin(), strSource.end(), '\n');
    return static_cast<int>(nEnds) + (!strSource.empty() && strSource.back() != '\n' ? 1 : 0);
}
