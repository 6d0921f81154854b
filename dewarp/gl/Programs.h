/// \file
/// Programs: built from their texts, kept by their texts.
#pragma once

#include "dewarp/gl/SShaderProperties.h"
#include "platform/DriverTraits.h"

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

class CDriverWatch;
class CReport;

/// One thing to be done once for a new program, in the order of a list.
struct SProgramStep
{
    enum EKind : int
    {
        SAMPLER,      ///< looks a sampler up and sets it to a unit
        ATTRIBUTE,    ///< looks an attribute up into a location
        UNIFORM,      ///< looks a uniform up into a location
        UNIT,         ///< sets the sampler of a location to a unit
        IDENTITY_MVP, ///< the pass draws a flat picture: its matrix never changes
        NOTHING,      ///< the program has no such input: its location is -1
    };
    EKind eKind = NOTHING;
    const char* pName = "";
    int SShaderProperties::*pLocation = nullptr;
    int nUnit = 0;
};

/// Samplers, attributes and uniforms as the passes list them.
inline constexpr SProgramStep STEP_POSITION = {SProgramStep::ATTRIBUTE, "vPosition",
                                               &SShaderProperties::nPositionLocation};
inline constexpr SProgramStep STEP_TEX_COORD = {SProgramStep::ATTRIBUTE, "a_TexCoordinate",
                                                &SShaderProperties::nTexCoordLocation};
inline constexpr SProgramStep STEP_NO_TEX_COORD = {SProgramStep::NOTHING, "",
                                                   &SShaderProperties::nTexCoordLocation};
inline constexpr SProgramStep STEP_MVP = {SProgramStep::UNIFORM, "uMVPMatrix",
                                          &SShaderProperties::nMVPMatrixLocation};
inline constexpr SProgramStep STEP_IDENTITY_MVP = {SProgramStep::IDENTITY_MVP};
inline constexpr SProgramStep STEP_SCREEN_SIZE = {SProgramStep::UNIFORM, "u_ScreenSize",
                                                  &SShaderProperties::nScreenSizeLocation};

/// Makes programs and keeps them while the context lives, so that a text that comes back is not compiled
/// again. What was not used for longest goes when there are too many.
/// Owns: the GL names of every program kept; records that use one only refer to it.
/// Thread: GL thread, context current. Fails: with a negative result and the driver's words in the log.
class CPrograms
{
public:
    /// The records that may use kept programs; none of theirs is let go.
    using VRecords = std::vector<SShaderProperties*>;

    CPrograms(CReport& rReport, CDriverWatch& rWatch) : m_rReport(rReport), m_rWatch(rWatch) {}
    CPrograms(const CPrograms&) = delete;
    CPrograms& operator=(const CPrograms&) = delete;

    /// Compiles and links a record's two texts into names of its own: 0, or -1, -2, -3 when the vertex
    /// shader, the fragment shader, the program could not be made. The program is current then.
    int Load(SShaderProperties& rShader);
    /// Gives a record the program of its two texts, makes it if there is none, and makes it current: 1 made,
    /// 0 kept from before, below 0 as Load.
    /// Texts that failed are tried once more, for the driver may only have been short of something; then not
    /// until something changed, unless bAgain asks for it.
    int Use(SShaderProperties& rShader, std::span<const SProgramStep> vSteps, bool bAgain = false);
    /// Something was asked for, or memory may be had again: what failed may be tried again.
    void ForgetFailures() { m_vFailed.clear(); }

    /// Makes the program of a record current.
    static void MakeCurrent(const SShaderProperties& rShader);

    /// Every record lets go of its program, the first one first, then all programs are deleted.
    void FreeAll();
    /// The context is gone, and all names with it.
    void ForgetAll();
    /// The traits of the driver in use, asked for when first needed.
    const SDriverTraits& Traits();
    /// The target holds YUV, or plain colours: programs are told apart by it.
    void SetYUVOutput(bool bYUV);
    bool IsYUVOutput() const { return m_bYUVOutput; }

    VRecords m_vRecords;
    bool bLogShaderCode = false;

private:
    static constexpr std::size_t MOST_KEPT = 48;

    struct SKept
    {
        SShaderProperties sRecord; ///< texts, names and locations
        bool bYUVOutput = true;
        std::vector<const char*> vSamplers; ///< set to their units
        unsigned long long nLastUse = 0;
    };

    std::size_t HashOf(const SShaderProperties& rShader) const;
    SKept* Find(const SShaderProperties& rShader);
    void Share(SKept& rKept, SShaderProperties& rShader);
    void MakeRoom();
    bool IsInUse(const SKept& rKept) const;
    static void Take(SKept& rKept, std::span<const SProgramStep> vSteps, bool bNew);
    bool CompileShader(unsigned int& nShader, unsigned int nKind, const std::string& strText,
                       const char* pMessage);
    void LogCompileError(unsigned int nShader, const char* pMessage);
    void LogLinkError(unsigned int nProgram);

    CReport& m_rReport;
    CDriverWatch& m_rWatch;
    SDriverTraits m_sTraits;
    bool m_bYUVOutput = true;
    std::vector<SKept> m_vKept;
    std::vector<std::size_t> m_vFailed; ///< hashes of texts, once for each failure
    unsigned long long m_nUses = 0;
};
