#include "platform/LogSink.h"

#include <android/log.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <thread>
#include <vector>

#include <sys/socket.h>
#include <unistd.h>

namespace
{

/// Stands in for stderr and keeps what each single write brought.
class CStderrPackets
{
public:
    CStderrPackets()
    {
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET, 0, m_anSockets), 0);
        m_nStderr = dup(STDERR_FILENO);
        dup2(m_anSockets[1], STDERR_FILENO);
    }
    CStderrPackets(const CStderrPackets&) = delete;
    CStderrPackets& operator=(const CStderrPackets&) = delete;
    ~CStderrPackets()
    {
        dup2(m_nStderr, STDERR_FILENO);
        for (const int nFile : {m_nStderr, m_anSockets[0], m_anSockets[1]})
            close(nFile);
    }

    /// The next write's bytes; empty when there was none.
    std::string Next()
    {
        std::vector<char> vBuffer(1 << 17);
        const ssize_t nRead = recv(m_anSockets[0], vBuffer.data(), vBuffer.size(), MSG_DONTWAIT);
        return nRead > 0 ? std::string(vBuffer.data(), static_cast<std::size_t>(nRead)) : std::string();
    }

private:
    int m_anSockets[2] = {-1, -1};
    int m_nStderr = -1;
};

struct SLine
{
    int nPriority = 0;
    std::string strTag;
    std::string strLine;
};

/// Collects lines while in scope.
class CSink
{
public:
    CSink() { SetLogSink(&CSink::Take, this); }
    CSink(const CSink&) = delete;
    CSink& operator=(const CSink&) = delete;
    ~CSink() { SetLogSink(nullptr, nullptr); }

    std::vector<SLine> vLines;

private:
    static void Take(int nPriority, const char* pTag, const char* pLine, void* pUser)
    {
        static_cast<CSink*>(pUser)->vLines.push_back({nPriority, pTag, pLine});
    }
};

} // namespace

TEST(Log, PrioritiesHaveTheSystemsNumbers)
{
    EXPECT_EQ(ANDROID_LOG_VERBOSE, 2);
    EXPECT_EQ(ANDROID_LOG_DEBUG, 3);
    EXPECT_EQ(ANDROID_LOG_INFO, 4);
    EXPECT_EQ(ANDROID_LOG_WARN, 5);
    EXPECT_EQ(ANDROID_LOG_ERROR, 6);
    EXPECT_EQ(ANDROID_LOG_FATAL, 7);
}

TEST(Log, ALineIsOneWriteToStderr)
{
    CStderrPackets oStderr;
    EXPECT_GT(__android_log_print(ANDROID_LOG_INFO, "TAG", "%s: %d of %d", "Function", 3, 4), 0);
    EXPECT_EQ(oStderr.Next(), "I/TAG: Function: 3 of 4\n");
    EXPECT_EQ(oStderr.Next(), "");
}

TEST(Log, EveryPriorityHasItsLetter)
{
    CStderrPackets oStderr;
    const std::string strLetters = "??VDIWEFS?";
    for (int i = 0; i < 10; ++i) {
        __android_log_print(i, "T", "x");
        EXPECT_EQ(oStderr.Next(), std::string(1, strLetters[static_cast<std::size_t>(i)]) + "/T: x\n");
    }
    __android_log_print(-1, "T", "x");
    EXPECT_EQ(oStderr.Next(), "?/T: x\n");
}

TEST(Log, LineEndsInsideAreWrittenOutAndThoseAtTheEndDropped)
{
    CStderrPackets oStderr;
    __android_log_print(ANDROID_LOG_ERROR, "T", "first\nsecond\r\n\nthird\n\n");
    EXPECT_EQ(oStderr.Next(), "E/T: first\\nsecond\\n\\nthird\n");
    __android_log_print(ANDROID_LOG_ERROR, "T", "\n");
    EXPECT_EQ(oStderr.Next(), "E/T: \n");
    __android_log_print(ANDROID_LOG_ERROR, "T", "%s", "");
    EXPECT_EQ(oStderr.Next(), "E/T: \n");
}

