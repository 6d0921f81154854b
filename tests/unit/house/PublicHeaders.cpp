#include "PublicHeaders.h"

#include "SourceScan.h"

#include <algorithm>
#include <regex>
#include <sstream>

static EMark MarkOf(const std::string& strMark)
{
    return strMark.empty() ? MARK_NONE : strMark == "LUMOR_API " ? MARK_API : MARK_INTERNAL;
}

std::vector<SInstalledHeader> InstalledHeaders()
{
    const MSources oLists = ReadSources({"cmake"}, {"PublicHeaders.cmake"});
    return oLists.size() == 1 ? InstalledHeadersIn(oLists.begin()->second) : std::vector<SInstalledHeader>{};
}

std::vector<SInstalledHeader> InstalledHeadersIn(const std::string& strList)
{
    static const std::regex LINE("^ +([^ #]+\\.h) *(# *(.*[^ ]))? *$");
    std::vector<SInstalledHeader> vHeaders;
    std::istringstream oStream(strList);
    std::string strLine;
    std::smatch oMatch;
    while (std::getline(oStream, strLine)) {
        if (std::regex_match(strLine, oMatch, LINE))
            vHeaders.push_back({oMatch[1], oMatch[3]});
    }
    return vHeaders;
}

std::set<std::string> NamesOf(const std::vector<SInstalledHeader>& vHeaders)
{
    std::set<std::string> oNames;
    for (const SInstalledHeader& rHeader : vHeaders)
        oNames.insert(rHeader.strPath);
    return oNames;
}

std::vector<std::string> DeclarationsOf(const std::string& strHeader, EMark eMark)
{
    // Declarations stand at the beginning of a line: contents of classes and bodies are indented.
    static const std::regex TYPE(
        "^(class|struct|union) (LUMOR_API |LUMOR_INTERNAL_API )?(\\w+)( final)?( : .*)?$");
    static const std::regex FUNCTION("^(LUMOR_API |LUMOR_INTERNAL_API )?[\\w:][\\w:<>*& ]*[ *&](\\w+)\\(.*$");
    static const std::regex CONSTANT("^extern (LUMOR_API |LUMOR_INTERNAL_API )?const .*?(\\w+)(\\[.*)?;.*$");
    static const std::regex INLINE("^(inline|static|template|using|typedef|constexpr)\\b.*$");
    std::vector<std::string> vNames;
    std::istringstream oStream(BareCode(strHeader));
    std::string strLine;
    std::smatch oMatch;
    const auto Note = [&](std::size_t nMark, std::size_t nName) {
        if (MarkOf(oMatch[nMark].str()) == eMark)
            vNames.push_back(oMatch[nName]);
    };
    while (std::getline(oStream, strLine)) {
        strLine.erase(strLine.find_last_not_of(' ') + 1);
        if (std::regex_match(strLine, INLINE))
            continue;
        if (std::regex_match(strLine, oMatch, TYPE))
            Note(2, 3);
        else if (std::regex_match(strLine, oMatch, CONSTANT))
            Note(1, 2);
        else if (std::regex_match(strLine, oMatch, FUNCTION))
            Note(1, 2);
    }
    return vNames;
}
