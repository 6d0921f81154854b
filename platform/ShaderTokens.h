/// \file
/// Shader text taken apart, so that parts of it can be replaced.
#pragma once

#include <string>
#include <vector>

enum EShaderTokenKind : int
{
    SHADER_TOKEN_BLANKS = 0, ///< blanks and line ends
    SHADER_TOKEN_COMMENT,
    SHADER_TOKEN_DIRECTIVE, ///< from the '#' to the end of its line, line end excluded
    SHADER_TOKEN_WORD,      ///< keyword or name
    SHADER_TOKEN_NUMBER,    ///< unsigned; with exponent and suffix
    SHADER_TOKEN_SIGN,      ///< any other character, one a token
};

struct SShaderToken
{
    EShaderTokenKind eKind = SHADER_TOKEN_BLANKS;
    std::string strText;
};

/// Takes a text apart; joined again, the pieces are the text.
/// Thread: any. Touches no GL.
/// Fails: never; an unfinished comment reaches to the end of the text.
std::vector<SShaderToken> SplitShaderText(const std::string& strText);

/// Puts pieces together.
std::string JoinShaderTokens(const std::vector<SShaderToken>& vTokens);
