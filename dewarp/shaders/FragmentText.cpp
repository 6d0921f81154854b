#include "dewarp/shaders/FragmentText.h"

#include "dewarp/records/ColourMatrix.h"
#include "dewarp/records/Enumerations.h"
#include "dewarp/shaders/NumberText.h"
#include "dewarp/shaders/RimText.h"
#include "dewarp/shaders/SamplingText.h"

#include <cmath>
#include <cstddef>

namespace COLOUR_TEXT
{

static const char* const pHeadRGB = "#version 310 es            \n"
                                    "precision mediump float; \n"
                                    "uniform sampler2D samplerRGB;\n"
                                    "in vec2 v_TexCoordinate;  \n"
                                    "out vec4 vOutputColor;     \n";

static const char* const pHeadNV = "#version 310 es            \n"
                                   "precision mediump float; \n"
                                   "uniform sampler2D samplerY;\n"
                                   "uniform sampler2D samplerUV;\n"
                                   "in vec2 v_TexCoordinate;  \n"
                                   "out vec4 vOutputColor;     \n";

static const char* const pHeadPlanar = "#version 310 es            \n"
                                       "precision mediump float; \n"
                                       "uniform sampler2D samplerY;\n"
                                       "uniform sampler2D samplerU;\n"
                                       "uniform sampler2D samplerV;\n"
                                       "in vec2 v_TexCoordinate;  \n"
                                       "out vec4 vOutputColor;     \n";

static const char* const pQPDeclaration = "uniform sampler2D samplerMBType;\n"
                                          "uniform sampler2D samplerQP;\n";

static const char* const pOverlayDeclaration = "uniform sampler2D samplerInputOverlay;\n";

static const char* const pMain = "void main()\n"
                                 "{\n";

static const char* const pFetchRGB = "   vec4 rgba = texture(samplerRGB, v_TexCoordinate);       \n";

static const char* const pDeclareYUV = "   float y, u, v; \n";

static const char* const pFetchNVLuma = "   float y, u, v; \n"
                                        "   vec4 rgba = vec4(0.0, 0.0, 0.0, 1.0); \n"
                                        "   y = texture(samplerY, v_TexCoordinate).r;        \n";

static const char* const pChromaUFirst = "   u = texture(samplerUV, v_TexCoordinate).r - 0.5;        \n"
                                         "   v = texture(samplerUV, v_TexCoordinate).a - 0.5;        \n";

static const char* const pChromaVFirst = "   u = texture(samplerUV, v_TexCoordinate).a - 0.5;        \n"
                                         "   v = texture(samplerUV, v_TexCoordinate).r - 0.5;        \n";

static const char* const pFetchPlanar = "   float y, u, v, qp, mb_type; \n"
                                        "   vec4 rgba = vec4(0.0, 0.0, 0.0, 1.0); \n"
                                        "   y = texture(samplerY, v_TexCoordinate).r;        \n"
                                        "   u = texture(samplerU, v_TexCoordinate).r - 0.5;        \n"
                                        "   v = texture(samplerV, v_TexCoordinate).r - 0.5;        \n";

// Shows the quantiser as colour where a macroblock has a type.
static const char* const pQPBody = "   qp = texture(samplerQP, v_TexCoordinate).r / 0.1;        \n"
                                   "   mb_type = texture(samplerMBType, v_TexCoordinate).r;        \n"
                                   "   u = mb_type * clamp(qp-0.5, -0.5, 0.5) + (1-mb_type) * u;        \n"
                                   "   v = mb_type * clamp(qp-1.5, -0.5, 0.5) + (1-mb_type) * v;        \n";

// Limited range to full range; between the pieces stand the lowest luma, the luma span and, twice, the
// chroma span.
static const char* const pRange0 = "   y = (y-";

static const char* const pRange1 = ")/";

static const char* const pRange2 = ";      \n"
                                   "   u = u/";

static const char* const pRange3 = ";        \n"
                                   "   v = v/";

static const char* const pRange4 = ";        \n"
                                   "   y = clamp(y, 0.0, 1.0);        \n"
                                   "   u = clamp(u, -0.5, 0.5);        \n"
                                   "   v = clamp(v, -0.5, 0.5);        \n";

// Between the pieces stand the luma gain and, twice, the chroma gain.
static const char* const pGain0 = "   y = ";

static const char* const pGain1 = " * y;        \n"
                                  "   u = ";

static const char* const pGain2 = " * u;        \n"
                                  "   v = ";

static const char* const pGain3 = " * v;        \n";

static const char* const pOverlayBlend =
    "   vec4 overlay = texture(samplerInputOverlay, v_TexCoordinate);        \n"
    "   rgba.r = rgba.r*(1.0 - overlay.a) + overlay.r * overlay.a;        \n"
    "   rgba.g = rgba.g*(1.0 - overlay.a) + overlay.g * overlay.a;        \n"
    "   rgba.b = rgba.b*(1.0 - overlay.a) + overlay.b * overlay.a;        \n";

static const char* const pPremultiply = "   rgba.r = rgba.r * rgba.a;        \n"
                                        "   rgba.g = rgba.g * rgba.a;        \n"
                                        "   rgba.b = rgba.b * rgba.a;        \n";

// Colour and alpha together: what lies behind shows through as much as is missing.
static const char* const pFade = "   rgba = rgba * rimCover;        \n";

static const char* const pOut = "   vOutputColor = rgba;        \n";

static const char* const pEnd = "}\n";

} // namespace COLOUR_TEXT

