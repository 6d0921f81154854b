/// \file
/// A layer between the library and its GL and EGL: it keeps a list of the calls, counts living names, notes
/// every GL error with the call that raised it, and can make calls fail.
///
/// Programs linked with dewarp_gl_test_main define the GL and EGL entry points themselves and pass them on.
#pragma once

#include <map>
#include <string>
#include <vector>

/// One call. Numbers and pointers are held as double, which keeps every 32-bit integer exactly.
struct SGLCall
{
    const char* pName = "";
    double aArgs[12] = {};
    int nArgs = 0;
    unsigned int nPointers = 0; ///< bit n: argument n is a pointer
    std::string strText;        ///< shader source, or the name asked for by glGet...Location

    int Int(int nArg) const { return static_cast<int>(static_cast<long long>(aArgs[nArg])); }
};

/// A GL error (or a GL call without a context, with nError 0) and where it came from.
struct SGLErrorNote
{
    std::string strCall;
    unsigned int nError = 0;
    std::string strMessage; ///< the driver's words, where KHR_debug gave any
};

/// Kinds of things that live until somebody deletes them.
enum EGLKind : int
{
    GL_KIND_TEXTURE,
    GL_KIND_BUFFER,
    GL_KIND_FRAMEBUFFER,
    GL_KIND_RENDERBUFFER,
    GL_KIND_VERTEX_ARRAY,
    GL_KIND_SHADER,
    GL_KIND_PROGRAM,
    GL_KIND_COUNT,
    EGL_KIND_CONTEXT = GL_KIND_COUNT,
    EGL_KIND_SURFACE,
    EGL_KIND_SYNC,
    EGL_KIND_IMAGE,
    EGL_KIND_COUNT
};

/// The recorder of this program. Thread: any; calls of several threads are noted in the order they finish.
class CGLRecorder
{
public:
    static CGLRecorder& Get();

    /// Forgets calls, counts and errors, and starts keeping calls. Living names stay known.
    void Start();
    /// Stops keeping the list; counts, names and errors go on.
    void Stop();

    const std::vector<SGLCall>& Calls() const { return m_vCalls; }
    /// Hands every call to a function just before it is passed on, with what its pointers point at still
    /// there. Null ends it. The function is called under the recorder's lock and must make no recorded call.
    using FWatcher = void (*)(const SGLCall& sCall, void* pUser);
    void SetWatcher(FWatcher fWatcher, void* pUser);

    /// Calls of that name since Start.
    int Count(const std::string& strName) const;
    /// Calls since Start of all names that begin so.
    int CountPrefix(const std::string& strPrefix) const;
    /// Calls of that name, in order.
    std::vector<SGLCall> Named(const std::string& strName) const;
    /// Position in the list of the n-th call of that name; -1 when there is none.
    int Find(const std::string& strName, int nWhich = 0) const;
    /// The list as text, one call a line, for failure messages.
    std::string Dump() const;

    /// Living names of a kind, in every context together.
    int Living(EGLKind eKind) const;
    /// Living GL names of every kind.
    int LivingGLNames() const;
    /// GL names that still lived when their context was destroyed, since the program began.
    int NamesLostWithContexts() const { return m_nNamesLost; }

    /// Errors since the last call of this function.
    std::vector<SGLErrorNote> TakeErrors();
    /// The errors as text, and forgets them.
    std::string TakeErrorText();

    /// Makes later calls of that name answer fResult without reaching the driver: nTimes calls after nSkip
    /// ones. "GL_COMPILE_STATUS" and "GL_LINK_STATUS" replace what those queries report.
    void Inject(const std::string& strName, double fResult, int nSkip = 0, int nTimes = 1);
    /// As Inject, but the call also leaves a GL error for the application.
    void InjectError(const std::string& strName, unsigned int nError, int nSkip = 0, int nTimes = 1);
    void ClearInjections();

    // For the entry points.
    struct SInjection
    {
        double fResult = 0.0;
        unsigned int nError = 0;
        int nSkip = 0;
        int nTimes = 0;
    };
    /// True when this call is to fail; then sInjection tells how.
    bool TakeInjection(const char* pName, SInjection& sInjection);
    void Note(SGLCall& sCall);
    void NoteError(const char* pCall, unsigned int nError);
    void NoteMessage(const char* pMessage);
    unsigned int TakePendingError();
    void PushPendingError(unsigned int nError);
    void Born(EGLKind eKind, unsigned long long nName);
    void Died(EGLKind eKind, unsigned long long nName);
    void ContextDied(unsigned long long nContext);
    bool IsNewContext(unsigned long long nContext);

private:
    std::vector<SGLCall> m_vCalls;
    std::map<std::string, int> m_mCounts;
    std::map<std::string, SInjection> m_mInjections;
    std::map<std::pair<unsigned long long, unsigned long long>, int> m_amLiving[EGL_KIND_COUNT];
    std::map<unsigned long long, bool> m_mContexts;
    std::vector<SGLErrorNote> m_vErrors;
    std::vector<unsigned int> m_vPending;
    std::string m_strMessage;
    FWatcher m_fWatcher = nullptr;
    void* m_pWatcherUser = nullptr;
    bool m_bKeep = false;
    int m_nNamesLost = 0;
};

/// Fails the test when a GL call raised an error since the last check, and names the call.
#define EXPECT_NO_GL_ERROR() EXPECT_EQ(CGLRecorder::Get().TakeErrorText(), "")
