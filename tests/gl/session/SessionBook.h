/// \file
/// What is said to GL in named steps of named sessions, and the comparison with what was said earlier.
#pragma once

#include "tests/gl/session/CallText.h"

#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

/// One step: its calls, line by line, then results and GL errors.
struct SSessionStep
{
    std::string strName; ///< group/session/step
    int nCalls = 0;
    std::string strText;
};

/// The steps of one group of sessions. One at a time: it watches all calls of the program.
class CSessionBook
{
public:
    explicit CSessionBook(std::string strGroup);
    ~CSessionBook();
    CSessionBook(const CSessionBook&) = delete;
    CSessionBook& operator=(const CSessionBook&) = delete;

    /// Begins a session: steps that follow are named after it. One session ends before the next one begins.
    void Begin(const std::string& strSession) { m_strSession = strSession; }
    /// Does something, and keeps the calls that it makes.
    void Step(const std::string& strName, const std::function<void()>& fAction);
    /// Adds a line to the running step: a result that belongs to what was done.
    void Note(const std::string& strLine);
    /// True when results of floating-point arithmetic may be noted.
    bool KeepsData() const { return m_bData; }

    const std::string& Group() const { return m_strGroup; }
    const std::vector<SSessionStep>& Steps() const { return m_vSteps; }
    /// All steps as one text.
    std::string Text() const;

private:
    static void OnCall(const SGLCall& sCall, void* pUser);

    std::string m_strGroup;
    std::string m_strSession;
    bool m_bData;
    CCallText m_oCalls;
    std::vector<SSessionStep> m_vSteps;
    std::map<std::string, int> m_mTimes;
    bool m_bInStep = false;
    bool m_bExtensionsAsked = false;
};

/// A group of sessions: plays them, then holds them against tests/golden/calls.
class CSessionTest : public testing::Test
{
protected:
    /// Plays the sessions of a group, and compares. Every session must begin with an object of its own.
    static void Play(const std::string& strGroup, const std::function<void(CSessionBook&)>& fSessions);
};
