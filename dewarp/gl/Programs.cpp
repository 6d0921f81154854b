#include "dewarp/gl/Programs.h"

#include "dewarp/gl/DriverWatch.h"
#include "dewarp/records/LogTag.h"
#include "platform/Report.h"

#include <GLES3/gl31.h>
#include <android/log.h>

#include <algorithm>
#include <functional>

namespace
{

const std::ptrdiff_t MOST_TRIES = 2;
const float IDENTITY[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

bool Compile(unsigned int nShader, const std::string& strText)
{
    const char* pText = strText.c_str();
    glShaderSource(nShader, 1, &pText, nullptr);
    glCompileShader(nShader);
    GLint nStatus = GL_FALSE;
    glGetShaderiv(nShader, GL_COMPILE_STATUS, &nStatus);
    return nStatus != GL_FALSE;
}

} // namespace

const SDriverTraits& CPrograms::Traits()
{
    if (!m_sTraits.bKnown)
        m_sTraits = QueryDriverTraits();
    m_sTraits.bYUVOutput = m_bYUVOutput;
    return m_sTraits;
}

void CPrograms::SetYUVOutput(bool bYUV)
{
    m_bYUVOutput = bYUV;
}

void CPrograms::LogCompileError(unsigned int nShader, const char* pMessage)
{
    GLint nLength = 0;
    glGetShaderiv(nShader, GL_INFO_LOG_LENGTH, &nLength);
    std::string strLog = "none given";
    if (nLength > 0) {
        strLog.assign(static_cast<std::size_t>(nLength), '\0');
        glGetShaderInfoLog(nShader, nLength, nullptr, strLog.data());
    }
    __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG, pMessage, "LoadShaderPrograms", strLog.c_str());
    m_rReport.Keep("%s: a shader does not compile: %s", "LoadShaderPrograms", strLog.c_str());
}

void CPrograms::LogLinkError(unsigned int nProgram)
{
    GLint nLength = 0;
    glGetProgramiv(nProgram, GL_INFO_LOG_LENGTH, &nLength);
    std::string strLog = "none given";
    if (nLength > 0) {
        strLog.assign(static_cast<std::size_t>(nLength), '\0');
        glGetProgramInfoLog(nProgram, nLength, nullptr, strLog.data());
    }
    m_rReport.Refuse("%s: the program does not link: %s", "LoadShaderPrograms", strLog.c_str());
}

/// Compiles the driver's own form of a text, and what the dialect makes of it when the driver refuses.
bool CPrograms::CompileShader(unsigned int& nShader, unsigned int nKind, const std::string& strText,
                              const char* pMessage)
{
    const SDriverTraits& rTraits = Traits();
    nShader = glCreateShader(nKind);
    if (Compile(nShader, PreferredShaderText(strText, rTraits)))
        return true;
    const std::string strAdapted = AdaptShaderText(strText, rTraits);
    if (!strAdapted.empty() && Compile(nShader, strAdapted))
        return true;
    LogCompileError(nShader, pMessage);
    return false;
}

int CPrograms::Load(SShaderProperties& rShader)
{
    rShader.Free();
    m_rWatch.BeginMaking();
    if (bLogShaderCode) {
        __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG, "%s: Vertex Shader:\n%s\n",
                            "LoadShaderPrograms", rShader.strVertexShader.c_str());
        __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG, "%s: Fragment Shader:\n%s\n",
                            "LoadShaderPrograms", rShader.strFragmentShader.c_str());
    }
    if (!CompileShader(rShader.nVertexShader, GL_VERTEX_SHADER, rShader.strVertexShader,
                       "%s: vertex shader error is: %s \n")) {
        glDeleteShader(rShader.nVertexShader);
        rShader.bNamesDeleted = true;
        return -1;
    }
    if (!CompileShader(rShader.nFragmentShader, GL_FRAGMENT_SHADER, rShader.strFragmentShader,
                       "%s: fragment shader error is: %s\n")) {
        glDeleteShader(rShader.nVertexShader);
        glDeleteShader(rShader.nFragmentShader);
        rShader.bNamesDeleted = true;
        return -2;
    }
    rShader.nProgram = glCreateProgram();
    glAttachShader(rShader.nProgram, rShader.nVertexShader);
    glAttachShader(rShader.nProgram, rShader.nFragmentShader);
    glLinkProgram(rShader.nProgram);
    GLint nStatus = GL_FALSE;
    glGetProgramiv(rShader.nProgram, GL_LINK_STATUS, &nStatus);
    if (nStatus == GL_FALSE) {
        LogLinkError(rShader.nProgram);
        glDeleteProgram(rShader.nProgram);
        glDeleteShader(rShader.nVertexShader);
        glDeleteShader(rShader.nFragmentShader);
        rShader.bNamesDeleted = true;
        return -3;
    }
    glUseProgram(rShader.nProgram);
    return 0;
}

CPrograms::SKept* CPrograms::Find(const SShaderProperties& rShader)
{
    for (SKept& rKept : m_vKept) {
        if (rKept.bYUVOutput == m_bYUVOutput &&
            rKept.sRecord.strFragmentShader == rShader.strFragmentShader &&
            rKept.sRecord.strVertexShader == rShader.strVertexShader)
            return &rKept;
    }
    return nullptr;
}

std::size_t CPrograms::HashOf(const SShaderProperties& rShader) const
{
    const std::hash<std::string> oHash;
    return oHash(rShader.strVertexShader) * 31 + oHash(rShader.strFragmentShader) * 2 +
           (m_bYUVOutput ? 1 : 0);
}

