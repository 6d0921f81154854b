/// \file
/// Everything that one dewarper of the processor engine is put together from. Inside the room only.
#pragma once

#include "dewarp/control/Panes.h"
#include "dewarp/cpu/CustomCPUDewarper.h"
#include "dewarp/cpu/FrameDraw.h"
#include "dewarp/cpu/FrameLayers.h"
#include "dewarp/cpu/ScratchRows.h"
#include "dewarp/cpu/ViewDraw.h"
#include "dewarp/mapping/PictureMap.h"
#include "dewarp/records/LogTag.h"
#include "platform/FairMutex.h"
#include "platform/Report.h"

#include <memory>
#include <mutex>
#include <vector>

/// What keeps a frame from being drawn; each is said once as long as it stands.
enum ECPUFault : int
{
    CPU_FAULT_NO_FRAME,
    CPU_FAULT_NO_TARGET,
    CPU_FAULT_MASKS,
};

struct CCustomCPUDewarper::SState
{
    // Steps of a frame, in their order.
    bool HasFrameAndTarget(const char* pFunction);
    void PrepareView();
    void PreparePanes();
    SLayerPlace LayerPlaceOf(const SFrameTarget& rTarget) const;
    bool PrepareLayers(const SFrameTarget& rTarget, const char* pFunction);
    bool DrawViews(const SFrameTarget& rTarget, const char* pFunction);
    SYUV2RGBConversionParams ColoursInForce() const;
    bool KeepsYUV() const;
    SFrameTarget OwnTarget();
    /// A whole frame: into the host's memory, or into the own buffer.
    bool Draw(const SFrameTarget* pTarget, const char* pFunction);
    void RequestFrame() { oControl.bDrawRequired = true; }
    int CountThreads() const;
    /// The frame to draw from now on; it has no fault.
    void TakeFrame(const SFramePlanes& rFrame, unsigned long long nTimestamp);
    /// Reports a fault that ends an operation, and returns false.
    bool Fail(const char* pFunction, const char* pMessage);

    CFairMutex oMutex;
    CReport oReport{DEWARP_LOG_TAG};
    CControl oControl{oReport};
    CPanes oPanes{oControl, oReport};
    SPictureSettings sPicture;
    CFrameLayers oLayers;

    int nTargetWidth = 0;
    int nTargetHeight = 0;
    int nThreads = 0; ///< as asked for

    SFramePlanes sFrame;
    SQPInfo sQP;
    bool bHasFrame = false; ///< the planes belong to a frame
    unsigned long long nLastSet = 0;
    unsigned long long nLastDisplayed = 0;
    bool bViewDrawn = false; ///< a view is in force: its limits count at once

    SFrameDecision sDecision; ///< of the one view; panes have their own
    CCustomGPUGeometry oGeometry;
    CViewDraw oView;
    std::vector<std::unique_ptr<CViewDraw>> vPaneViews; ///< as many as there ever were panes
    bool bExactGeometry = false;
    CPictureMap oPoints; ///< of the picture that was drawn last

    /// Rows of cells that something lies over are finished here before the host's memory sees them.
    CScratchRows oScratch;

    // What GetImage gives: two halves, the picture in the second one.
    std::unique_ptr<unsigned char[]> pBuffer;
    std::size_t nBufferSize = 0;
    int nDrawnWidth = 0; ///< 0: nothing was drawn
    int nDrawnHeight = 0;
};

/// Holds the dewarper's lock for a scope.
using CCPULock = std::lock_guard<CFairMutex>;
