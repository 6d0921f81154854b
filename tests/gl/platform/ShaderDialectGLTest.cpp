// Every text the library can write, handed to a real driver as the library hands it over.
#include "TinyContext.h"

#include "dewarp/shaders/DiscardText.h"
#include "dewarp/shaders/FragmentText.h"
#include "dewarp/shaders/PassTexts.h"
#include "dewarp/shaders/VertexText.h"
#include "dewarp/shaders/YUVTargetText.h"
#include "platform/DriverTraits.h"

#include <GLES3/gl31.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

namespace
{

/// A vertex and a fragment text that make one program.
struct SProgramTexts
{
    std::string strName;
    std::string strVertex;
    std::string strFragment;
};

class ShaderDialectGL : public CTinyContextTest
{
protected:
    /// 0 when the driver refuses the text.
    static GLuint Compile(GLenum eKind, const std::string& strText)
    {
        const GLuint nShader = glCreateShader(eKind);
        const char* const pText = strText.c_str();
        glShaderSource(nShader, 1, &pText, nullptr);
        glCompileShader(nShader);
        GLint nStatus = GL_FALSE;
        glGetShaderiv(nShader, GL_COMPILE_STATUS, &nStatus);
        if (nStatus == GL_TRUE)
            return nShader;
        char szLog[1000] = "";
        glGetShaderInfoLog(nShader, sizeof szLog, nullptr, szLog);
        s_strLog = szLog;
        glDeleteShader(nShader);
        return 0;
    }

    /// The preferred text, and after a refusal the adapted one.
    static GLuint CompileAdapted(GLenum eKind, const std::string& strText, const SDriverTraits& sTraits)
    {
        const GLuint nShader = Compile(eKind, PreferredShaderText(strText, sTraits));
        const std::string strCopy = nShader != 0 ? std::string() : AdaptShaderText(strText, sTraits);
        return strCopy.empty() ? nShader : Compile(eKind, strCopy);
    }

    static GLuint Link(GLuint nVertex, GLuint nFragment)
    {
        const GLuint nProgram = glCreateProgram();
        glAttachShader(nProgram, nVertex);
        glAttachShader(nProgram, nFragment);
        glBindAttribLocation(nProgram, 0, "vPosition");
        glBindAttribLocation(nProgram, 1, "a_TexCoordinate");
        glLinkProgram(nProgram);
        glDeleteShader(nVertex);
        glDeleteShader(nFragment);
        GLint nStatus = GL_FALSE;
        glGetProgramiv(nProgram, GL_LINK_STATUS, &nStatus);
        if (nStatus == GL_TRUE)
            return nProgram;
        glDeleteProgram(nProgram);
        return 0;
    }

    static void ExpectProgram(const SProgramTexts& sTexts, const SDriverTraits& sTraits)
    {
        const GLuint nVertex = CompileAdapted(GL_VERTEX_SHADER, sTexts.strVertex, sTraits);
        ASSERT_NE(nVertex, 0u) << sTexts.strName << '\n' << s_strLog;
        const GLuint nFragment = CompileAdapted(GL_FRAGMENT_SHADER, sTexts.strFragment, sTraits);
        ASSERT_NE(nFragment, 0u) << sTexts.strName << '\n' << s_strLog << sTexts.strFragment;
        const GLuint nProgram = Link(nVertex, nFragment);
        EXPECT_NE(nProgram, 0u) << sTexts.strName;
        glDeleteProgram(nProgram);
    }

    /// With and without the copy in highp, on a target of plain colours and one that is said to take YUV.
    static std::vector<SDriverTraits> AllTraits()
    {
        std::vector<SDriverTraits> vTraits;
        for (const bool bHighp : {false, true}) {
            for (const bool bYUVOutput : {false, true}) {
                SDriverTraits sTraits = QueryDriverTraits();
                sTraits.bPreferHighp = bHighp;
                sTraits.bYUVOutput = bYUVOutput;
                vTraits.push_back(sTraits);
            }
        }
        return vTraits;
    }

