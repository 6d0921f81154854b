#include "platform/DriverTraits.h"

#include "platform/ShaderTokens.h"

#include <algorithm>
#include <iterator>

namespace
{

using VTokens = std::vector<SShaderToken>;

const char* const pYUVExtension = "GL_EXT_YUV_target";
const char* const pYUVSampler = "__samplerExternal2DY2YEXT";
const char* const pExternalSampler = "samplerExternalOES";
const char* const pExternalExtensionLine = "#extension GL_OES_EGL_image_external_essl3 : require";

bool IsAllZeros(const std::string& strDigits)
{
    return strDigits.find_first_not_of('0') == std::string::npos;
}

/// Words of texts that count in integers; numbers in such texts are left alone.
bool IsIntegerWord(const SShaderToken& sToken)
{
    static const char* const apWords[] = {"int",   "uint",  "ivec2",  "ivec3",      "ivec4",
                                          "uvec2", "uvec3", "uvec4",  "isampler2D", "usampler2D",
                                          "for",   "while", "switch", "texelFetch", "textureSize"};
    return sToken.eKind == SHADER_TOKEN_WORD &&
           std::any_of(std::begin(apWords), std::end(apWords),
                       [&](const char* pWord) { return sToken.strText == pWord; });
}

/// "1e+06" "." "0": a decimal point was added to a number that has an exponent and takes none.
void DropPointsAfterExponents(VTokens& vTokens)
{
    for (std::size_t i = 0; i + 1 < vTokens.size(); ++i) {
        const std::string& strNumber = vTokens[i].strText;
        const std::string& strNext = vTokens[i + 1].strText;
        if (vTokens[i].eKind == SHADER_TOKEN_NUMBER && vTokens[i + 1].eKind == SHADER_TOKEN_NUMBER &&
            strNumber.find_first_of("eE") != std::string::npos && strNext[0] == '.' &&
            IsAllZeros(strNext.substr(1)))
            vTokens[i + 1] = SShaderToken();
    }
}

/// "y--0.1": subtraction of a negative number, not a decrement.
void SeparateSigns(VTokens& vTokens)
{
    for (std::size_t i = 0; i + 2 < vTokens.size(); ++i) {
        if (vTokens[i].strText == "-" && vTokens[i + 1].strText == "-" &&
            vTokens[i + 2].eKind == SHADER_TOKEN_NUMBER)
            vTokens[i].strText = "- ";
    }
}

/// Integral numbers of some tokens get a decimal point, save array sizes, indices and layout values.
void MakeNumbersFloat(VTokens::iterator itFirst, VTokens::iterator itEnd)
{
    int nBrackets = 0;
    bool bLayout = false;
    for (; itFirst != itEnd; ++itFirst) {
        SShaderToken& sToken = *itFirst;
        const std::string& strText = sToken.strText;
        if (strText == "[")
            ++nBrackets;
        else if (strText == "]")
            --nBrackets;
        else if (sToken.eKind == SHADER_TOKEN_WORD)
            bLayout = bLayout || strText == "layout";
        else if (strText == ")")
            bLayout = false;
        else if (sToken.eKind == SHADER_TOKEN_NUMBER && nBrackets == 0 && !bLayout &&
                 strText.find_first_not_of("0123456789") == std::string::npos &&
                 (strText[0] != '0' || strText.size() == 1))
            sToken.strText += ".0";
    }
}

/// One past the end of a declaration, or of a function with its body.
VTokens::iterator EndOfPiece(VTokens::iterator it, VTokens::iterator itEnd)
{
    for (int nDepth = 0; it != itEnd; ++it) {
        nDepth += it->strText == "{" ? 1 : it->strText == "}" ? -1 : 0;
        if (nDepth == 0 && (it->strText == ";" || it->strText == "}"))
            return it + 1;
    }
    return itEnd;
}

/// Makes numbers floats, one function after the other: those that count in integers keep theirs, and where
/// something is declared that does, all do.
void MakeNumbersFloat(VTokens& vTokens)
{
    const auto CountsIntegers = [](VTokens::iterator itFirst, VTokens::iterator itPast) {
        return std::any_of(itFirst, itPast, IsIntegerWord);
    };
    for (const bool bLook : {true, false}) {
        for (auto it = vTokens.begin(); it != vTokens.end();) {
            const auto itPast = EndOfPiece(it, vTokens.end());
            const bool bFunction = (itPast - 1)->strText == "}";
            const bool bIntegers = CountsIntegers(it, itPast);
            if (bLook && bIntegers && !bFunction)
                return;
            if (!bLook && !bIntegers)
                MakeNumbersFloat(it, itPast);
            it = itPast;
        }
    }
}

/// First token from nIndex on that is not blank; the number of tokens when there is none.
std::size_t SkipBlanks(const VTokens& vTokens, std::size_t nIndex)
{
    while (nIndex < vTokens.size() && vTokens[nIndex].eKind == SHADER_TOKEN_BLANKS)
        ++nIndex;
    return nIndex;
}

/// One past the last token of the words, when they stand at nIndex with or without blanks between; else 0.
std::size_t Match(const VTokens& vTokens, std::size_t nIndex, std::initializer_list<const char*> vWords)
{
    for (const char* pWord : vWords) {
        nIndex = SkipBlanks(vTokens, nIndex);
        if (nIndex == vTokens.size() || vTokens[nIndex].strText != pWord)
            return 0;
        ++nIndex;
    }
    return nIndex;
}

std::size_t MatchYUVLayout(const VTokens& vTokens, std::size_t nIndex)
{
    return Match(vTokens, nIndex, {"layout", "(", "yuv", ")"});
}

void ClearTokens(VTokens& vTokens, std::size_t nFirst, std::size_t nEnd)
{
    for (std::size_t i = nFirst; i < nEnd; ++i)
        vTokens[i] = SShaderToken();
}

bool HasYUVOutput(const VTokens& vTokens)
{
    for (std::size_t i = 0; i < vTokens.size(); ++i) {
        if (vTokens[i].strText == "layout" && MatchYUVLayout(vTokens, i) != 0)
            return true;
    }
    return false;
}

/// Outputs become plain ones.
void DropYUVOutputs(VTokens& vTokens)
{
    for (std::size_t i = 0; i < vTokens.size(); ++i) {
        const std::size_t nEnd = vTokens[i].strText == "layout" ? MatchYUVLayout(vTokens, i) : 0;
        if (nEnd != 0)
            ClearTokens(vTokens, i, SkipBlanks(vTokens, nEnd));
    }
}

bool IsYUVExtensionLine(const SShaderToken& sToken)
{
    return sToken.eKind == SHADER_TOKEN_DIRECTIVE && sToken.strText.find("extension") != std::string::npos &&
           sToken.strText.find(pYUVExtension) != std::string::npos;
}

/// Samplers that deliver YUV become external image samplers, and the extension line asks for those instead.
void ReplaceYUVExtension(VTokens& vTokens)
{
    bool bExternalSampler = false;
    for (SShaderToken& sToken : vTokens) {
        if (sToken.strText == pYUVSampler) {
            sToken.strText = pExternalSampler;
            bExternalSampler = true;
        }
    }
    for (SShaderToken& sToken : vTokens) {
        if (!IsYUVExtensionLine(sToken))
            continue;
        sToken.strText = bExternalSampler ? pExternalExtensionLine : "";
        bExternalSampler = false;
    }
}

/// Raises the default precision of floats, and of samplers, which is lowp unless said otherwise. False when
/// the text states no default precision below highp.
bool RaisePrecision(VTokens& vTokens)
{
    const bool bExternal = std::any_of(vTokens.begin(), vTokens.end(), [](const SShaderToken& sToken) {
        return sToken.strText == pExternalSampler;
    });
    bool bRaised = false;
    for (std::size_t i = 0; i < vTokens.size(); ++i) {
        if (vTokens[i].strText != "precision")
            continue;
        std::size_t nEnd = Match(vTokens, i, {"precision", "mediump", "float", ";"});
        if (nEnd == 0)
            nEnd = Match(vTokens, i, {"precision", "lowp", "float", ";"});
        if (nEnd == 0)
            continue;
        ClearTokens(vTokens, i, nEnd);
        vTokens[i].strText = "precision highp float; precision highp sampler2D;";
        if (bExternal)
            vTokens[i].strText += " precision highp samplerExternalOES;";
        bRaised = true;
    }
    return bRaised;
}

std::string AdaptedCopy(VTokens vTokens, const SDriverTraits& sTraits)
{
    DropPointsAfterExponents(vTokens);
    SeparateSigns(vTokens);
    MakeNumbersFloat(vTokens);
    if (!sTraits.bYUVTarget || !sTraits.bYUVOutput)
        DropYUVOutputs(vTokens);
    if (!sTraits.bYUVTarget)
        ReplaceYUVExtension(vTokens);
    if (sTraits.bPreferHighp)
        RaisePrecision(vTokens);
    return JoinShaderTokens(vTokens);
}

} // namespace

std::string PreferredShaderText(const std::string& strText, const SDriverTraits& sTraits)
{
    if (!sTraits.bPreferHighp && sTraits.bYUVOutput)
        return strText;
    const VTokens vTokens = SplitShaderText(strText);
    VTokens vRaised = vTokens;
    const bool bFaster = sTraits.bPreferHighp && RaisePrecision(vRaised);
    const bool bWrongOutput = !sTraits.bYUVOutput && HasYUVOutput(vTokens);
    return bFaster || bWrongOutput ? AdaptedCopy(vTokens, sTraits) : strText;
}

std::string AdaptShaderText(const std::string& strText, const SDriverTraits& sTraits)
{
    std::string strCopy = AdaptedCopy(SplitShaderText(strText), sTraits);
    if (strCopy == strText || strCopy == PreferredShaderText(strText, sTraits))
        strCopy.clear();
    return strCopy;
}