namespace
{

/// Limited to full range, from the levels; each step is rounded to single precision.
std::string RangeText(const SFragmentTextInput& sInput)
{
    if (sInput.nYUVRange != YUV_RANGE_LIMITED)
        return std::string();
    const float fLumaMin = static_cast<float>(sInput.nLumaMin) / 255.0f;
    const float fLumaSpan = static_cast<float>(sInput.nLumaMax) / 255.0f - fLumaMin;
    const float fChromaMin = static_cast<float>(sInput.nChromaMin) / 255.0f;
    const float fChromaSpan = 1.0f - fChromaMin - fChromaMin;

    std::string strText = COLOUR_TEXT::pRange0 + NumberText(fLumaMin);
    strText += COLOUR_TEXT::pRange1 + NumberText(fLumaSpan);
    strText += COLOUR_TEXT::pRange2 + NumberText(fChromaSpan);
    strText += COLOUR_TEXT::pRange3 + NumberText(fChromaSpan);
    strText += COLOUR_TEXT::pRange4;
    return strText;
}

std::string GainText(const SFragmentTextInput& sInput)
{
    if (!sInput.bGain)
        return std::string();
    const std::string strChroma = NumberTextWithPoint(sInput.fChromaGain);
    std::string strText = COLOUR_TEXT::pGain0 + NumberTextWithPoint(sInput.fLumaGain);
    strText += COLOUR_TEXT::pGain1 + strChroma;
    strText += COLOUR_TEXT::pGain2 + strChroma;
    strText += COLOUR_TEXT::pGain3;
    return strText;
}

/// Blanks at a line's end, and the line end.
std::string LineEnd(std::size_t nBlanks)
{
    return std::string(nBlanks, ' ') + "\n";
}

/// How a conversion is written.
struct SConversionForm
{
    int nDecimals; ///< of every factor; -1: as many as it has
    bool bBlueBeforeGreen;
    std::size_t nRedBlanks;
    std::size_t nGreenBlanks;
    std::size_t nBlueBlanks;
};

constexpr SConversionForm STANDARD_FORM = {-1, false, 20, 6, 8};
constexpr SConversionForm SCALED_FORM = {4, false, 8, 8, 8};
constexpr SConversionForm ADJUSTMENT_FORM = {-1, true, 8, 8, 8};

std::string ConversionText(const SColourMatrix& sMatrix, const SConversionForm& sForm)
{
    const auto Factor = [&](float fFactor) {
        return sForm.nDecimals < 0 ? NumberText(fFactor) : NumberTextFixed(fFactor, sForm.nDecimals);
    };
    const std::string strRed = "   rgba.r = clamp(y + " + Factor(sMatrix.fRedV) + " * v, 0.0, 1.0);";
    const std::string strGreen = "   rgba.g = clamp(y - " + Factor(sMatrix.fGreenU) + " * u - " +
                                 Factor(sMatrix.fGreenV) + " * v, 0.0, 1.0);" + LineEnd(sForm.nGreenBlanks);
    const std::string strBlue =
        "   rgba.b = clamp(y + " + Factor(sMatrix.fBlueU) + " * u, 0.0, 1.0);" + LineEnd(sForm.nBlueBlanks);
    return strRed + LineEnd(sForm.nRedBlanks) +
           (sForm.bBlueBeforeGreen ? strBlue + strGreen : strGreen + strBlue);
}

/// From "y", "u" and "v" to "rgba". A space that is not effective is written as the scaled one.
std::string ConversionText(int nYUVSpace)
{
    const bool bStandard = nYUVSpace >= YUV_SPACE_BT601 && nYUVSpace <= YUV_SPACE_BT2020;
    const EYUVSpace eSpace = bStandard ? static_cast<EYUVSpace>(nYUVSpace) : YUV_SPACE_BT601_SCALED;
    return ConversionText(ColourMatrixOf(eSpace), bStandard ? STANDARD_FORM : SCALED_FORM);
}

/// A line that weighs red, green and blue.
std::string WeightText(const char* pTarget, const float (&afFactors)[3], std::size_t nBlanks)
{
    static const char* const CHANNELS[] = {"*rgba.r", "*rgba.g", "*rgba.b"};
    std::string strText = std::string("   ") + pTarget + " = (" + NumberText(afFactors[0]) + CHANNELS[0];
    for (std::size_t i = 1; i < 3; ++i)
        strText += (afFactors[i] < 0.0f ? " - " : " + ") + NumberText(std::fabs(afFactors[i])) + CHANNELS[i];
    return strText + ");" + LineEnd(nBlanks);
}

/// From "rgba" to "y", "u" and "v".
std::string ToYUVText()
{
    const SYUVMatrix& sMatrix = AdjustmentToYUV();
    return WeightText("y", sMatrix.fY, 4) + WeightText("u", sMatrix.fU, 8) + WeightText("v", sMatrix.fV, 9);
}

/// Precision, samplers of the planes, varying and output.
std::string HeadText(const SFragmentTextInput& sInput)
{
    switch (sInput.nFormat) {
    case IMAGE_FORMAT_NV12:
    case IMAGE_FORMAT_NV21:
        return COLOUR_TEXT::pHeadNV;
    case IMAGE_FORMAT_YUV420P:
        return sInput.bQPTextures ? std::string(COLOUR_TEXT::pHeadPlanar) + COLOUR_TEXT::pQPDeclaration
                                  : std::string(COLOUR_TEXT::pHeadPlanar);
    default:
        return COLOUR_TEXT::pHeadRGB;
    }
}

/// From the textures to "rgba" for the formats that carry RGB.
std::string RGBText(const SFragmentTextInput& sInput)
{
    if (!sInput.bGain || sInput.nFormat == IMAGE_FORMAT_GRAY8)
        return COLOUR_TEXT::pFetchRGB;
    return std::string(COLOUR_TEXT::pDeclareYUV) + COLOUR_TEXT::pFetchRGB + ToYUVText() + GainText(sInput) +
           ConversionText(AdjustmentToRGB(), ADJUSTMENT_FORM);
}

/// From the textures to "rgba" for the formats that carry YUV.
std::string YUVText(const SFragmentTextInput& sInput)
{
    std::string strText;
    if (sInput.nFormat == IMAGE_FORMAT_YUV420P) {
        strText = COLOUR_TEXT::pFetchPlanar;
        if (sInput.bQPTextures)
            strText += COLOUR_TEXT::pQPBody;
    } else {
        strText = COLOUR_TEXT::pFetchNVLuma;
        strText +=
            sInput.nFormat == IMAGE_FORMAT_NV21 ? COLOUR_TEXT::pChromaVFirst : COLOUR_TEXT::pChromaUFirst;
    }
    return strText + RangeText(sInput) + GainText(sInput) + ConversionText(sInput.nYUVSpace);
}

bool IsYUV(int nFormat)
{
    return nFormat == IMAGE_FORMAT_NV12 || nFormat == IMAGE_FORMAT_NV21 || nFormat == IMAGE_FORMAT_YUV420P;
}

bool HasAlpha(int nFormat)
{
    return nFormat == IMAGE_FORMAT_RGBA32 || nFormat == IMAGE_FORMAT_BGRA32;
}

} // namespace