    static std::string s_strLog; ///< of the last refusal
};

std::string ShaderDialectGL::s_strLog;

/// Formats, gain, overlay, quantiser, space and range.
std::vector<SFragmentTextInput> AllInputs()
{
    std::vector<SFragmentTextInput> vInputs;
    for (const int nFormat : {0, 4, 5, 6, 7, 8, 9, 10}) {
        for (int nSwitches = 0; nSwitches < 8; ++nSwitches) {
            for (int nSpaceAndRange = 0; nSpaceAndRange < 8; ++nSpaceAndRange) {
                SFragmentTextInput sInput;
                sInput.nFormat = nFormat;
                sInput.bGain = (nSwitches & 1) != 0;
                sInput.bInputOverlay = (nSwitches & 2) != 0;
                sInput.bQPTextures = (nSwitches & 4) != 0;
                sInput.nYUVSpace = 1 + nSpaceAndRange % 4;
                sInput.nYUVRange = 1 + nSpaceAndRange / 4;
                vInputs.push_back(sInput);
            }
        }
    }
    return vInputs;
}

std::string FullDiscard()
{
    SDiscardInput sDiscard;
    sDiscard.anClipPlanes[0] = sDiscard.anClipPlanes[2] = -5;
    sDiscard.anClipPlanes[1] = sDiscard.anClipPlanes[3] = 2147483647;
    sDiscard.fClipValue = 1.0f;
    sDiscard.bTexCoordClip = true;
    return DiscardText(sDiscard);
}

} // namespace

TEST_F(ShaderDialectGL, EveryViewTextMakesAProgram)
{
    const std::string strVertex = VertexText(SVertexTextInput());
    const std::string strDiscard = FullDiscard();
    for (const SDriverTraits& sTraits : AllTraits()) {
        if (!sTraits.bYUVOutput)
            continue; // these texts write plain colours anyway
        for (SFragmentTextInput sInput : AllInputs()) {
            sInput.strDiscard = strDiscard;
            ExpectProgram({"format " + std::to_string(sInput.nFormat), strVertex, FragmentText(sInput)},
                          sTraits);
        }
    }
}

TEST_F(ShaderDialectGL, TextsTheDriverTakesGoThereAsTheyAre)
{
    SDriverTraits sTraits = QueryDriverTraits();
    sTraits.bPreferHighp = false;
    for (const SFragmentTextInput& sInput : AllInputs()) {
        if (sInput.bQPTextures && sInput.nFormat == 6)
            continue; // "(1-mb_type)"
        const std::string strText = FragmentText(sInput);
        EXPECT_EQ(PreferredShaderText(strText, sTraits), strText);
        const GLuint nShader = Compile(GL_FRAGMENT_SHADER, strText);
        EXPECT_NE(nShader, 0u) << s_strLog << strText;
        glDeleteShader(nShader);
    }
}

TEST_F(ShaderDialectGL, AnyLevelsAndGainsMakeAProgram)
{
    const int aanLevels[][3] = {{0, 255, 0},  {0, 235, 16},           {16, 255, 0},
                                {16, 16, 16}, {255, 0, 255},          {-20, 300, 9},
                                {-255, 0, 0}, {1000000000, 7, -5000}, {-1, -1, 1 << 30}};
    const float afGains[] = {0.0f, -0.0f, 1.0f, -2.0f, 1.5f, 1e6f, 1e-7f, -1e9f, 123456.789f, 3.4e38f};
    const std::string strVertex = VertexText(SVertexTextInput());
    for (const SDriverTraits& sTraits : AllTraits()) {
        for (const int nFormat : {0, 5, 6, 7}) {
            for (const int(&anLevels)[3] : aanLevels) {
                for (const float fGain : afGains) {
                    SFragmentTextInput sInput;
                    sInput.nFormat = nFormat;
                    sInput.nYUVRange = 2;
                    sInput.nLumaMin = anLevels[0];
                    sInput.nLumaMax = anLevels[1];
                    sInput.nChromaMin = anLevels[2];
                    sInput.bGain = true;
                    sInput.fLumaGain = fGain;
                    sInput.fChromaGain = -fGain;
                    ExpectProgram({"levels and gains", strVertex, FragmentText(sInput)}, sTraits);
                }
            }
        }
    }
}

