// What a caller sees of the object store: identity, collections counted from
// 1, copying, moving and deleting, paths and standard tables.

#include "objectmodel/ExpectError.h"
#include "support/World.h"

#include <gtest/gtest.h>

namespace pipespec {
namespace {

using checks::errorNumber;
using support::World;

TEST(Store, AnObjectAskedForTwiceIsTheSamePointer)
{
    const World world;
    const auto owner = world.root(world.plant(), "@20");
    const auto device = world.device(owner, "PC1", {{"GD.VFCD", "10000"}});

    EXPECT_EQ(owner->OwnElements()->Item("PC1"), device);
    EXPECT_EQ(owner->Elements()->Item(1), device);
    EXPECT_EQ(world.plant()->ObjectByPath("@20|PC1", 2), device);
    EXPECT_EQ(device->Spec("GD.VFCD"), device->Spec("GD.VFCD"));
    EXPECT_EQ(device->Spec("GD.VFCD")->Owner(), device->Spec("GD"));
    EXPECT_EQ(device->Spec("GD")->Owner(), device);
    EXPECT_EQ(device->Project(), world.plant());
}

TEST(Store, CollectionsCountFromOneAndAnswerAMissingNameWithNothing)
{
    const World world;
    const auto owner = world.device(world.root(world.plant(), "@20"), "PC");
    const auto elements = owner->OwnElements();
    EXPECT_EQ(elements->Count(), 0);
    EXPECT_EQ(errorNumber([&] { elements->Item(1); }), err::SubscriptOutOfRange);

    const auto a = world.device(owner, "A");
    const auto b = world.device(owner, "B");
    EXPECT_EQ(elements->Count(), 2) << "a collection shows later changes of its owner";
    EXPECT_EQ(elements->Item(1), a);
    EXPECT_EQ(errorNumber([&] { elements->Item(0); }), err::SubscriptOutOfRange);
    EXPECT_EQ(errorNumber([&] { elements->Item(3); }), err::SubscriptOutOfRange);
    EXPECT_EQ(elements->Item("C"), nullptr);
    EXPECT_EQ(elements->IndexOf(b), 2);
    EXPECT_EQ(elements->IndexOf(owner), -1);
    EXPECT_EQ(elements->IndexOf(nullptr), -1);

    EXPECT_EQ(errorNumber([&] { elements->CreateNewWithName("A"); }), err::NameInUse);
    EXPECT_EQ(errorNumber([&] { b->SetName("A"); }), err::NameInUse);
    EXPECT_EQ(elements->Count(), 2);
    EXPECT_EQ(elements->Item("A"), a);

    // A rename is seen under the new name only.
    b->SetName("B2");
    EXPECT_EQ(elements->Item("B2"), b);
    EXPECT_EQ(elements->Item("B"), nullptr);

    const auto chapter = asSpec(owner->SpecsByName()->CreateNewWithName("GD"));
    EXPECT_EQ(chapter->OwnSpecifications()->Count(), 0);
    EXPECT_EQ(errorNumber([&] { owner->SpecsByName()->CreateNewWithName("GD"); }), err::NameInUse);
}

TEST(Store, ItemNameHandsOutTheNextFreeRunningNumber)
{
    const World world;
    const auto owner = world.device(world.root(world.plant(), "@20"), "PC");
    const auto elements = owner->Devices();
    EXPECT_EQ(elements->ItemName("001"), "001");
    EXPECT_EQ(elements->ItemName("001"), "001") << "asking does not take the name";
    elements->CreateNewWithName(elements->ItemName("001"));
    world.device(owner, "003");
    EXPECT_EQ(elements->ItemName("001"), "002");
    elements->CreateNewWithName("002");
    EXPECT_EQ(elements->ItemName("001"), "004");

    // Kept on purpose: a number freed below the last one handed out is not
    // handed out again, so a new element never takes the name of one just deleted.
    elements->Item("002")->Delete();
    EXPECT_EQ(elements->ItemName("001"), "004");
}

TEST(Store, CopyIsAnUnownedDeepCopyThatAddObjectPutsElsewhere)
{
    const World world;
    const auto root = world.root(world.plant(), "@20");
    const auto source = world.device(root, "PC1", {{"GD.VFCD", "10000"}});
    const auto element = world.device(source, "E1", {{"GD.VFCD", "10100"}});
    const auto target = world.device(root, "PC2");

    const auto copy = asDevice(source->Copy());
    ASSERT_TRUE(copy);
    EXPECT_NE(copy, source);
    EXPECT_EQ(copy->Owner(), nullptr);
    EXPECT_EQ(copy->Name(), "PC1");
    EXPECT_EQ(copy->Spec("GD.VFCD")->Value(), "10000");
    const auto copiedElement = asDevice(copy->OwnElements()->Item("E1"));
    ASSERT_TRUE(copiedElement);
    EXPECT_NE(copiedElement, element);
    EXPECT_EQ(copiedElement->Spec("GD.VFCD")->Value(), "10100");

    copy->Spec("GD.VFCD")->SetValue("10001");
    EXPECT_EQ(source->Spec("GD.VFCD")->Value(), "10000");

    target->OwnElements()->AddObject(copy);
    EXPECT_EQ(copy->Owner(), target);
    EXPECT_EQ(world.plant()->ObjectByPath("@20|PC2|PC1|E1", 2), copiedElement);
    EXPECT_EQ(copiedElement->Spec("GD.VFCD")->SystemFullName(), "PLANT:@20|PC2|PC1|E1#GD.VFCD");
    EXPECT_EQ(errorNumber([&] { source->OwnElements()->AddObject(copy); }), err::InvalidCall)
        << "it belongs to PC2 now";
    EXPECT_EQ(errorNumber([&] { target->OwnElements()->AddObject(source->Copy()); }), err::NameInUse);
    EXPECT_EQ(errorNumber([&] { target->OwnElements()->AddObject(copy->Spec("GD")->Copy()); }), err::TypeMismatch);
}

TEST(Store, DetachAndAddObjectMoveAnElementWithEverythingBelowIt)
{
    const World world;
    const auto root = world.root(world.plant(), "@20");
    const auto a = world.device(root, "A");
    const auto b = world.device(root, "B");
    const auto x = world.device(a, "X", {{"GD.V", "1"}});
    const auto y = world.device(x, "Y");

    EXPECT_EQ(b->OwnElements()->Detach(x), nullptr) << "not a member there";
    EXPECT_EQ(a->OwnElements()->Detach(x), x);
    EXPECT_EQ(x->Owner(), nullptr);
    EXPECT_FALSE(x->IsDeleted());
    EXPECT_EQ(a->OwnElements()->Count(), 0);

    // An object cannot go below itself.
    EXPECT_EQ(errorNumber([&] { y->OwnElements()->AddObject(x); }), err::CycleRefused);
    EXPECT_EQ(x->Owner(), nullptr);

    b->OwnElements()->AddObject(x);
    EXPECT_EQ(x->Owner(), b);
    EXPECT_EQ(world.plant()->ObjectByPath("@20|B|X|Y", 2), y);
    EXPECT_EQ(world.plant()->ObjectByPath("@20|A|X", 2), nullptr);
    EXPECT_EQ(x->Spec("GD.V")->SystemFullName(), "PLANT:@20|B|X#GD.V");
    EXPECT_EQ(x->Spec("GD.V")->Value(), "1");
}

TEST(Store, DeleteTakesTheObjectAndEverythingBelowItOut)
{
    const World world;
    const auto root = world.root(world.plant(), "@20");
    const auto a = world.device(root, "A");
    const auto x = world.device(a, "X");
    const auto y = world.device(x, "Y", {{"GD.V", "1"}});
    const auto value = y->Spec("GD.V");

    EXPECT_EQ(x->Delete(), 0);
    for (const ObjectRef& held : {ObjectRef(x), ObjectRef(y), ObjectRef(value)}) {
        EXPECT_TRUE(held->IsDeleted()) << held->Name();
        EXPECT_TRUE(held->IsMarkedDeleted()) << held->Name();
    }
    EXPECT_EQ(a->OwnElements()->Count(), 0);
    EXPECT_EQ(a->Elements()->Item("X"), nullptr);
    EXPECT_EQ(errorNumber([&] { value->SetValue("2"); }), err::Deleted);
    EXPECT_EQ(errorNumber([&] { root->Delete(); }), err::InvalidCall) << "fixed roots stay";

    const auto again = world.device(a, "X");
    EXPECT_FALSE(again->IsDeleted());
    EXPECT_NE(again, x);
}

TEST(Store, PathsStartAtFixedRootsAndClimbToTheBaseProject)
{
    const World world;
    const auto catalogue = world.device(world.root(world.base(), "@40"), "CAT");
    const auto flange = world.device(catalogue, "FL1", {{"GD.VFCD", "10100"}});
    world.device(flange, "PORT");
    const auto local = world.device(world.root(world.plant(), "@40"), "LOCAL");
    const auto& plant = *world.plant();

    EXPECT_EQ(plant.ObjectByPath("@40|CAT|FL1", 2), flange) << "the plant's @40 has no CAT, the base's has";
    EXPECT_EQ(plant.ObjectByPath("@40|LOCAL", 2), local);
    EXPECT_EQ(world.base()->ObjectByPath("@40|LOCAL", 2), nullptr);
    EXPECT_EQ(plant.ObjectByPath("@40|CAT|NONE", 2), nullptr);
    EXPECT_EQ(plant.ObjectByPath("", 2), nullptr);

    // A path walks inherited children too, and gives the same temporary object as Elements.
    const auto user = world.device(local, "USER");
    user->SetCDevice(flange);
    const auto port = plant.ObjectByPath("@40|LOCAL|USER|PORT", 2);
    ASSERT_TRUE(port);
    EXPECT_TRUE(port->SystemTemporary());
    EXPECT_EQ(port, user->Elements()->Item("PORT"));

    EXPECT_EQ(flange->SystemFullName(), "BASE:@40|CAT|FL1");
    EXPECT_EQ(plant.ObjectByFullName(nullptr, "BASE:@40|CAT|FL1"), flange);
    EXPECT_EQ(plant.ObjectByFullName(nullptr, "BASE:@40|CAT|FL1#GD.VFCD"), flange->Spec("GD.VFCD"));
    EXPECT_EQ(plant.ObjectByFullName(nullptr, "@40|LOCAL"), local) << "without a project: the one asked";
    EXPECT_EQ(plant.ObjectByFullName(world.base(), "@40|CAT"), catalogue);
    EXPECT_EQ(plant.ObjectByFullName(nullptr, port->SystemFullName()), port);
}

TEST(Store, ARenamedRootIsFoundByItsNewNameAndUndoGivesTheOldBack)
{
    const World world;
    // Enough roots that the project finds them through its index.
    for (int i = 0; i < 12; ++i) world.root(world.plant(), "@" + std::to_string(60 + i));
    const auto root = world.root(world.plant(), "@65");
    const auto undo = world.workset()->NewUndoState();
    world.workset()->SetCurrentUndoState(undo);

    root->SetName("@99");
    EXPECT_EQ(world.plant()->root("@99"), root);
    EXPECT_EQ(world.plant()->root("@65"), nullptr);
    EXPECT_EQ(errorNumber([&] { root->SetName("@61"); }), err::NameInUse);

    undo->Undo();
    EXPECT_EQ(world.plant()->root("@65"), root);
    EXPECT_EQ(world.plant()->root("@99"), nullptr);
}

TEST(StandardTables, RowsSubTablesPathsAndShownValues)
{
    const World world;
    const auto top = asTable(world.base()->StandardTables()->CreateNewWithName("@3D"));
    ASSERT_TRUE(top);
    const auto folder =
        asTable(asTable(top->Children()->CreateNewWithName("00"))->Children()->CreateNewWithName("PDMS"));
    const auto state = asTable(folder->Children()->CreateNewWithName("STATE"));
    const auto addRow = [&](const std::string& name, const std::string& value, const std::string& description) {
        const auto row = state->Values()->CreateNewWithName(name);
        std::dynamic_pointer_cast<IStandardValue>(row)->SetValue(value);
        row->SetDescription(description);
        return row;
    };
    const auto inSpec = addRow("R1", "1", "In spec");
    addRow("R2", "2", "Out of spec");
    EXPECT_EQ(errorNumber([&] { state->Values()->CreateNewWithName("R1"); }), err::NameInUse);

    EXPECT_EQ(world.plant()->ObjectByPath("@3D|00|PDMS|STATE", 2), state) << "found in the base project";
    EXPECT_EQ(world.plant()->ObjectByPath("@3D|00|PDMS|STATE|R2", 2), state->Values()->Item(2));
    EXPECT_EQ(folder->Children()->Item("STATE"), state);
    EXPECT_EQ(state->Values()->Count(), 2);
    EXPECT_EQ(world.plant()->ObjectByFullName(nullptr, inSpec->SystemFullName()), inSpec);

    const auto component = world.device(world.root(world.plant(), "@40"), "C", {{"PDMS.State", "1"}});
    const auto attribute = component->Spec("PDMS.State");
    attribute->SetStandardTable(state);
    EXPECT_EQ(attribute->DisplayValue(), "In spec");
    EXPECT_EQ(attribute->StandardValue(), inSpec);
    EXPECT_EQ(attribute->ValueOfDisplayText("Out of spec"), "2");
    EXPECT_EQ(attribute->ValueOfDisplayText("Unknown"), "Unknown") << "a text that is no row stays as typed";
    attribute->SetValue("7");
    EXPECT_EQ(attribute->DisplayValue(), "7") << "a value without a row shows as it is";
    attribute->SetValue("");
    EXPECT_EQ(attribute->DisplayValue(), "");

    // A renamed row is found under its new name, and a taken name is refused.
    inSpec->SetName("R1A");
    EXPECT_EQ(state->Values()->Item("R1A"), inSpec);
    EXPECT_EQ(state->Values()->Item("R1"), nullptr);
    EXPECT_EQ(errorNumber([&] { inSpec->SetName("R2"); }), err::NameInUse);
    EXPECT_EQ(errorNumber([&] { state->Values()->AddObject(inSpec->Copy()); }), err::NotSupported);
}

}  // namespace
}  // namespace pipespec
