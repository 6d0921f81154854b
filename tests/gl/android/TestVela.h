/// \file
/// A started dewarper of graphic buffers, and pictures into and out of such buffers.
#pragma once

#include "dewarp/android/CustomGPUDewarperVela.h"
#include "tests/support/GLRecorder.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ReferenceView.h"
#include "tests/support/TestDewarper.h"
#include "tests/support/TestFrame.h"

#include <ui/GraphicBuffer.h>

#include <gtest/gtest.h>
#include <memory>

/// Buffers of the three formats, filled and read on the CPU.
class CTestBuffer
{
public:
    CTestBuffer(int nWidth, int nHeight, int nFormat = HAL_PIXEL_FORMAT_YCBCR_420_888);

    /// Copies the planes of a frame: NV12, NV21 (the buffer's chroma order is kept) or RGBA.
    void Fill(CTestFrame& oFrame);
    /// The bytes as they are: (Y, U, V, 255) or RGBA, one texel a pixel.
    STestImage Texels();
    /// What the texels show.
    STestImage Picture(EYUVSpace eSpace = YUV_SPACE_BT601, bool bLimited = false);

    android::GraphicBuffer* get() { return &m_oBuffer; }

private:
    android::GraphicBuffer m_oBuffer;
};

/// A picture of (Y, U, V) as the picture that it shows.
STestImage ShownByYUV(const STestImage& sTexels, EYUVSpace eSpace = YUV_SPACE_BT601, bool bLimited = false);

/// The Android dewarper, started from construction on.
class CTestVela : public CCustomGPUDewarperVela
{
public:
    CTestVela(int nCols, int nRows);

    bool Started() const { return bGLStarted; }
    /// One frame from buffer to buffer, with its fence.
    bool DrawFrame(CTestBuffer& oInput, CTestBuffer& oOutput);
    /// Puts an exact view in force with two frames.
    bool Apply(const SReferenceSetup& sSetup, CTestBuffer& oInput, CTestBuffer& oOutput);
};

/// Largest difference of two pictures over the pixels around which the first one hardly changes (no channel
/// by more than nFlat within four pixels), and the share of such pixels.
struct SFlatDifference
{
    int nMax = 0;
    int nMaxX = 0;
    int nMaxY = 0;
    double fShare = 0.0;
};
SFlatDifference CompareFlatParts(const STestImage& sA, const STestImage& sB, int nFlat);

/// A dewarper, buffers, and a frame in the input.
class CVelaTest : public testing::Test
{
protected:
    CVelaTest() { m_oInput.Fill(m_oFrame); }

    CTestFrame m_oFrame{AsymmetricPicture(48, 32), IMAGE_FORMAT_NV12};
    CTestBuffer m_oInput{48, 32};
    CTestBuffer m_oOutput{64, 40};
    CTestVela m_oDewarper{64, 40};
    CGLRecorder& m_oRecorder = CGLRecorder::Get();
};

double NumberOfPointer(const void* p);

inline constexpr int ERROR_PRIORITY = 6;
inline constexpr int INFO_PRIORITY = 4;

void ExpectLine(const CLogCapture& oLog, std::size_t nLine, int nPriority, const std::string& strText);

/// What lives, of every kind.
struct SLiving
{
    int nContexts = CGLRecorder::Get().Living(EGL_KIND_CONTEXT);
    int nSurfaces = CGLRecorder::Get().Living(EGL_KIND_SURFACE);
    int nImages = CGLRecorder::Get().Living(EGL_KIND_IMAGE);
    int nSyncs = CGLRecorder::Get().Living(EGL_KIND_SYNC);
    int nNames = CGLRecorder::Get().LivingGLNames();
    int nLost = CGLRecorder::Get().NamesLostWithContexts();
    bool operator==(const SLiving&) const = default;
};
