// The view's program: when it must be another, and its texts.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/Rooms.h"
#include "dewarp/gl/PictureRequests.h"
#include "dewarp/records/ColourMatrix.h"
#include "dewarp/shaders/DiscardText.h"
#include "dewarp/shaders/FragmentText.h"
#include "dewarp/shaders/RimText.h"
#include "dewarp/shaders/VertexText.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace
{

/// What a view's program is asked for once; at most three planes, two of side information and an overlay,
/// then two attributes and the matrix.
class CViewSteps
{
public:
    CViewSteps(int nFormat, bool bQP, bool bOverlay)
    {
        AddFormat(nFormat, bQP);
        if (bOverlay)
            Sampler("samplerInputOverlay", UNIT_INPUT_OVERLAY);
        Add(STEP_POSITION);
        Add(STEP_TEX_COORD);
        Add(STEP_MVP);
    }
    std::span<const SProgramStep> List() const { return {m_aSteps.data(), m_nSteps}; }

private:
    void Add(const SProgramStep& rStep) { m_aSteps[m_nSteps++] = rStep; }
    void Sampler(const char* pName, int nUnit) { Add({SProgramStep::SAMPLER, pName, nullptr, nUnit}); }
    void AddFormat(int nFormat, bool bQP)
    {
        switch (nFormat) {
        case IMAGE_FORMAT_RGB24:
        case IMAGE_FORMAT_BGR24:
        case IMAGE_FORMAT_RGBA32:
        case IMAGE_FORMAT_BGRA32:
        case IMAGE_FORMAT_GRAY8:
            Sampler("samplerRGB", UNIT_INPUT);
            break;
        case IMAGE_FORMAT_NV12:
        case IMAGE_FORMAT_NV21:
            Sampler("samplerY", UNIT_INPUT);
            Sampler("samplerUV", UNIT_UV);
            break;
        case IMAGE_FORMAT_YUV420P:
            Sampler("samplerY", UNIT_INPUT);
            Sampler("samplerU", UNIT_U);
            Sampler("samplerV", UNIT_V);
            if (bQP) {
                Sampler("samplerQP", UNIT_QP);
                Sampler("samplerMBType", UNIT_MB_TYPE);
            }
            break;
        default:
            break;
        }
    }

    std::array<SProgramStep, 9> m_aSteps{};
    std::size_t m_nSteps = 0;
};

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
    TakeSettings(sMainShader);
    sMainShader.strVertexShader = GetVertexShaderCode();
    sMainShader.strFragmentShader = GetFragShaderCode();
    const bool bOverlay = sInputOverlay.nWidth > 0 && sInputOverlay.nHeight > 0;
    const CViewSteps oSteps(nImageFormat, sMainShader.bQPTextures, bOverlay);
    if (pRooms->oPrograms.Use(sMainShader, oSteps.List(), true) < 0)
        return -1;
    // Another program may have its attributes elsewhere.
    pBoundViewObject = nullptr;
    bShadersLoaded = true;
    bViewSetupRequired = true;
    return 1;
}

/// Brings the view's program up to date. One that could not be built is tried once more with the next frame,
/// for the driver may only have been short of something, and then when something changes.
bool CCustomGPUDewarper::CheckMainProgram()
{
    SRooms& r = *pRooms;
    const int nResult = CheckLoadShaders();
    if (nResult >= 0 && sMainShader.IsUsable()) {
        r.bProgramTriedAgain = false;
        return true;
    }
    if (!r.bProgramTriedAgain)
        sMainShader.bForceReload = true;
    else if (nResult >= 0)
        r.oReport.Standing(FAULT_PROGRAM, "%s: the view's program could not be built", "DrawGLScene");
    r.bProgramTriedAgain = true;
    return false;
}

int CCustomGPUDewarper::LoadShaderPrograms(SShaderProperties& sShader)
{
    return pRooms->oPrograms.Load(sShader);
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
    sInput.eSampling = RequestedSettings(sMainShader).SamplingInForce(eInterpolation);
    sInput.bMinification = sMainShader.bMinification;
    sInput.strDiscard = GetFragShaderDiscardCode();
    sInput.strRim = GetFragShaderRimCode();
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

std::string CCustomGPUDewarper::GetFragShaderRimCode()
{
    std::copy(std::begin(sMainShader.afRimRequested), std::end(sMainShader.afRimRequested),
              sMainShader.afRim);
    const float* f = sMainShader.afRim;
    return RimText({f[0], f[1], f[2], f[3]});
}
