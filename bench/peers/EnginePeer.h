/// \file
/// This library behind the operations that its engines share: frames are drawn straight into memory.
#pragma once

#include "bench/peers/Peer.h"
#include "dewarp/Dewarper.h"

/// What lies over the view.
struct SPeerLayers
{
    bool bMasks = false;
    bool bText = false;
    bool bClock = false; ///< the text is another one in every frame
};

/// A dewarper of one engine that draws into memory of the contender's: NV12 where the case wants YUV,
/// otherwise BGRA.
PPeer MakeEnginePeer(const SPeerCase& rCase, CPeerFrame& rFrame, EDewarpEngine eEngine,
                     const SPeerLayers& rLayers = {});
/// What the engine runs on, with so many threads: "processor, AVX2, 2 threads". Empty where there is none.
std::string EngineText(EDewarpEngine eEngine, int nThreads);

/// A number of cameras of the processor engine, each with a frame, a direction and a view of its own. One
/// frame of the contender is one of each camera. bThreads: a thread for each camera draws on its own;
/// otherwise the cameras draw in turn, with as many threads as the case allows.
PPeer MakeCamerasPeer(const SPeerCase& rCase, CPeerFrame& rFrame, int nCameras, bool bThreads);
/// One camera that draws so many frames, as often as the contender above draws.
PPeer MakeRepeatedPeer(const SPeerCase& rCase, CPeerFrame& rFrame, int nFrames);
