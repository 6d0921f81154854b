#include "GoldenTexts.h"

#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

const char* const pGoldenDiscard = "   if (gl_FragCoord.x<0.0 || gl_FragCoord.x>959.0) discard;        \n";

namespace
{

std::string ReadGolden(const char* pName)
{
    std::ifstream oFile(std::string(TEST_SOURCE_DIR "/golden/shaders/") + pName, std::ios::binary);
    if (!oFile)
        throw std::runtime_error(std::string("cannot read ") + pName);
    return std::string(std::istreambuf_iterator<char>(oFile), std::istreambuf_iterator<char>());
}

/// "=== number length", line end, text, line end; numbers count from 0.
std::vector<std::string> ReadTexts()
{
    const std::string strFile = ReadGolden("texts.golden");
    std::vector<std::string> vTexts;
    std::size_t nPosition = 0;
    while (nPosition < strFile.size()) {
        const std::size_t nLineEnd = strFile.find('\n', nPosition);
        if (nLineEnd == std::string::npos)
            throw std::runtime_error("texts.golden ends in a head line");
        std::istringstream oHead(strFile.substr(nPosition, nLineEnd - nPosition));
        std::string strMark;
        std::size_t nNumber = 0;
        std::size_t nLength = 0;
        oHead >> strMark >> nNumber >> nLength;
        if (!oHead || strMark != "===" || nNumber != vTexts.size() ||
            nLineEnd + 1 + nLength >= strFile.size() || strFile[nLineEnd + 1 + nLength] != '\n')
            throw std::runtime_error("texts.golden is damaged");
        vTexts.push_back(strFile.substr(nLineEnd + 1, nLength));
        nPosition = nLineEnd + 1 + nLength + 1;
    }
    return vTexts;
}

std::vector<SGoldenCase> ReadCases()
{
    const std::vector<std::string> vTexts = ReadTexts();
    std::istringstream oFile(ReadGolden("cases.golden"));
    std::vector<SGoldenCase> vCases;
    std::string strLine;
    while (std::getline(oFile, strLine)) {
        const std::size_t nTab = strLine.find('\t');
        if (nTab == std::string::npos)
            throw std::runtime_error("cases.golden is damaged");
        SGoldenCase sCase;
        sCase.strKey = strLine.substr(0, nTab);
        sCase.strText = vTexts.at(std::stoul(strLine.substr(nTab + 1)));
        std::istringstream oWords(sCase.strKey);
        std::string strWord;
        oWords >> strWord; // the kind
        while (oWords >> strWord)
            sCase.vWords.push_back(strWord);
        vCases.push_back(sCase);
    }
    return vCases;
}

} // namespace

std::vector<SGoldenCase> GoldenCases(const std::string& strKind)
{
    static const std::vector<SGoldenCase> vAll = ReadCases();
    std::vector<SGoldenCase> vFound;
    for (const SGoldenCase& sCase : vAll) {
        if (sCase.strKey.compare(0, strKind.size() + 1, strKind + " ") == 0)
            vFound.push_back(sCase);
    }
    return vFound;
}
