// The grid that comes from the views' definitions, beside directions and lenses computed elsewhere.

#include "tests/support/ReferenceView.h"
#include "tests/unit/cpu/GridScene.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

struct SExactScene
{
    SReferenceSetup sSetup;
    std::string strName;
};

std::vector<SExactScene> ListScenes()
{
    std::vector<SExactScene> vScenes;
    const auto Add = [&](EViewType eView, EMountType eMount, double fPan, double fTilt, double fZoom,
                         double fMountTilt, double fEye) {
        for (const int nLens : {0, 215, 239, 418, 419}) {
            // One camera with every lens; the others with the ideal one and the most bent.
            if (nLens > 215 && (eView != VIEW_VCAM || eMount != MOUNT_CEILING))
                continue;
            SReferenceSetup s;
            s.eView = eView;
            s.eMount = eMount;
            s.nLensType = nLens;
            s.nImageWidth = nLens == 215 ? 2048 : 1920;
            s.nImageHeight = nLens == 215 ? 1536 : 1920;
            s.nTargetWidth = 960;
            s.nTargetHeight = 540;
            s.fPan = fPan;
            s.fTilt = fTilt;
            s.fZoom = fZoom;
            s.fMountTilt = fMountTilt;
            s.bStrict = fMountTilt == 0.0;
            s.fEyeDistance = fEye;
            vScenes.push_back({s, "view " + std::to_string(eView) + " mount " + std::to_string(eMount) +
                                      " lens " + std::to_string(nLens) + " eye " + std::to_string(fEye)});
        }
    };
    for (const double fEye : {0.0, 0.5}) {
        Add(VIEW_VCAM, MOUNT_CEILING, 37.0, 41.0, 130.0, 0.0, fEye);
        Add(VIEW_VCAM, MOUNT_FLOOR, -111.0, 140.0, 110.0, 0.0, fEye);
        Add(VIEW_VCAM, MOUNT_WALL, 70.0, 100.0, 150.0, 0.0, fEye);
    }
    Add(VIEW_VCAM_QUAD, MOUNT_CEILING, 15.0, 50.0, 120.0, 0.0, 0.0);
    Add(VIEW_PANORAMA_FULL, MOUNT_CEILING, 20.0, 0.0, 180.0, 0.0, 0.0);
    Add(VIEW_PANORAMA_FULL, MOUNT_FLOOR, 20.0, 0.0, 180.0, 0.0, 0.0);
    Add(VIEW_PANORAMA_HALF, MOUNT_CEILING, 20.0, 0.0, 180.0, 0.0, 0.0);
    Add(VIEW_PANORAMA_QUARTER, MOUNT_CEILING, 20.0, 0.0, 180.0, 0.0, 0.0);
    Add(VIEW_PANORAMA_DUAL, MOUNT_CEILING, 33.0, 9.0, 180.0, 0.0, 0.0);
    Add(VIEW_PANORAMA_TRIPLE, MOUNT_CEILING, 33.0, 0.0, 180.0, 0.0, 0.0);
    Add(VIEW_PANORAMA_TRIPLE, MOUNT_CEILING, 33.0, -7.0, 180.0, 0.0, 0.0);
    Add(VIEW_PANORAMA_FULL, MOUNT_WALL, 0.0, 0.0, 180.0, 0.0, 0.0);
    Add(VIEW_PANORAMA_FULL, MOUNT_WALL, 5.0, 0.0, 180.0, 12.0, 0.0);
    return vScenes;
}