bool HasFragmentText(int nFormat)
{
    return nFormat == IMAGE_FORMAT_RGB24 || (nFormat >= IMAGE_FORMAT_BGR24 && nFormat <= IMAGE_FORMAT_NV21);
}

std::string FragmentText(const SFragmentTextInput& sInput)
{
    if (!HasFragmentText(sInput.nFormat))
        return std::string();
    SSamplingTextInput sSampling;
    sSampling.eSampling = sInput.eSampling;
    sSampling.bMinification = sInput.bMinification;
    sSampling.bInputOverlay = sInput.bInputOverlay;
    std::string strText = HeadText(sInput);
    if (sInput.bInputOverlay)
        strText += COLOUR_TEXT::pOverlayDeclaration;
    strText += SamplingText(sSampling);
    strText += COLOUR_TEXT::pMain;
    strText += SamplingStartText(sSampling);
    strText += sInput.strDiscard;
    const std::string strColour = IsYUV(sInput.nFormat) ? YUVText(sInput) : RGBText(sInput);
    strText += sSampling.IsPlain() ? strColour : SampledFetches(strColour);
    if (sInput.bInputOverlay)
        strText += COLOUR_TEXT::pOverlayBlend;
    if (HasAlpha(sInput.nFormat) && !sInput.bGain)
        strText += COLOUR_TEXT::pPremultiply;
    if (!sInput.strRim.empty()) {
        strText += sInput.strRim;
        strText += COLOUR_TEXT::pFade;
    }
    strText += COLOUR_TEXT::pOut;
    strText += COLOUR_TEXT::pEnd;
    return sInput.strRim.empty() && sSampling.IsPlain() ? strText : HighTexCoords(strText);
}