TEST(Log, LongTextsAreWrittenWhole)
{
    CStderrPackets oStderr;
    for (const std::size_t nLength : {1022u, 1023u, 1024u, 1025u, 5000u}) {
        const std::string strText(nLength, 'x');
        EXPECT_EQ(__android_log_print(ANDROID_LOG_INFO, "T", "%s", strText.c_str()),
                  static_cast<int>(nLength));
        EXPECT_EQ(oStderr.Next(), "I/T: " + strText + "\n");
    }
    const std::string strLines(3000, '\n'); // every character takes two
    __android_log_print(ANDROID_LOG_INFO, "T", "%s.", strLines.c_str());
    EXPECT_EQ(oStderr.Next().size(), std::string("I/T: ").size() + 6000 + 2);
}

TEST(Log, OverlongTagsAreCutAndMissingOnesEmpty)
{
    CStderrPackets oStderr;
    __android_log_print(ANDROID_LOG_INFO, std::string(1000, 't').c_str(), "x");
    EXPECT_EQ(oStderr.Next(), "I/" + std::string(100, 't') + ": x\n");
    __android_log_print(ANDROID_LOG_INFO, nullptr, "x");
    EXPECT_EQ(oStderr.Next(), "I/: x\n");
}

TEST(Log, TheErrorNumberOfTheCallerSurvives)
{
    const CSink oSink;
    errno = ENOENT;
    __android_log_print(ANDROID_LOG_INFO, "T", "%s", std::string(5000, 'x').c_str());
    EXPECT_EQ(errno, ENOENT);
}

TEST(Log, ASinkGetsTheLineInsteadOfStderr)
{
    CStderrPackets oStderr;
    {
        CSink oSink;
        __android_log_print(ANDROID_LOG_ERROR, "TAG", "one\ntwo %d\n", 2);
        ASSERT_EQ(oSink.vLines.size(), 1u);
        EXPECT_EQ(oSink.vLines[0].nPriority, 6);
        EXPECT_EQ(oSink.vLines[0].strTag, "TAG");
        EXPECT_EQ(oSink.vLines[0].strLine, "one\\ntwo 2");
    }
    EXPECT_EQ(oStderr.Next(), "");
    __android_log_print(ANDROID_LOG_INFO, "TAG", "back");
    EXPECT_EQ(oStderr.Next(), "I/TAG: back\n");
}

TEST(Log, ASinkMayReplaceItself)
{
    CStderrPackets oStderr;
    int nCalls = 0;
    SetLogSink(
        [](int, const char*, const char*, void* pUser) {
            ++*static_cast<int*>(pUser);
            SetLogSink(nullptr, nullptr);
        },
        &nCalls);
    __android_log_print(ANDROID_LOG_INFO, "T", "to the sink");
    __android_log_print(ANDROID_LOG_INFO, "T", "to stderr");
    EXPECT_EQ(nCalls, 1);
    EXPECT_EQ(oStderr.Next(), "I/T: to stderr\n");
}

TEST(Log, ThreadsTakeTurnsAtTheSink)
{
    CSink oSink; // its vector has no lock of its own
    constexpr int THREADS = 4;
    constexpr int LINES = 500;
    std::vector<std::thread> vThreads;
    vThreads.reserve(THREADS);
    for (int nThread = 0; nThread < THREADS; ++nThread) {
        vThreads.emplace_back([nThread] {
            for (int i = 0; i < LINES; ++i)
                __android_log_print(ANDROID_LOG_INFO, "T", "%d %d", nThread, i);
        });
    }
    for (std::thread& oThread : vThreads)
        oThread.join();
    ASSERT_EQ(oSink.vLines.size(), static_cast<std::size_t>(THREADS * LINES));
    int anNext[THREADS] = {};
    for (const SLine& sLine : oSink.vLines) {
        const int nThread = sLine.strLine[0] - '0';
        EXPECT_EQ(sLine.strLine.substr(2), std::to_string(anNext[nThread]++));
    }
}

TEST(Log, LinesOfSeveralThreadsDoNotMixOnStderr)
{
    CStderrPackets oStderr;
    std::thread oOther([] {
        for (int i = 0; i < 20; ++i)
            __android_log_print(ANDROID_LOG_INFO, "T", "%s", std::string(2000, 'a').c_str());
    });
    for (int i = 0; i < 20; ++i)
        __android_log_print(ANDROID_LOG_INFO, "T", "%s", std::string(2000, 'b').c_str());
    oOther.join();
    int nLines = 0;
    for (std::string strLine = oStderr.Next(); !strLine.empty(); strLine = oStderr.Next(), ++nLines)
        EXPECT_EQ(strLine, "I/T: " + std::string(2000, strLine[5]) + "\n");
    EXPECT_EQ(nLines, 40);
}
