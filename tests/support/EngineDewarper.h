/// \file
/// A dewarper of either engine, and tests that run with both.
#pragma once

#include "dewarp/Dewarper.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ReferenceView.h"
#include "tests/support/TestFrame.h"

#include <gtest/gtest.h>

#include <cctype>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

/// What CTestDewarper offers, over the interface of both engines; operations by ->.
class CEngineDewarper
{
public:
    CEngineDewarper(EDewarpEngine eEngine, int nTargetWidth, int nTargetHeight);

    bool Started() const { return m_pDewarper != nullptr; }
    CDewarper* operator->() { return m_pDewarper.get(); }
    CDewarper& operator*() { return *m_pDewarper; }
    /// Hands over a frame and draws it.
    bool DrawFrame(CTestFrame& rFrame, unsigned long long nTimestamp = 0);
    /// The drawn picture, top row first; empty when there is none.
    STestImage Picture();
    /// Puts view, mount, lens, angles and filter of an exact view in force with one frame.
    bool Apply(const SReferenceSetup& sSetup, CTestFrame& rFrame);
    /// Pan, tilt and zoom in force, as GetPTZ tells them.
    float Pan();
    float Tilt();
    float Zoom();

private:
    std::unique_ptr<CDewarper> m_pDewarper;
};

inline constexpr EDewarpEngine BOTH_ENGINES[] = {ENGINE_GL, ENGINE_CPU};

inline std::string EngineName(EDewarpEngine eEngine)
{
    return eEngine == ENGINE_GL ? "GL" : "Processor";
}

/// One row of a table, with each engine.
template <class T>
struct SEngineCase
{
    EDewarpEngine eEngine = ENGINE_GL;
    T sCase;
};

template <class T>
void PrintTo(const SEngineCase<T>& sCase, std::ostream* pStream)
{
    *pStream << EngineName(sCase.eEngine);
    if constexpr (requires { sCase.sCase.pName; })
        *pStream << ", " << sCase.sCase.pName;
}

/// One picture that takes long to make, for the next test that asks for the same: that of the other engine.
class CLastPicture
{
public:
    template <class F>
    const STestImage& Of(const void* pCase, F fMake)
    {
        if (m_pCase != pCase) {
            m_sPicture = fMake();
            m_pCase = pCase;
        }
        return m_sPicture;
    }

private:
    const void* m_pCase = nullptr;
    STestImage m_sPicture;
};

template <class T>
std::vector<SEngineCase<T>> WithBothEngines(const T* pFirst, const T* pEnd)
{
    std::vector<SEngineCase<T>> vCases;
    for (const T* p = pFirst; p != pEnd; ++p)
        for (const EDewarpEngine eEngine : BOTH_ENGINES)
            vCases.push_back({eEngine, *p});
    return vCases;
}

template <class T, std::size_t N>
std::vector<SEngineCase<T>> WithBothEngines(const T (&aCases)[N])
{
    return WithBothEngines(aCases, aCases + N);
}

/// A name that a test may have.
inline std::string CleanName(std::string strName)
{
    for (char& cLetter : strName)
        if (std::isalnum(static_cast<unsigned char>(cLetter)) == 0)
            cLetter = '_';
    return strName;
}

/// The name of a row that has pName.
struct SEngineCaseName
{
    template <class T>
    std::string operator()(const testing::TestParamInfo<SEngineCase<T>>& oInfo) const
    {
        return EngineName(oInfo.param.eEngine) + "_" + CleanName(oInfo.param.sCase.pName);
    }
};

/// A fixture that takes the engine.
using CEngineTest = testing::TestWithParam<EDewarpEngine>;

/// Runs all TEST_Ps of a CEngineTest with both.
#define INSTANTIATE_ENGINES(FIXTURE)                                                                         \
    INSTANTIATE_TEST_SUITE_P(Engines, FIXTURE, testing::ValuesIn(BOTH_ENGINES),                              \
                             [](const auto& oInfo) { return EngineName(oInfo.param); })
