/// \file
/// Pictures of the processor engine by one set of instructions and a number of threads.
#pragma once

#include "dewarp/control/Control.h"
#include "dewarp/control/Decision.h"
#include "dewarp/cpu/FrameDraw.h"
#include "dewarp/geometry/CustomGPUGeometry.h"
#include "tests/cpu/GuardedFrame.h"

#include <random>
#include <string>
#include <vector>

/// What is drawn.
struct SPathCase
{
    SDewarpParams sParams;
    int nRotation = 0;
    float fEyeDistance = 0.0f;
    SPictureSettings sPicture;
    bool bLinear = true;
    int nFormat = IMAGE_FORMAT_NV12;
    int nPad = 0; ///< of the frame's rows, bytes
    int nTargetWidth = 0;
    int nTargetHeight = 0;
    EImageFormat eTarget = IMAGE_FORMAT_BGRA32;
    int nTargetPad = 0;
    unsigned int nSeed = 0; ///< of the frame's noise

    std::string Words() const;
};

/// A case drawn by lot: every view, mount, format, filter and target; even and odd sizes, padded rows.
SPathCase RandomCase(std::mt19937& rRandom);

/// A target in guarded memory whose bytes beside the pixels are noise.
class CPathTarget
{
public:
    CPathTarget(const SPathCase& rCase, bool bAtEnd);

    const SFrameTarget& Target() const { return m_sTarget; }
    /// All bytes of all planes, those beside the pixels too.
    std::vector<unsigned char> Bytes();
    /// True when the bytes beside the pixels are as they were.
    bool IsUntouchedBeside();

private:
    static const unsigned char BESIDE = 0xA5;

    SFrameTarget m_sTarget;
    CGuardedBytes m_aPlanes[3];
    int m_anRowBytes[3] = {};
    int m_anRows[3] = {};
};

/// The grid of a case, and drawing from it.
class CPathDrawing
{
public:
    CPathDrawing(const SPathCase& rCase, CGuardedFrame& rFrame, int nThreads);
    void Draw(const SCellKernels& rKernels, int nThreads, const SFrameTarget& rTarget);
    const CViewGrid& Grid() const { return m_oGrid; }

private:
    SFrameDecision m_sDecision;
    CCustomGPUGeometry m_oGeometry;
    CMeshIndex m_oMesh;
    CViewGrid m_oGrid;
    SFrameColours m_sColours;
};
