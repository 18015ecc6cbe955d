// The routines that work on chapters, attributes and lists for the rest of the
// module: inheritance of a chapter, placing a new attribute on its form, the
// guarded write, the generic-type menu and the components of a pipe class.

#include "selectors/Chapters.h"
#include "selectors/LayoutHelper.h"
#include "support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pipespec {
namespace {

using namespace addtopipeclass;
using ::testing::ElementsAre;
using ::testing::MatchesRegex;

constexpr auto kEdit = "QuorlSUIEdit.SUIEdit";

class Chapters : public ::testing::Test {
protected:
    support::World world;
    DeviceRef plantRoot = world.root(world.plant(), "@20");
    DeviceRef catalog = world.catalog();

    // A chapter "NR": a bound on a value list, and a group of A (holding X) and B.
    SpecRef sourceChapter(const DeviceRef& owner) const
    {
        const auto from = world.attribute(owner, "NR.DNFROM", "15");
        from->SetDescription("Nennweite von");
        from->SetControlType(kEdit);
        from->SetControlProperties("1;2;5;3");
        from->SetStandardTable(world.table(world.base(), "DN-" + must(owner->Project()).Name(), {"15"}));
        world.attribute(owner, "NR.GROUP.A.X", "x");
        world.attribute(owner, "NR.GROUP.B", "b");
        const auto chapter = owner->Spec("NR");
        chapter->SetDescription("Nennweitenbereich");
        return chapter;
    }
    std::string ownNames(const SpecRef& spec) const
    {
        std::vector<std::string> names;
        const auto own = spec->OwnSpecifications();
        for (int i = 1; i <= own->Count(); ++i) names.push_back(own->Item(i)->Name());
        return support::join(names);
    }
};

TEST_F(Chapters, NewChapterFollowsASourceOfItsProjectAndOnlyCopiesOneOfAnother)
{
    const auto device = world.device(plantRoot, "E1");
    EXPECT_EQ(InheritInChapter(device, "NR", nullptr), nullptr);
    EXPECT_EQ(device->Spec("NR"), nullptr);
    const auto plantSource = sourceChapter(world.device(plantRoot, "OWNER"));
    const auto inherited = InheritInChapter(device, "NR", plantSource);
    ASSERT_NE(inherited, nullptr);
    EXPECT_EQ(device->Spec("NR"), inherited);
    EXPECT_EQ(inherited->InheritedChapter(), plantSource);
    EXPECT_EQ(inherited->InheritMode() + " " + inherited->Description(), "@C Nennweitenbereich");
    EXPECT_EQ(ownNames(inherited), "DNFROM GROUP");
    EXPECT_EQ(device->Spec("NR.DNFROM")->Description(), "Nennweite von");
    const auto other = world.device(plantRoot, "E2");
    const auto baseSource = sourceChapter(world.device(catalog, "OWNER"));
    const auto copied = InheritInChapter(other, "NR", baseSource);
    EXPECT_EQ(copied->InheritedChapter(), nullptr);
    EXPECT_EQ(copied->InheritMode(), "@C");
    EXPECT_EQ(world.value(other, "NR.GROUP.B"), "b");
    EXPECT_EQ(other->Spec("NR.DNFROM")->StandardTable(), baseSource->Spec("DNFROM")->StandardTable());
    // An existing chapter is aligned and completed but keeps its values.
    const auto own = world.device(plantRoot, "E3", {{"NR.DNFROM", "50"}, {"NR.GROUP.A", "own"}});
    const auto bound = own->Spec("NR.DNFROM");
    bound->SetDescription("old");
    bound->SetControlType("QuorlSUICombo.SUICombo");
    EXPECT_EQ(InheritInChapter(own, "NR", baseSource)->InheritedChapter(), nullptr);
    EXPECT_EQ(bound->Value() + "|" + bound->Description() + "|" + bound->ControlType() + "|" +
                  bound->ControlProperties(),
              "50|Nennweite von|QuorlSUIEdit.SUIEdit|1;2;5;3");
    EXPECT_EQ(bound->StandardTable(), baseSource->Spec("DNFROM")->StandardTable());
    // Missing attributes are filled in by descending into the first member
    // that lacks some, and the fill does not come back up from there.
    EXPECT_EQ(world.value(own, "NR.GROUP.A") + " " + world.value(own, "NR.GROUP.A.X"), "own x");
    EXPECT_EQ(ownNames(own->Spec("NR.GROUP")), "A");
    EXPECT_EQ(world.reported(), "");
}

// A form with a model control at left 1, top 2, right 5, bottom 3.
class Layout : public Chapters {
protected:
    DeviceRef device = world.device(plantRoot, "PC");
    SpecRef model = edit("SEL.MODEL", "1;2;5;3\r\n7=x");

