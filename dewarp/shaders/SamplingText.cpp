#include "dewarp/shaders/SamplingText.h"

#include "dewarp/shaders/NumberText.h"

#include <cstddef>

namespace SAMPLING_TEXT
{

static const char* const pFootprint = "highp vec2 sampleAcross;\n"
                                      "highp vec2 sampleDown;\n";

static const char* const pStart = "   sampleAcross = dFdx(v_TexCoordinate);\n"
                                  "   sampleDown = dFdy(v_TexCoordinate);\n";

// Whether nothing lies over some texels of a plane. A gather at the corner between four texels takes all of
// them, whatever the overlay's filter is. Reaches of more than 32 texels count as covered.
static const char* const pClear =
    "bool sampleClear(highp ivec2 first, highp ivec2 last, highp ivec2 size)\n"
    "{\n"
    "   highp vec2 cover = vec2(textureSize(samplerInputOverlay, 0));\n"
    "   highp vec2 ratio = cover / vec2(size);\n"
    "   highp vec2 low = clamp(floor(vec2(first) * ratio + 0.001), vec2(0.0), cover - 1.0);\n"
    "   highp vec2 high = clamp(ceil(vec2(last + 1) * ratio - 0.001) - 1.0, low, cover - 1.0);\n"
    "   highp vec2 pairs = floor((high - low) * 0.5) + 1.0;\n"
    "   if (max(pairs.x, pairs.y) > 16.0)\n"
    "      return false;\n"
    "   for (highp float j = 0.0; j < pairs.y; j += 1.0) {\n"
    "      for (highp float i = 0.0; i < pairs.x; i += 1.0) {\n"
    "         highp vec2 corner = (low + 2.0 * vec2(i, j) + 1.0) / cover;\n"
    "         if (any(greaterThan(textureGather(samplerInputOverlay, corner, 3), vec4(0.0))))\n"
    "            return false;\n"
    "      }\n"
    "   }\n"
    "   return true;\n"
    "}\n";

// Weights by the distance from a texel, texels.
static const char* const pCubicWeight = "highp float sampleWeight(highp float x)\n"
                                        "{\n"
                                        "   x = abs(x);\n"
                                        "   if (x < 1.0)\n"
                                        "      return (1.5 * x - 2.5) * x * x + 1.0;\n"
                                        "   return ((2.5 - 0.5 * x) * x - 4.0) * x + 2.0;\n"
                                        "}\n";

// Sines of small angles divided by small angles: a hundredth of a texel is near enough to 0.
static const char* const pLanczosWeight = "highp float sampleWeight(highp float x)\n"
                                          "{\n"
                                          "   x = max(abs(x), 0.01);\n"
                                          "   return sin(3.14159265 * x) * sin(1.04719755 * x) / (x * x);\n"
                                          "}\n";

// Size and texels as drivers tell them. Of external images some tell neither: the size is written into the
// text, and the linear filter has a texel for itself in its middle.
static const char* const pSizeHead0 = "highp ivec2 sampleSize(";

static const char* const pSizeHead1 = " plane)\n"
                                      "{\n";

static const char* const pSizeAsked = "   return textureSize(plane, 0);\n";

static const char* const pTexelHead0 = "highp vec4 sampleTexel(";

static const char* const pTexelHead1 = " plane, highp ivec2 texel, highp ivec2 size)\n"
                                       "{\n";

static const char* const pTexelFetched = "   return texelFetch(plane, texel, 0);\n";

static const char* const pTexelFiltered = "   return texture(plane, (vec2(texel) + 0.5) / vec2(size));\n";

// Between the pieces of functions stand the type of the planes' samplers and what they differ in.
static const char* const pBaseHead0 = "highp vec4 sampleBase(";

static const char* const pHead1 = " plane, highp vec2 at)\n"
                                  "{\n";

static const char* const pNearest = "   highp ivec2 size = sampleSize(plane);\n"
                                    "   highp ivec2 place = ivec2(floor(at * vec2(size)));\n"
                                    "   return sampleTexel(plane, clamp(place, ivec2(0), size - 1), size);\n";

static const char* const pLinear = "   return texture(plane, at);\n";

// "before" texels of the kernel lie left of the texel that the place lies right of.
static const char* const pKernelPlace = "   highp ivec2 size = sampleSize(plane);\n"
                                        "   highp vec2 place = at * vec2(size) - 0.5;\n"
                                        "   highp vec2 part = place - floor(place);\n"
                                        "   highp ivec2 corner = ivec2(floor(place) - before);\n";

static const char* const pKernelClear = "   if (!sampleClear(corner, corner + taps - 1, size))\n"
                                        "      return texture(plane, at);\n";

static const char* const pKernelSum =
    "   highp float across[taps];\n"
    "   highp float acrossTotal = 0.0;\n"
    "   for (int i = 0; i < taps; ++i) {\n"
    "      across[i] = sampleWeight(part.x + before - float(i));\n"
    "      acrossTotal += across[i];\n"
    "   }\n"
    "   highp vec4 sum = vec4(0.0);\n"
    "   highp float total = 0.0;\n"
    "   for (int j = 0; j < taps; ++j) {\n"
    "      highp vec4 row = vec4(0.0);\n"
    "      for (int i = 0; i < taps; ++i) {\n"
    "         highp ivec2 texel = clamp(corner + ivec2(i, j), ivec2(0), size - 1);\n"
    "         row += across[i] * sampleTexel(plane, texel, size);\n"
    "      }\n"
    "      highp float weight = sampleWeight(part.y + before - float(j));\n"
    "      sum += weight * row;\n"
    "      total += weight;\n"
    "   }\n"
    "   return clamp(sum / (total * acrossTotal), 0.0, 1.0);\n";

static const char* const pFrameHead0 = "highp vec4 sampleFrame(";

static const char* const pFrameBase = "   return sampleBase(plane, at);\n";

// A quarter of a texel more than a whole number does not take another sample.
static const char* const pAverage0 =
    "   highp ivec2 size = sampleSize(plane);\n"
    "   highp vec2 texels = vec2(length(sampleAcross * vec2(size)), length(sampleDown * vec2(size)));\n"
    "   highp vec2 counts = clamp(ceil(texels - 0.25), 1.0, 8.0);\n"
    "   if (max(counts.x, counts.y) < 1.5)\n"
    "      return sampleBase(plane, at);\n"
    "   highp vec4 sum = vec4(0.0);\n"
    "   highp float total = 0.0;\n"
    "   for (int j = 0; j < 8; ++j) {\n"
    "      if (float(j) >= counts.y)\n"
    "         break;\n"
    "      for (int i = 0; i < 8; ++i) {\n"
    "         if (float(i) >= counts.x)\n"
    "            break;\n"
    "         highp vec2 side = (vec2(i, j) + 0.5) / counts - 0.5;\n"
    "         highp vec2 place = at + side.x * sampleAcross + side.y * sampleDown;\n";

static const char* const pAverageClear =
    "         highp ivec2 corner = ivec2(floor(place * vec2(size) - 0.5));\n"
    "         if (!sampleClear(corner, corner + 1, size))\n"
    "            continue;\n";

static const char* const pAverageEnd = "         sum += texture(plane, place);\n"
                                       "         total += 1.0;\n"
                                       "      }\n"
                                       "   }\n";

static const char* const pAverageNone = "   if (total < 0.5)\n"
                                        "      return sampleBase(plane, at);\n";

static const char* const pAverageReturn = "   return sum / total;\n";

static const char* const pEnd = "}\n";

} // namespace SAMPLING_TEXT

