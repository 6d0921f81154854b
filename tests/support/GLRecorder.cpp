#include "tests/support/GLRecorder.h"

#include "tests/support/GLForward.h"

#include <cstdio>
#include <mutex>

static std::recursive_mutex& RecorderMutex()
{
    static std::recursive_mutex oMutex;
    return oMutex;
}

using CRecorderLock = std::lock_guard<std::recursive_mutex>;

CGLRecorder& CGLRecorder::Get()
{
    // Never destroyed: the library may still let go of things while the program exits.
    static CGLRecorder* pRecorder = new CGLRecorder;
    return *pRecorder;
}

void CGLRecorder::Start()
{
    CRecorderLock oLock(RecorderMutex());
    m_vCalls.clear();
    m_mCounts.clear();
    m_vErrors.clear();
    m_bKeep = true;
}

void CGLRecorder::Stop()
{
    CRecorderLock oLock(RecorderMutex());
    m_bKeep = false;
}

void CGLRecorder::SetWatcher(FWatcher fWatcher, void* pUser)
{
    CRecorderLock oLock(RecorderMutex());
    m_fWatcher = fWatcher;
    m_pWatcherUser = pUser;
}

int CGLRecorder::Count(const std::string& strName) const
{
    CRecorderLock oLock(RecorderMutex());
    const auto oFound = m_mCounts.find(strName);
    return oFound == m_mCounts.end() ? 0 : oFound->second;
}

int CGLRecorder::CountPrefix(const std::string& strPrefix) const
{
    CRecorderLock oLock(RecorderMutex());
    int nCount = 0;
    for (const auto& oEntry : m_mCounts)
        if (oEntry.first.starts_with(strPrefix))
            nCount += oEntry.second;
    return nCount;
}

std::vector<SGLCall> CGLRecorder::Named(const std::string& strName) const
{
    CRecorderLock oLock(RecorderMutex());
    std::vector<SGLCall> vFound;
    for (const SGLCall& sCall : m_vCalls)
        if (strName == sCall.pName)
            vFound.push_back(sCall);
    return vFound;
}

int CGLRecorder::Find(const std::string& strName, int nWhich) const
{
    CRecorderLock oLock(RecorderMutex());
    for (std::size_t i = 0; i < m_vCalls.size(); ++i)
        if (strName == m_vCalls[i].pName && nWhich-- == 0)
            return static_cast<int>(i);
    return -1;
}

std::string CGLRecorder::Dump() const
{
    CRecorderLock oLock(RecorderMutex());
    std::string strText;
    for (const SGLCall& sCall : m_vCalls) {
        strText += sCall.pName;
        for (int i = 0; i < sCall.nArgs; ++i) {
            char acNumber[40];
            std::snprintf(acNumber, sizeof acNumber, "%s%.10g", i == 0 ? "(" : ", ", sCall.aArgs[i]);
            strText += acNumber;
        }
        strText += sCall.nArgs == 0 ? "()\n" : ")\n";
    }
    return strText;
}

int CGLRecorder::Living(EGLKind eKind) const
{
    CRecorderLock oLock(RecorderMutex());
    return static_cast<int>(m_amLiving[eKind].size());
}

int CGLRecorder::LivingGLNames() const
{
    int nCount = 0;
    for (int i = 0; i < GL_KIND_COUNT; ++i)
        nCount += Living(static_cast<EGLKind>(i));
    return nCount;
}

std::vector<SGLErrorNote> CGLRecorder::TakeErrors()
{
    CRecorderLock oLock(RecorderMutex());
    std::vector<SGLErrorNote> vErrors;
    vErrors.swap(m_vErrors);
    return vErrors;
}

std::string CGLRecorder::TakeErrorText()
{
    std::string strText;
    for (const SGLErrorNote& sError : TakeErrors()) {
        char acNumber[16];
        std::snprintf(acNumber, sizeof acNumber, "0x%04x", sError.nError);
        strText += sError.strCall + ": " + (sError.nError == 0 ? "no context is current" : acNumber) + " " +
                   sError.strMessage + "\n";
    }
    return strText;
}

