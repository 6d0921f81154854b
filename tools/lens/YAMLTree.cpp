#include "lens/YAMLTree.h"

#include "lens/NumberText.h"

#include <cstddef>
#include <sstream>
#include <utility>
#include <vector>

#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/yaml.h>

namespace
{

using nlohmann::json;

json ValueOf(const std::string& strText)
{
    double fValue = 0.0;
    if (ReadNumber(strText, fValue))
        return fValue;
    return strText;
}

/// Puts together what the parser meets, one open list or group within the other.
class CTreeBuilder : public YAML::EventHandler
{
public:
    explicit CTreeBuilder(int nDeepest) : m_nDeepest(static_cast<std::size_t>(nDeepest)) {}

    json Take() { return std::move(m_oRoot); }

    void OnDocumentStart(const YAML::Mark&) override {}
    void OnDocumentEnd() override {}
    void OnNull(const YAML::Mark& rMark, YAML::anchor_t) override { Add(rMark, json()); }
    void OnAlias(const YAML::Mark& rMark, YAML::anchor_t) override
    {
        Refuse(rMark, "parts that are repeated by their anchors are not read");
    }
    void OnScalar(const YAML::Mark& rMark, const std::string& strTag, YAML::anchor_t,
                  const std::string& strText) override
    {
        if (IsKeyExpected())
            SetKey(rMark, strText);
        else
            Add(rMark, strTag == "!" ? json(strText) : ValueOf(strText)); // that tag: it stood in quotes
    }
    void OnSequenceStart(const YAML::Mark& rMark, const std::string&, YAML::anchor_t,
                         YAML::EmitterStyle::value) override
    {
        Open(rMark, json::array());
    }
    void OnSequenceEnd() override { Close(); }
    void OnMapStart(const YAML::Mark& rMark, const std::string&, YAML::anchor_t,
                    YAML::EmitterStyle::value) override
    {
        Open(rMark, json::object());
    }
    void OnMapEnd() override { Close(); }

private:
    struct SOpen
    {
        json oValue;
        std::string strKey;
        bool bKey = false; ///< a group's key has been read, its value comes next
    };

    [[noreturn]] static void Refuse(const YAML::Mark& rMark, const std::string& strWhat)
    {
        throw CYAMLFault("line " + std::to_string(rMark.line + 1) + ": " + strWhat);
    }
    bool IsKeyExpected() const
    {
        return !m_vOpen.empty() && m_vOpen.back().oValue.is_object() && !m_vOpen.back().bKey;
    }
    void SetKey(const YAML::Mark& rMark, const std::string& strKey)
    {
        SOpen& rOpen = m_vOpen.back();
        if (rOpen.oValue.contains(strKey))
            Refuse(rMark, "the key '" + strKey + "' stands twice");
        rOpen.strKey = strKey;
        rOpen.bKey = true;
    }
    void Open(const YAML::Mark& rMark, json oValue)
    {
        if (m_vOpen.size() >= m_nDeepest)
            Refuse(rMark, "is nested too deep");
        if (IsKeyExpected())
            Refuse(rMark, "a key is no plain text");
        m_vOpen.push_back({std::move(oValue), std::string(), false});
    }
    void Close()
    {
        json oValue = std::move(m_vOpen.back().oValue);
        m_vOpen.pop_back();
        Put(std::move(oValue));
    }
    void Add(const YAML::Mark& rMark, json oValue)
    {
        if (IsKeyExpected())
            Refuse(rMark, "a key is no plain text");
        Put(std::move(oValue));
    }
    void Put(json oValue)
    {
        if (m_vOpen.empty()) {
            m_oRoot = std::move(oValue);
            return;
        }
        SOpen& rOpen = m_vOpen.back();
        if (rOpen.oValue.is_array()) {
            rOpen.oValue.push_back(std::move(oValue));
            return;
        }
        rOpen.oValue[rOpen.strKey] = std::move(oValue);
        rOpen.bKey = false;
    }

    std::size_t m_nDeepest;
    std::vector<SOpen> m_vOpen;
    json m_oRoot;
};

/// OpenCV's head, %YAML:1.0, is older than the standard's way of writing it.
std::string WithPlainHead(std::string strText)
{
    const std::string strHead = "%YAML:";
    if (strText.starts_with(strHead))
        strText[strHead.size() - 1] = ' ';
    return strText;
}

} // namespace

nlohmann::json ParseYAMLTree(const std::string& strText, int nDeepest)
{
    std::istringstream oStream(WithPlainHead(strText));
    CTreeBuilder oBuilder(nDeepest);
    try {
        YAML::Parser oParser(oStream);
        oParser.HandleNextDocument(oBuilder);
    } catch (const YAML::Exception& oError) {
        // Counted from 0 there; a fault without a place is at -1.
        const std::string strPlace =
            oError.mark.is_null() ? "" : "line " + std::to_string(oError.mark.line + 1) + ": ";
        throw CYAMLFault(strPlace + oError.msg);
    }
    return oBuilder.Take();
}
