// A program that has log and assertion functions of its own. The library must call those.
#include "platform/Assert.h"
#include "platform/LogSink.h"

#include <android/log.h>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include <dlfcn.h>

extern "C" int __android_log_print(int nPriority, const char* pTag, const char* pFormat, ...)
{
    std::va_list vArguments;
    va_start(vArguments, pFormat);
    std::fprintf(stderr, "own log %d %s ", nPriority, pTag);
    const int nResult = std::vfprintf(stderr, pFormat, vArguments);
    std::fprintf(stderr, "\n");
    va_end(vArguments);
    return nResult;
}

extern "C" [[noreturn]] void __assert2(const char* pFile, int, const char*, const char*)
{
    std::fprintf(stderr, "own assertion %s\n", pFile);
    std::_Exit(5);
}

namespace
{

/// The function of that name as the library itself has it.
template <typename TFunction>
TFunction LibraryFunction(const char* pName)
{
    SetLogSink(nullptr, nullptr); // a call that makes the program need the library
    void* const pLibrary = dlopen(LIBRARY_PATH, RTLD_NOW | RTLD_NOLOAD);
    return pLibrary != nullptr ? reinterpret_cast<TFunction>(dlsym(pLibrary, pName)) : nullptr;
}

} // namespace

TEST(Override, TheLibraryExportsFunctionsOfItsOwn)
{
    EXPECT_NE(LibraryFunction<void*>("__android_log_print"), nullptr);
    EXPECT_NE(LibraryFunction<void*>("__assert2"), nullptr);
    EXPECT_NE(LibraryFunction<void*>("__assert2"), reinterpret_cast<void*>(&__assert2));
}

TEST(OverrideDeathTest, TheLibraryLogsThroughTheProgramsFunction)
{
    // The library's own assertion function logs before it aborts.
    const auto pAssert = LibraryFunction<decltype(&__assert2)>("__assert2");
    ASSERT_NE(pAssert, nullptr);
    EXPECT_EXIT(pAssert("file", 1, "function", "x"), testing::KilledBySignal(SIGABRT),
                "own log 7 .*file:1: function: assertion \"x\" failed");
}

TEST(Override, TheProgramsAssertionComesFirst)
{
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "__assert2"), reinterpret_cast<void*>(&__assert2));
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "__android_log_print"), reinterpret_cast<void*>(&__android_log_print));
}
