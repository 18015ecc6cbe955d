// The readable project format: the bundled sample loads whole, and a file
// that is not right is refused with words that say where.

#include "platform/JsonProject.h"
#include "objectmodel/ExpectError.h"
#include "support/TempDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>

namespace pipespec {
namespace {

using nlohmann::json;
using platform::JsonNameTable;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

std::shared_ptr<JsonNameTable> shippedNames() { return JsonNameTable::load(JsonNameTable::shippedPath()); }

// `open` 100,000 times, then `inner`, then as many `close`: deeper than any
// reader may walk by recursion.
std::string nested(const std::string& open, const std::string& inner, const std::string& close)
{
    constexpr int kDepth = 100'000;
    std::string text;
    for (int i = 0; i < kDepth; ++i) text += open;
    text += inner;
    for (int i = 0; i < kDepth; ++i) text += close;
    return text;
}

// What `load` says of a file holding `text`, or "accepted".
template <class Load>
std::string refusalOfFile(const std::string& text, Load load)
{
    const support::TempDirectory directory;
    const auto file = directory / "bad.json";
    std::ofstream(file) << text;
    try {
        load(file);
    } catch (const PlatformError& e) {
        EXPECT_EQ(e.number(), err::Configuration);
        return e.what();
    }
    return "accepted";
}

TEST(JsonProject, SampleProjectLoadsWithLinksOptionsAndNames)
{
    const auto loaded = platform::loadJsonProject(platform::sampleProjectPath(), *shippedNames());
    const auto& db = *loaded.database;
    const auto plant = db.project("PLANT");
    ASSERT_TRUE(plant);
    EXPECT_EQ(db.workset()->CurrentProject(), plant);
    EXPECT_EQ(plant->BaseProject(), db.project("BASE"));
    EXPECT_EQ(plant->SystemProject(), db.project("SYSTEM"));

    // A pipe class of the plant inherits its function code from the base catalogue.
    const auto pipeClass = asDevice(plant->ObjectByPath("@20|PIPECLASSES|PC-A1-DIN", 2));
    ASSERT_TRUE(pipeClass);
    EXPECT_EQ(pipeClass->Spec("GD.VFCD")->Value(), "10000");

    // Values from a standard table show their row's description.
    const auto flange = asDevice(plant->ObjectByPath("@40|CAT|FLANGES|FL-WN-PN16", 2));
    ASSERT_TRUE(flange);
    EXPECT_EQ(flange->Spec("CONN.DN1")->DisplayValue(), "DN 100");
    EXPECT_EQ(flange->Spec("GD.VFCD")->Value(), "10100") << "inherited from its base component";
    EXPECT_TRUE(flange->Spec("GD.VFCD")->SystemTemporary());
    EXPECT_EQ(flange->Spec("E3D.PCOMPlus1")->LinkObject(), plant->ObjectByPath("@40|CAT|GASKETS|GA-PN16", 2));

    const auto globals = db.workset()->Globals();
    EXPECT_EQ(globals->getOption(231).object(), plant->ObjectByPath("@40|NORM", 2));
    ASSERT_TRUE(globals->PipeClassRootCDevice());
    EXPECT_EQ(globals->PipeClassRootCDevice()->Name(), "PIPECLASS");
    EXPECT_FALSE(db.workset()->AppGlobals()->TubrixDesignerRun());

    EXPECT_EQ(loaded.names->GD().VFCD(), "GD.VFCD");
    EXPECT_FALSE(loaded.names->IsBaseDatabase());
}

TEST(JsonProject, ProjectMayOverrideLeavesOfTheNameTable)
{
    const json document = {{"format", "pipespec-sample"},
                           {"version", 1},
                           {"projects", json::array({{{"name", "P"}}})},
                           {"names", {{"IsBaseDatabase", true}, {"GD", {{"VFCD", "GEN.FCODE"}}}}}};
    const auto defaults = shippedNames();
    const auto loaded = platform::readJsonProject(document, "inline", *defaults);
    EXPECT_EQ(loaded.names->GD().VFCD(), "GEN.FCODE");
    EXPECT_TRUE(loaded.names->IsBaseDatabase());
    // Leaves the project does not name keep their defaults, and the defaults stay untouched.
    EXPECT_EQ(loaded.names->GD().Selector(), defaults->GD().Selector());
    EXPECT_EQ(defaults->GD().VFCD(), "GD.VFCD");
}

TEST(JsonProject, BadFilesAreRefusedSayingWhere)
{
    const auto defaults = shippedNames();
    const auto refusal = [&](const json& document) {
        try {
            platform::readJsonProject(document, "bad.json", *defaults);
        } catch (const PlatformError& e) {
            EXPECT_EQ(e.number(), err::Configuration);
            return std::string(e.what());
        }
        return std::string("accepted");
    };
    const auto project = [](json body) {
        return json{{"format", "pipespec-sample"}, {"version", 1}, {"projects", json::array({std::move(body)})}};
    };

    EXPECT_THAT(refusal({{"format", "other"}, {"version", 1}}), HasSubstr("is not a pipespec project"));
    EXPECT_THAT(refusal({{"format", "pipespec-sample"}, {"version", 2}}), HasSubstr("version"));
    EXPECT_THAT(refusal(project({{"name", "P"}, {"colour", "red"}})), HasSubstr("unknown entry \"colour\""));
    EXPECT_THAT(refusal(project(3)), HasSubstr("project ? must be an object"));
    EXPECT_THAT(refusal(project({{"name", "P"}, {"base", "NONE"}})), HasSubstr("'NONE'"));
    EXPECT_THAT(refusal(project(
                    {{"name", "P"},
                     {"roots", json::array({{{"name", "@40"},
                                             {"devices", json::array({{{"name", "A"}, {"cdevice", "P:@40|B"}}})}}})}})),
                HasSubstr("P:@40|A \"cdevice\" refers to 'P:@40|B', which does not exist"));
    EXPECT_THAT(refusal(project(
                    {{"name", "P"},
                     {"roots", json::array({{{"name", "@40"},
                                             {"devices", json::array({{{"name", "A"}, {"cdevice", "P:@40|A"}}})}}})}})),
                HasSubstr("own base object"));
    EXPECT_THAT(refusal(project({{"name", "P"}, {"options", {{"x1", 3}}}})), HasSubstr("no option number"));

    const auto loadProject = [&](const std::filesystem::path& file) { platform::loadJsonProject(file, *defaults); };
    EXPECT_THAT(
        refusalOfFile(R"({"format": "pipespec-sample", "version": 1, "appGlobals": {"Big": 1E400}})", loadProject),
        AllOf(StartsWith("Project file "),
              HasSubstr("bad.json is not valid JSON: [json.exception.out_of_range.406] number overflow")));
    const auto deep =
        R"({"format": "pipespec-sample", "version": 1, "projects": [{"name": "P", "roots": [{"name": "@20", "devices": [)" +
        nested(R"({"name": "D", "devices": [)", "", "]}") + "]}]}]}";
    EXPECT_THAT(refusalOfFile(deep, loadProject), HasSubstr("bad.json nests deeper than 512 levels"));

    try {
        platform::loadJsonProject("/nonexistent/project.json", *defaults);
        ADD_FAILURE() << "a missing file was read";
    } catch (const PlatformError& e) {
        EXPECT_THAT(e.what(), HasSubstr("cannot be read"));
    }
}

TEST(JsonNameTable, MissingLeavesSubTreesAndDamagedFilesAreConfigurationErrors)
{
    const auto names = JsonNameTable::parse(json{{"NameRange", "NR"}, {"GD", {{"VFCD", "GD.VFCD"}}}}, "inline");
    EXPECT_EQ(names->NameRange(), "NR");
    EXPECT_EQ(checks::errorNumber([&] { (void)names->PDMS(); }), err::Configuration);
    EXPECT_EQ(checks::errorNumber([&] { (void)names->Pipe(); }), err::Configuration);
    EXPECT_EQ(checks::errorNumber([&] { JsonNameTable::parse(json{{"GD", 3}}, "inline"); }), err::Configuration);
    const auto load = [](const std::filesystem::path& file) { JsonNameTable::load(file); };
    EXPECT_THAT(refusalOfFile(R"({"GD": {"VFCD": 1E400}})", load), HasSubstr("bad.json is not valid JSON"));
    EXPECT_THAT(refusalOfFile(nested(R"({"GD": )", "{}", "}"), load),
                HasSubstr("bad.json nests deeper than 512 levels"));
    try {
        (void)names->GD().Selector();
    } catch (const PlatformError& e) {
        EXPECT_THAT(e.what(), HasSubstr("Names.GD.Selector"));
    }
    // Damaged files: cut short, a leaf that is a list, a tree deeper than a name table goes.
    std::string deep = "{}";
    for (int level = 0; level < 100; ++level) deep = R"({"A": )" + deep + "}";
    for (const auto& content : {std::string(R"({"NameRange": "NR")"), std::string(R"({"GD": [1]})"), deep})
        EXPECT_NE(refusalOfFile(content, load), "accepted") << content;
    EXPECT_EQ(checks::errorNumber([&] { (void)shippedNames()->overlaid(json::parse(deep), "inline"); }),
              err::Configuration);
}

}  // namespace
}  // namespace pipespec
