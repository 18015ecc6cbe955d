// Undo and redo: the workset's current undo state records every change, and
// undoing it gives back the whole state before, redoing the whole state after.

#include "objectmodel/ExpectError.h"
#include "support/World.h"

#include <gtest/gtest.h>

namespace pipespec {
namespace {

using support::World;

// Everything a caller can read of a device or table tree, inherited parts included.
void describe(const ObjectRef& object, const std::string& indent, std::string& out)
{
    out += indent + object->Name() + (object->SystemTemporary() ? " (inherited)" : "") + " '" + object->Description() + "'";
    if (const auto spec = asSpec(object)) {
        out += " = " + spec->Value() + " mode " + spec->InheritMode();
        if (const auto link = spec->LinkObject()) out += " -> " + link->SystemFullName();
        out += "\n";
        const auto members = spec->Specifications();
        for (int i = 1; i <= members->Count(); ++i) describe(members->Item(i), indent + "  ", out);
    } else if (const auto device = asDevice(object)) {
        if (const auto base = device->CDevice()) out += " on " + base->SystemFullName();
        out += "\n";
        for (const auto& members : {device->Specs(), device->Elements()})
            for (int i = 1; i <= members->Count(); ++i) describe(members->Item(i), indent + "  ", out);
    } else if (const auto table = asTable(object)) {
        out += "\n";
        const auto rows = table->Values();
        for (int i = 1; i <= rows->Count(); ++i) {
            const auto row = std::dynamic_pointer_cast<IStandardValue>(rows->Item(i));
            out += indent + "  " + row->Name() + " = " + row->Value() + "\n";
        }
    }
}

std::string describe(std::initializer_list<ObjectRef> objects)
{
    std::string out;
    for (const auto& object : objects) describe(object, "", out);
    return out;
}

TEST(Undo, UndoGivesBackTheWholeStateBeforeAndRedoTheWholeStateAfter)
{
    const World world;
    const auto catalogue = world.device(world.root(world.base(), "@40"), "CAT");
    const auto kind = world.device(catalogue, "KIND", {{"GD.VFCD", "10100"}});
    const auto other = world.device(catalogue, "OTHER", {{"GD.VFCD", "10200"}});
    // Properties beyond the value, which storing the inherited attribute takes along.
    other->Spec("GD.VFCD")->SetControlType("QuorlSUIEdit.SUIEdit");
    world.device(other, "PORT")->SetDescription("port");
    const auto root = world.root(world.plant(), "@20");
    const auto pc = world.device(root, "PC", {{"GD.LINK", ""}});
    const auto a = world.device(root, "A", {{"GD.V", "1"}});
    const auto b = world.device(root, "B");
    const auto x = world.device(a, "X");
    const auto y = world.device(x, "Y", {{"GD.W", "w"}});
    const auto user = world.device(root, "USER");
    user->SetCDevice(kind);
    const auto table = world.table(world.plant(), "STATE", {"1", "2"});
    const auto state = [&] { return describe({root, table}); };
    const auto before = state();

    const auto workset = world.workset();
    const auto undo = workset->NewUndoState();
    workset->SetCurrentUndoState(undo);
    a->Spec("GD.V")->SetValue("2");
    a->SetName("A2");
    b->OwnElements()->AddObject(a->OwnElements()->Detach(x));
    y->Delete();
    user->SetCDevice(other);
    pc->Spec("GD.LINK")->SetLinkObject(b);
    const auto added = world.device(b, "NEW", {{"GD.N", "n"}});
    const auto inherited = user->Spec("GD.VFCD");
    inherited->MakePersistent();
    inherited->SetInheritMode("@C");
    inherited->SetValue("10201");
    user->Elements()->Item("PORT")->MakePersistent();
    table->Values()->Item("2")->Delete();
    table->Values()->Item("1")->SetName("ONE");
    const auto after = state();
    ASSERT_NE(after, before);

    undo->Undo();
    EXPECT_EQ(state(), before);
    EXPECT_FALSE(y->IsDeleted());
    EXPECT_TRUE(added->IsDeleted()) << "what was made is gone again";
    EXPECT_TRUE(inherited->SystemTemporary());
    EXPECT_EQ(world.plant()->ObjectByPath("@20|A|X|Y", 2), y);
    EXPECT_EQ(table->Values()->Item("1"), table->Values()->Item(1));

    undo->Redo();
    EXPECT_EQ(state(), after);
    EXPECT_TRUE(y->IsDeleted());
    EXPECT_FALSE(added->IsDeleted());
    EXPECT_EQ(world.plant()->ObjectByPath("@20|B|NEW", 2), added);
    EXPECT_EQ(user->Spec("GD.VFCD"), inherited);
    EXPECT_EQ(inherited->InheritMode(), "@C");

    undo->Undo();
    EXPECT_EQ(state(), before) << "and again";
}

TEST(Undo, TheTemporaryObjectComesBackAsItselfWhenMakePersistentIsUndone)
{
    const World world;
    const auto kind = world.device(world.root(world.base(), "@40"), "KIND", {{"GD.VFCD", "10100"}});
    world.device(kind, "PORT");
    const auto user = world.device(world.root(world.plant(), "@20"), "USER");
    user->SetCDevice(kind);
    const auto attribute = user->Spec("GD.VFCD");
    const auto port = user->Elements()->Item("PORT");

    const auto undo = world.workset()->NewUndoState();
    world.workset()->SetCurrentUndoState(undo);
    attribute->MakePersistent();
    port->MakePersistent();
    undo->Undo();

    EXPECT_EQ(user->Spec("GD.VFCD"), attribute);
    EXPECT_EQ(user->Elements()->Item("PORT"), port);
    EXPECT_TRUE(attribute->SystemTemporary());
    EXPECT_TRUE(port->SystemTemporary());
    EXPECT_EQ(user->OwnElements()->Count(), 0);
    EXPECT_TRUE(attribute->CanMakePersistent());

    undo->Redo();
    EXPECT_EQ(user->OwnElements()->Item("PORT"), port);
    EXPECT_EQ(user->Spec("GD")->OwnSpecifications()->Item("VFCD"), attribute);
}

TEST(Undo, OnlyTheCurrentStateRecordsAndEachStepIsTakenOnce)
{
    const World world;
    const auto root = world.root(world.plant(), "@20");
    const auto device = world.device(root, "D", {{"GD.V", "1"}});
    const auto value = device->Spec("GD.V");
    const auto workset = world.workset();

    const auto undo = workset->NewUndoState();
    value->SetValue("not recorded");
    workset->SetCurrentUndoState(undo);
    value->SetValue("2");
    world.device(root, "E");
    workset->SetCurrentUndoState(nullptr);
    value->SetValue("3");
    EXPECT_EQ(undo->size(), 2U);

    undo->Undo();
    EXPECT_EQ(value->Value(), "not recorded");
    EXPECT_EQ(root->OwnElements()->Count(), 1);
    undo->Undo();
    EXPECT_EQ(root->OwnElements()->Count(), 1) << "a second undo of the same state does nothing";
    undo->Redo();
    undo->Redo();
    EXPECT_EQ(value->Value(), "2");
    EXPECT_EQ(root->OwnElements()->Count(), 2) << "nor does a second redo";

    // A change recorded after Undo starts the action afresh: there is nothing left to redo.
    undo->Undo();
    workset->SetCurrentUndoState(undo);
    value->SetValue("4");
    EXPECT_EQ(undo->size(), 1U);
    undo->Redo();
    EXPECT_EQ(root->OwnElements()->Count(), 1);
    undo->Undo();
    EXPECT_EQ(value->Value(), "not recorded");
}

}  // namespace
}  // namespace pipespec