TEST_F(ShaderDialectGL, EveryFlipMakesAProgram)
{
    SFragmentTextInput sFragment;
    for (int nFlips = 0; nFlips < 8; ++nFlips) {
        SVertexTextInput sVertex;
        sVertex.bFlipHorizontal = (nFlips & 1) != 0;
        sVertex.bFlipVertical = (nFlips & 2) != 0;
        sVertex.bInvertY = (nFlips & 4) != 0;
        ExpectProgram({"flips", VertexText(sVertex), FragmentText(sFragment)}, QueryDriverTraits());
    }
}

TEST_F(ShaderDialectGL, EverySamplingMakesAProgram)
{
    const std::string strVertex = VertexText(SVertexTextInput());
    for (const SDriverTraits& sTraits : AllTraits()) {
        for (int n = 0; n < 4 * 2 * 2 * 4; ++n) {
            SFragmentTextInput sInput;
            sInput.eSampling = static_cast<ESampling>(n % 4);
            sInput.bMinification = (n & 4) != 0;
            sInput.bInputOverlay = (n & 8) != 0;
            // Whole numbers for levels, gains and quantisers: they stand beside functions with integers.
            const int anFormats[] = {IMAGE_FORMAT_RGB24, IMAGE_FORMAT_NV12, IMAGE_FORMAT_YUV420P,
                                     IMAGE_FORMAT_RGBA32};
            sInput.nFormat = anFormats[n / 16];
            sInput.nYUVRange = 2;
            sInput.nLumaMin = 0;
            sInput.nLumaMax = 255;
            sInput.nChromaMin = 0;
            sInput.bQPTextures = true;
            sInput.strDiscard = FullDiscard();
            ExpectProgram({"sampling", strVertex, FragmentText(sInput)}, sTraits);
            if (sInput.nFormat == IMAGE_FORMAT_RGB24)
                ExpectProgram({"sampling of an external image", YUVTargetVertexText(true),
                               YUVTargetFragmentText(true, sInput.bInputOverlay, FullDiscard(), "",
                                                     {sInput.eSampling, sInput.bMinification, 64, 48})},
                              sTraits);
        }
    }
}

TEST_F(ShaderDialectGL, EveryPassMakesAProgram)
{
    using namespace PASS_TEXT;
    std::vector<SProgramTexts> vPrograms = {
        {"texture to screen", pTextureToScreenVertex, pTextureToScreenFragment},
        {"texture to texture", pTextureToTextureVertex, pTextureToTextureFragment},
        {"output overlay", pOutputOverlayVertex, pOutputOverlayFragment},
        {"mask", pMaskVertex, pMaskFragment},
        {"string", pStringVertex, pStringFragment},
        {"strings onto the target", pStringCompositeVertex, StringCompositeFragmentText(false)},
        {"strings into a texture", pStringCompositeVertex, StringCompositeFragmentText(true)},
    };
    for (const SDriverTraits& sTraits : AllTraits()) {
        for (const SProgramTexts& sTexts : vPrograms)
            ExpectProgram(sTexts, sTraits);
    }
}

TEST_F(ShaderDialectGL, EveryExternalImageTextMakesAProgram)
{
    for (const SDriverTraits& sTraits : AllTraits()) {
        for (const bool bToTexture : {false, true}) {
            for (const bool bOverlay : {false, true}) {
                ExpectProgram({"external image", YUVTargetVertexText(bToTexture),
                               YUVTargetFragmentText(bToTexture, bOverlay, FullDiscard())},
                              sTraits);
            }
        }
    }
}

