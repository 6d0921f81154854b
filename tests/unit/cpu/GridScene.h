/// \file
/// A view's grid as a dewarper makes it.
#pragma once

#include "dewarp/control/Control.h"
#include "dewarp/control/Decision.h"
#include "dewarp/cpu/CellKernel.h"
#include "dewarp/cpu/ViewGrid.h"
#include "dewarp/geometry/CustomGPUGeometry.h"

struct SGridScene
{
    SGridScene(EViewType eView, int nFrameSize, int nTargetWidth, int nTargetHeight, float fPan = 30.0f)
    {
        oControl.eRequestedView = eView;
        oControl.eRequestedMount = MOUNT_CEILING;
        oControl.eRequestedLens = LENS_UNKNOWN;
        oControl.SetFrame(nFrameSize, nFrameSize, nFrameSize, true);
        oControl.AbsolutePTZ(fPan, 45.0f, 70.0f);
        oControl.ApplyRequests();
        DecideView(oControl, {nTargetWidth, nTargetHeight, true}, sDecision);
        sDecision.pView->BuildMesh(oGeometry, sDecision.sMesh);
        oMesh.Build(oGeometry, sDecision.sMesh.eMesh == MESH_FISHEYE_CIRCULAR);
        oGrid.Build(sDecision, oMesh, {nFrameSize, nFrameSize, false, false}, 2);
    }

    CReport oReport{"GridScene"};
    CControl oControl{oReport};
    SFrameDecision sDecision;
    CCustomGPUGeometry oGeometry;
    CMeshIndex oMesh;
    CViewGrid oGrid;
};

/// Calls rUse(x, y, position) for each pixel that a part draws.
template <class F>
void ForPixels(const SPartGrid& rGrid, F&& rUse)
{
    for (int nRow = 0; nRow < rGrid.nRows; ++nRow) {
        int nExact = rGrid.vFirstExact[static_cast<std::size_t>(nRow)];
        for (int nCol = 0; nCol < rGrid.nCols; ++nCol) {
            const unsigned char nKind = rGrid.vKinds[rGrid.CellIndex(nCol, nRow)];
            SGridPoint asPositions[CELL_PIXELS];
            std::uint64_t nCovered = ~std::uint64_t{0};
            if (nKind == CELL_EMPTY)
                continue;
            if (nKind == CELL_EXACT) {
                const SExactCell& rCell = rGrid.vExact[static_cast<std::size_t>(nExact++)];
                ExactPositions(rCell, asPositions);
                nCovered = rCell.nCovered;
            } else {
                const int n = rGrid.PointsPerCell();
                PixelPositions(
                    {&rGrid.vPoints[rGrid.PointIndex(nCol * n, nRow * n)], rGrid.nPointCols, rGrid.nStep},
                    asPositions);
            }
            for (int i = 0; i < CELL_PIXELS; ++i) {
                const int x = rGrid.nOriginX + nCol * CELL_SIDE + i % CELL_SIDE;
                const int y = rGrid.nOriginY + nRow * CELL_SIDE + i / CELL_SIDE;
                const SGRect& r = rGrid.sRect;
                if ((nCovered >> i & 1) != 0 && x >= r.x && y >= r.y && x < r.x + r.width &&
                    y < r.y + r.height)
                    rUse(x, y, asPositions[i]);
            }
        }
    }
}
