// The services without a window: trace, error reports, message boxes and
// the texts for users in their language.

#include "diagnostics/HeadlessHost.h"
#include "diagnostics/ErrorTail.h"
#include "diagnostics/Messages.h"
#include "diagnostics/ServiceRegistry.h"
#include "diagnostics/Translate.h"
#include "objectmodel/ExpectError.h"
#include "platform/JsonNameTable.h"
#include "support/TempDirectory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <optional>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace pipespec::diagnostics {
namespace {

using checks::errorNumber;
using Lines = std::vector<std::string>;

// An object that only knows its full name; without one, reading the name
// fails as it does for a deleted object.
class NamedObject final : public IBaseObject {
public:
    explicit NamedObject(std::optional<std::string> fullName) : fullName_(std::move(fullName)) {}

    std::string SystemFullName() const override
    {
        if (!fullName_) throw PlatformError(err::Deleted, "Object is deleted");
        return *fullName_;
    }

    std::string Name() const override { return {}; }
    void SetName(std::string_view) override {}
    std::string Description() const override { return {}; }
    void SetDescription(std::string_view) override {}
    bool IsFolder() const override { return false; }
    WorksetRef Workset() const override { return nullptr; }
    std::string UniqueId() const override { return {}; }
    ObjectRef Owner() const override { return nullptr; }
    bool ReadOnly() const override { return false; }
    int SystemType() const override { return systemtype::Device; }
    bool SystemTemporary() const override { return false; }
    ProjectRef Project() const override { return nullptr; }
    ObjectRef InheritanceOrigin() const override { return nullptr; }
    bool IsDeleted() const override { return !fullName_; }
    int Delete() override { return 0; }
    ObjectRef Copy() const override { return nullptr; }
    void MakePersistent() override {}
    bool CanMakePersistent() const override { return false; }
    SpecRef Spec(std::string_view) const override { return nullptr; }
    void RefreshSpecs() override {}
    std::string XmlText() const override { return {}; }
    void SetXmlText(std::string_view) override {}

private:
    std::optional<std::string> fullName_;
};

class TraceRecording : public ::testing::Test {
protected:
    Lines formatted() const
    {
        Lines out;
        for (const auto& line : host.tools().lines()) out.push_back(HeadlessTools::format(line));
        return out;
    }

