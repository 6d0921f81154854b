#include "SourceScan.h"

#include <gtest/gtest.h>

namespace
{

using VStrings = std::vector<std::string>;

/// "name line lines" of every function.
VStrings Functions(const std::string& strSource)
{
    VStrings vTexts;
    for (const SFunction& sFunction : ScanSource(strSource).vFunctions)
        vTexts.push_back(sFunction.strName + " " + std::to_string(sFunction.nLine) + " " +
                         std::to_string(sFunction.nLines));
    return vTexts;
}

VStrings Names(const std::string& strSource)
{
    VStrings vNames;
    for (const SFunction& sFunction : ScanSource(strSource).vFunctions)
        vNames.push_back(sFunction.strName);
    return vNames;
}

} // namespace

TEST(SourceScan, FunctionsAreCountedFromSignatureToBrace)
{
    EXPECT_EQ(
        Functions("int A()\n{\n}\n\n/// b\nstatic void\nB(int n,\n  int m) {\n    if (n) {\n    }\n}\n"),
        (VStrings{"A 1 3", "B 6 6"}));
    EXPECT_EQ(Functions("template <class T>\nT A(T t)\n{\n    return t;\n}\n"), VStrings{"A 1 5"});
}

TEST(SourceScan, FunctionsWithinNamespacesAndClassesAreFound)
{
    EXPECT_EQ(Functions("namespace\n{\nnamespace a::b {\nclass C final : public D<int(int)>\n{\npublic:\n"
                        "    C() {}\nprivate: ~C()\n    {\n    }\n    int m_n = 0;\n};\n}\nextern \"C\" {\n"
                        "void F() {}\n}\n}\nvoid G() {}\n"),
              (VStrings{"C 7 1", "~C 8 3", "F 15 1", "G 18 1"}));
}

TEST(SourceScan, MethodsKeepTheNameOfTheirClass)
{
    EXPECT_EQ(
        Names("bool CFoo::Bar(int n) const {}\nCFoo::~CFoo() {}\nSBar& SBar::operator=(const SBar&) {}\n"
              "bool SBar::operator()(int) {}\nSBar::operator bool() const {}\n"
              "std::function<void(int)> CFoo::Get() {}\nbool operator<(SBar a, SBar b) {}\n"
              "__attribute__((weak)) void Log() {}\nauto CFoo::Sum() -> std::vector<int> {}\n"),
        (VStrings{"CFoo::Bar", "CFoo::~CFoo", "SBar::operator=", "SBar::operator()", "SBar::operator bool",
                  "CFoo::Get", "operator<", "Log", "CFoo::Sum"}));
}

TEST(SourceScan, InitialisersAreNoBodies)
{
    EXPECT_EQ(Functions("CFoo::CFoo() noexcept : CBase<int>{1}, m_n{2}, m_m(3)\n{\n    F();\n}\n"),
              VStrings{"CFoo::CFoo 1 4"});
    EXPECT_EQ(Functions("static const int A[] = {\n1,\n};\nconst std::vector<int> B{2};\n"
                        "const auto C = [](int n) {\n    return n;\n};\nenum E : int\n{\n    ONE,\n};\n"
                        "void F(SArgs s = {}) {}\nint G(int a = B(1));\nstruct S T() {}\n"),
              (VStrings{"F 12 1", "T 14 1"}));
}

TEST(SourceScan, BracesInCommentsLiteralsAndDirectivesAreText)
{
    EXPECT_EQ(Functions("void A()\n{ // }\n    /* } */ F(\"}\", '}', 1'0);\n#define B(n) { \\\n    { n\n    "
                        "F(R\"x(}\" // )\" }\n)x\");\n}\n"),
              VStrings{"A 1 8"});
    EXPECT_EQ(BareCode("F(\"\\\"{\", '{'); // {\n#if 0 \\\n  {\n}"), "F(\"   \", ' '); \n       \n   \n}");
}

TEST(SourceScan, TypesAreThoseWithABody)
{
    const SScan sScan =
        ScanSource("class CAhead;\nstruct alignas(16) SFoo\n{\n    int n;\n    struct SInner {};\n"
                   "};\nclass __attribute__((visibility(\"default\"))) CFoo final : public CBar {};\n"
                   "struct SFoo F() {}\nSFoo sFoo = {};\nenum class EFoo { ONE };\nunion U {};\nstruct "
                   "CFoo::SLater {};\n");
    EXPECT_EQ(sScan.vTypes, (VStrings{"SFoo", "SInner", "CFoo", "U", "CFoo::SLater"}));
}

TEST(SourceScan, CallsAreTakenFromCodeOnly)
{
    EXPECT_EQ(
        CallsOf("glClear(1); // glFlush();\ns = \"glFinish()\"; ::eglInitialize (a); glow(); fn = glEnd;\n"
                "myglClear(); egl(); GLClear();",
                {"gl", "egl"}),
        (VStrings{"glClear", "eglInitialize"}));
}
