#include "lens/LensTree.h"

#include "lens/YAMLTree.h"

#include "ToolError.h"

#include <cstddef>
#include <set>
#include <string_view>
#include <vector>

namespace
{

const int DEEPEST = 8;

/// Parsers quote what they stumbled over, however long it is.
std::string Shortened(const std::string& strText)
{
    const std::size_t nMost = 160;
    return strText.size() > nMost ? strText.substr(0, nMost) + "..." : strText;
}

/// Refuses keys that stand twice in a group, of which parsers keep the last, and nesting without end.
class CJSONWatch
{
public:
    explicit CJSONWatch(const std::string& strName) : m_strName(strName) {}

    bool operator()(int nDepth, TLensTree::parse_event_t eEvent, const TLensTree& rParsed)
    {
        using TEvent = TLensTree::parse_event_t;
        if (nDepth > DEEPEST)
            ThrowFailure(m_strName + ": is nested too deep for a lens file");
        if (eEvent == TEvent::object_start)
            m_vKeys.emplace_back();
        else if (eEvent == TEvent::object_end)
            m_vKeys.pop_back();
        else if (eEvent == TEvent::key && !m_vKeys.back().insert(rParsed.get<std::string>()).second)
            ThrowFailure(m_strName + ": the key '" + Shortened(rParsed.get<std::string>()) +
                         "' stands twice; leave one out");
        return true;
    }

private:
    const std::string& m_strName;
    std::vector<std::set<std::string>> m_vKeys;
};

TLensTree ParseJSON(const std::string& strName, const std::string& strBytes)
{
    CJSONWatch oWatch(strName);
    try {
        return TLensTree::parse(strBytes,
                                [&oWatch](int nDepth, TLensTree::parse_event_t eEvent, TLensTree& rParsed) {
                                    return oWatch(nDepth, eEvent, rParsed);
                                });
    } catch (const TLensTree::exception& oError) {
        // The library's own number of the error stands in brackets before what it says.
        const std::string strText = oError.what();
        const std::size_t nEnd = strText.find("] ");
        ThrowFailure(strName + ": is no JSON: " +
                     Shortened(nEnd == std::string::npos ? strText : strText.substr(nEnd + 2)));
    }
}

TLensTree ParseYAML(const std::string& strName, const std::string& strBytes)
{
    try {
        return ParseYAMLTree(strBytes, DEEPEST);
    } catch (const CYAMLFault& oFault) {
        ThrowFailure(strName + ": is no YAML of a calibration: " + Shortened(oFault.what()));
    }
}

} // namespace

TLensTree ParseLensTree(const std::string& strName, const std::string& strBytes)
{
    const std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";
    const std::string strText =
        strBytes.starts_with(BYTE_ORDER_MARK) ? strBytes.substr(BYTE_ORDER_MARK.size()) : strBytes;
    const std::size_t nFirst = strText.find_first_not_of(" \t\r\n");
    if (nFirst == std::string::npos)
        ThrowFailure(strName + ": is empty; give a lens file");
    const char nChar = strText[nFirst];
    if (nChar == '{')
        return ParseJSON(strName, strText);
    if (nChar == '<')
        ThrowFailure(strName + ": is XML; let the calibration program write YAML or JSON");
    const bool bNamedYAML = strName.ends_with(".yml") || strName.ends_with(".yaml");
    if (nChar == '%' || strText.compare(nFirst, 3, "---") == 0 || bNamedYAML)
        return ParseYAML(strName, strText);
    ThrowFailure(strName + ": is no lens file; give JSON, which begins with {, or the YAML of a calibration, "
                           "which begins with %YAML");
}
