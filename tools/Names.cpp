#include "Names.h"

#include "ToolError.h"

#include <cstddef>
#include <span>
#include <vector>

namespace
{

struct SName
{
    const char* pName;
    int nValue;
};

const SName MOUNT_NAMES[] = {{"ceiling", MOUNT_CEILING}, {"floor", MOUNT_FLOOR}, {"wall", MOUNT_WALL}};

const SName LENS_NAMES[] = {
    {"auto", LENS_AUTO},  {"215", LENS_DSL215}, {"239", LENS_DSL239},
    {"418", LENS_DSL418}, {"419", LENS_DSL419}, {"ideal", LENS_UNKNOWN},
};

const SName INTERPOLATION_NAMES[] = {{"nearest", INTERPOLATION_NEAREST}, {"linear", INTERPOLATION_LINEAR}};

const SName SAMPLING_NAMES[] = {{"nearest", SAMPLING_NEAREST},
                                {"linear", SAMPLING_LINEAR},
                                {"cubic", SAMPLING_CUBIC},
                                {"lanczos", SAMPLING_LANCZOS}};

const SName YUV_SPACE_NAMES[] = {
    {"auto", YUV_SPACE_AUTO},
    {"bt601", YUV_SPACE_BT601},
    {"bt709", YUV_SPACE_BT709},
    {"bt2020", YUV_SPACE_BT2020},
    {"bt601-scaled", YUV_SPACE_BT601_SCALED},
};

const SName YUV_RANGE_NAMES[] = {
    {"auto", YUV_RANGE_AUTO}, {"full", YUV_RANGE_FULL}, {"limited", YUV_RANGE_LIMITED}};

const SName RAW_FORMAT_NAMES[] = {
    {"rgb24", IMAGE_FORMAT_RGB24}, {"bgr24", IMAGE_FORMAT_BGR24},     {"nv12", IMAGE_FORMAT_NV12},
    {"nv21", IMAGE_FORMAT_NV21},   {"yuv420p", IMAGE_FORMAT_YUV420P}, {"rgba", IMAGE_FORMAT_RGBA32},
    {"bgra", IMAGE_FORMAT_BGRA32}, {"gray", IMAGE_FORMAT_GRAY8},
};

const SName ENGINE_NAMES[] = {{"auto", ENGINE_AUTO}, {"cpu", ENGINE_CPU}, {"gl", ENGINE_GL}};

[[noreturn]] void ThrowUnknown(const char* pOption, const std::string& strText,
                               const std::vector<std::string>& vNames)
{
    std::string strNames;
    for (std::size_t i = 0; i < vNames.size(); i++) {
        strNames += i == 0 ? "" : i + 1 == vNames.size() ? " or " : ", ";
        strNames += vNames[i];
    }
    ThrowUsage(std::string(pOption) + ": '" + strText + "' is not known; give " + strNames);
}

int ReadName(const char* pOption, const std::string& strText, std::span<const SName> vValues)
{
    std::vector<std::string> vNames;
    for (const SName& sName : vValues) {
        if (strText == sName.pName)
            return sName.nValue;
        vNames.emplace_back(sName.pName);
    }
    ThrowUnknown(pOption, strText, vNames);
}

} // namespace

EViewType ReadView(const std::string& strText)
{
    // Views are also known by their numbers, 1 to 9.
    if (strText.size() == 1 && strText[0] >= '1' && strText[0] <= '9')
        return static_cast<EViewType>(strText[0] - '0');
    const EViewType eView = CDewarper::FindViewType(strText);
    if (eView == VIEW_UNSET)
        ThrowUnknown("--view", strText, CDewarper::ListViewNames());
    return eView;
}

EMountType ReadMount(const std::string& strText)
{
    return static_cast<EMountType>(ReadName("--mount", strText, MOUNT_NAMES));
}

bool FindLensName(const std::string& strText, ELensType& rLens)
{
    for (const SName& rName : LENS_NAMES) {
        if (strText != rName.pName)
            continue;
        rLens = static_cast<ELensType>(rName.nValue);
        return true;
    }
    return false;
}

EInterpolationType ReadInterpolation(const std::string& strText)
{
    return static_cast<EInterpolationType>(ReadName("--interpolation", strText, INTERPOLATION_NAMES));
}

ESampling ReadSampling(const std::string& strText)
{
    return static_cast<ESampling>(ReadName("--sampling", strText, SAMPLING_NAMES));
}

EYUVSpace ReadYUVSpace(const std::string& strText)
{
    return static_cast<EYUVSpace>(ReadName("--yuv-space", strText, YUV_SPACE_NAMES));
}

EYUVRange ReadYUVRange(const std::string& strText)
{
    return static_cast<EYUVRange>(ReadName("--yuv-range", strText, YUV_RANGE_NAMES));
}

EDewarpEngine ReadEngine(const std::string& strText)
{
    return static_cast<EDewarpEngine>(ReadName("--engine", strText, ENGINE_NAMES));
}

int ReadRawFormat(const std::string& strText)
{
    return ReadName("--raw", strText, RAW_FORMAT_NAMES);
}
