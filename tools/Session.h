/// \file
/// One run of the dewarper: start, draw, read back.
#pragma once

#include "Frame.h"
#include "ImageWriter.h"
#include "Options.h"
#include "Overlays.h"

#include "dewarp/CustomGPUDewarper.h"

#include <memory>
#include <string>
#include <vector>

/// The output's size when none is asked for: one in which the view has no bars.
SSize GetDefaultSize(EViewType eView, EMountType eMount, SSize sInput);

/// Fails: throws CToolError with what the library logged. Everything on one thread.
class CDewarpSession
{
public:
    virtual ~CDewarpSession() = default;
    CDewarpSession(const CDewarpSession&) = delete;
    CDewarpSession& operator=(const CDewarpSession&) = delete;

    /// Hands over everything that was asked for and draws the first frame.
    void DrawFirst(SFrame& sFrame, SOverlays& sOverlays);
    /// Uploads and draws once more.
    void Draw(SFrame& sFrame);
    /// The picture belongs to the session and lasts until the next call.
    virtual SPicture ReadBack() = 0;
    /// Limits that the view put on pan, tilt and zoom; after Draw.
    std::vector<std::string> GetNotes();

protected:
    explicit CDewarpSession(const SToolOptions& sOptions) : m_sOptions(sOptions) {}
    virtual CCustomGPUDewarper& GetDewarper() = 0;
    /// Hands the frame to the dewarper.
    virtual void GiveFrame(SFrame& sFrame) = 0;
    /// Draws the frame that was handed over last.
    virtual void DrawGiven();
    /// Brings colours into the form that the dewarper mixes.
    virtual void PrepareOverlays(const SFrame& /*sFrame*/, SOverlays& /*sOverlays*/) {}
    /// " (what went wrong last)", or nothing when nothing has.
    std::string GetReason();
    [[noreturn]] void ThrowUnstarted();
    [[noreturn]] void ThrowUndrawn();

    const SToolOptions& m_sOptions;

private:
    void ApplyView();
    void ApplyPTZ();
};

/// Makes context and target for frames of the given size: planes in, pixels out, or buffers in and out where
/// the options ask for them. The options must outlive the session.
std::unique_ptr<CDewarpSession> StartSession(const SToolOptions& sOptions, SSize sInput);