    SpecRef edit(const std::string& name, const std::string& edges, const char* type = kEdit) const
    {
        const auto spec = world.attribute(device, name, "");
        spec->SetControlType(type);
        spec->SetControlProperties(edges);
        return spec;
    }
};

TEST_F(Layout, NewControlGoesUnderTheLowestOfItsColumnAboveTheLimit)
{
    edit("SEL.C1", "1;4;5;4.5");
    edit("SEL.C2", "1;6;5;6.5");
    edit("SEL.A0", "1;5;5;5.5");
    edit("SEL.FAR", "7;8;9;9");           // another column
    edit("SEL.INDENT", "0.5;9;5;9.5");    // left of the model
    edit("SEL.HUGE", "1;1E400;5;1E400");  // beyond a double: no number, read as 0
    edit("SEL.DTSE", "1;11;5;11.5", "QuorlSUICombo.SUICombo");
    const auto newSpec = edit("SEL.NEW", "");
    CalcControlProperties(newSpec, nullptr, model);
    EXPECT_EQ(newSpec->ControlProperties(), "1;6.625;5;7.625\r\n7=x\r\n4=1");
    LayoutHelper layout;
    layout.Load(newSpec);
    EXPECT_EQ(layout.GetValue(4), 1);
    // A box sets the limit, below which a control must end, and only what
    // sorts after the box counts.
    edit("SEL.C3", "1;5.5;5;6");
    const auto box = edit("SEL.B", "1;3;5;6");
    const auto boxed = edit("SEL.NEW2", "0;0;0;2\r\n");
    CalcControlProperties(boxed, box, model);
    EXPECT_EQ(boxed->ControlProperties(), "1;4.625;5;6.625\r\n4=1");
    EXPECT_EQ(world.reported(), "");
}

TEST_F(Layout, WithNothingFittingTheControlStandsOnTheModelsTop)
{
    const auto e3d = edit("E3D.NEW", "0;0;0;1\r\n", "");
    edit("E3D.DTSE1", "1;20;5;21");  // design-system attributes are left out of the scan
    CalcControlProperties(e3d, nullptr, model);
    EXPECT_EQ(e3d->ControlProperties(), "1;2;5;3\r\n4=1");
    // Without a line break there is nothing to place.
    const auto single = edit("SEL.SINGLE", "1;2;5;3");
    CalcControlProperties(single, nullptr, model);
    EXPECT_EQ(single->ControlProperties(), "1;2;5;3");
    EXPECT_EQ(world.reported(), "");
    const auto broken = edit("SEL.BROKEN", "1;2;5\r\n");
    CalcControlProperties(broken, nullptr, model);
    EXPECT_EQ(broken->ControlProperties(), "1;2;5\r\n");
    EXPECT_EQ(world.reported(), "Function CalcControlProperties");
}

TEST_F(Chapters, SetAttributeWritesOnlyWhatChangesAndWhatWouldStick)
{
    const auto device = world.device(plantRoot, "PC", {{"GD.TEXT", "old"}, {"GD.LOCKED", "same"}});
    bool changed = false;
    SetAttribute(nullptr, "x", changed);
    SetAttribute(device->Spec("GD.TEXT"), "old", changed);
    world.setValueLocked(device->Spec("GD.LOCKED"));
    SetAttribute(device->Spec("GD.LOCKED"), "same", changed);
    SetAttribute(device->Spec("GD.LOCKED"), "other", changed);
    EXPECT_FALSE(changed);
    EXPECT_EQ(world.value(device, "GD.LOCKED"), "same");
    // Inherited outside the current project it cannot be stored, so it is not written...
    const auto base = world.device(catalog, "BASE", {{"GD.TEXT", "base"}});
    const auto baseVariant = world.device(catalog, "BASE-VARIANT", {}, base);
    SetAttribute(baseVariant->Spec("GD.TEXT"), "mine", changed);
    EXPECT_FALSE(changed);
    EXPECT_TRUE(baseVariant->Spec("GD.TEXT")->SystemTemporary());
    // ...within it, it is stored first.
    const auto variant = world.device(plantRoot, "VARIANT", {}, base);
    SetAttribute(variant->Spec("GD.TEXT"), "mine", changed);
    EXPECT_TRUE(changed);
    EXPECT_FALSE(variant->Spec("GD.TEXT")->SystemTemporary());
    EXPECT_EQ(world.value(base, "GD.TEXT"), "base");
    // One flag collects a series of writes: a later write of nothing new keeps it.
    SetAttribute(device->Spec("GD.TEXT"), "old", changed);
    EXPECT_TRUE(changed);
    // A language attribute gets the text in every language: one change each.
    const auto text = world.attribute(device, "GD.NOTE", "");
    text->SetValueType("C");
    const auto undo = world.workset()->NewUndoState();
    world.workset()->SetCurrentUndoState(undo);
    SetAttribute(text, "Flansch", changed);
    EXPECT_EQ(undo->size(), 2u);
    EXPECT_EQ(text->Value(), "Flansch");
    EXPECT_EQ(world.reported(), "");
}

TEST_F(Chapters, MenuRootComesFromTheProjectItsBaseOrTheFixedPath)
{
    const auto fixed = world.path(world.base(), "@3D|@Menu");
    EXPECT_EQ(GetMenuPath(world.plant()), fixed);
    const auto baseMenu = world.path(world.base(), "@3D|MENU-B");
    world.base()->setOption(233, baseMenu);
    EXPECT_EQ(GetMenuPath(world.plant()), baseMenu);
    const auto plantMenu = world.path(world.plant(), "@3D|MENU-P");
    world.plant()->setOption(233, plantMenu);
    EXPECT_EQ(GetMenuPath(world.plant()), plantMenu);
}

TEST_F(Chapters, ComponentsFollowPipeClassesUsedAsElementsAndACycleEnds)
{
    const auto a = world.pipeClass(plantRoot, "PC-A", "10000");
    const auto b = world.pipeClass(plantRoot, "PC-B", "10001");
    const auto templ = world.pipeClass(plantRoot, "PC-T", "10002");
    const auto flange = world.device(catalog, "FL", {{"GD.VFCD", "10100"}});
    // The elements of each class, each made from what stands beside it.
    for (const auto& [cls, bases] : {std::pair{a, std::vector{flange, b, templ}}, {b, {flange, a}}, {templ, {flange}}})
        for (const auto& base : bases) world.device(cls, cls->Devices()->ItemName("001"), {}, base);
    const auto names = [](const CollectionRef& list) {
        std::vector<std::string> out;
        for (int i = 1; i <= list->Count(); ++i)
            out.push_back(asDevice(list->Item(i)->Owner())->Name() + "|" + list->Item(i)->Name());
        return support::join(out);
    };
    EXPECT_EQ(names(PipeClassComponents(a, false)), "PC-A|001 PC-A|002 PC-A|003");
    EXPECT_THAT(world.host().logLines(), ElementsAre(MatchesRegex("PipeClassComponents - start [0-9:]+"),
                                                     MatchesRegex("PipeClassComponents - stop [0-9:]+")));
    ObjectMap met;
    EXPECT_EQ(names(GetComponentsRecursive(a, true, nullptr, met, true)),
              "PC-A|001 PC-A|002 PC-B|001 PC-B|002 PC-A|003");
    EXPECT_THAT(met.Keys(), ElementsAre("PC-B", "PC-A", "PC-T"));
    EXPECT_EQ(names(PipeClassComponents(a, true)), "PC-A|001 PC-A|002 PC-B|001 PC-B|002 PC-A|003");
    EXPECT_EQ(world.reported(), "");
}

}  // namespace
}  // namespace pipespec
