#include "dewarp/shaders/YUVTargetText.h"

#include "dewarp/shaders/RimText.h"
#include "dewarp/shaders/SamplingText.h"

namespace YUV_TARGET_TEXT
{

static const char* const pVertexHead = "#version 310 es \n"
                                       "uniform mat4 uMVPMatrix;   \n"
                                       "in vec4 vPosition;   \n"
                                       "in vec2 a_TexCoordinate; \n"
                                       "out vec2 v_TexCoordinate;   \n"
                                       "void main()                  \n"
                                       "{                            \n"
                                       "   v_TexCoordinate = a_TexCoordinate; \n"
                                       "   gl_Position = uMVPMatrix * vPosition; \n";

static const char* const pInvertY = "   gl_Position.y = -1.0 * gl_Position.y; \n";

static const char* const pVertexEnd = "}                            \n";

static const char* const pHead = "#version 310 es \n"
                                 "#extension GL_EXT_YUV_target : require \n"
                                 "precision mediump float;\n"
                                 "uniform __samplerExternal2DY2YEXT uTexture;\n"
                                 "in vec2 v_TexCoordinate;  \n";

static const char* const pSampler = "__samplerExternal2DY2YEXT";

static const char* const pOutPlain = "out vec4 fragColor; \n";

static const char* const pOutYUV = "layout (yuv) out vec4 fragColor; \n";

static const char* const pOverlayDeclaration = "uniform sampler2D samplerInputOverlay;\n";

static const char* const pMain = "void main()\n"
                                 "{\n";

static const char* const pFetch = "   vec4 yuvTex = texture(uTexture, v_TexCoordinate); \n";

static const char* const pOverlayBlend =
    "   vec4 overlay = texture(samplerInputOverlay, v_TexCoordinate);        \n"
    "   yuvTex.r = yuvTex.r*(1.0 - overlay.a) + overlay.r * overlay.a;        \n"
    "   yuvTex.g = yuvTex.g*(1.0 - overlay.a) + overlay.g * overlay.a;        \n"
    "   yuvTex.b = yuvTex.b*(1.0 - overlay.a) + overlay.b *  overlay.a;        \n";

// Into a texture the fade is carried on as alpha, as from planes.
static const char* const pFadePlain = "   yuvTex = yuvTex * rimCover;        \n";

static const char* const pFadeYUV = "   yuvTex = mix(vec4(0.0, 0.5, 0.5, 0.0), yuvTex, rimCover);        \n";

static const char* const pOutEnd = "   fragColor  = yuvTex;        \n"
                                   "}\n";

} // namespace YUV_TARGET_TEXT

std::string YUVTargetVertexText(bool bDrawToTexture)
{
    std::string strText = YUV_TARGET_TEXT::pVertexHead;
    if (!bDrawToTexture)
        strText += YUV_TARGET_TEXT::pInvertY;
    strText += YUV_TARGET_TEXT::pVertexEnd;
    return strText;
}

std::string YUVTargetFragmentText(bool bDrawToTexture, bool bInputOverlay, const std::string& strDiscard,
                                  const std::string& strRim, const SYUVTargetSampling& sSampling)
{
    const SSamplingTextInput sInput = {
        YUV_TARGET_TEXT::pSampler, sSampling.eSampling, sSampling.bMinification, bInputOverlay, true,
        sSampling.nWidth,          sSampling.nHeight};
    std::string strText = YUV_TARGET_TEXT::pHead;
    strText += bDrawToTexture ? YUV_TARGET_TEXT::pOutPlain : YUV_TARGET_TEXT::pOutYUV;
    if (bInputOverlay)
        strText += YUV_TARGET_TEXT::pOverlayDeclaration;
    strText += SamplingText(sInput);
    strText += YUV_TARGET_TEXT::pMain;
    strText += SamplingStartText(sInput);
    strText += strDiscard;
    strText += sInput.IsPlain() ? YUV_TARGET_TEXT::pFetch : SampledFetches(YUV_TARGET_TEXT::pFetch);
    if (bInputOverlay)
        strText += YUV_TARGET_TEXT::pOverlayBlend;
    if (!strRim.empty()) {
        strText += strRim;
        strText += bDrawToTexture ? YUV_TARGET_TEXT::pFadePlain : YUV_TARGET_TEXT::pFadeYUV;
    }
    strText += YUV_TARGET_TEXT::pOutEnd;
    return strRim.empty() && sInput.IsPlain() ? strText : HighTexCoords(strText);
}
