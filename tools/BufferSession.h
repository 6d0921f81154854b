/// \file
/// One run from graphic buffer to graphic buffer.
#pragma once

#include "Session.h"

/// As the base class. The frames become NV12 on their way in, whatever they are. OpenGL ES draws them; the
/// rest of the tool does without, so this session may be a file of its own that is loaded when it is wanted.
std::unique_ptr<CDewarpSession> StartBufferSession(const SToolOptions& sOptions, SSize sSize);

/// The function of that file. The caller deletes what it gives.
extern "C" CDewarpSession* lumor_tool_make_buffer_session(const SToolOptions& sOptions, SSize sSize);
