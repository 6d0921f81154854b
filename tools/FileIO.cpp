#include "FileIO.h"

#include "ToolError.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace fs = std::filesystem;

namespace
{

[[noreturn]] void ThrowSystem(const std::string& strPath, const char* pWhat, int nError, const char* pAdvice)
{
    ThrowFailure(strPath + ": " + pWhat + " (" + std::strerror(nError) + "); " + pAdvice);
}

} // namespace

CFile OpenForReading(const std::string& strPath)
{
    std::error_code oError;
    if (fs::is_directory(strPath, oError))
        ThrowFailure(strPath + ": is a directory; give a picture file");
    CFile pFile(std::fopen(strPath.c_str(), "rb"));
    if (!pFile)
        ThrowSystem(strPath, "cannot be opened", errno, "check the name and the permissions");
    return pFile;
}

std::uintmax_t GetFileBytes(const std::string& strPath)
{
    std::error_code oError;
    const std::uintmax_t nBytes = fs::file_size(strPath, oError);
    if (oError)
        ThrowSystem(strPath, "has no length", oError.value(), "give a regular file");
    return nBytes;
}

std::vector<unsigned char> ReadFile(const std::string& strPath, std::size_t nMaxBytes)
{
    const CFile pFile = OpenForReading(strPath);
    const std::uintmax_t nBytes = GetFileBytes(strPath);
    if (nBytes > nMaxBytes)
        ThrowFailure(strPath + ": " + std::to_string(nBytes) +
                     " bytes are too many; give a file of at most " + std::to_string(nMaxBytes));
    std::vector<unsigned char> vBytes(static_cast<std::size_t>(nBytes));
    if (std::fread(vBytes.data(), 1, vBytes.size(), pFile.get()) != vBytes.size())
        ThrowSystem(strPath, "cannot be read", errno, "check the file");
    return vBytes;
}

void WriteFile(const std::string& strPath, const unsigned char* pBytes, std::size_t nBytes)
{
    CFile pFile(std::fopen(strPath.c_str(), "wb"));
    if (!pFile)
        ThrowSystem(strPath, "cannot be written", errno, "check the name and the permissions");
    const bool bWritten = std::fwrite(pBytes, 1, nBytes, pFile.get()) == nBytes;
    int nError = errno;
    // Closing flushes: a full disk may show only here.
    const bool bClosed = std::fclose(pFile.release()) == 0;
    if (bWritten && bClosed)
        return;
    if (bWritten)
        nError = errno;
    std::error_code oError;
    if (fs::is_regular_file(strPath, oError))
        fs::remove(strPath, oError);
    ThrowSystem(strPath, "cannot be written", nError, "check the free space");
}

void CheckOutputPath(const std::string& strInput, const std::string& strOutput)
{
    std::error_code oError;
    if (fs::is_directory(strOutput, oError))
        ThrowFailure(strOutput + ": is a directory; give a file name");
    const fs::path oParent = fs::path(strOutput).parent_path();
    if (!oParent.empty() && !fs::is_directory(oParent, oError))
        ThrowFailure(strOutput + ": the folder does not exist; create it first");
    if (fs::equivalent(strInput, strOutput, oError) && !oError)
        ThrowUsage(strOutput + ": is the input file itself; give another output name");
    const std::string strProbe = fs::exists(strOutput, oError) ? strOutput
                                 : oParent.empty()             ? "."
                                                               : oParent.string();
    if (access(strProbe.c_str(), W_OK) != 0)
        ThrowSystem(strOutput, "cannot be written", errno, "check the name and the permissions");
}
