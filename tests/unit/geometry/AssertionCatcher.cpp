#include "AssertionCatcher.h"

#include "platform/Assert.h"

// Stands before the library's own, which is weak.
extern "C" __attribute__((visibility("default"))) void
__assert2(const char* pFile, int /*nLine*/, const char* pFunction, const char* pExpression)
{
    throw SAssertion{pFile, pFunction, pExpression};
}