void CGLRecorder::Inject(const std::string& strName, double fResult, int nSkip, int nTimes)
{
    CRecorderLock oLock(RecorderMutex());
    m_mInjections[strName] = SInjection{fResult, 0, nSkip, nTimes};
}

void CGLRecorder::InjectError(const std::string& strName, unsigned int nError, int nSkip, int nTimes)
{
    CRecorderLock oLock(RecorderMutex());
    m_mInjections[strName] = SInjection{0.0, nError, nSkip, nTimes};
}

void CGLRecorder::ClearInjections()
{
    CRecorderLock oLock(RecorderMutex());
    m_mInjections.clear();
}

bool CGLRecorder::TakeInjection(const char* pName, SInjection& sInjection)
{
    CRecorderLock oLock(RecorderMutex());
    if (m_mInjections.empty())
        return false;
    const auto oFound = m_mInjections.find(pName);
    if (oFound == m_mInjections.end() || oFound->second.nTimes == 0)
        return false;
    if (oFound->second.nSkip > 0) {
        --oFound->second.nSkip;
        return false;
    }
    --oFound->second.nTimes;
    sInjection = oFound->second;
    return true;
}

void CGLRecorder::Note(SGLCall& sCall)
{
    CRecorderLock oLock(RecorderMutex());
    ++m_mCounts[sCall.pName];
    if (m_bKeep)
        m_vCalls.push_back(sCall);
    if (m_fWatcher != nullptr)
        m_fWatcher(sCall, m_pWatcherUser);
}

void CGLRecorder::NoteError(const char* pCall, unsigned int nError)
{
    CRecorderLock oLock(RecorderMutex());
    m_vErrors.push_back(SGLErrorNote{pCall, nError, m_strMessage});
    m_strMessage.clear();
}

void CGLRecorder::NoteMessage(const char* pMessage)
{
    CRecorderLock oLock(RecorderMutex());
    m_strMessage = pMessage;
}

unsigned int CGLRecorder::TakePendingError()
{
    CRecorderLock oLock(RecorderMutex());
    if (m_vPending.empty())
        return 0;
    const unsigned int nError = m_vPending.front();
    m_vPending.erase(m_vPending.begin());
    return nError;
}

void CGLRecorder::PushPendingError(unsigned int nError)
{
    // As in GL itself, an error of a kind that already waits is not kept twice.
    CRecorderLock oLock(RecorderMutex());
    for (const unsigned int nWaiting : m_vPending)
        if (nWaiting == nError)
            return;
    m_vPending.push_back(nError);
}

void CGLRecorder::Born(EGLKind eKind, unsigned long long nName)
{
    CRecorderLock oLock(RecorderMutex());
    const unsigned long long nContext = eKind < GL_KIND_COUNT ? CurrentGLContext() : 0;
    if (nName != 0)
        m_amLiving[eKind][{nContext, nName}] = 1;
}

void CGLRecorder::Died(EGLKind eKind, unsigned long long nName)
{
    CRecorderLock oLock(RecorderMutex());
    m_amLiving[eKind].erase({eKind < GL_KIND_COUNT ? CurrentGLContext() : 0, nName});
}

void CGLRecorder::ContextDied(unsigned long long nContext)
{
    CRecorderLock oLock(RecorderMutex());
    m_mContexts.erase(nContext);
    // Errors that nobody fetched were the context's.
    m_vPending.clear();
    for (int i = 0; i < GL_KIND_COUNT; ++i)
        m_nNamesLost += static_cast<int>(std::erase_if(
            m_amLiving[i], [nContext](const auto& oEntry) { return oEntry.first.first == nContext; }));
}

bool CGLRecorder::IsNewContext(unsigned long long nContext)
{
    CRecorderLock oLock(RecorderMutex());
    return nContext != 0 && m_mContexts.emplace(nContext, true).second;
}
