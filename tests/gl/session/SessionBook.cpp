// LUMOR_SESSION_UPDATE=1 in the environment writes the kept lines anew, LUMOR_SESSION_DUMP=DIR the full texts
// of all sessions into a folder, and LUMOR_SESSION_DATA=1 adds hashes of the data to these texts.
#include "tests/gl/session/SessionBook.h"

#include "tests/support/TestDewarper.h"

#include <GLES3/gl31.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

static const char GOLDEN_PATH[] = TEST_SOURCE_DIR "/golden/calls/sessions.golden";

static bool IsAsked(const char* pVariable)
{
    const char* pValue = std::getenv(pVariable);
    return pValue != nullptr && std::string(pValue) == "1";
}

CSessionBook::CSessionBook(std::string strGroup)
    : m_strGroup(std::move(strGroup)), m_bData(IsAsked("LUMOR_SESSION_DATA")), m_oCalls(m_bData)
{
    CGLRecorder::Get().SetWatcher(OnCall, this);
}

CSessionBook::~CSessionBook()
{
    CGLRecorder::Get().SetWatcher(nullptr, nullptr);
}

void CSessionBook::OnCall(const SGLCall& sCall, void* pUser)
{
    auto& rBook = *static_cast<CSessionBook*>(pUser);
    const std::string strLine = rBook.m_oCalls.Line(sCall);
    if (!rBook.m_bInStep)
        return;
    // How many names of extensions are read until the one in question is the driver's matter.
    const bool bExtension = std::string(sCall.pName) == "glGetStringi";
    if (bExtension && rBook.m_bExtensionsAsked)
        return;
    rBook.m_bExtensionsAsked = bExtension;
    SSessionStep& rStep = rBook.m_vSteps.back();
    ++rStep.nCalls;
    rStep.strText += strLine;
}

void CSessionBook::Step(const std::string& strName, const std::function<void()>& fAction)
{
    // A step that is done more than once in a session is counted.
    std::string strFull = m_strGroup + "/" + m_strSession + "/" + strName;
    const int nTimes = ++m_mTimes[strFull];
    if (nTimes > 1)
        strFull += "#" + std::to_string(nTimes);
    m_vSteps.push_back({strFull, 0, std::string()});
    m_bInStep = true;
    m_bExtensionsAsked = false;
    fAction();
    m_bInStep = false;
    for (const SGLErrorNote& rError : CGLRecorder::Get().TakeErrors())
        m_vSteps.back().strText += "error " + std::to_string(rError.nError) + " of " + rError.strCall + "\n";
}

void CSessionBook::Note(const std::string& strLine)
{
    m_vSteps.back().strText += "-> " + strLine + "\n";
}

std::string CSessionBook::Text() const
{
    std::string strText;
    for (const SSessionStep& rStep : m_vSteps)
        strText += "== " + rStep.strName + ", " + std::to_string(rStep.nCalls) + " calls\n" + rStep.strText;
    return strText;
}

/// Kept lines are compared where they were made: other drivers are asked other things.
static bool IsSoftwareRenderer()
{
    CTestDewarper oDewarper(8, 8);
    const auto* pName = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    return pName != nullptr && std::string(pName).find("llvmpipe") != std::string::npos;
}

static std::string GoldenLine(const SSessionStep& rStep)
{
    return rStep.strName + " " + std::to_string(rStep.nCalls) + " " +
           HashText(HashBytes(rStep.strText.data(), rStep.strText.size()));
}

/// The kept lines, by group, in their order.
static std::map<std::string, std::vector<std::string>> ReadGolden()
{
    std::map<std::string, std::vector<std::string>> mGroups;
    std::ifstream oFile(GOLDEN_PATH);
    for (std::string strLine; std::getline(oFile, strLine);)
        mGroups[strLine.substr(0, strLine.find('/'))].push_back(strLine);
    return mGroups;
}

static void WriteGolden(const CSessionBook& rBook)
{
    auto mGroups = ReadGolden();
    std::vector<std::string>& rLines = mGroups[rBook.Group()];
    rLines.clear();
    for (const SSessionStep& rStep : rBook.Steps())
        rLines.push_back(GoldenLine(rStep));
    std::ofstream oFile(GOLDEN_PATH, std::ios::trunc);
    for (const auto& [strGroup, vLines] : mGroups)
        for (const std::string& strLine : vLines)
            oFile << strLine << "\n";
    ASSERT_TRUE(oFile.flush().good()) << GOLDEN_PATH;
}

static std::string WriteText(const std::string& strFolder, const CSessionBook& rBook)
{
    std::filesystem::create_directories(strFolder);
    std::string strPath = strFolder + "/sessions-" + rBook.Group() + ".txt";
    std::ofstream oFile(strPath, std::ios::trunc);
    oFile << rBook.Text();
    EXPECT_TRUE(oFile.flush().good()) << strPath;
    return strPath;
}

static void CompareWithGolden(const CSessionBook& rBook)
{
    auto mGroups = ReadGolden();
    std::map<std::string, std::string> mKept;
    for (const std::string& strLine : mGroups[rBook.Group()])
        mKept[strLine.substr(0, strLine.find(' '))] = strLine;
    std::string strDiffering;
    for (const SSessionStep& rStep : rBook.Steps()) {
        const std::string strKept = mKept[rStep.strName];
        mKept.erase(rStep.strName);
        if (strKept != GoldenLine(rStep))
            strDiffering += "  " + GoldenLine(rStep) + "\n    kept: " + strKept + "\n";
    }
    for (const auto& rMissing : mKept)
        strDiffering += "  not played: " + rMissing.second + "\n";
    if (!strDiffering.empty())
        ADD_FAILURE() << "steps that say something else to GL than they did:\n"
                      << strDiffering << "what they say: " << WriteText(PICTURES_DIR, rBook);
}

void CSessionTest::Play(const std::string& strGroup, const std::function<void(CSessionBook&)>& fSessions)
{
    const bool bSoftware = IsSoftwareRenderer();
    const char* pDump = std::getenv("LUMOR_SESSION_DUMP");
    if (!bSoftware && pDump == nullptr)
        GTEST_SKIP() << "calls are compared on the software renderer only";
    CSessionBook oBook(strGroup);
    fSessions(oBook);
    if (pDump != nullptr)
        WriteText(pDump, oBook);
    if (IsAsked("LUMOR_SESSION_UPDATE"))
        WriteGolden(oBook);
    // With data in the texts they are another matter.
    if (bSoftware && !oBook.KeepsData())
        CompareWithGolden(oBook);
}
