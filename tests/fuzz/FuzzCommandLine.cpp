// Bytes to command lines of the tool: they are read and judged; no file is touched.
#include "FuzzBytes.h"
#include "FuzzSupport.h"

#include "ImageWriter.h"
#include "Notes.h"
#include "Options.h"
#include "ToolError.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

static const char* const WORDS[] = {"--raw",
                                    "--view",
                                    "--mount",
                                    "--lens",
                                    "--pan",
                                    "--tilt",
                                    "--zoom",
                                    "--mount-tilt",
                                    "--projection",
                                    "--size",
                                    "--interpolation",
                                    "--yuv-space",
                                    "--yuv-range",
                                    "--gain",
                                    "--flip",
                                    "--rotation",
                                    "--input-overlay",
                                    "--output-overlay",
                                    "--mask-file",
                                    "--strings-file",
                                    "--mask",
                                    "--text",
                                    "--text-at",
                                    "--text-height",
                                    "--text-color",
                                    "--text-align",
                                    "--no-strict-tilt",
                                    "--buffers",
                                    "--stats",
                                    "--verbose",
                                    "--help",
                                    "--version",
                                    "-h",
                                    "--",
                                    "-",
                                    "=",
                                    ",",
                                    ":",
                                    "x",
                                    "#",
                                    " ",
                                    "in.png",
                                    "out.png",
                                    "out.raw",
                                    "fisheye",
                                    "panorama",
                                    "vcam",
                                    "quad",
                                    "dual",
                                    "triple",
                                    "quarter",
                                    "half",
                                    "circular",
                                    "wall",
                                    "ceiling",
                                    "floor",
                                    "auto",
                                    "linear",
                                    "nearest",
                                    "bt601",
                                    "bt709",
                                    "full",
                                    "limited",
                                    "rectilinear",
                                    "stereographic",
                                    "nv12",
                                    "yuv420p",
                                    "rgba",
                                    "640x480",
                                    "0,0 9,0 9,9 #FF0000",
                                    "10,20",
                                    "#FF00FF80",
                                    "left,top",
                                    "right",
                                    "1.5:2",
                                    "hv",
                                    "90",
                                    "419",
                                    "-5",
                                    "1e9",
                                    "nan",
                                    "inf",
                                    "16384",
                                    "99999999999999999999",
                                    "--engine",
                                    "--threads",
                                    "cpu",
                                    "gl",
                                    "--lens",
                                    "equidistant:200",
                                    "--circle",
                                    "960,540,530",
                                    "--mount-orientation",
                                    "1,2,3",
                                    "--roll",
                                    "--span",
                                    "--band",
                                    "110,40"};

/// Bytes are characters but for the upper half, which are words; 0 ends an argument, 255 lets the next byte
/// be a character whatever it is.
static std::vector<std::string> Arguments(CFuzzBytes& rBytes)
{
    std::vector<std::string> vArguments = {"lumor-dewarp"};
    // Most inputs bring their files, or they would be refused for that alone.
    if (rBytes.Byte() % 4 != 3)
        vArguments.insert(vArguments.end(), {"in.png", "out.png"});
    bool bOpen = false;
    while (!rBytes.IsEmpty()) {
        const unsigned int nByte = rBytes.Byte();
        if (nByte == 0) {
            bOpen = false;
            continue;
        }
        if (!bOpen)
            vArguments.emplace_back();
        bOpen = true;
        if (nByte >= 128 && nByte < 255)
            vArguments.back() += WORDS[(nByte - 128) % std::size(WORDS)];
        else
            vArguments.back() += static_cast<char>(nByte == 255 ? rBytes.Byte() : nByte);
    }
    return vArguments;
}

static void RequireWithin(const std::optional<float>& oValue, float fLow, float fHigh, const char* pWhat)
{
    Require(!oValue || (*oValue >= fLow && *oValue <= fHigh), pWhat);
}

