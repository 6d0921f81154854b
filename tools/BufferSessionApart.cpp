// The tool starts without OpenGL ES; the session that needs it comes when it is asked for.
#include "BufferSession.h"

#include "ToolError.h"

#include <dlfcn.h>

namespace
{

using FMakeSession = CDewarpSession* (*)(const SToolOptions&, SSize);

std::string TakeLoaderError()
{
    const char* const pError = dlerror();
    return pError != nullptr ? pError : "";
}

} // namespace

std::unique_ptr<CDewarpSession> StartBufferSession(const SToolOptions& sOptions, SSize sSize)
{
    // Found where the program looks for its libraries; once loaded it stays.
    void* const pModule = dlopen(LUMOR_BUFFERS_MODULE, RTLD_NOW | RTLD_LOCAL);
    void* const pFunction = pModule != nullptr ? dlsym(pModule, "lumor_tool_make_buffer_session") : nullptr;
    if (pFunction == nullptr)
        ThrowNoDriver(TakeLoaderError(), "leave out --buffers");
    return std::unique_ptr<CDewarpSession>(reinterpret_cast<FMakeSession>(pFunction)(sOptions, sSize));
}