/// The functions that tell a plane's size and texels.
static std::string PlaneText(const SSamplingTextInput& sInput)
{
    const std::string strType = sInput.pSamplerType;
    std::string strText = SAMPLING_TEXT::pSizeHead0 + strType + SAMPLING_TEXT::pSizeHead1;
    if (sInput.bExternal)
        strText +=
            "   return ivec2(" + NumberText(sInput.nWidth) + ", " + NumberText(sInput.nHeight) + ");\n";
    else
        strText += SAMPLING_TEXT::pSizeAsked;
    strText += SAMPLING_TEXT::pEnd;
    strText += SAMPLING_TEXT::pTexelHead0 + strType + SAMPLING_TEXT::pTexelHead1;
    strText += sInput.bExternal ? SAMPLING_TEXT::pTexelFiltered : SAMPLING_TEXT::pTexelFetched;
    return strText + SAMPLING_TEXT::pEnd;
}

/// A kernel of some texels along either side.
static std::string KernelText(int nTaps, bool bInputOverlay)
{
    const int nBefore = nTaps / 2 - 1;
    std::string strText = "   const int taps = " + NumberText(nTaps) + ";\n";
    strText += "   const highp float before = " + NumberText(nBefore) + ".0;\n";
    strText += SAMPLING_TEXT::pKernelPlace;
    if (bInputOverlay)
        strText += SAMPLING_TEXT::pKernelClear;
    return strText + SAMPLING_TEXT::pKernelSum;
}

