/// \file
/// Plays a fuzz input as a sequence of calls to a dewarper.
#pragma once

#include "FuzzBytes.h"
#include "FuzzScene.h"

#include "dewarp/Dewarper.h"
#include "dewarp/offscreen/CustomGPUDewarperOffscreen.h"

#include <memory>

/// A dewarper of either engine, what it was given, and what must hold for it. Every operation reads its
/// arguments from the input.
class CPlayer
{
public:
    explicit CPlayer(CFuzzBytes& rBytes, EDewarpEngine eEngine = ENGINE_GL);
    void Play();

private:
    /// An operation of the dewarper that is played with.
    template <class F>
    auto With(F fCall)
    {
        return m_pProcessor != nullptr ? fCall(*m_pProcessor) : fCall(m_oDewarper);
    }
    void PlayCalls();
    void DrawTo();
    using FCall = void (CPlayer::*)();
    void NewFrame();
    void BadFrame();
    void Draw();
    void DrawNowAndThen();
    void TargetSize();
    void Restart();
    void FreeObjects();
    void Choices();
    void Panes();
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
    CCustomGPUDewarperOffscreen m_oDewarper; ///< never started where there is the other one
    std::unique_ptr<CDewarper> m_pProcessor; ///< with ENGINE_CPU
    /// Its planes live until they have been drawn; with the processor engine until the next frame comes.
    std::unique_ptr<CFuzzFrame> m_pFrame;
    bool m_bStarted = false;
    bool m_bWaiting = false;  ///< a frame waits to be drawn
    bool m_bUploaded = false; ///< GL holds a frame; it goes with its textures
    int m_nFrames = 0;
};
