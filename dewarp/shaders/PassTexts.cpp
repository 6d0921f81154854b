#include "dewarp/shaders/PassTexts.h"

namespace PASS_TEXT
{

const char* const pTextureToScreenVertex = "#version 310 es            \n"
                                           "uniform mat4 uMVPMatrix;   \n"
                                           "in vec4 vPosition;   \n"
                                           "in vec2 a_TexCoordinate; \n"
                                           "out vec2 v_RGBTexCoordinate;   \n"
                                           "void main()                  \n"
                                           "{                            \n"
                                           "   v_RGBTexCoordinate = a_TexCoordinate; \n"
                                           "   gl_Position = uMVPMatrix * vPosition; \n"
                                           "}                            \n";

const char* const pTextureToScreenFragment =
    "#version 310 es            \n"
    "#extension GL_EXT_YUV_target : require \n"
    " precision mediump float; \n"
    "in vec2 v_RGBTexCoordinate;  \n"
    "uniform sampler2D samplerInput;\n"
    "layout (yuv) out vec4 vOutputColor; \n"
    "void main()\n"
    "{\n"
    "   vOutputColor = texture(samplerInput, v_RGBTexCoordinate);        \n"
    "}\n";

const char* const pTextureToTextureVertex = "#version 310 es            \n"
                                            "uniform mat4 uMVPMatrix;   \n"
                                            "in vec4 vPosition;   \n"
                                            "in vec2 a_TexCoordinate; \n"
                                            "out vec2 v_RGBTexCoordinate;   \n"
                                            "void main()                  \n"
                                            "{                            \n"
                                            "   v_RGBTexCoordinate = a_TexCoordinate; \n"
                                            "   v_RGBTexCoordinate.y = 1.0 - v_RGBTexCoordinate.y; \n"
                                            "   gl_Position = uMVPMatrix * vPosition; \n"
                                            "}                            \n";

const char* const pTextureToTextureFragment =
    "#version 310 es            \n"
    "precision mediump float; \n"
    "in vec2 v_RGBTexCoordinate;  \n"
    "uniform sampler2D samplerInput;\n"
    "out vec4 vOutputColor;     \n"
    "void main()\n"
    "{\n"
    "   vOutputColor = texture(samplerInput, v_RGBTexCoordinate);        \n"
    "}\n";

const char* const pOutputOverlayVertex = "#version 310 es            \n"
                                         "uniform mat4 uMVPMatrix;   \n"
                                         "in vec4 vPosition;   \n"
                                         "in vec2 a_TexCoordinate; \n"
                                         "out vec2 v_TexCoordinate;   \n"
                                         "out vec2 v_RGBTexCoordinate;   \n"
                                         "void main()                  \n"
                                         "{                            \n"
                                         "   v_TexCoordinate = a_TexCoordinate; \n"
                                         "   v_RGBTexCoordinate = a_TexCoordinate; \n"
                                         "   v_TexCoordinate.y = 1.0 - v_TexCoordinate.y; \n"
                                         "   gl_Position = uMVPMatrix * vPosition; \n"
                                         "}                            \n";

const char* const pOutputOverlayFragment =
    "#version 310 es            \n"
    "#extension GL_EXT_YUV_target : require \n"
    " precision mediump float; \n"
    "in vec2 v_TexCoordinate;  \n"
    "in vec2 v_RGBTexCoordinate;  \n"
    "uniform sampler2D samplerInput;\n"
    "uniform sampler2D samplerOverlay;\n"
    "layout (yuv) out vec4 vOutputColor; \n"
    "void main()\n"
    "{\n"
    "   vec4 rgba; \n"
    "   vec4 overlay = texture(samplerOverlay, v_TexCoordinate);        \n"
    "   vec4 geom = texture(samplerInput, v_RGBTexCoordinate);        \n"
    "   rgba.r = geom.r*(1.0 - overlay.a) + overlay.r * overlay.a;        \n"
    "   rgba.g = geom.g*(1.0 - overlay.a) + overlay.g * overlay.a;        \n"
    "   rgba.b = geom.b*(1.0 - overlay.a) + overlay.b * overlay.a;        \n"
    "   rgba.a = 1.0;        \n"
    "   vOutputColor = rgba;        \n"
    "}\n";

const char* const pMaskVertex = "#version 310 es            \n"
                                "uniform mat4 uMVPMatrix;   \n"
                                "in vec4 vPosition;   \n"
                                "void main()                  \n"
                                "{                            \n"
                                "   gl_Position = uMVPMatrix * vPosition; \n"
                                "   gl_Position.y = -1.0 * gl_Position.y; \n"
                                "}                            \n";

const char* const pMaskFragment = "#version 310 es            \n"
                                  "precision mediump float; \n"
                                  "uniform sampler2D samplerInput;\n"
                                  "uniform vec4 u_Color; \n"
                                  "uniform vec2 u_ScreenSize; \n"
                                  "out vec4 vOutputColor;     \n"
                                  "void main()\n"
                                  "{\n"
                                  "   vec4 rgba; \n"
                                  "   vec2 v_RGBTexCoordinate = gl_FragCoord.xy / u_ScreenSize;         \n"
                                  "   vec4 mask = texture(samplerInput, v_RGBTexCoordinate);        \n"
                                  "   rgba.r = mask.r*(1.0 - u_Color.a) + u_Color.r * u_Color.a;        \n"
                                  "   rgba.g = mask.g*(1.0 - u_Color.a) + u_Color.g * u_Color.a;        \n"
                                  "   rgba.b = mask.b*(1.0 - u_Color.a) + u_Color.b * u_Color.a;        \n"
                                  "   rgba.a = max(u_Color.a, mask.a);        \n"
                                  "   vOutputColor = rgba;     \n"
                                  "}\n";

const char* const pStringVertex = "#version 310 es            \n"
                                  "uniform mat4 uMVPMatrix;   \n"
                                  "in vec4 vPosition;   \n"
                                  "in vec2 a_TexCoordinate; \n"
                                  "out vec2 v_TexCoordinate;   \n"
                                  "uniform float u_PosYMult; \n"
                                  "void main()                  \n"
                                  "{                            \n"
                                  "   v_TexCoordinate = a_TexCoordinate; \n"
                                  "   gl_Position = uMVPMatrix * vPosition; \n"
                                  "   gl_Position.y = u_PosYMult * gl_Position.y; \n"
                                  "}                            \n";

const char* const pStringFragment =
    "#version 310 es            \n"
    "precision mediump float; \n"
    "in vec2 v_TexCoordinate;  \n"
    "uniform sampler2D samplerString;\n"
    "uniform sampler2D samplerInput;\n"
    "uniform vec2 u_ScreenSize; \n"
    "uniform float u_Mult; \n"
    "uniform vec4 u_TextColor; \n"
    "out vec4 vOutputColor;     \n"
    "void main()\n"
    "{\n"
    "   vec4 rgba; \n"
    "   vec4 string = texture(samplerString, v_TexCoordinate) * u_TextColor;        \n"
    "   vec2 v_StringOverlayCoordinate = gl_FragCoord.xy / u_ScreenSize;         \n"
    "   vec4 stringOverlay = texture(samplerInput, v_StringOverlayCoordinate);        \n"
    "   vec4 v1 = (string.a >= stringOverlay.a) ? stringOverlay : string;       \n"
    "   vec4 v2 = (string.a > stringOverlay.a) ? string : stringOverlay;       \n"
    "   rgba.a = max(stringOverlay.a, string.a) * u_Mult;        \n"
    "   rgba.r = min(1.0, v1.r*(1.0 - rgba.a) + v2.r);        \n"
    "   rgba.g = min(1.0, v1.g*(1.0 - rgba.a) + v2.g);        \n"
    "   rgba.b = min(1.0, v1.b*(1.0 - rgba.a) + v2.b);        \n"
    "   vOutputColor = rgba;        \n"
    "}\n";

const char* const pStringCompositeVertex = "#version 310 es            \n"
                                           "uniform mat4 uMVPMatrix;   \n"
                                           "in vec4 vPosition;   \n"
                                           "void main()                  \n"
                                           "{                            \n"
                                           "   gl_Position = uMVPMatrix * vPosition; \n"
                                           "}                            \n";

} // namespace PASS_TEXT