static void CheckOptions(const SToolOptions& rOptions)
{
    Require(!rOptions.strInput.empty() && !rOptions.strOutput.empty(), "there are files");
    Require(CDewarper::GetViewName(rOptions.eView) != nullptr, "a view");
    Require(!rOptions.oLens || FindLensFault(*rOptions.oLens).empty(), "a lens");
    Require(!rOptions.oCircle || (rOptions.oCircle->fRadiusX >= 1.0f && rOptions.oCircle->fRadiusY >= 1.0f),
            "a circle");
    RequireWithin(rOptions.oRoll, -360.0f, 360.0f, "a roll");
    RequireWithin(rOptions.oPan, -360.0f, 360.0f, "a pan");
    RequireWithin(rOptions.oTilt, -180.0f, 180.0f, "a tilt");
    RequireWithin(rOptions.oZoom, 5.0f, 180.0f, "a zoom");
    RequireWithin(rOptions.oMountTilt, -90.0f, 90.0f, "a mount tilt");
    RequireWithin(rOptions.oEyeDistance, 0.0f, 1.0f, "an eye distance");
    Require(!rOptions.oSize || (rOptions.oSize->nWidth >= 2 && rOptions.oSize->nWidth <= 16384 &&
                                rOptions.oSize->nHeight >= 2 && rOptions.oSize->nHeight <= 16384),
            "a size");
    Require(!rOptions.oGains ||
                (std::isfinite(rOptions.oGains->fLuma) && std::isfinite(rOptions.oGains->fChroma)),
            "gains");
    Require(!rOptions.oRotation || *rOptions.oRotation % 90 == 0, "a rotation");
    Require(!rOptions.oThreads || (*rOptions.oThreads >= 0 && *rOptions.oThreads <= 1024), "threads");
    Require(!rOptions.bBuffers || rOptions.eEngine != ENGINE_CPU, "an engine that draws buffers");
    Require(!rOptions.oRaw || rOptions.oRaw->nStride >= rOptions.oRaw->sSize.nWidth, "a raw frame");
    for (const SGPolygon& rMask : rOptions.vMasks)
        Require(rMask.vPoints.size() >= 3, "masks have corners");
    for (const SGPUString& rText : rOptions.vTexts)
        Require(rText.nHeight >= 4 && rText.nHeight <= 1024, "texts have a height");
}

/// One line without control characters could be printed of each; here it only must be there.
static void CheckNotes(const SToolOptions& rOptions)
{
    for (const int nFormat : {IMAGE_FORMAT_RGBA32, IMAGE_FORMAT_NV12}) {
        for (const std::string& strNote : ListIgnoredOptions(rOptions, nFormat))
            Require(!strNote.empty(), "a remark");
    }
    for (const std::string& strNote : ListUndrawableTexts(rOptions.vTexts))
        Require(!strNote.empty(), "a remark");
    for (const std::string& strNote : ListLimitedPTZ(rOptions, 1.0f, 2.0f, 90.0f))
        Require(!strNote.empty(), "a remark");
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize)
{
    const CFuzzInput oInput;
    CFuzzBytes oBytes(pData, nSize);
    const std::vector<std::string> vArguments = Arguments(oBytes);
    std::vector<const char*> vPointers;
    vPointers.reserve(vArguments.size());
    for (const std::string& strArgument : vArguments)
        vPointers.push_back(strArgument.c_str());
    try {
        const SCommandLine sLine = ParseCommandLine(static_cast<int>(vPointers.size()), vPointers.data());
        if (sLine.eAction != EToolAction::DEWARP)
            return 0;
        CheckOptions(sLine.sOptions);
        CheckNotes(sLine.sOptions);
        GetOutputKind(sLine.sOptions.strOutput);
    } catch (const CToolError& rError) {
        Require(rError.GetStatus() == EXIT_USAGE, "a command line is refused as such");
        Require(rError.what()[0] != '\0', "with a line for the user");
    }
    return 0;
}