int CPrograms::Use(SShaderProperties& rShader, std::span<const SProgramStep> vSteps, bool bAgain)
{
    rShader.Free();
    SKept* pKept = Find(rShader);
    if (pKept != nullptr) {
        glUseProgram(pKept->sRecord.nProgram);
        Take(*pKept, vSteps, false);
        Share(*pKept, rShader);
        return 0;
    }
    const std::size_t nHash = HashOf(rShader);
    if (!bAgain && std::count(m_vFailed.begin(), m_vFailed.end(), nHash) >= MOST_TRIES)
        return -1;
    MakeRoom();
    m_vKept.emplace_back();
    SKept& rNew = m_vKept.back();
    bool bMade = false;
    int nResult = -1;
    try {
        rNew.bYUVOutput = m_bYUVOutput;
        rNew.sRecord.strVertexShader = rShader.strVertexShader;
        rNew.sRecord.strFragmentShader = rShader.strFragmentShader;
        rNew.vSamplers.reserve(vSteps.size() + 1);
        nResult = Load(rNew.sRecord);
        bMade = nResult == 0;
    } catch (...) {
        rNew.sRecord.Free();
        m_vKept.pop_back();
        throw;
    }
    if (!bMade) {
        // The names stay on record, deleted as they are.
        rShader.nVertexShader = rNew.sRecord.nVertexShader;
        rShader.nFragmentShader = rNew.sRecord.nFragmentShader;
        rShader.nProgram = rNew.sRecord.nProgram;
        rShader.bNamesDeleted = true;
        m_vKept.pop_back();
        if (!bAgain)
            m_vFailed.push_back(nHash);
        return nResult;
    }
    Take(rNew, vSteps, true);
    Share(rNew, rShader);
    return 1;
}

/// Does the steps of a list that this program has not seen yet.
void CPrograms::Take(SKept& rKept, std::span<const SProgramStep> vSteps, bool bNew)
{
    SShaderProperties& rRecord = rKept.sRecord;
    for (const SProgramStep& rStep : vSteps) {
        if (rStep.eKind == SProgramStep::SAMPLER) {
            const bool bKnown = std::find(rKept.vSamplers.begin(), rKept.vSamplers.end(), rStep.pName) !=
                                rKept.vSamplers.end();
            if (!bKnown) {
                glUniform1i(glGetUniformLocation(rRecord.nProgram, rStep.pName), rStep.nUnit);
                rKept.vSamplers.push_back(rStep.pName);
            }
            continue;
        }
        if (!bNew)
            continue;
        if (rStep.eKind == SProgramStep::ATTRIBUTE)
            rRecord.*rStep.pLocation = glGetAttribLocation(rRecord.nProgram, rStep.pName);
        else if (rStep.eKind == SProgramStep::UNIFORM)
            rRecord.*rStep.pLocation = glGetUniformLocation(rRecord.nProgram, rStep.pName);
        else if (rStep.eKind == SProgramStep::UNIT)
            glUniform1i(rRecord.*rStep.pLocation, rStep.nUnit);
        else if (rStep.eKind == SProgramStep::IDENTITY_MVP)
            glUniformMatrix4fv(rRecord.nMVPMatrixLocation, 1, GL_FALSE, IDENTITY);
        else
            rRecord.*rStep.pLocation = -1;
    }
}

void CPrograms::Share(SKept& rKept, SShaderProperties& rShader)
{
    rKept.nLastUse = ++m_nUses;
    const SShaderProperties& rFrom = rKept.sRecord;
    rShader.nVertexShader = rFrom.nVertexShader;
    rShader.nFragmentShader = rFrom.nFragmentShader;
    rShader.nProgram = rFrom.nProgram;
    for (int SShaderProperties::*pLocation :
         {&SShaderProperties::nPositionLocation, &SShaderProperties::nScreenSizeLocation,
          &SShaderProperties::nColorLocation, &SShaderProperties::nTexCoordLocation,
          &SShaderProperties::nMVPMatrixLocation, &SShaderProperties::nMultLocation,
          &SShaderProperties::nPosYMultLocation, &SShaderProperties::nSampler0Location,
          &SShaderProperties::nSampler1Location})
        rShader.*pLocation = rFrom.*pLocation;
    rShader.bShared = true;
}

bool CPrograms::IsInUse(const SKept& rKept) const
{
    return std::any_of(m_vRecords.begin(), m_vRecords.end(), [&](const SShaderProperties* pRecord) {
        return pRecord->bShared && pRecord->nProgram == rKept.sRecord.nProgram;
    });
}

/// Lets go of the program that was not used for longest, when as many are kept as may be.
void CPrograms::MakeRoom()
{
    if (m_vKept.size() < MOST_KEPT)
        return;
    SKept* pOldest = nullptr;
    for (SKept& rKept : m_vKept) {
        if (!IsInUse(rKept) && (pOldest == nullptr || rKept.nLastUse < pOldest->nLastUse))
            pOldest = &rKept;
    }
    if (pOldest == nullptr)
        return;
    pOldest->sRecord.Free();
    m_vKept.erase(m_vKept.begin() + (pOldest - m_vKept.data()));
}

void CPrograms::MakeCurrent(const SShaderProperties& rShader)
{
    glUseProgram(rShader.nProgram);
}

void CPrograms::FreeAll()
{
    for (SShaderProperties* pRecord : m_vRecords)
        pRecord->Free();
    for (SKept& rKept : m_vKept)
        rKept.sRecord.Free();
    m_vKept.clear();
    m_vFailed.clear();
    m_sTraits = SDriverTraits();
}

void CPrograms::ForgetAll()
{
    for (SShaderProperties* pRecord : m_vRecords)
        pRecord->bNamesDeleted = true;
    m_vKept.clear();
    m_vFailed.clear();
    m_sTraits = SDriverTraits();
}
