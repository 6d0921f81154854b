#include "SourceTree.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
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
    static const std::regex oInclude("^[ \t]*#[ \t]*include[ \t]*([<\"][^>\"]*[>\"])");
    std::vector<std::string> vIncludes;
    std::istringstream oStream(WithoutComments(strSource));
    std::string strLine;
    while (std::getline(oStream, strLine)) {
        std::smatch oMatch;
        if (std::regex_search(strLine, oMatch, oInclude))
            vIncludes.push_back(oMatch[1]);
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
            if ((c == '"' || c == '\'') && !bSeparator)
                cQuote = c;
            strCode += c;
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
