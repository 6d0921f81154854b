// The tool starts without OpenGL ES; the session that needs it comes when it is asked for.
#include "BufferSession.h"

#include "ToolError.h"

#include <filesystem>
#include <system_error>

#include <dlfcn.h>

namespace
{

using FMakeSession = CDewarpSession* (*)(const SToolOptions&, SSize);

/// Beside the program, as it is built; where it is installed; else wherever the system looks. Not by the
/// program's search path: what stands between it and the loader, such as a sanitizer, would be asked for its
/// own.
void* OpenModule()
{
    std::error_code oError;
    const std::filesystem::path oProgram = std::filesystem::read_symlink("/proc/self/exe", oError);
    // Without the program's name its folder is the one that the process is in: no place to load anything
    // from.
    if (oProgram.empty())
        return dlopen(LUMOR_BUFFERS_MODULE, RTLD_NOW | RTLD_LOCAL);
    for (const char* pFolder : {".", LUMOR_BUFFERS_FOLDER}) {
        const std::filesystem::path oModule = oProgram.parent_path() / pFolder / LUMOR_BUFFERS_MODULE;
        if (std::filesystem::exists(oModule, oError))
            return dlopen(oModule.c_str(), RTLD_NOW | RTLD_LOCAL);
    }
    return dlopen(LUMOR_BUFFERS_MODULE, RTLD_NOW | RTLD_LOCAL);
}

std::string TakeLoaderError()
{
    const char* const pError = dlerror();
    return pError != nullptr ? pError : "";
}

} // namespace

std::unique_ptr<CDewarpSession> StartBufferSession(const SToolOptions& sOptions, SSize sSize)
{
    // Once loaded it stays.
    void* const pModule = OpenModule();
    void* const pFunction = pModule != nullptr ? dlsym(pModule, "lumor_tool_make_buffer_session") : nullptr;
    if (pFunction == nullptr)
        ThrowNoDriver(TakeLoaderError(), "leave out --buffers");
    return std::unique_ptr<CDewarpSession>(reinterpret_cast<FMakeSession>(pFunction)(sOptions, sSize));
}