namespace STRING_COMPOSITE_TEXT
{

static const char* const pHead = "#version 310 es            \n";

static const char* const pYUVTarget = "#extension GL_EXT_YUV_target : require \n";

static const char* const pSamplers = "precision mediump float; \n"
                                     "uniform sampler2D samplerGeometry;\n"
                                     "uniform sampler2D samplerStringOverlay;\n"
                                     "uniform vec2 u_ScreenSize; \n";

static const char* const pOutPlain = "out vec4 vOutputColor;     \n";

static const char* const pOutYUV = "layout (yuv) out vec4 vOutputColor; \n";

static const char* const pBody = "void main()\n"
                                 "{\n"
                                 "   vec4 rgba; \n"
                                 "   vec2 v_TexCoordinate = gl_FragCoord.xy / u_ScreenSize;         \n"
                                 "   vec4 string = texture(samplerStringOverlay, v_TexCoordinate);        \n";

static const char* const pFlip = "   v_TexCoordinate.y = 1.0 - v_TexCoordinate.y;         \n";

static const char* const pBlend = "   vec4 geom = texture(samplerGeometry, v_TexCoordinate);        \n"
                                  "   rgba.r = geom.r*(1.0 - string.a) + string.r * string.a;        \n"
                                  "   rgba.g = geom.g*(1.0 - string.a) + string.g * string.a;        \n"
                                  "   rgba.b = geom.b*(1.0 - string.a) + string.b * string.a;        \n"
                                  "   rgba.a = 1.0;        \n"
                                  "   vOutputColor = rgba;        \n"
                                  "}\n";

} // namespace STRING_COMPOSITE_TEXT

std::string StringCompositeFragmentText(bool bToTexture)
{
    std::string strText = STRING_COMPOSITE_TEXT::pHead;
    if (!bToTexture)
        strText += STRING_COMPOSITE_TEXT::pYUVTarget;
    strText += STRING_COMPOSITE_TEXT::pSamplers;
    strText += bToTexture ? STRING_COMPOSITE_TEXT::pOutPlain : STRING_COMPOSITE_TEXT::pOutYUV;
    strText += STRING_COMPOSITE_TEXT::pBody;
    if (!bToTexture)
        strText += STRING_COMPOSITE_TEXT::pFlip;
    strText += STRING_COMPOSITE_TEXT::pBlend;
    return strText;
}
