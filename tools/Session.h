/// \file
/// One run of the dewarper: start, draw, read back.
#pragma once

#include "Frame.h"
#include "ImageWriter.h"
#include "Options.h"
#include "Overlays.h"
#include "ViewMap.h"

#include <memory>
#include <string>
#include <vector>

class CToolLog;

/// The output's size when none is asked for: one in which the view has no bars.
SSize GetDefaultSize(EViewType eView, EMountType eMount, SSize sInput,
                     const SViewShape& rShape = SViewShape());

/// Fails: throws CToolError with what the library logged. Everything on one thread.
class CDewarpSession
{
public:
    CDewarpSession() = default;
    virtual ~CDewarpSession() = default;
    CDewarpSession(const CDewarpSession&) = delete;
    CDewarpSession& operator=(const CDewarpSession&) = delete;

    /// Hands over everything that was asked for and draws the first frame.
    virtual void DrawFirst(SFrame& sFrame, SOverlays& sOverlays) = 0;
    /// Hands over and draws once more.
    virtual void Draw(SFrame& sFrame) = 0;
    /// The picture belongs to the session and lasts until the next call.
    virtual SPicture ReadBack() = 0;
    /// What the engine and the view's limits left of what was asked for; after Draw.
    virtual std::vector<std::string> GetNotes() = 0;
    /// Where the pixels of the picture that was drawn come from.
    virtual SViewMap GetMap(const SPicture& rPicture) = 0;
    /// Who draws: never ENGINE_AUTO.
    virtual EDewarpEngine GetEngine() = 0;
    /// The same, and what it runs on, for a line of text.
    virtual std::string GetEngineText() = 0;
};

/// Makes engine and target for frames of the given size: planes in, pixels out, or buffers in and out where
/// the options ask for them. The options must outlive the session. The log tells why there is no engine.
std::unique_ptr<CDewarpSession> StartSession(const SToolOptions& sOptions, SSize sInput,
                                             const CToolLog& rLog);

/// There is no OpenGL ES, for this reason if one is known. What else may be done: "leave out --buffers".
[[noreturn]] void ThrowNoDriver(const std::string& strReason, const char* pElse);
