// Which objects may become elements of a pipe class, and why the others may not.

#include "elements/AddToPipeClass.h"
#include "support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pipespec {
namespace {

using addtopipeclass::CheckValid;
using addtopipeclass::IsPipeClass;
using addtopipeclass::MapCDeviceToXXX;
using ::testing::ElementsAre;

class Validity : public ::testing::Test {
protected:
    support::World world;
    DeviceRef catalog = world.catalog();
    DeviceRef classes = world.root(world.plant(), "@20");
    DeviceRef pipeClass = world.pipeClass(classes, "PC-A1", "10000");

    bool check(const DeviceRef& object, const DeviceRef& cls = nullptr) const
    {
        Variant result;
        return CheckValid(object, cls ? cls : pipeClass, true, result, nullptr);
    }
    DeviceRef component(const std::string& code) const
    {
        return world.device(catalog, "C" + std::to_string(catalog->Devices()->Count()), {{"GD.VFCD", code}});
    }
    std::vector<std::string> refusals() const { return world.traceTexts("CheckValid"); }
};

TEST_F(Validity, PipeClassIsRecognisedByItsFunctionCodeRange)
{
    std::string seen;
    for (const auto* code : {"10000", "10008", "10009", "9999", "abc", ""}) {
        std::int32_t number = -1;
        const bool isClass = IsPipeClass(component(code), number);
        seen += std::string(isClass ? "yes " : "no ") + std::to_string(number) + ", ";
    }
    EXPECT_EQ(seen, "yes 10000, yes 10008, no 10009, no 9999, no 0, no 0, ");
    std::int32_t number = -1;
    EXPECT_FALSE(IsPipeClass(world.device(catalog, "NoCode"), number));
    EXPECT_EQ(number, 0);
    EXPECT_FALSE(IsPipeClass(nullptr, number));
    // Too large for 32 bits: the accessor has no error tail of its own.
    EXPECT_THROW(IsPipeClass(component("99999999999"), number), PlatformError);
}

TEST_F(Validity, ComponentsAreAcceptedByTheirOwnOrInheritedCodeOrByVstdOnAPdmsClass)
{
    Variant result = Variant("stale");
    EXPECT_TRUE(CheckValid(component("10100"), pipeClass, true, result, nullptr));
    EXPECT_TRUE(result.IsEmpty()) << "the check result is cleared";
    EXPECT_TRUE(check(world.device(catalog, "FL-WN-PN16", {}, component("10100"))));
    // Structure elements belong only to structure pipe classes.
    const auto shoe = component("10900");
    world.setCreateOption(shoe, 1);
    EXPECT_TRUE(check(shoe, world.pipeClass(classes, "PC-S3", "10003")));
    const auto pdmsClass = world.pipeClass(classes, "PC-B2", "10001", true, true);
    EXPECT_TRUE(check(world.device(catalog, "TUBE", {{"GD.VFCD", "10600"}, {"PIPE.VSTD", "TUBE"}}), pdmsClass));
    EXPECT_THAT(refusals(), ElementsAre());
    const auto withoutVstd = component("10100");
    EXPECT_FALSE(check(withoutVstd, pdmsClass));
    EXPECT_THAT(refusals(), ElementsAre(withoutVstd->SystemFullName() + " has got no VSTD"));
}

TEST_F(Validity, EachRefusalStandsInTheTraceWithItsOwnWords)
{
    const auto folder = component("10100");
    world.setFolder(folder);
    const auto lonelyClass = component("10002");
    const auto shoe = component("10900");
    world.setCreateOption(shoe, 1);
    const auto orphan = world.device(pipeClass, "007", {{"GD.VFCD", "10100"}});
    const auto noCode = world.device(catalog, "NOCODE", {{"PIPE.VSTD", "FLAN"}});
    const auto emptyCode = component("");
    for (const auto& refused : {folder, pipeClass, lonelyClass, shoe, orphan, noCode, emptyCode, DeviceRef()})
        EXPECT_FALSE(check(refused));
    EXPECT_THAT(refusals(),
                ElementsAre(folder->SystemFullName() + " is a folder",
                            pipeClass->SystemFullName() + " is the current pipe class",
                            lonelyClass->SystemFullName() + " is a pipe class without CDevice and without elements (?)",
                            shoe->SystemFullName() + " is structure element",
                            orphan->SystemFullName() + " is already an element of a pipe class but without CDevice (?)",
                            noCode->SystemFullName() + " has got no VSTD",
                            // The words name the attribute, not the object.
                            emptyCode->Spec("GD.VFCD")->SystemFullName() + " not set"));
    EXPECT_EQ(world.reported(), "");
    // A pipe class without usable code ends in the error tail.
    EXPECT_FALSE(check(component("10100"), world.pipeClass(classes, "PC-BROKEN", "")));
    EXPECT_EQ(world.reported(), "Function CheckValid");
    EXPECT_EQ(world.host().errors()[0].cls, "QuorlPipeSpecComp.AddToPipeClass");
}

class ScriptedCheck final : public IElementFilter {
public:
    enum class Mode { Accept, Refuse, Fail };
    explicit ScriptedCheck(Mode mode) : mode_(mode) {}
    int calls = 0;
    bool CheckElement(const DeviceRef&, const DeviceRef&, Variant& result) override
    {
        ++calls;
        if (mode_ == Mode::Fail) throw PlatformError(err::Internal, "check object failed");
        result = Variant("checked");
        return mode_ == Mode::Accept;
    }

private:
    Mode mode_;
};

TEST_F(Validity, CheckObjectDecidesOnlyWhereThePipeClassSwitchesItOn)
{
    const auto flange = component("10100");
    ScriptedCheck refuse(ScriptedCheck::Mode::Refuse);
    Variant result;
    EXPECT_TRUE(CheckValid(flange, pipeClass, true, result, &refuse));
    world.attribute(pipeClass, "GD.ECHECK", "1");
    EXPECT_TRUE(CheckValid(flange, pipeClass, false, result, &refuse));
    EXPECT_EQ(refuse.calls, 0);
    EXPECT_FALSE(CheckValid(flange, pipeClass, true, result, &refuse));
    EXPECT_EQ(refuse.calls, 1);
    EXPECT_EQ(result, Variant("checked"));
    // A failing check object is ignored, not reported: the result stays true.
    ScriptedCheck failing(ScriptedCheck::Mode::Fail);
    EXPECT_TRUE(CheckValid(flange, pipeClass, true, result, &failing));
    EXPECT_EQ(world.reported(), "");
}

TEST_F(Validity, CatalogueChildMatchesOnlyByPatternWithX)
{
    const auto menu = world.device(catalog, "@Menu");
    for (const auto* name : {"12345", "123XX", "12XXX", "1", "100XX"}) world.device(menu, name);
    const auto mapped = [&](std::string_view code) {
        const auto found = MapCDeviceToXXX(menu, code);
        return found ? found->Name() : "-";
    };
    // Pipe-class codes never map, whatever the children are called.
    EXPECT_EQ(mapped("12345") + " " + mapped("12399") + " " + mapped("12000") + " " + mapped("99999") + " " +
                  mapped("") + " " + mapped("10003"),
              "123XX 123XX 12XXX - - -");
    EXPECT_EQ(MapCDeviceToXXX(nullptr, "12345"), nullptr);
    EXPECT_EQ(world.reported(), "");
    // A code that is no number is an error of the routine.
    EXPECT_EQ(mapped("FLAN"), "-");
    EXPECT_EQ(world.reported(), "Function MapCDeviceToXXX");
}

}  // namespace
}  // namespace pipespec
