/// \file
/// One run of the dewarper: start, draw, read back.
#pragma once

#include "Frame.h"
#include "ImageWriter.h"
#include "LogCollector.h"
#include "Options.h"
#include "Overlays.h"

#include "dewarp/CustomGPUDewarper.h"

#include <memory>
#include <string>
#include <vector>

/// The output's size when none is asked for: flat views as large as the input, cameras 1280x720, panoramas
/// in the shape in which they have no bars.
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
    virtual void Draw(SFrame& sFrame) = 0;
    /// The picture belongs to the session and lasts until the next call.
    virtual SPicture ReadBack() = 0;
    /// Limits that the view put on pan, tilt and zoom; after Draw.
    std::vector<std::string> GetNotes();

protected:
    CDewarpSession(const SToolOptions& sOptions, const CLogCollector& oLog)
        : m_sOptions(sOptions), m_oLog(oLog)
    {}
    virtual CCustomGPUDewarper& GetDewarper() = 0;
    /// Brings colours into the form that the dewarper mixes.
    virtual void PrepareOverlays(const SFrame& /*sFrame*/, SOverlays& /*sOverlays*/) {}
    [[noreturn]] void ThrowUnstarted() const;
    [[noreturn]] void ThrowUndrawn() const;

    const SToolOptions& m_sOptions;
    const CLogCollector& m_oLog;

private:
    void ApplyView();
    void ApplyPTZ();
};

/// Makes context and target for frames of the given size: planes in, pixels out, or buffers in and out where
/// the options ask for them. The options and the log must outlive the session.
std::unique_ptr<CDewarpSession> StartSession(const SToolOptions& sOptions, const CLogCollector& oLog,
                                             SSize sInput);
