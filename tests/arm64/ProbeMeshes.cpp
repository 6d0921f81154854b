// Every mesh and every shader text.
#include "Probe.h"

#include "dewarp/CustomGPUGeometry.h"
#include "dewarp/android/CustomGPUDewarperVela.h"
#include "dewarp/records/YUVColour.h"
#include "dewarp/shaders/DiscardText.h"
#include "dewarp/shaders/FragmentText.h"
#include "dewarp/shaders/PassTexts.h"
#include "dewarp/shaders/VertexText.h"
#include "dewarp/shaders/YUVTargetText.h"
#include "platform/DriverTraits.h"

namespace
{

const SGRect SIZES[] = {{0, 0, 1920, 1920}, {0, 0, 1504, 1504}, {0, 0, 3200, 3000}, {0, 0, 641, 480}};
const int LENSES[] = {0, 215, 239, 418, 419};

std::string Name(const char* pMesh, int nLens, const SGRect& rSize, int nVariant = 0)
{
    return std::string(pMesh) + " lens " + std::to_string(nLens) + " " + std::to_string(rSize.width) + "x" +
           std::to_string(rSize.height) + " variant " + std::to_string(nVariant);
}

void AddMesh(CProbeFile& rFile, const CCustomGPUGeometry& rGeometry, const std::string& strName)
{
    rFile.Add(strName + " positions", rGeometry.m_pVertices, rGeometry.m_nVertexCount * 3);
    rFile.Add(strName + " texture", rGeometry.m_pTexCoords, rGeometry.m_nVertexCount * 2);
    rFile.Add(strName + " aspect", &rGeometry.m_fGeometryAspect, 1);
}

void AddMeshes(CProbeFile& rFile, int nLens, const SGRect& rSize)
{
    const int w = rSize.width;
    const int h = rSize.height;
    CCustomGPUGeometry g;
    g.GenerateFisheyeVertices(w, h);
    AddMesh(rFile, g, Name("fisheye", nLens, rSize));
    g.GenerateCircularFisheyeVertices(nLens, w, h);
    AddMesh(rFile, g, Name("circular", nLens, rSize));
    g.GeneratePanoramaVertices(nLens, w, h);
    AddMesh(rFile, g, Name("panorama", nLens, rSize));
    for (int i = 0; i < 3; ++i) {
        const float fTurn = static_cast<float>(i) * 61.7f;
        const float fLift = static_cast<float>(i - 1) * 20.0f;
        g.GenerateDualPanoramaVertices(nLens, fTurn, fLift, w, h);
        AddMesh(rFile, g, Name("dual", nLens, rSize, i));
        g.GenerateTriplePanoramaVertices(nLens, fTurn, fLift, w, h);
        AddMesh(rFile, g, Name("triple", nLens, rSize, i));
        g.GeneratePanoramaWallVertices(nLens, fLift, fTurn, i != 1, w, h);
        AddMesh(rFile, g, Name("wall", nLens, rSize, i));
    }
    g.GenerateVCAMVertices(nLens, w, h);
    AddMesh(rFile, g, Name("camera", nLens, rSize));
    g.GenerateFisheyeMaskVertices({{{10, 10}, {w - 5, 20}, {w / 2, h / 2}, {w - 9, h - 1}, {3, h - 7}}, 0}, w,
                                  h);
    AddMesh(rFile, g, Name("mask", nLens, rSize));
    g.GenerateFontVertices(608, 384, 16, 6);
    AddMesh(rFile, g, Name("font", nLens, rSize));
}

std::string Text(float fValue)
{
    SDiscardInput sDiscard;
    sDiscard.anClipPlanes[0] = 17;
    sDiscard.anClipPlanes[1] = 1000;
    sDiscard.fClipValue = fValue;
    sDiscard.bTexCoordClip = true;
    return DiscardText(sDiscard);
}

void AddTexts(CProbeFile& rFile)
{
    SDriverTraits sPoor;
    sPoor.bYUVTarget = false;
    sPoor.bPreferHighp = true;
    const auto Add = [&](const std::string& strName, const std::string& strText) {
        rFile.Add(strName, strText);
        rFile.Add(strName + ", preferred", PreferredShaderText(strText, sPoor));
        rFile.Add(strName + ", adapted", AdaptShaderText(strText, sPoor));
    };
    const float aNumbers[] = {0.0f, -0.0f, 1.0f / 3.0f, 1e6f, 1.1765f, 123456.7f, 1e-7f, 16777216.0f};
    for (const float fNumber : aNumbers) {
        const std::string strNumber = std::to_string(fNumber);
        Add("discard " + strNumber, Text(fNumber));
        for (int nFormat = 0; nFormat <= 10; ++nFormat)
            for (int nVariant = 0; nVariant < 16; ++nVariant) {
                SFragmentTextInput s;
                s.nFormat = nFormat;
                s.nYUVSpace = 1 + nVariant % 4;
                s.nYUVRange = 1 + nVariant / 4 % 2;
                s.bGain = nVariant >= 8;
                s.fLumaGain = fNumber;
                s.bInputOverlay = nVariant % 3 == 0;
                s.bQPTextures = nVariant % 5 == 0;
                s.strDiscard = Text(fNumber);
                Add("fragment " + strNumber + " " + std::to_string(nFormat) + " " + std::to_string(nVariant),
                    FragmentText(s));
            }
    }
    for (int nVariant = 0; nVariant < 32; ++nVariant) {
        const SVertexTextInput s = {nVariant % 2 != 0, nVariant / 2 % 2 != 0, nVariant / 4 % 4 * 90,
                                    nVariant >= 16};
        Add("vertex " + std::to_string(nVariant), VertexText(s));
    }
    for (int nVariant = 0; nVariant < 4; ++nVariant) {
        Add("YUV vertex " + std::to_string(nVariant), YUVTargetVertexText(nVariant % 2 != 0));
        Add("YUV fragment " + std::to_string(nVariant),
            YUVTargetFragmentText(nVariant % 2 != 0, nVariant / 2 != 0, Text(0.25f)));
    }
    for (const char* pText :
         {PASS_TEXT::pTextureToScreenVertex, PASS_TEXT::pTextureToScreenFragment,
          PASS_TEXT::pTextureToTextureVertex, PASS_TEXT::pTextureToTextureFragment,
          PASS_TEXT::pOutputOverlayVertex, PASS_TEXT::pOutputOverlayFragment, PASS_TEXT::pMaskVertex,
          PASS_TEXT::pMaskFragment, PASS_TEXT::pStringVertex, PASS_TEXT::pStringFragment})
        Add(std::string("pass ") + std::to_string(rFile.mBytes.size()), pText);
    for (const bool bToTexture : {false, true})
        Add("composite " + std::to_string(static_cast<int>(bToTexture)),
            StringCompositeFragmentText(bToTexture));
}

} // namespace

void DumpMeshesAndTexts(CProbeFile& rFile)
{
    for (const int nLens : LENSES)
        AddMeshes(rFile, nLens, SIZES[0]);
    for (const SGRect& rSize : SIZES)
        AddMeshes(rFile, 418, rSize);
    AddTexts(rFile);
    std::string strColours;
    for (unsigned int i = 0; i < 4096; ++i)
        strColours += std::to_string(ConvertColourToYUV(i * 1048583U, static_cast<EYUVSpace>(i % 5),
                                                        static_cast<EYUVRange>(i / 5 % 3))) +
                      ' ';
    rFile.Add("colours", strColours);
}