namespace
{

constexpr int SIZE = 64;

/// Luma runs along x, chroma along y.
void MakeTextures(GLuint (&anTextures)[2])
{
    std::vector<unsigned char> vLuma;
    std::vector<unsigned char> vChroma;
    for (int y = 0; y < SIZE; ++y) {
        for (int x = 0; x < SIZE; ++x) {
            vLuma.push_back(static_cast<unsigned char>(x * 4 + y % 4));
            vChroma.push_back(static_cast<unsigned char>(y * 4 + x % 3));
            vChroma.push_back(static_cast<unsigned char>(255 - y * 4 - x % 4));
        }
    }
    glGenTextures(2, anTextures);
    for (int i = 0; i < 2; ++i) {
        glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(i));
        glBindTexture(GL_TEXTURE_2D, anTextures[i]);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        const GLint nFormat = i == 0 ? GL_LUMINANCE : GL_LUMINANCE_ALPHA;
        glTexImage2D(GL_TEXTURE_2D, 0, nFormat, SIZE, SIZE, 0, static_cast<GLenum>(nFormat), GL_UNSIGNED_BYTE,
                     i == 0 ? vLuma.data() : vChroma.data());
    }
}

/// The textures through a program onto a square of SIZE pixels a side.
std::vector<unsigned char> Draw(GLuint nProgram)
{
    static const float afIdentity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    static const float afCorners[] = {-1, -1, 0, 0, 1, -1, 1, 0, -1, 1, 0, 1, 1, 1, 1, 1};
    glViewport(0, 0, SIZE, SIZE);
    glUseProgram(nProgram);
    glUniformMatrix4fv(glGetUniformLocation(nProgram, "uMVPMatrix"), 1, GL_FALSE, afIdentity);
    glUniform1i(glGetUniformLocation(nProgram, "samplerUV"), 1);
    GLuint nBuffer = 0;
    glGenBuffers(1, &nBuffer);
    glBindBuffer(GL_ARRAY_BUFFER, nBuffer);
    glBufferData(GL_ARRAY_BUFFER, sizeof afCorners, afCorners, GL_STATIC_DRAW);
    glEnableVertexAttribArray(0);
    glEnableVertexAttribArray(1);
    glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, 16, nullptr);
    glVertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, 16, reinterpret_cast<const void*>(8));
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    std::vector<unsigned char> vPixels(SIZE * SIZE * 4);
    glReadPixels(0, 0, SIZE, SIZE, GL_RGBA, GL_UNSIGNED_BYTE, vPixels.data());
    glDeleteBuffers(1, &nBuffer);
    glDeleteProgram(nProgram);
    return vPixels;
}

} // namespace

TEST_F(ShaderDialectGL, ThePictureInHighpIsTheSameWithinOneStep)
{
    GLuint anNames[2] = {};
    glGenFramebuffers(1, &anNames[0]);
    glGenRenderbuffers(1, &anNames[1]);
    glBindRenderbuffer(GL_RENDERBUFFER, anNames[1]);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, SIZE, SIZE);
    glBindFramebuffer(GL_FRAMEBUFFER, anNames[0]);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, anNames[1]);
    GLuint anTextures[2] = {};
    MakeTextures(anTextures);

    for (const SFragmentTextInput& sInput : AllInputs()) {
        if (sInput.nFormat != 5 || sInput.bGain || sInput.bInputOverlay || sInput.bQPTextures)
            continue;
        std::vector<unsigned char> avPixels[2];
        for (const bool bHighp : {false, true}) {
            SDriverTraits sTraits = QueryDriverTraits();
            sTraits.bPreferHighp = bHighp;
            avPixels[bHighp ? 1 : 0] =
                Draw(Link(CompileAdapted(GL_VERTEX_SHADER, VertexText(SVertexTextInput()), sTraits),
                          CompileAdapted(GL_FRAGMENT_SHADER, FragmentText(sInput), sTraits)));
        }
        int nWorst = 0;
        for (std::size_t i = 0; i < avPixels[0].size(); ++i)
            nWorst = std::max(nWorst, std::abs(avPixels[0][i] - avPixels[1][i]));
        EXPECT_LE(nWorst, 1) << "space " << sInput.nYUVSpace << ", range " << sInput.nYUVRange;
        // Not a uniform picture: red follows luma.
        EXPECT_NE(avPixels[1][0], avPixels[1][SIZE * 4 - 4]);
    }
    glDeleteTextures(2, anTextures);
    glDeleteRenderbuffers(1, &anNames[1]);
    glDeleteFramebuffers(1, &anNames[0]);
}
