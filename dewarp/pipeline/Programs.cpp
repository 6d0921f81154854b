// When the main program must be rebuilt, and how a program is built.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/records/LogTag.h"
#include "dewarp/shaders/DiscardText.h"
#include "dewarp/shaders/FragmentText.h"
#include "dewarp/shaders/VertexText.h"
#include "platform/ShaderDialect.h"

#include <GLES3/gl31.h>
#include <android/log.h>

namespace
{

void SetSampler(unsigned int nProgram, const char* pName, int nUnit)
{
    glUniform1i(glGetUniformLocation(nProgram, pName), nUnit);
}

bool Compile(unsigned int nShader, const std::string& strText)
{
    const char* pText = strText.c_str();
    glShaderSource(nShader, 1, &pText, nullptr);
    glCompileShader(nShader);
    GLint nStatus = GL_FALSE;
    glGetShaderiv(nShader, GL_COMPILE_STATUS, &nStatus);
    return nStatus != GL_FALSE;
}

void LogCompileError(unsigned int nShader, const char* pMessage)
{
    GLint nLength = 0;
    glGetShaderiv(nShader, GL_INFO_LOG_LENGTH, &nLength);
    if (nLength < 1) {
        __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG, pMessage, "LoadShaderPrograms", "none given");
        return;
    }
    std::string strLog(static_cast<std::size_t>(nLength), '\0');
    glGetShaderInfoLog(nShader, nLength, nullptr, strLog.data());
    __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG, pMessage, "LoadShaderPrograms", strLog.c_str());
}

} // namespace

int CCustomGPUDewarper::CheckLoadShaders()
{
    GetIBRDecodingParams();
    GetYUV2RGBConversionParams();
    const int nPlatformWish = OSDependentCheckLoadShaders();
    const bool bNeeded = !bShadersLoaded || sMainShader.ShouldReloadShaders() || nPlatformWish != 0;
    const bool bQP = pQPInfo->pQP != nullptr;
    if (bQP != sMainShader.bQPTextures) {
        sMainShader.bQPTextures = bQP;
        InitializeTextures();
    } else if (!bNeeded) {
        return 0;
    }
    sMainShader.bForceReload = false;
    if (bTexturesNeedInit)
        InitializeTextures();
    sMainShader.Free();
    sMainShader.bGain = sMainShader.bGainRequested;
    sMainShader.fLumaGain = sMainShader.fLumaGainRequested;
    sMainShader.fChromaGain = sMainShader.fChromaGainRequested;
    sMainShader.bFlipHorizontal = sMainShader.bFlipHorizontalRequested;
    sMainShader.bFlipVertical = sMainShader.bFlipVerticalRequested;
    sMainShader.sYUV2RGB = sMainShader.sYUV2RGBRequested;
    sMainShader.strVertexShader = GetVertexShaderCode();
    sMainShader.strFragmentShader = GetFragShaderCode();
    if (LoadShaderPrograms(sMainShader) < 0)
        return -1;
    SetFormatSamplers();
    if (sInputOverlay.nWidth > 0 && sInputOverlay.nHeight > 0)
        SetSampler(sMainShader.nProgram, "samplerInputOverlay", 5);
    sMainShader.nPositionLocation = glGetAttribLocation(sMainShader.nProgram, "vPosition");
    sMainShader.nTexCoordLocation = glGetAttribLocation(sMainShader.nProgram, "a_TexCoordinate");
    sMainShader.nMVPMatrixLocation = glGetUniformLocation(sMainShader.nProgram, "uMVPMatrix");
    // The new program may have its attributes elsewhere.
    pBoundViewObject = nullptr;
    bShadersLoaded = true;
    bViewSetupRequired = true;
    return 1;
}

/// Brings the main program up to date. One that could not be built is asked for again with the next frame.
bool CCustomGPUDewarper::CheckMainProgram()
{
    if (CheckLoadShaders() >= 0 && sMainShader.IsUsable())
        return true;
    sMainShader.bForceReload = true;
    return false;
}

void CCustomGPUDewarper::FreeProgramAndShaders()
{
    for (SShaderProperties* pShader :
         {&sMainShader, &sOutputOverlayShader, &sStringShader, &sStringCompositeShader, &sMaskShader,
          &sTextureToScreenShader, &sTextureToTextureShader})
        pShader->Free();
}

void CCustomGPUDewarper::SetFormatSamplers()
{
    const unsigned int nProgram = sMainShader.nProgram;
    switch (nImageFormat) {
    case IMAGE_FORMAT_RGB24:
    case IMAGE_FORMAT_BGR24:
    case IMAGE_FORMAT_RGBA32:
    case IMAGE_FORMAT_BGRA32:
    case IMAGE_FORMAT_GRAY8:
        SetSampler(nProgram, "samplerRGB", 0);
        break;
    case IMAGE_FORMAT_NV12:
    case IMAGE_FORMAT_NV21:
        SetSampler(nProgram, "samplerY", 0);
        SetSampler(nProgram, "samplerUV", 1);
        break;
    case IMAGE_FORMAT_YUV420P:
        SetSampler(nProgram, "samplerY", 0);
        SetSampler(nProgram, "samplerU", 1);
        SetSampler(nProgram, "samplerV", 2);
        if (sMainShader.bQPTextures) {
            SetSampler(nProgram, "samplerQP", 3);
            SetSampler(nProgram, "samplerMBType", 4);
        }
        break;
    default:
        break;
    }
}

