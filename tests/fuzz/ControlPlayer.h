/// \file
/// Plays a fuzz input as a sequence of calls to a dewarper.
#pragma once

#include "FuzzBytes.h"
#include "FuzzScene.h"

#include "dewarp/offscreen/CustomGPUDewarperOffscreen.h"

#include <memory>

/// A dewarper, what it was given, and what must hold for it. Every operation reads its arguments from the
/// input.
class CPlayer
{
public:
    explicit CPlayer(CFuzzBytes& rBytes) : m_rBytes(rBytes) {}
    void Play();

private:
    using FCall = void (CPlayer::*)();
    void NewFrame();
    void BadFrame();
    void Draw();
    void DrawNowAndThen();
    void TargetSize();
    void Restart();
    void FreeObjects();
    void Choices();
    void Colours();
    void Orientation();
    void Switches();
    void AbsoluteMove();
    void RelativeMove();
    void AnalogueMove();
    void MouseDrag();
    void MouseWheel();
    void InputOverlay();
    void OutputOverlay();
    void MaskList();
    void MaskBytes();
    void StringList();
    void StringBytes();
    void Getters();

    CFuzzBytes& m_rBytes;
    CCustomGPUDewarperOffscreen m_oDewarper;
    /// Its planes live until they have been drawn.
    std::unique_ptr<CFuzzFrame> m_pFrame;
    bool m_bStarted = false;
    bool m_bWaiting = false;  ///< a frame waits to be drawn
    bool m_bUploaded = false; ///< GL holds a frame; it goes with its textures
    int m_nFrames = 0;
};
