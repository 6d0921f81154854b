// Where the tool is linked with all of the library, the session is part of it.
#include "BufferSession.h"

std::unique_ptr<CDewarpSession> StartBufferSession(const SToolOptions& sOptions, SSize sSize)
{
    return std::unique_ptr<CDewarpSession>(lumor_tool_make_buffer_session(sOptions, sSize));
}
