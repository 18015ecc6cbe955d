// Which objects may become elements of a pipe class, and why the others may not.

#include "elements/AddToPipeClass.h"
#include "support/World.h"

#include <gtest/gtest.h>
#include <gmock/gmock.h>

namespace pipespec {
namespace {

using addtopipeclass::CheckValid;
using addtopipeclass::IsPipeClass;
using addtopipeclass::MapCDeviceToXXX;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Validity : public ::testing::Test {
protected:
    support::World world;
    DeviceRef catalog = world.root(world.base(), "@40");
    DeviceRef pipeClass = world.pipeClass(world.root(world.plant(), "@20"), "PC-A1", "10000");

    bool check(const DeviceRef& object, const DeviceRef& cls = nullptr)
    {
        Variant result;
        return CheckValid(object, cls ? cls : pipeClass, true, result, nullptr);
    }
    std::vector<std::string> refusals() const { return world.traceTexts("CheckValid"); }
};

TEST_F(Validity, PipeClassIsRecognisedByItsFunctionCodeRange)
{
    const auto withCode = [&](const std::string& code) {
        return world.device(catalog, "C" + std::to_string(catalog->Devices()->Count()), {{"GD.VFCD", code}});
    };
    std::int32_t code = -1;
    EXPECT_TRUE(IsPipeClass(withCode("10000"), code));
    EXPECT_EQ(code, 10000);
    EXPECT_TRUE(IsPipeClass(withCode("10008"), code));
    EXPECT_FALSE(IsPipeClass(withCode("10009"), code));
    EXPECT_EQ(code, 10009);
    EXPECT_FALSE(IsPipeClass(withCode("9999"), code));
    EXPECT_FALSE(IsPipeClass(withCode("abc"), code));
    EXPECT_EQ(code, 0);
    EXPECT_FALSE(IsPipeClass(withCode(""), code));
    EXPECT_FALSE(IsPipeClass(world.device(catalog, "NoCode"), code));
    EXPECT_EQ(code, 0);
    EXPECT_FALSE(IsPipeClass(nullptr, code));
    // Too large for 32 bits: the accessor has no error tail of its own.
    EXPECT_THROW(IsPipeClass(withCode("99999999999"), code), PlatformError);
}

TEST_F(Validity, OrdinaryComponentIsAcceptedAndCheckResultCleared)
{
    const auto flange = world.device(catalog, "FL", {{"GD.VFCD", "10100"}});
    Variant result = Variant("stale");
    EXPECT_TRUE(CheckValid(flange, pipeClass, true, result, nullptr));
    EXPECT_TRUE(result.IsEmpty());
    EXPECT_THAT(refusals(), IsEmpty());
}

TEST_F(Validity, EachRefusalStandsInTheTraceWithItsOwnWords)
{
    const auto folder = world.device(catalog, "FOLDER", {{"GD.VFCD", "10100"}});
    world.setFolder(folder);
    EXPECT_FALSE(check(folder));
    EXPECT_FALSE(check(pipeClass));

    const auto lonelyClass = world.device(catalog, "TEMPLATE", {{"GD.VFCD", "10002"}});
    EXPECT_FALSE(check(lonelyClass));

    const auto shoe = world.device(catalog, "SHOE", {{"GD.VFCD", "10900"}});
    world.setCreateOption(shoe, 1);
    EXPECT_FALSE(check(shoe));

    const auto orphan = world.device(pipeClass, "007", {{"GD.VFCD", "10100"}});
    EXPECT_FALSE(check(orphan));

    const auto noCode = world.device(catalog, "NOCODE", {{"PIPE.VSTD", "FLAN"}});
    EXPECT_FALSE(check(noCode));

    const auto emptyCode = world.device(catalog, "EMPTY", {{"GD.VFCD", ""}});
    EXPECT_FALSE(check(emptyCode));

    EXPECT_FALSE(check(nullptr));

    EXPECT_THAT(refusals(),
                ElementsAre(folder->SystemFullName() + " is a folder",
                            pipeClass->SystemFullName() + " is the current pipe class",
                            lonelyClass->SystemFullName() + " is a pipe class without CDevice and without elements (?)",
                            shoe->SystemFullName() + " is structure element",
                            orphan->SystemFullName() + " is already an element of a pipe class but without CDevice (?)",
                            noCode->SystemFullName() + " has got no VSTD",
                            // The words name the attribute, not the object.
                            emptyCode->Spec("GD.VFCD")->SystemFullName() + " not set"));
    EXPECT_THAT(world.host().errors(), IsEmpty());
}

TEST_F(Validity, StructureElementsBelongOnlyToStructurePipeClasses)
{
    const auto structureClass = world.pipeClass(world.root(world.plant(), "@20"), "PC-S3", "10003");
    const auto shoe = world.device(catalog, "SHOE", {{"GD.VFCD", "10900"}});
    world.setCreateOption(shoe, 1);
    EXPECT_FALSE(check(shoe, pipeClass));
    EXPECT_TRUE(check(shoe, structureClass));
}

TEST_F(Validity, PdmsClassTestsVstdInsteadOfFunctionCode)
{
    const auto pdmsClass = world.pipeClass(world.root(world.plant(), "@20"), "PC-B2", "10001", true, true);
    const auto withoutVstd = world.device(catalog, "NOVSTD", {{"GD.VFCD", "10100"}});
    const auto withVstd = world.device(catalog, "TUBE", {{"GD.VFCD", "10600"}, {"PIPE.VSTD", "TUBE"}});
    EXPECT_FALSE(check(withoutVstd, pdmsClass));
    EXPECT_TRUE(check(withVstd, pdmsClass));
    EXPECT_THAT(refusals(), ElementsAre(withoutVstd->SystemFullName() + " has got no VSTD"));
}

TEST_F(Validity, InheritedFunctionCodeCounts)
{
    const auto base = world.device(catalog, "FL-WN", {{"GD.VFCD", "10100"}});
    const auto variant = world.device(catalog, "FL-WN-PN16");
    variant->SetCDevice(base);
    EXPECT_TRUE(check(variant));
}

TEST_F(Validity, PipeClassWithoutUsableCodeEndsInTheErrorTail)
{
    const auto broken = world.pipeClass(world.root(world.plant(), "@20"), "PC-BROKEN", "");
    const auto flange = world.device(catalog, "FL", {{"GD.VFCD", "10100"}});
    EXPECT_FALSE(check(flange, broken));
    ASSERT_EQ(world.host().errors().size(), 1u);
    EXPECT_EQ(world.host().errors()[0].function, "Function CheckValid");
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
    const auto flange = world.device(catalog, "FL", {{"GD.VFCD", "10100"}});
    ScriptedCheck refuse(ScriptedCheck::Mode::Refuse);
    Variant result;

    EXPECT_TRUE(CheckValid(flange, pipeClass, true, result, &refuse));
    EXPECT_EQ(refuse.calls, 0);

    world.attribute(pipeClass, "GD.ECHECK", "1");
    EXPECT_TRUE(CheckValid(flange, pipeClass, false, result, &refuse));
    EXPECT_EQ(refuse.calls, 0);
    EXPECT_FALSE(CheckValid(flange, pipeClass, true, result, &refuse));
    EXPECT_EQ(refuse.calls, 1);
    EXPECT_EQ(result, Variant("checked"));

    // A failing check object is ignored, not reported: the result stays true.
    ScriptedCheck failing(ScriptedCheck::Mode::Fail);
    EXPECT_TRUE(CheckValid(flange, pipeClass, true, result, &failing));
    EXPECT_THAT(world.host().errors(), IsEmpty());
}

TEST_F(Validity, CatalogueChildMatchesOnlyByPatternWithX)
{
    const auto menu = world.device(catalog, "@Menu");
    const auto exact = world.device(menu, "12345");
    const auto pattern = world.device(menu, "123XX");
    const auto later = world.device(menu, "12XXX");
    const auto shortName = world.device(menu, "1");
    (void)exact;
    (void)later;
    (void)shortName;

    EXPECT_EQ(MapCDeviceToXXX(menu, "12345"), pattern);
    EXPECT_EQ(MapCDeviceToXXX(menu, "12399"), pattern);
    EXPECT_EQ(MapCDeviceToXXX(menu, "12000"), later);
    EXPECT_EQ(MapCDeviceToXXX(menu, "99999"), nullptr);
    EXPECT_EQ(MapCDeviceToXXX(menu, ""), nullptr);
    EXPECT_EQ(MapCDeviceToXXX(nullptr, "12345"), nullptr);

    // Pipe-class codes never map, whatever the children are called.
    world.device(menu, "100XX");
    EXPECT_EQ(MapCDeviceToXXX(menu, "10003"), nullptr);
    EXPECT_THAT(world.host().errors(), IsEmpty());

    // A code that is no number is an error of the routine.
    EXPECT_EQ(MapCDeviceToXXX(menu, "FLAN"), nullptr);
    ASSERT_EQ(world.host().errors().size(), 1u);
    EXPECT_EQ(world.host().errors()[0].function, "Function MapCDeviceToXXX");
}

}  // namespace
}  // namespace pipespec
