/// \file
/// What the comparison asks of every contender.
#pragma once

#include "bench/peers/PeerFrame.h"

#include <memory>
#include <string>
#include <vector>

/// What a view shows.
enum EPeerView : int
{
    PEER_CAMERA,   ///< one virtual camera
    PEER_PANORAMA, ///< all around, as a strip
    PEER_QUAD      ///< four cameras, a quarter turn apart
};

/// What is drawn: the part of the case that every contender shares.
struct SPeerCase
{
    int nInputSide[2] = {1920, 1920}; ///< width, height
    EPeerPixels ePixels = PEER_YUV420;
    int nWidth = 1920; ///< of the view
    int nHeight = 1080;
    EPeerView eView = PEER_CAMERA;
    bool bYUVOut = false; ///< the view is left as YUV; otherwise 4 bytes a pixel
    bool bNearest = false;
    int nBuffers = 1;        ///< frames and views go round through so many pieces of memory each
    bool bOwnPlanes = false; ///< the contender has a copy of the frame to itself
    int nThreads = 2;        ///< that one contender may use
};

/// The view: a camera under the ceiling, tilted so far from straight down, 60 degrees high, bilinear filter.
inline constexpr float PEER_TILT = 45.0f;
inline constexpr float PEER_HEIGHT_ANGLE = 60.0f;
inline constexpr float PEER_FIRST_PAN = 90.0f;
/// How far a moving view turns with every frame.
inline constexpr float PEER_STEP = 0.25f;

/// Brightness of a view, 8 bits, packed rows, top row first.
struct SLuma
{
    int nWidth = 0;
    int nHeight = 0;
    std::vector<unsigned char> vPixels;
};

/// One way of turning a fisheye frame in memory into a view in memory. Lives on one thread.
class CPeer
{
public:
    CPeer() = default;
    virtual ~CPeer() = default;
    CPeer(const CPeer&) = delete;
    CPeer& operator=(const CPeer&) = delete;

    virtual std::string Name() const = 0;
    /// Turns the camera; the next view shows it.
    virtual void SetPan(float fPan) = 0;
    /// Takes the frame and delivers its view once.
    virtual void Frame() = 0;
    /// Brightness of the last view; nothing when the contender draws another view than the rest.
    virtual SLuma Luma() = 0;
    /// True when the contender cannot turn its view.
    virtual bool StandsStill() const { return false; }

    /// Takes the frame a number of times. A moving view turns before each.
    virtual void Frames(int nFrames, bool bMoving);

private:
    float m_fPan = PEER_FIRST_PAN;
};

using PPeer = std::unique_ptr<CPeer>;

// The contenders. Each reads the planes of a frame that outlives it.

/// This library, OpenGL ES. bToMemory: the view is read back; otherwise it stays in the target, finished.
PPeer MakeOurPeer(const SPeerCase& rCase, CPeerFrame& rFrame, bool bToMemory);
/// FFmpeg's filter v360, its view in the planes that it draws. bPixels: libswscale makes BGRA of them.
PPeer MakeV360Peer(const SPeerCase& rCase, CPeerFrame& rFrame, bool bPixels);
/// Four filters v360 for the quarters of a quad, in planes of their own.
PPeer MakeV360Quad(const SPeerCase& rCase, CPeerFrame& rFrame);
/// OpenCV: a map from cv::fisheye, applied with cv::remap. The map is made again when the view moves.
/// bPixels: YUV becomes BGRA with cv::cvtColorTwoPlane; a view of pixels keeps the order of the frame's.
PPeer MakeRemapPeer(const SPeerCase& rCase, CPeerFrame& rFrame, bool bPixels);
/// GStreamer: glupload, glcolorconvert, gleffects_fisheye, gldownload.
PPeer MakeGLEffectPeer(const SPeerCase& rCase, CPeerFrame& rFrame);

/// Ends the program with a message.
[[noreturn]] void PeerFailed(const std::string& strMessage);