class CExactGeometry : public ::testing::Test
{
protected:
    void Build(const SReferenceSetup& s, bool bExact)
    {
        m_oControl.eRequestedView = s.eView;
        m_oControl.eRequestedMount = s.eMount;
        m_oControl.eRequestedLens = static_cast<ELensType>(s.nLensType);
        m_oControl.fEyeDistance = static_cast<float>(s.fEyeDistance);
        m_oControl.SetFrame(s.nImageWidth, s.nImageHeight, s.nImageWidth, true);
        m_oControl.SetMountTilt(static_cast<float>(s.fMountTilt));
        m_oControl.sParams.bStrictTiltLimits = s.bStrict;
        m_oControl.ApplyRequests();
        // A new view brings its own angles; ours come after it.
        m_oControl.AbsolutePTZ(static_cast<float>(s.fPan), static_cast<float>(s.fTilt),
                               static_cast<float>(s.fZoom));
        m_oControl.ApplyRequests();
        DecideView(m_oControl, {s.nTargetWidth, s.nTargetHeight, true}, m_sDecision);
        ASSERT_EQ(m_sDecision.sParams.fPan, static_cast<float>(s.fPan));
        ASSERT_EQ(m_sDecision.sParams.fTilt, static_cast<float>(s.fTilt));
        ASSERT_EQ(m_sDecision.sParams.fZoom, static_cast<float>(s.fZoom));
        m_sDecision.pView->BuildMesh(m_oGeometry, m_sDecision.sMesh);
        m_oMesh.Build(m_oGeometry, m_sDecision.sMesh.eMesh == MESH_FISHEYE_CIRCULAR);
        m_oGrid.SetExactGeometry(bExact);
        m_oGrid.Build(m_sDecision, m_oMesh, {s.nImageWidth, s.nImageHeight, false, false}, 1);
    }

    template <class F>
    void ForAllPixels(F&& rUse)
    {
        for (int g = 0; g < m_oGrid.CountParts(); ++g)
            ForPixels(m_oGrid.Parts()[g], rUse);
    }

    CReport m_oReport{"ExactGeometry"};
    CControl m_oControl{m_oReport};
    SFrameDecision m_sDecision;
    CCustomGPUGeometry m_oGeometry;
    CMeshIndex m_oMesh;
    CViewGrid m_oGrid;
};

struct SDisplacement
{
    double fSum = 0.0;
    double fMost = 0.0;
    long nPixels = 0;
};

} // namespace

TEST_F(CExactGeometry, LiesWithinAHundredthOfAPixelOfTheOptics)
{
    for (const SExactScene& rScene : ListScenes()) {
        SCOPED_TRACE(rScene.strName);
        const SReferenceSetup& s = rScene.sSetup;
        const CReferenceView oView(s);
        ASSERT_NO_FATAL_FAILURE(Build(s, true));
        SDisplacement sFound;
        ForAllPixels([&](int x, int y, const SGridPoint& rPlace) {
            const SReferencePixel sPixel = oView.At(x + 0.5, y + 0.5);
            // There are no optics behind the camera; the last pixel of a view may be its mesh's alone.
            if (!sPixel.bDrawn || sPixel.aRay[2] < 0.001)
                return;
            double u = 0.0;
            double v = 0.0;
            oView.TrueTexCoord(sPixel.aRay, u, v);
            const double dx = (rPlace.x + POSITION_ONE * 0.5) / POSITION_ONE - u * s.nImageWidth;
            const double dy = (rPlace.y + POSITION_ONE * 0.5) / POSITION_ONE - v * s.nImageHeight;
            const double f = std::hypot(dx, dy);
            sFound.fSum += f;
            sFound.fMost = std::max(sFound.fMost, f);
            ++sFound.nPixels;
        });
        EXPECT_GT(sFound.nPixels, 40000);
        EXPECT_LT(sFound.fMost, 0.01);
        EXPECT_LT(sFound.fSum / static_cast<double>(sFound.nPixels), 0.003);
    }
}

TEST_F(CExactGeometry, CoversTheSamePixelsAsTheMesh)
{
    for (const SExactScene& rScene : ListScenes()) {
        if (rScene.sSetup.nLensType != 0)
            continue;
        SCOPED_TRACE(rScene.strName);
        std::vector<unsigned char> vMesh(960 * 540);
        std::vector<unsigned char> vExact(960 * 540);
        ASSERT_NO_FATAL_FAILURE(Build(rScene.sSetup, false));
        ForAllPixels(
            [&](int x, int y, const SGridPoint&) { vMesh[static_cast<std::size_t>(y * 960 + x)] = 1; });
        ASSERT_NO_FATAL_FAILURE(Build(rScene.sSetup, true));
        ForAllPixels(
            [&](int x, int y, const SGridPoint&) { vExact[static_cast<std::size_t>(y * 960 + x)] = 1; });
        EXPECT_EQ(vMesh, vExact);
    }
}