    ScopedHeadlessHost host;
    Trace checkValid{cls::AddToPipeClass, "CheckValid"};
};

TEST_F(TraceRecording, RecordsEveryKindWithClassAndFunctionAndAFailingOneDisturbsNothing)
{
    const bool completed = Procedure(cls::AddToPipeClass, "Sub CalcMinMaxSpec").run([&] {
        checkValid.enter();
        checkValid.text("is a folder");
        checkValid.object("mPipeClass", std::make_shared<NamedObject>("@40|PC-A1"));
        checkValid.object("MinMaxSpec", std::make_shared<NamedObject>(std::nullopt));
        checkValid.object("CDevObject", nullptr);
        checkValid.value("checkResult", Variant(2.5));
        checkValid.leaveText("QSpec Is Nothing");
        checkValid.leave();
    });
    EXPECT_TRUE(completed);
    EXPECT_TRUE(host.utilities().errors().empty());
    EXPECT_EQ(formatted(), (Lines{
                               "QuorlPipeSpecComp.AddToPipeClass CheckValid: enter",
                               "QuorlPipeSpecComp.AddToPipeClass CheckValid: is a folder",
                               "QuorlPipeSpecComp.AddToPipeClass CheckValid: mPipeClass = @40|PC-A1",
                               "QuorlPipeSpecComp.AddToPipeClass CheckValid: CDevObject = Nothing",
                               "QuorlPipeSpecComp.AddToPipeClass CheckValid: checkResult = 2.5",
                               "QuorlPipeSpecComp.AddToPipeClass CheckValid: leave: QSpec Is Nothing",
                               "QuorlPipeSpecComp.AddToPipeClass CheckValid: leave",
                           }));
    EXPECT_EQ(host.tools().lines()[1],
              (TraceLine{TraceKind::Text, "QuorlPipeSpecComp.AddToPipeClass", "CheckValid", "is a folder"}));
    EXPECT_EQ((Lines{describeValue(Variant()), describeValue(Variant(true)), describeValue(Variant(10003)),
                     describeValue(Variant(std::make_shared<NamedObject>("@40|X"))),
                     describeValue(Variant(CollectionRef()))}),
              (Lines{"Empty", "True", "10003", "@40|X", "Nothing"}));
}

TEST_F(TraceRecording, AFunctionOrAllCanBeSwitchedOff)
{
    host.tools().setTraceEnabled(cls::AddToPipeClass, "CheckValid", false);
    const Trace otherFunction(cls::AddToPipeClass, "MapCDeviceToXXX");
    checkValid.text("hidden");
    otherFunction.text("shown");
    Trace(cls::PipeSpecComp, "CheckValid").text("shown too");
    EXPECT_FALSE(checkValid.enabled());
    EXPECT_TRUE(otherFunction.enabled());
    EXPECT_EQ(formatted(), (Lines{"QuorlPipeSpecComp.AddToPipeClass MapCDeviceToXXX: shown",
                                  "QuorlPipeSpecComp.PipeSpecComp CheckValid: shown too"}));
    host.tools().setTraceEnabled(cls::AddToPipeClass, "CheckValid", true);
    host.tools().clear();
    checkValid.text("back");
    EXPECT_EQ(formatted(), Lines{"QuorlPipeSpecComp.AddToPipeClass CheckValid: back"});
    host.tools().setTraceEnabled(false);
    checkValid.enter();
    otherFunction.text("x");
    EXPECT_EQ(formatted().size(), 1U);
    EXPECT_FALSE(checkValid.enabled());
}

TEST(HeadlessUtilities, ClearForgetsWhatWasRecordedButNotTheScriptAndTablePathsAreANumberMap)
{
    HeadlessUtilities utilities;
    utilities.ReportError({err::ReadOnly, "read-only"}, cls::NDRangeOverView, "Sub Fill");
    utilities.WriteLog("t=12ms");
    utilities.BeginRefresh();
    utilities.BeginRefresh();
    utilities.scriptAnswer(mb::AnswerNo);
    EXPECT_EQ(utilities.refreshCount(), 2);
    utilities.clear();
    EXPECT_TRUE(utilities.errors().empty() && utilities.logLines().empty());
    EXPECT_EQ(utilities.refreshCount(), 0);
    EXPECT_EQ(utilities.MessageBox("q", mb::YesNoExclamation, "t"), mb::AnswerNo) << "the script survives clear";
    EXPECT_EQ(utilities.StandardTablePath(4849), "@3D|00|VFCD");
    utilities.setStandardTablePath(4849, "@3D|01|VFCD");
    EXPECT_EQ(utilities.StandardTablePath(4849), "@3D|01|VFCD");
    EXPECT_EQ(errorNumber([&] { (void)utilities.StandardTablePath(18); }), err::Configuration);
}

TEST(Services, DefaultsAreHeadlessAndAScopedHostReplacesThemWithItsNamesAndRestores)
{
    const ScopedService<IGlobalTools> noTools(setTools, nullptr);
    const ScopedService<IUtilities> noUtilities(setUtilities, nullptr);
    EXPECT_NE(dynamic_cast<HeadlessTools*>(&tools()), nullptr);
    EXPECT_NE(dynamic_cast<HeadlessUtilities*>(&utilities()), nullptr);
    EXPECT_EQ(&tools(), &tools());
    IUtilities* const outer = &utilities();
    {
        const ScopedHeadlessHost host;
        EXPECT_EQ(&utilities(), &host.utilities());
        Procedure(cls::frmNewSelector, "Sub cmdOK_Click").run([] {
            throw PlatformError(err::NameInUse, "Name in use");
        });
        EXPECT_EQ(host.utilities().errors().size(), 1U);
        EXPECT_EQ(errorNumber([] { (void)names(); }), err::Configuration);
        const auto table = platform::JsonNameTable::load(platform::JsonNameTable::shippedPath());
        host.tools().setNames(table);
        EXPECT_EQ(&names(), table.get());
    }
    EXPECT_EQ(&utilities(), outer);
}

LanguageTable english() { return LanguageTable::load(LanguageTable::shippedPath("en")); }

std::multiset<std::string> placeholdersIn(const std::string& text)
{
    static const std::regex placeholder(R"(%1%|\{0\}|%s1|%s2)");
    std::multiset<std::string> found;
    for (std::sregex_iterator it(text.begin(), text.end(), placeholder), end; it != end; ++it) found.insert(it->str());
    return found;
}

TEST(Translate, TheTablesTextForAKeyElseTheDefaultTextAndOtherTextsAsTheyAre)
{
    LanguageTable table;
    table.set("0017a", "Function");
    EXPECT_EQ(Translate(msg::Function, table), "Function");
    EXPECT_EQ(Translate("~0017A Funktion", table), "Function") << "hex digits of either case";
    const LanguageTable none;
    EXPECT_EQ(Translate(msg::Function, none), "Funktion");
    EXPECT_EQ(Translate(msg::RangeFor, none), "Range for ") << "the trailing blank belongs to the text";
    EXPECT_EQ(Translate("~0017a ", none), "");
    for (const char* text :
         {"Funktion", "", "~0017aFunktion", "~0017g Funktion", "~017a Funktion", " ~0017a Funktion", "~0017a"})
        EXPECT_EQ(Translate(text, table), text);
    // Placeholders are left for the caller.
    EXPECT_EQ(Translate(msg::SpecChapterNotFound, english()), "Spec-Chapter %1% not found");
    EXPECT_EQ(Translate(msg::SpecChapterNotFound, none), "Spec-Chapter %1% not found");
    EXPECT_EQ(FillBrace0(Translate(msg::ChapterCardNotFound, english()), "K7"), "Chapter card K7 not found");
    EXPECT_EQ(FillBrace0(Translate(msg::ChapterCardNotFound, none), "K7"), "Kapitelkarte K7 nicht gefunden");
}

TEST(Placeholders, EachRoutineFillsEveryOccurrenceOfItsOwnNotationAndS1BeforeS2)
{
    const std::string text = "%1% {0} %s1 %s2 %1% {0} %1 {0 %S1";
    EXPECT_EQ(FillPercent1(text, "X"), "X {0} %s1 %s2 X {0} %1 {0 %S1");
    EXPECT_EQ(FillBrace0(text, "X"), "%1% X %s1 %s2 %1% X %1 {0 %S1");
    EXPECT_EQ(FillS1S2(text, "A", "B"), "%1% {0} A B %1% {0} %1 {0 %S1");
    EXPECT_EQ(FillS1S2("%s2 after %s1", "one", "two"), "two after one");
    EXPECT_EQ(FillS1S2("%s1", "%s2", "two"), "two") << "a value holding %s2 is filled in the second pass";
}

TEST(Messages, EveryLiteralHasItsOwnKeyAndTheEnglishTableCoversExactlyThemWithTheirPlaceholders)
{
    static_assert(msg::all.size() == 75);
    const auto table = english();
    std::vector<std::string_view> literals(msg::all.begin(), msg::all.end());
    literals.insert(literals.end(), msg::window::all.begin(), msg::window::all.end());
    std::vector<std::string> keys;
    for (const auto literal : literals) {
        const auto parts = parseMessage(literal);
        ASSERT_TRUE(parts && !parts->defaultText.empty()) << literal;
        keys.emplace_back(parts->key);
        EXPECT_EQ(placeholdersIn(Translate(literal, table)), placeholdersIn(std::string(parts->defaultText)))
            << literal;
    }
    std::sort(keys.begin(), keys.end());
    EXPECT_EQ(std::adjacent_find(keys.begin(), keys.end()), keys.end()) << "a key used twice";
    EXPECT_EQ(table.keys(), keys);
    EXPECT_EQ(Translate(msg::ObjectNotAllowed, table), "Object may not be used as a pipe-spec element");
}

TEST(LanguageTable, AMissingFileMeansTheDefaultsAndADamagedOneIsAConfigurationError)
{
    const support::TempDirectory folder;
    const auto file = folder / "lang.json";
    const auto write = [&](const char* content) {
        std::ofstream(file, std::ios::binary) << content;
        return file;
    };
    EXPECT_EQ(Translate(msg::PipeClass, LanguageTable::load(folder / "none.json")), "Rohrklasse");
    const auto table = LanguageTable::load(write(R"({"01310": "Pipe class", "0017a": "Function"})"));
    EXPECT_EQ(table.keys(), (std::vector<std::string>{"0017a", "01310"}));
    EXPECT_EQ(Translate(msg::PipeClass, table), "Pipe class");
    for (const char* content : {R"({"0017a": "Function")", R"(["0017a"])", R"({"0017a": 5})",
                                R"({"Funktion": "Function"})", "", R"({"0017a": 1E400})"})
        EXPECT_EQ(errorNumber([&] { (void)LanguageTable::load(write(content)); }), err::Configuration) << content;
    // Language names cannot leave the language folder.
    EXPECT_EQ(LanguageTable::shippedPath("en").filename(), "en.json");
    EXPECT_EQ(errorNumber([] { (void)LanguageTable::shippedPath("../nametable"); }), err::Configuration);
    EXPECT_EQ(errorNumber([] { (void)LanguageTable::shippedPath(""); }), err::Configuration);
}

}  // namespace
}  // namespace pipespec::diagnostics
