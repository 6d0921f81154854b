/// \file
/// One run of the dewarper: start, draw, read back.
#pragma once

#include "Frame.h"
#include "ImageWriter.h"
#include "LogCollector.h"
#include "Options.h"
#include "Overlays.h"

#include "dewarp/offscreen/CustomGPUDewarperOffscreen.h"

#include <string>
#include <vector>

/// The output's size when none is asked for: flat views as large as the input, cameras 1280x720, panoramas
/// in the shape in which they have no bars.
SSize GetDefaultSize(EViewType eView, EMountType eMount, SSize sInput);

/// Fails: throws CToolError with what the library logged. Everything on one thread.
class CDewarpSession
{
public:
    /// Makes context and target for frames of the given size. The options and the log must outlive the
    /// session.
    CDewarpSession(const SToolOptions& sOptions, const CLogCollector& oLog, SSize sInput);
    ~CDewarpSession();
    CDewarpSession(const CDewarpSession&) = delete;
    CDewarpSession& operator=(const CDewarpSession&) = delete;

    /// Hands over everything that was asked for and draws the first frame.
    void DrawFirst(SFrame& sFrame, SOverlays& sOverlays);
    /// Uploads and draws once more.
    void Draw(SFrame& sFrame);
    /// The picture belongs to the session and lasts until the next call.
    SPicture ReadBack();
    /// Limits that the view put on pan, tilt and zoom; after Draw.
    std::vector<std::string> GetNotes();

private:
    void ApplyView();
    void ApplyPTZ();

    const SToolOptions& m_sOptions;
    const CLogCollector& m_oLog;
    CCustomGPUDewarperOffscreen m_oDewarper;
};
