/// \file
/// Several views of one camera in one picture.
#pragma once

#include "dewarp/control/Control.h"
#include "dewarp/control/Decision.h"
#include "dewarp/records/SPane.h"
#include "platform/Export.h"

#include <atomic>
#include <memory>
#include <span>
#include <vector>

/// A pane as it is held: its own requests and view in force, and what the last frame decided for it.
struct SPaneState
{
    explicit SPaneState(CReport& rReport) : oControl(rReport) {}

    SPane sAsked;      ///< as the host gave it
    SGRect sPlace;     ///< pixels of the target that its view is drawn in, from the top; empty: left out
    CControl oControl; ///< view and position; all else follows the camera
    SFrameDecision sDecision; ///< of a target as large as the place
    bool bFresh = true;       ///< nobody has steered it yet
    bool bDrawn = false;      ///< its view is in force: its limits count at once
    bool bToldOutside = false;
};

/// The panes of one dewarper, and which of them steering goes to: the one under the pointer. Without panes
/// all steering goes to the one view of the camera. Units: degrees, pixels. Owns: the panes. Thread: any,
/// serialised by the host; IsSet without a lock. Fails: what cannot be taken is refused with a log line; Set
/// throws for lack of memory and changes nothing then.
class LUMOR_INTERNAL_API CPanes
{
public:
    static constexpr std::size_t MOST = 16;

    CPanes(CControl& rCamera, CReport& rReport) : m_rCamera(rCamera), m_rReport(rReport) {}
    CPanes(const CPanes&) = delete;
    CPanes& operator=(const CPanes&) = delete;

    /// An empty list gives the one view back.
    bool Set(const std::vector<SPane>& vPanes);
    /// As they are now: with the views and positions that steering has brought them to.
    std::vector<SPane> List() const;
    bool IsSet() const { return m_bSet.load(std::memory_order_relaxed); }
    bool SetGap(int nPixels, unsigned int nColor);
    unsigned int GapColor() const { return m_nGapColor; } ///< 0xRRGGBBAA

    // Steering.
    bool Select(int nPane);
    int Selected() const { return IsSet() ? m_nSelected : -1; }
    /// What steering goes to: the selected pane, or the camera's one view.
    CControl& Steered();
    /// The same to be asked; Steered counts as being steered.
    CControl& Asked();
    /// A pointer goes down: selects the pane there, and counts its pixels from the pane's corner. False
    /// beside all panes.
    bool PointAt(int& x, int& y);
    /// The same for a point. True without panes.
    bool SelectAt(double x, double y);
    /// A pointer moves: the pane that is dragged keeps it.
    bool Follow(int& x, int& y);
    /// Whether the view that is steered is in force; bCamera and rCamera: of the one view.
    bool IsDrawn(bool bCamera) const;
    SDrawnPicture Picture(const SDrawnPicture& rCamera) const;
    bool IsMoving();

    /// Puts in force what was asked of the camera and of each pane, and decides each pane. Panes that reach
    /// beyond the target are left out.
    void Decide(const STargetShape& rTarget, const SPictureSettings& rPicture);
    /// Those that were decided last and have room, in the order in which they are drawn. They stand until the
    /// next Decide or Set.
    std::span<const SPlacedView> Views() const { return m_vViews; }

private:
    bool IsUsable(const SPane& rPane, std::size_t nPane);
    void ToSelected(int& x, int& y) const;
    SPTZ PositionOf(const SPane& rPane, EMountType eMount) const;
    SGRect PlaceOf(const SPane& rPane, const STargetShape& rTarget) const;
    void PutInForce(SPaneState& rPane);
    void Place(SPaneState& rPane, std::size_t nPane, const STargetShape& rTarget);

    CControl& m_rCamera;
    CReport& m_rReport;
    std::vector<std::unique_ptr<SPaneState>> m_vPanes;
    std::vector<SPlacedView> m_vViews; ///< has room for all panes
    std::atomic<bool> m_bSet{false};
    int m_nSelected = 0;
    int m_nGap = 0;
    unsigned int m_nGapColor = 0;
};
