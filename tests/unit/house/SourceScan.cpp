#include "SourceScan.h"

#include "SourceTree.h"

#include <algorithm>
#include <cctype>
#include <initializer_list>
#include <string_view>

namespace
{

const std::size_t NONE = std::string::npos;

bool IsWordSign(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

bool IsBlank(char c)
{
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

std::string_view Trimmed(std::string_view strText)
{
    while (!strText.empty() && IsBlank(strText.front()))
        strText.remove_prefix(1);
    while (!strText.empty() && IsBlank(strText.back()))
        strText.remove_suffix(1);
    return strText;
}

/// The word that begins at nPlace; empty when none does.
std::string_view WordAt(std::string_view strText, std::size_t nPlace)
{
    std::size_t nEnd = nPlace;
    while (nEnd < strText.size() && IsWordSign(strText[nEnd]))
        ++nEnd;
    return strText.substr(nPlace, nEnd - nPlace);
}

std::size_t SkipBlanks(std::string_view strText, std::size_t nPlace)
{
    while (nPlace < strText.size() && IsBlank(strText[nPlace]))
        ++nPlace;
    return nPlace;
}

/// The place behind the bracket that closes the one at nOpen; the end of the text when none does.
std::size_t BehindBracket(std::string_view strText, std::size_t nOpen, char cOpen, char cClose)
{
    int nDepth = 0;
    for (std::size_t i = nOpen; i < strText.size(); ++i) {
        nDepth += (strText[i] == cOpen ? 1 : 0) - (strText[i] == cClose ? 1 : 0);
        if (nDepth == 0)
            return i + 1;
    }
    return strText.size();
}

/// Blanks out, line ends excepted.
void Blank(std::string& rText, std::size_t nBegin, std::size_t nEnd)
{
    for (std::size_t i = nBegin; i < std::min(nEnd, rText.size()); ++i)
        rText[i] = rText[i] == '\n' ? '\n' : ' ';
}

/// The place behind the literal whose quote stands at nQuote.
std::size_t BehindLiteral(const std::string& strCode, std::size_t nQuote)
{
    const char cQuote = strCode[nQuote];
    if (cQuote == '"' && nQuote > 0 && strCode[nQuote - 1] == 'R')
        return BehindRawLiteral(strCode, nQuote);
    std::size_t i = nQuote + 1;
    while (i < strCode.size() && strCode[i] != cQuote && strCode[i] != '\n')
        i += strCode[i] == '\\' ? 2 : 1;
    return std::min(i + 1, strCode.size());
}

/// Literals lose what is in them; 1'000 holds none.
void EmptyLiterals(std::string& rCode)
{
    for (std::size_t i = 0; i < rCode.size(); ++i) {
        const bool bSeparator = rCode[i] == '\'' && i > 0 && IsWordSign(rCode[i - 1]);
        if ((rCode[i] != '"' && rCode[i] != '\'') || bSeparator)
            continue;
        const std::size_t nEnd = BehindLiteral(rCode, i);
        Blank(rCode, i + 1, nEnd - 1);
        i = nEnd - 1;
    }
}

/// Preprocessor lines and those that continue them.
void BlankDirectives(std::string& rCode)
{
    bool bContinued = false;
    for (std::size_t nBegin = 0; nBegin < rCode.size();) {
        const std::size_t nEnd = std::min(rCode.find('\n', nBegin), rCode.size());
        const std::string_view strLine = Trimmed(std::string_view(rCode).substr(nBegin, nEnd - nBegin));
        const bool bDirective = bContinued || (!strLine.empty() && strLine.front() == '#');
        bContinued = bDirective && !strLine.empty() && strLine.back() == '\\';
        if (bDirective)
            Blank(rCode, nBegin, nEnd);
        nBegin = nEnd + 1;
    }
}

/// Words that are followed by brackets without being a function's name.
bool IsSpecifier(std::string_view strWord)
{
    const std::initializer_list<std::string_view> SPECIFIERS = {"__attribute__", "alignas",  "decltype",
                                                                "noexcept",      "requires", "explicit"};
    return std::find(SPECIFIERS.begin(), SPECIFIERS.end(), strWord) != SPECIFIERS.end();
}

/// What stands between the end of the last statement and a brace or semicolon.
struct SHead
{
    std::string_view strText;
    std::size_t nName = NONE;   ///< of a function
    std::size_t nOpen = NONE;   ///< the bracket behind that name
    std::size_t nEquals = NONE; ///< outside of all brackets
};

/// The beginning of the name that ends at nEnd, with the classes before it.
std::size_t NameBefore(std::string_view strText, std::size_t nEnd)
{
    std::size_t nBegin = nEnd;
    while (nBegin > 0 &&
           (IsWordSign(strText[nBegin - 1]) || strText[nBegin - 1] == ':' || strText[nBegin - 1] == '~'))
        --nBegin;
    return nBegin;
}

/// Reads past "operator" and its sign; true when it stands at nPlace.
bool SkipOperator(SHead& rHead, std::size_t& rPlace)
{
    if (WordAt(rHead.strText, rPlace) != "operator")
        return false;
    std::size_t nSign = rPlace + std::string_view("operator").size();
    const std::size_t nCall = SkipBlanks(rHead.strText, nSign);
    if (rHead.strText.substr(nCall, 2) == "()")
        nSign = nCall + 2;
    rHead.nName = NameBefore(rHead.strText, rPlace);
    rHead.nOpen = rHead.strText.find('(', nSign);
    rPlace = rHead.nOpen == NONE ? rHead.strText.size() : rHead.nOpen;
    return true;
}

/// Finds the name and the equals sign in a head.
SHead ReadHead(std::string_view strText)
{
    SHead sHead;
    sHead.strText = strText;
    for (std::size_t i = 0; i < strText.size() && sHead.nOpen == NONE && sHead.nEquals == NONE;) {
        const std::string_view strWord = WordAt(strText, i);
        if (SkipOperator(sHead, i))
            break;
        if (IsSpecifier(strWord)) {
            const std::size_t nNext = SkipBlanks(strText, i + strWord.size());
            i = nNext < strText.size() && strText[nNext] == '(' ? BehindBracket(strText, nNext, '(', ')')
                                                                : nNext;
        } else if (!strWord.empty()) {
            i += strWord.size();
        } else if (strText[i] == '<') {
            i = BehindBracket(strText, i, '<', '>');
        } else if (strText[i] == '[') {
            i = BehindBracket(strText, i, '[', ']');
        } else if (strText[i] == '(') {
            sHead.nOpen = i;
            sHead.nName = NameBefore(strText, Trimmed(strText.substr(0, i)).size());
        } else {
            sHead.nEquals = strText[i] == '=' ? i : NONE;
            ++i;
        }
    }
    return sHead;
}

/// Cuts off words that say nothing about what follows: access labels, template parameters.
std::size_t SkipPrefixes(std::string_view strCode, std::size_t nPlace)
{
    for (;;) {
        nPlace = SkipBlanks(strCode, nPlace);
        const std::string_view strWord = WordAt(strCode, nPlace);
        const std::size_t nNext = SkipBlanks(strCode, nPlace + strWord.size());
        if (strWord != "public" && strWord != "protected" && strWord != "private")
            return nPlace;
        if (nNext >= strCode.size() || strCode[nNext] != ':')
            return nPlace;
        nPlace = nNext + 1;
    }
}

/// The first word behind template parameters and storage words.
std::string_view LeadingWord(std::string_view strHead, std::size_t& rPlace)
{
    for (rPlace = SkipBlanks(strHead, 0);;) {
        const std::string_view strWord = WordAt(strHead, rPlace);
        const std::size_t nNext = SkipBlanks(strHead, rPlace + strWord.size());
        if (strWord == "template" && nNext < strHead.size() && strHead[nNext] == '<')
            rPlace = SkipBlanks(strHead, BehindBracket(strHead, nNext, '<', '>'));
        else if (strWord == "inline" || strWord == "static" || strWord == "typedef" || strWord == "extern" ||
                 strWord == "const")
            rPlace = nNext;
        else
            return strWord;
    }
}

/// The name in "class alignas(8) COuter::CName final : public CBase".
std::string TypeName(std::string_view strHead, std::size_t nPlace)
{
    std::string strName;
    while (nPlace < strHead.size()) {
        const std::string_view strWord = WordAt(strHead, nPlace);
        const std::size_t nNext = SkipBlanks(strHead, nPlace + std::max<std::size_t>(strWord.size(), 1));
        const bool bNested = strHead.substr(nPlace, 2) == "::";
        if (!bNested && (strHead[nPlace] == ':' || strHead[nPlace] == '<'))
            break;
        if (IsSpecifier(strWord) && nNext < strHead.size() && strHead[nNext] == '(') {
            nPlace = SkipBlanks(strHead, BehindBracket(strHead, nNext, '(', ')'));
            continue;
        }
        if (!strWord.empty() && strWord != "final")
            strName = strName.ends_with("::") ? strName.append(strWord) : std::string(strWord);
        if (bNested)
            strName += "::";
        nPlace = bNested ? nPlace + 2 : nNext;
    }
    return strName;
}

/// Reads code from brace to brace.
class CScanner
{
public:
    explicit CScanner(std::string_view strCode) : m_strCode(strCode) {}
    SScan Scan()
    {
        while (m_nPlace < m_strCode.size()) {
            const char c = m_strCode[m_nPlace];
            if (c == '{')
                Brace();
            else if (c == '(')
                m_nPlace = BehindBracket(m_strCode, m_nPlace, '(', ')');
            else if (c == ';' || c == '}')
                m_nBegin = ++m_nPlace;
            else
                ++m_nPlace;
        }
        return m_sScan;
    }

private:
    void Brace()
    {
        m_nBegin = SkipPrefixes(m_strCode, m_nBegin);
        const SHead sHead = ReadHead(m_strCode.substr(m_nBegin, m_nPlace - m_nBegin));
        std::size_t nLeading = 0;
        const std::string_view strLeading = LeadingWord(sHead.strText, nLeading);
        const bool bType = strLeading == "class" || strLeading == "struct" || strLeading == "union";
        const bool bLanguage = sHead.strText.starts_with("extern \"");
        if (strLeading == "namespace" || bLanguage || sHead.strText.empty()) {
            m_nBegin = ++m_nPlace; // its contents are at the same level
        } else if (bType && sHead.nOpen == NONE && sHead.nEquals == NONE) {
            m_sScan.vTypes.push_back(TypeName(sHead.strText, nLeading + strLeading.size()));
            m_nBegin = ++m_nPlace;
        } else if (sHead.nOpen == NONE || strLeading == "enum" || IsMemberInitialiser(sHead)) {
            m_nPlace = BehindBracket(m_strCode, m_nPlace, '{', '}');
        } else {
            Function(sHead);
        }
    }

    /// The brace of m_nMember{0} between a constructor's colon and its body.
    static bool IsMemberInitialiser(const SHead& sHead)
    {
        const std::string_view strText = Trimmed(sHead.strText);
        std::size_t i = BehindBracket(strText, sHead.nOpen, '(', ')');
        while (i < strText.size() && (strText[i] != ':' || strText.substr(i, 2) == "::"))
            i += strText.substr(i, 2) == "::" ? 2 : 1;
        return i < strText.size() && (IsWordSign(strText.back()) || strText.back() == '>');
    }

    void Function(const SHead& sHead)
    {
        const std::size_t nEnd = BehindBracket(m_strCode, m_nPlace, '{', '}');
        const auto itCode = m_strCode.begin();
        const auto CountEnds = [&](std::size_t nFrom, std::size_t nTo) {
            return static_cast<int>(std::count(itCode + static_cast<std::ptrdiff_t>(nFrom),
                                               itCode + static_cast<std::ptrdiff_t>(nTo), '\n'));
        };
        SFunction sFunction;
        sFunction.strName = Trimmed(sHead.strText.substr(sHead.nName, sHead.nOpen - sHead.nName));
        sFunction.nLine = 1 + CountEnds(0, m_nBegin);
        sFunction.nLines = 1 + CountEnds(m_nBegin, nEnd);
        m_sScan.vFunctions.push_back(sFunction);
        m_nBegin = m_nPlace = nEnd;
    }

    std::string_view m_strCode;
    std::size_t m_nPlace = 0;
    std::size_t m_nBegin = 0; ///< of the statement being read
    SScan m_sScan;
};

} // namespace

std::string BareCode(const std::string& strSource)
{
    std::string strCode = WithoutComments(strSource);
    EmptyLiterals(strCode);
    BlankDirectives(strCode);
    return strCode;
}

SScan ScanSource(const std::string& strSource)
{
    const std::string strCode = BareCode(strSource);
    return CScanner(strCode).Scan();
}

std::vector<std::string> CallsOf(const std::string& strSource, const std::vector<std::string>& vBeginnings)
{
    const std::string strCode = BareCode(strSource);
    std::vector<std::string> vCalls;
    for (std::size_t i = 0; i < strCode.size();) {
        const std::string strWord(WordAt(strCode, i));
        const std::size_t nNext = SkipBlanks(strCode, i + strWord.size());
        const bool bCall = !strWord.empty() && nNext < strCode.size() && strCode[nNext] == '(';
        if (bCall &&
            std::any_of(vBeginnings.begin(), vBeginnings.end(), [&](const std::string& strBeginning) {
                return strWord.starts_with(strBeginning) && strWord.size() > strBeginning.size() &&
                       std::isupper(static_cast<unsigned char>(strWord[strBeginning.size()])) != 0;
            }))
            vCalls.push_back(strWord);
        i += std::max<std::size_t>(strWord.size(), 1);
    }
    return vCalls;
}
