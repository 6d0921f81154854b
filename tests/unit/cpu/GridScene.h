/// \file
/// A view's grid as a dewarper makes it.
#pragma once

#include "dewarp/control/Control.h"
#include "dewarp/control/Decision.h"
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