std::string CCustomGPUDewarper::GetVertexShaderCode()
{
    SVertexTextInput sInput;
    sInput.bFlipHorizontal = sMainShader.bFlipHorizontal;
    sInput.bFlipVertical = sMainShader.bFlipVertical;
    sInput.nRotation = nRotation;
    return VertexText(sInput);
}

std::string CCustomGPUDewarper::GetFragShaderCode()
{
    nEffectiveYUVSpace = EffectiveYUVSpace(sMainShader.sYUV2RGB.eSpace, nImageYUVSpace);
    nEffectiveYUVRange = EffectiveYUVRange(sMainShader.sYUV2RGB.eRange, nImageYUVRange);
    sMainShader.bInputOverlayInShader = sMainShader.bInputOverlay;
    if (!HasFragmentText(nImageFormat))
        return std::string();
    SFragmentTextInput sInput;
    sInput.nFormat = nImageFormat;
    sInput.nYUVSpace = nEffectiveYUVSpace;
    sInput.nYUVRange = nEffectiveYUVRange;
    sInput.nLumaMin = sMainShader.sYUV2RGB.nLumaMin;
    sInput.nLumaMax = sMainShader.sYUV2RGB.nLumaMax;
    sInput.nChromaMin = sMainShader.sYUV2RGB.nChromaMin;
    sInput.bGain = sMainShader.bGain;
    sInput.fLumaGain = sMainShader.fLumaGain;
    sInput.fChromaGain = sMainShader.fChromaGain;
    sInput.bInputOverlay = sMainShader.bInputOverlay;
    sInput.bQPTextures = sMainShader.bQPTextures;
    sInput.strDiscard = GetFragShaderDiscardCode();
    return FragmentText(sInput);
}

std::string CCustomGPUDewarper::GetFragShaderDiscardCode()
{
    SShaderProperties& rShader = sMainShader;
    for (int i = 0; i < 4; i += 2) {
        const bool bBand =
            rShader.anClipPlanesRequested[i] != -1 && rShader.anClipPlanesRequested[i + 1] != -1;
        rShader.anClipPlanes[i] = bBand ? rShader.anClipPlanesRequested[i] : -1;
        rShader.anClipPlanes[i + 1] = bBand ? rShader.anClipPlanesRequested[i + 1] : -1;
    }
    rShader.fClipValue = rShader.fClipValueRequested != 0.0f ? rShader.fClipValueRequested : 0.0f;
    rShader.bTexCoordClip = rShader.bTexCoordClipRequested;
    SDiscardInput sInput;
    for (int i = 0; i < 4; ++i)
        sInput.anClipPlanes[i] = rShader.anClipPlanes[i];
    sInput.fClipValue = rShader.fClipValue;
    sInput.bTexCoordClip = rShader.bTexCoordClip;
    return DiscardText(sInput);
}

const SDriverTraits& CCustomGPUDewarper::DriverTraits()
{
    if (!pDriverTraits->bKnown) {
        *pDriverTraits = QueryDriverTraits();
        pDriverTraits->bYUVOutput = bYUVOutput;
    }
    return *pDriverTraits;
}

int CCustomGPUDewarper::LoadShaderPrograms(SShaderProperties& sShader)
{
    sShader.Free();
    if (bLogShaderCode) {
        __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG, "%s: Vertex Shader:\n%s\n",
                            "LoadShaderPrograms", sShader.strVertexShader.c_str());
        __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG, "%s: Fragment Shader:\n%s\n",
                            "LoadShaderPrograms", sShader.strFragmentShader.c_str());
    }
    if (!CompileShader(sShader.nVertexShader, GL_VERTEX_SHADER, sShader.strVertexShader,
                       "%s: vertex shader error is: %s \n")) {
        glDeleteShader(sShader.nVertexShader);
        sShader.bNamesDeleted = true;
        return -1;
    }
    if (!CompileShader(sShader.nFragmentShader, GL_FRAGMENT_SHADER, sShader.strFragmentShader,
                       "%s: fragment shader error is: %s\n")) {
        glDeleteShader(sShader.nVertexShader);
        glDeleteShader(sShader.nFragmentShader);
        sShader.bNamesDeleted = true;
        return -2;
    }
    sShader.nProgram = glCreateProgram();
    glAttachShader(sShader.nProgram, sShader.nVertexShader);
    glAttachShader(sShader.nProgram, sShader.nFragmentShader);
    glLinkProgram(sShader.nProgram);
    GLint nStatus = GL_FALSE;
    glGetProgramiv(sShader.nProgram, GL_LINK_STATUS, &nStatus);
    if (nStatus == GL_FALSE) {
        GLint nLength = 0;
        glGetProgramiv(sShader.nProgram, GL_INFO_LOG_LENGTH, &nLength);
        glDeleteProgram(sShader.nProgram);
        glDeleteShader(sShader.nVertexShader);
        glDeleteShader(sShader.nFragmentShader);
        sShader.bNamesDeleted = true;
        __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG, "%s: the program does not link",
                            "LoadShaderPrograms");
        return -3;
    }
    glUseProgram(sShader.nProgram);
    return 0;
}

/// Compiles the driver's own form of a text, and what the dialect makes of it when the driver refuses.
bool CCustomGPUDewarper::CompileShader(unsigned int& nShader, unsigned int nKind, const std::string& strText,
                                       const char* pMessage)
{
    const SDriverTraits& rTraits = DriverTraits();
    nShader = glCreateShader(nKind);
    if (Compile(nShader, PreferredShaderText(strText, rTraits)))
        return true;
    const std::string strAdapted = AdaptShaderText(strText, rTraits);
    if (!strAdapted.empty() && Compile(nShader, strAdapted))
        return true;
    LogCompileError(nShader, pMessage);
    return false;
}
