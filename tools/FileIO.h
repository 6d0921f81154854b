/// \file
/// Files with errors that name them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

struct SFileCloser
{
    void operator()(std::FILE* pFile) const { std::fclose(pFile); }
};
using CFile = std::unique_ptr<std::FILE, SFileCloser>;

/// Every function throws CToolError (EXIT_FAILED) with the path and the system's reason.
CFile OpenForReading(const std::string& strPath);
/// Bytes of a regular file.
std::uintmax_t GetFileBytes(const std::string& strPath);
/// The whole file; refuses more than nMaxBytes.
std::vector<unsigned char> ReadFile(const std::string& strPath, std::size_t nMaxBytes);
/// Replaces the file's content. What was begun and could not be finished is removed.
void WriteFile(const std::string& strPath, const unsigned char* pBytes, std::size_t nBytes);
/// Finds out before any work is done that the output could not be written, or would overwrite the input.
void CheckOutputPath(const std::string& strInput, const std::string& strOutput);
