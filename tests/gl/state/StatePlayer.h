/// \file
/// Plays calls to a dewarper, and holds its pictures against those of a fresh one in the same state; with the
/// processor engine, to one of either engine.
#pragma once

#include "dewarp/offscreen/CustomGPUDewarperOffscreen.h"
#include "tests/fuzz/FuzzScene.h"

#include "dewarp/Dewarper.h"

#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

/// RGBA pixels of an overlay; no size: there is none.
struct SOverlayImage
{
    int nWidth = 0;
    int nHeight = 0;
    std::vector<unsigned char> vPixels;

    SOverlayImage() = default;
    /// Half transparent, no two shades alike.
    SOverlayImage(int nCols, int nRows, unsigned int nShade);
    bool IsThere() const { return nWidth > 0; }
};

/// What was given and taken. Only what the dewarper has no getter for.
struct SGiven
{
    EYUVSpace eSpace = YUV_SPACE_AUTO;
    EYUVRange eRange = YUV_RANGE_AUTO;
    SOverlayImage sInput;
    SOverlayImage sOutput;
    std::vector<SGPolygon> vMasks;
    std::vector<SGPUString> vStrings;
    bool bMasksChanged = false; ///< since the last frame
    std::shared_ptr<CFuzzFrame> pFrame;
    std::shared_ptr<SQPInfo> pQP; ///< the last macroblock information
    bool bGain = false;
};

class CStatePlayer;

/// One call, and how it reads.
struct SStateCall
{
    std::string strWords;
    void (*fCall)(CStatePlayer& rPlayer, const std::shared_ptr<const void>& pArguments) = nullptr;
    std::shared_ptr<const void> pArguments;
};

/// A started dewarper with a small target, what it was given, and the first fault it showed. With ENGINE_CPU
/// one of the processor engine is given the same: its pictures are compared then, and it has to answer as the
/// other one does, which tells what is in force. GL is not stopped in the middle then.
class CStatePlayer
{
public:
    explicit CStatePlayer(EDewarpEngine eEngine = ENGINE_GL);
    CStatePlayer(const CStatePlayer&) = delete;
    CStatePlayer& operator=(const CStatePlayer&) = delete;

    /// Plays calls until one shows a fault. Returns the fault in words, empty: none.
    std::string Play(const std::vector<SStateCall>& vCalls);
    /// Frames compared so far.
    int Compared() const { return m_nCompared; }

    /// Who looks at frames that are compared, beside the comparison with a fresh dewarper.
    void SetLook(std::function<void(CStatePlayer&)> fLook) { m_fLook = std::move(fLook); }

    // For the calls.
    CCustomGPUDewarperOffscreen& Dewarper() { return m_oDewarper; }
    /// The processor engine's; null without.
    CDewarper* Processor() { return m_pProcessor.get(); }
    /// An operation of each dewarper there is; gives what GL's gives.
    template <class F>
    auto With(F fCall)
    {
        if constexpr (std::is_void_v<decltype(fCall(m_oDewarper))>) {
            if (m_pProcessor != nullptr)
                fCall(*m_pProcessor);
            fCall(m_oDewarper);
        } else {
            const auto Result = fCall(m_oDewarper);
            if (m_pProcessor != nullptr && fCall(*m_pProcessor) != Result)
                Fail("the engines answer differently");
            return Result;
        }
    }
    void SetTarget(int nWidth, int nHeight);
    /// Brings a fresh dewarper, started and with the target's size, into the state in force but for what is
    /// given; true when it has drawn the frame.
    template <class D>
    bool DrawFresh(D& rFresh, const SGiven& rGiven);
    /// The state in force in words.
    std::string StateWords();
    SGiven& Given() { return m_sGiven; }
    bool IsStarted() const { return m_bStarted; }
    /// Hands a frame over; a good one must be taken, a bad one refused.
    void GiveFrame(const std::shared_ptr<CFuzzFrame>& pFrame, const std::shared_ptr<SQPInfo>& pQP, bool bGain,
                   bool bGood);
    /// An input overlay was taken; masks keep it out.
    void TakeInput(const SOverlayImage& sImage);
    void Draw(bool bCompare);
    void Start();
    void Stop();
    void FreeObjects(bool bReinitialize);
    void Fail(const std::string& strFault);

private:
    void FollowMasks();
    void Compare();
    void CompareProcessor();
    void CompareAnswers();
    void ComparePictures(const std::vector<unsigned char>& vOurs, const std::vector<unsigned char>& vTheirs,
                         int nWidth, const std::string& strFresh);

    CCustomGPUDewarperOffscreen m_oDewarper;
    std::unique_ptr<CDewarper> m_pProcessor;
    std::function<void(CStatePlayer&)> m_fLook;
    SGiven m_sGiven;
    std::string m_strFault;
    bool m_bStarted = false;
    bool m_bWaiting = false;  ///< a frame waits to be drawn
    bool m_bUploaded = false; ///< GL holds a frame; it goes with its textures
    int m_nCompared = 0;
};