/// What a pixel is sampled with that is not averaged.
static std::string BaseText(const SSamplingTextInput& sInput)
{
    switch (sInput.eSampling) {
    case SAMPLING_NEAREST:
        return SAMPLING_TEXT::pNearest;
    case SAMPLING_CUBIC:
        return KernelText(4, sInput.bInputOverlay);
    case SAMPLING_LANCZOS:
        return KernelText(6, sInput.bInputOverlay);
    default:
        return SAMPLING_TEXT::pLinear;
    }
}

std::string SamplingText(const SSamplingTextInput& sInput)
{
    if (sInput.IsPlain())
        return std::string();
    std::string strText;
    if (sInput.bMinification)
        strText += SAMPLING_TEXT::pFootprint;
    if (sInput.bInputOverlay)
        strText += SAMPLING_TEXT::pClear;
    if (sInput.eSampling == SAMPLING_CUBIC)
        strText += SAMPLING_TEXT::pCubicWeight;
    if (sInput.eSampling == SAMPLING_LANCZOS)
        strText += SAMPLING_TEXT::pLanczosWeight;
    strText += PlaneText(sInput);
    strText += SAMPLING_TEXT::pBaseHead0 + std::string(sInput.pSamplerType) + SAMPLING_TEXT::pHead1;
    strText += BaseText(sInput) + SAMPLING_TEXT::pEnd;
    strText += SAMPLING_TEXT::pFrameHead0 + std::string(sInput.pSamplerType) + SAMPLING_TEXT::pHead1;
    if (!sInput.bMinification)
        return strText + SAMPLING_TEXT::pFrameBase + SAMPLING_TEXT::pEnd;
    strText += SAMPLING_TEXT::pAverage0;
    if (sInput.bInputOverlay)
        strText += SAMPLING_TEXT::pAverageClear;
    strText += SAMPLING_TEXT::pAverageEnd;
    if (sInput.bInputOverlay)
        strText += SAMPLING_TEXT::pAverageNone;
    strText += SAMPLING_TEXT::pAverageReturn;
    return strText + SAMPLING_TEXT::pEnd;
}

std::string SamplingStartText(const SSamplingTextInput& sInput)
{
    return sInput.bMinification ? SAMPLING_TEXT::pStart : std::string();
}

static void ReplaceAll(std::string& rText, const std::string& strOld, const std::string& strNew)
{
    for (std::size_t n = rText.find(strOld); n != std::string::npos; n = rText.find(strOld, n))
        rText.replace(n, strOld.size(), strNew);
}

std::string SampledFetches(std::string strText)
{
    const std::string strChroma = "texture(samplerUV, v_TexCoordinate)";
    const bool bChroma = strText.find(strChroma) != std::string::npos;
    ReplaceAll(strText, strChroma, "sampledUV");
    for (const char* pPlane : {"samplerRGB", "samplerY", "samplerU", "samplerV", "uTexture"})
        ReplaceAll(strText, std::string("texture(") + pPlane + ",",
                   std::string("sampleFrame(") + pPlane + ",");
    return bChroma ? "   highp vec4 sampledUV = sampleFrame(samplerUV, v_TexCoordinate);\n" + strText
                   : strText;
}
