#include "platform/ShaderTokens.h"

#include <cstddef>

namespace
{

// Shader text is plain ASCII; the C library's classes follow the locale.
bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool IsWordStart(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool IsWordPart(char c)
{
    return IsWordStart(c) || IsDigit(c);
}

bool IsBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

/// Reads one text from its beginning to its end.
class CShaderSplitter
{
public:
    explicit CShaderSplitter(const std::string& strText) : m_strText(strText) {}

    bool AtEnd() const { return m_nPosition == m_strText.size(); }

    SShaderToken Next()
    {
        const std::size_t nStart = m_nPosition;
        SShaderToken sToken;
        sToken.eKind = Skip();
        sToken.strText = m_strText.substr(nStart, m_nPosition - nStart);
        if (sToken.eKind == SHADER_TOKEN_BLANKS)
            m_bLineStart = m_bLineStart || sToken.strText.find('\n') != std::string::npos;
        else if (sToken.eKind != SHADER_TOKEN_COMMENT)
            m_bLineStart = false;
        return sToken;
    }

private:
    /// The character that many places ahead; 0 past the end.
    char Peek(std::size_t nAhead = 0) const
    {
        return nAhead < m_strText.size() - m_nPosition ? m_strText[m_nPosition + nAhead] : '\0';
    }

    template <typename FTest>
    void SkipWhile(FTest isWanted)
    {
        while (!AtEnd() && isWanted(Peek()))
            ++m_nPosition;
    }

    /// Moves behind the next token and tells its kind.
    EShaderTokenKind Skip()
    {
        const char c = Peek();
        if (IsBlank(c)) {
            SkipWhile(IsBlank);
            return SHADER_TOKEN_BLANKS;
        }
        if (c == '#' && m_bLineStart) {
            SkipLine();
            return SHADER_TOKEN_DIRECTIVE;
        }
        if (c == '/' && Peek(1) == '/') {
            SkipLine();
            return SHADER_TOKEN_COMMENT;
        }
        if (c == '/' && Peek(1) == '*') {
            const std::size_t nEnd = m_strText.find("*/", m_nPosition + 2);
            m_nPosition = nEnd == std::string::npos ? m_strText.size() : nEnd + 2;
            return SHADER_TOKEN_COMMENT;
        }
        if (IsWordStart(c)) {
            SkipWhile(IsWordPart);
            return SHADER_TOKEN_WORD;
        }
        if (IsDigit(c) || (c == '.' && IsDigit(Peek(1)))) {
            SkipNumber();
            return SHADER_TOKEN_NUMBER;
        }
        ++m_nPosition;
        return SHADER_TOKEN_SIGN;
    }

    void SkipLine()
    {
        SkipWhile([](char c) { return c != '\n' && c != '\r'; });
    }

    /// Digits, point, digits, exponent; then what clings to it: suffix, hexadecimal digits.
    void SkipNumber()
    {
        const bool bHexadecimal = Peek() == '0' && (Peek(1) == 'x' || Peek(1) == 'X');
        if (!bHexadecimal) {
            SkipWhile(IsDigit);
            if (Peek() == '.') {
                ++m_nPosition;
                SkipWhile(IsDigit);
            }
            const std::size_t nSign = Peek(1) == '+' || Peek(1) == '-' ? 1 : 0;
            if ((Peek() == 'e' || Peek() == 'E') && IsDigit(Peek(1 + nSign))) {
                m_nPosition += 1 + nSign;
                SkipWhile(IsDigit);
            }
        }
        SkipWhile(IsWordPart);
    }

    const std::string& m_strText;
    std::size_t m_nPosition = 0;
    bool m_bLineStart = true; ///< only blanks and comments since the line's beginning
};

} // namespace

std::vector<SShaderToken> SplitShaderText(const std::string& strText)
{
    std::vector<SShaderToken> vTokens;
    CShaderSplitter oSplitter(strText);
    while (!oSplitter.AtEnd())
        vTokens.push_back(oSplitter.Next());
    return vTokens;
}

std::string JoinShaderTokens(const std::vector<SShaderToken>& vTokens)
{
    std::string strText;
    for (const SShaderToken& sToken : vTokens)
        strText += sToken.strText;
    return strText;
}
