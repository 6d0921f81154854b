/// \file
/// What the command line asks for.
#pragma once

#include "dewarp/Dewarper.h"
#include "dewarp/lenses/SLens.h"
#include "dewarp/overlays/SGPUString.h"
#include "dewarp/records/Enumerations.h"
#include "dewarp/records/SGRect.h"

#include <optional>
#include <string>
#include <vector>

/// Width and height in pixels.
struct SSize
{
    int nWidth = 0;
    int nHeight = 0;
};

/// A file of bare pixels. Chroma planes follow the first plane without a gap.
struct SRawLayout
{
    int nFormat = IMAGE_FORMAT_RGB24; ///< EImageFormat
    SSize sSize;
    int nStride = 0; ///< bytes a row of the first plane
};

struct SGains
{
    float fLuma = 1.0f;
    float fChroma = 1.0f;
};

/// Where the lens's circle lies in the input, pixels.
struct SCircle
{
    float fCenterX = 0.0f;
    float fCenterY = 0.0f;
    float fRadiusX = 0.0f;
    float fRadiusY = 0.0f;
};

/// Degrees.
struct SOrientation
{
    float fYaw = 0.0f;
    float fPitch = 0.0f;
    float fRoll = 0.0f;
};

/// Every option; those without a value were not given. Degrees and pixels.
struct SToolOptions
{
    std::string strInput;
    std::string strOutput;
    std::optional<SRawLayout> oRaw;

    EViewType eView = VIEW_VCAM;
    EMountType eMount = MOUNT_CEILING;
    ELensType eLens = LENS_AUTO;
    std::optional<SLens> oLens; ///< in place of eLens
    std::string strLensFile;    ///< describes oLens; empty: none
    std::optional<SCircle> oCircle;
    bool bFindCircle = false; ///< look for it in the picture
    std::optional<SOrientation> oOrientation;
    std::optional<float> oRoll;
    bool bCleanRim = true;
    SViewShape sShape;         ///< spans and bands
    std::vector<SPane> vPanes; ///< several views in one picture; empty: one
    int nPaneGap = 0;
    unsigned int nPaneGapColor = 0x000000FF;
    ESampling eSampling = SAMPLING_BY_TYPE;
    bool bMinification = false;
    std::optional<float> oPan;
    std::optional<float> oTilt;
    std::optional<float> oZoom;
    std::optional<float> oMountTilt;
    bool bStrictTilt = true;
    std::optional<float> oEyeDistance; ///< 0 rectilinear … 1 stereographic
    std::optional<SSize> oSize;
    EInterpolationType eInterpolation = INTERPOLATION_LINEAR;
    std::optional<EYUVSpace> oYUVSpace;
    std::optional<EYUVRange> oYUVRange;
    std::optional<SGains> oGains;
    bool bFlipHorizontal = false;
    bool bFlipVertical = false;
    std::optional<int> oRotation;

    std::string strInputOverlay; ///< files; empty: none
    std::string strOutputOverlay;
    std::string strMaskFile;
    std::string strStringsFile;
    std::vector<SGPolygon> vMasks;
    std::vector<SGPUString> vTexts;

    EDewarpEngine eEngine = ENGINE_AUTO;
    std::optional<int> oThreads; ///< that draw; 0: one a core
    bool bExactGeometry = false; ///< the processor draws
    bool bBuffers = false;       ///< through graphic buffers
    bool bStats = false;
    bool bVerbose = false;
    std::string strMapName; ///< of the view's coordinate map; empty: none
};

/// What to do with a command line that could be read.
enum class EToolAction
{
    DEWARP,
    SHOW_HELP,
    SHOW_VERSION,
};

struct SCommandLine
{
    EToolAction eAction = EToolAction::DEWARP;
    SToolOptions sOptions;
};

/// Reads the command line; throws CToolError with EXIT_USAGE where it cannot be followed. Touches no file.
SCommandLine ParseCommandLine(int nArguments, const char* const* ppArguments);
