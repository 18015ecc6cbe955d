#include "diagnostics/Messages.h"
#include "diagnostics/Translate.h"
#include "objectmodel/ExpectError.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace pipespec::diagnostics {
namespace {

using checks::errorNumber;

LanguageTable english() { return LanguageTable::load(LanguageTable::shippedPath("en")); }

std::multiset<std::string> placeholdersIn(const std::string& text)
{
    static const std::regex placeholder(R"(%1%|\{0\}|%s1|%s2)");
    std::multiset<std::string> found;
    for (std::sregex_iterator it(text.begin(), text.end(), placeholder), end; it != end; ++it) found.insert(it->str());
    return found;
}

TEST(Translate, KeyInTheTableGivesTheTablesText)
{
    LanguageTable table;
    table.set("0017a", "Function");
    EXPECT_EQ(Translate(msg::Function, table), "Function");
    EXPECT_EQ(Translate("~0017A Funktion", table), "Function") << "hex digits of either case";
}

TEST(Translate, KeyMissingGivesTheDefaultTextWithoutTheKey)
{
    const LanguageTable none;
    EXPECT_EQ(Translate(msg::Function, none), "Funktion");
    EXPECT_EQ(Translate(msg::RangeFor, none), "Range for ") << "the trailing blank belongs to the text";
    EXPECT_EQ(Translate("~0017a ", none), "");
}

TEST(Translate, TextWithoutTheKeyFormComesBackUnchanged)
{
    LanguageTable table;
    table.set("0017a", "Function");
    for (const char* text : {"Funktion", "", "~0017aFunktion", "~0017g Funktion", "~017a Funktion", " ~0017a Funktion",
                             "~0017a"})
        EXPECT_EQ(Translate(text, table), text);
}

TEST(Translate, LeavesPlaceholdersForTheCaller)
{
    const auto table = english();
    EXPECT_EQ(Translate(msg::SpecChapterNotFound, table), "Spec-Chapter %1% not found");
    EXPECT_EQ(Translate(msg::SpecChapterNotFound, LanguageTable{}), "Spec-Chapter %1% not found");
    EXPECT_EQ(FillBrace0(Translate(msg::ChapterCardNotFound, table), "K7"), "Chapter card K7 not found");
    EXPECT_EQ(FillBrace0(Translate(msg::ChapterCardNotFound, LanguageTable{}), "K7"), "Kapitelkarte K7 nicht gefunden");
}

TEST(Placeholders, EachRoutineFillsEveryOccurrenceOfItsOwnNotationOnly)
{
    const std::string text = "%1% {0} %s1 %s2 %1% {0} %1 {0 %S1";
    EXPECT_EQ(FillPercent1(text, "X"), "X {0} %s1 %s2 X {0} %1 {0 %S1");
    EXPECT_EQ(FillBrace0(text, "X"), "%1% X %s1 %s2 %1% X %1 {0 %S1");
    EXPECT_EQ(FillS1S2(text, "A", "B"), "%1% {0} A B %1% {0} %1 {0 %S1");
}

TEST(Placeholders, S1IsFilledBeforeS2)
{
    EXPECT_EQ(FillS1S2("%s2 after %s1", "one", "two"), "two after one");
    EXPECT_EQ(FillS1S2("%s1", "%s2", "two"), "two") << "a value holding %s2 is filled in the second pass";
    EXPECT_EQ(FillS1S2(Translate(msg::SelectorChainAmbiguous, LanguageTable{}), "S1", "Q2"),
              "Selectors chain after selector S1 with question Q2 is ambiguous.");
}

TEST(Messages, EveryLiteralHasTheKeyFormAndItsOwnKey)
{
    static_assert(msg::all.size() == 75);
    std::set<std::string> keys;
    for (const auto literal : msg::all) {
        const auto parts = parseMessage(literal);
        ASSERT_TRUE(parts) << literal;
        EXPECT_FALSE(parts->defaultText.empty()) << literal;
        keys.emplace(parts->key);
    }
    EXPECT_EQ(keys.size(), msg::all.size());
}

TEST(Messages, EnglishTableCoversExactlyTheLiteralsAndKeepsTheirPlaceholders)
{
    const auto table = english();
    std::vector<std::string> literalKeys;
    for (const auto literal : msg::all) literalKeys.emplace_back(parseMessage(literal)->key);
    std::sort(literalKeys.begin(), literalKeys.end());
    EXPECT_EQ(table.keys(), literalKeys);

    for (const auto literal : msg::all) {
        const auto german = std::string(parseMessage(literal)->defaultText);
        EXPECT_EQ(placeholdersIn(Translate(literal, table)), placeholdersIn(german)) << literal;
    }
    EXPECT_EQ(Translate(msg::ObjectNotAllowed, table), "Object may not be used as a pipe-spec element");
}

class LanguageFiles : public ::testing::Test {
protected:
    std::filesystem::path write(const std::string& content) const
    {
        std::ofstream(file_, std::ios::binary) << content;
        return file_;
    }
    void TearDown() override { std::filesystem::remove(file_); }

private:
    // Test programs of several builds may run at once.
    std::filesystem::path file_ =
        std::filesystem::temp_directory_path() / ("pipespec-lang-" + std::to_string(::getpid()) + "-" +
                                                  ::testing::UnitTest::GetInstance()->current_test_info()->name() + ".json");
};

TEST_F(LanguageFiles, AMissingLanguageMeansTheDefaults)
{
    const auto table = LanguageTable::load(std::filesystem::temp_directory_path() / "pipespec-no-such-language.json");
    EXPECT_TRUE(table.keys().empty());
    EXPECT_EQ(Translate(msg::PipeClass, table), "Rohrklasse");
}

TEST_F(LanguageFiles, ADamagedFileIsAConfigurationError)
{
    for (const char* content :
         {R"({"0017a": "Function")", R"(["0017a"])", R"({"0017a": 5})", R"({"Funktion": "Function"})", "",
          R"({"0017a": 1E400})"})
        EXPECT_EQ(errorNumber([&] { (void)LanguageTable::load(write(content)); }), err::Configuration) << content;
}

TEST_F(LanguageFiles, AWellFormedFileIsRead)
{
    const auto table = LanguageTable::load(write(R"({"01310": "Pipe class", "0017a": "Function"})"));
    EXPECT_EQ(table.keys(), (std::vector<std::string>{"0017a", "01310"}));
    EXPECT_EQ(Translate(msg::PipeClass, table), "Pipe class");
}

TEST(LanguageTable, LanguageNamesCannotLeaveTheLanguageFolder)
{
    EXPECT_EQ(LanguageTable::shippedPath("en").filename(), "en.json");
    EXPECT_EQ(errorNumber([] { (void)LanguageTable::shippedPath("../nametable"); }), err::Configuration);
    EXPECT_EQ(errorNumber([] { (void)LanguageTable::shippedPath(""); }), err::Configuration);
}

}  // namespace
}  // namespace pipespec::diagnostics
