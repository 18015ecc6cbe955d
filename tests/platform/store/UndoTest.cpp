// Undo and redo: the workset's current undo state records every change, one
// step per user action; undoing a step gives back the whole state before it,
// redoing it the whole state after, and observers hear each action.

#include "objectmodel/ExpectError.h"
#include "support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pipespec {
namespace {

using checks::errorNumber;
using support::World;
using testing::ElementsAre;
using testing::IsEmpty;

// Everything a caller can read of a device or table tree, inherited parts included.
void describe(const ObjectRef& object, const std::string& indent, std::string& out)
{
    out += indent + object->Name() + (object->SystemTemporary() ? " (inherited)" : "") + " '" + object->Description() +
           "'";
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

TEST(Undo, EachActionIsOneStepTakenBackAndPutBackInTurn)
{
    const World world;
    const auto root = world.root(world.plant(), "@20");
    const auto value = world.attribute(world.device(root, "D"), "GD.V", "1");
    const auto workset = world.workset();
    const auto undo = workset->NewUndoState();
    const auto other = workset->NewUndoState();
    const auto shows = [&](const std::string& text, int elements) {
        return value->Value() == text && root->OwnElements()->Count() == elements;
    };

    value->SetValue("not recorded");
    workset->SetCurrentUndoState(undo);
    {
        const ActionScope action(*workset);
        value->SetValue("2");
        world.device(root, "E");
    }
    {
        const ActionScope action(*workset);
        value->SetValue("3");
        {
            // A control makes its own state current for a while and then the
            // designer's again: the rest of the action stays one step.
            const ActionScope inner(*workset);
            workset->SetCurrentUndoState(other);
            world.device(root, "F");
            workset->SetCurrentUndoState(undo);
        }
        value->SetValue("4");
    }
    workset->SetCurrentUndoState(nullptr);
    value->SetValue("5");
    EXPECT_EQ(undo->undoSteps(), 2U);
    EXPECT_EQ(other->undoSteps(), 1U);

    undo->Undo();
    EXPECT_TRUE(shows("2", 3)) << "the newest step only";
    undo->Undo();
    EXPECT_TRUE(shows("not recorded", 2));
    undo->Undo();
    EXPECT_TRUE(shows("not recorded", 2)) << "nothing older to undo";
    undo->Redo();
    EXPECT_TRUE(shows("2", 3));
    undo->Redo();
    undo->Redo();
    EXPECT_TRUE(shows("4", 3)) << "nothing newer to redo";

    // A change recorded after Undo drops what could be redone; changes
    // outside any bracket make one step.
    undo->Undo();
    workset->SetCurrentUndoState(undo);
    value->SetValue("6");
    world.device(root, "G");
    EXPECT_EQ(undo->redoSteps(), 0U);
    undo->Redo();
    EXPECT_TRUE(shows("6", 4));
    undo->Undo();
    EXPECT_TRUE(shows("2", 3));
    EXPECT_EQ(undo->undoSteps(), 1U);

    const auto elsewhere = platform::Database::create();
    EXPECT_EQ(errorNumber([&] { workset->SetCurrentUndoState(elsewhere->workset()->NewUndoState()); }),
              err::InvalidCall);
}

TEST(Undo, AReplayThatFailsIsTakenBackWholeAndRecordingGoesOn)
{
    const World world;
    const auto value = world.attribute(world.device(world.root(world.plant(), "@20"), "D"), "GD.V", "1");
    const auto workset = world.workset();
    const auto undo = workset->NewUndoState();
    workset->SetCurrentUndoState(undo);
    bool fails = false;
    const auto failing = [&fails] {
        if (fails) throw PlatformError(err::Internal, "the change cannot be replayed");
    };
    {
        const ActionScope action(*workset);
        value->SetValue("2");
        dynamic_cast<platform::StoredObject&>(*value).write(failing, failing, platform::Notice::changed("Value"));
        value->SetValue("3");
    }

    fails = true;
    EXPECT_EQ(errorNumber([&] { undo->Undo(); }), err::Internal);
    EXPECT_EQ(value->Value(), "3") << "what was undone before the failure is done again";
    EXPECT_EQ(undo->undoSteps(), 1U);
    fails = false;
    undo->Undo();
    EXPECT_EQ(value->Value(), "1");

    fails = true;
    EXPECT_EQ(errorNumber([&] { undo->Redo(); }), err::Internal);
    EXPECT_EQ(value->Value(), "1") << "what was redone before the failure is undone again";
    EXPECT_EQ(undo->redoSteps(), 1U);

    value->SetValue("4");
    EXPECT_EQ(undo->size(), 1U) << "still recording";
    undo->Undo();
    EXPECT_EQ(value->Value(), "1");
}

// Each notice as a line: the kind, the object and its owners or property.
class Listener final : public IChangeObserver {
public:
    void BeginChanges() override { heard.emplace_back("begin"); }
    void ObjectChanged(const ChangeNotice& notice) override
    {
        static constexpr const char* kKinds[] = {"Created", "Changed", "Moved", "Deleted"};
        auto line = std::string(kKinds[static_cast<int>(notice.kind)]) + " " + notice.object->Name();
        if (notice.from) line += " from " + notice.from->Name();
        if (notice.to) line += " to " + notice.to->Name();
        if (!notice.property.empty()) line += " " + std::string(notice.property);
        heard.push_back(line);
    }
    void EndChanges() override { heard.emplace_back("end"); }

    std::vector<std::string> heard;
};

TEST(Undo, ObserversHearEachActionWhenItEndsAndUndoAndRedoAlike)
{
    const World world;
    const auto root = world.root(world.plant(), "@20");
    const auto a = world.device(root, "A", {{"GD.V", "1"}});
    const auto b = world.device(root, "B");
    const auto x = world.device(a, "X");
    const auto workset = world.workset();
    const auto undo = workset->NewUndoState();
    workset->SetCurrentUndoState(undo);
    const auto listener = std::make_shared<Listener>();
    workset->AddChangeObserver(listener);
    const auto heard = [&] { return std::exchange(listener->heard, {}); };

    {
        const ActionScope action(*workset);
        a->Spec("GD.V")->SetValue("2");
        {
            const ActionScope inner(*workset);
            b->OwnElements()->AddObject(a->OwnElements()->Detach(x));
        }
        EXPECT_THAT(listener->heard, IsEmpty()) << "until the outermost bracket ends";
        world.device(b, "NEW");
        x->Delete();
    }
    const auto action = heard();
    EXPECT_THAT(action, ElementsAre("begin", "Changed V Value", "Moved X from A", "Moved X to B", "Created NEW to B",
                                    "Deleted X from B", "end"));

    undo->Undo();
    EXPECT_THAT(heard(), ElementsAre("begin", "Created X to B", "Deleted NEW from B", "Moved X from B", "Moved X to A",
                                     "Changed V Value", "end"));
    undo->Redo();
    EXPECT_EQ(heard(), action);

    a->SetDescription("alone");
    EXPECT_THAT(heard(), ElementsAre("begin", "Changed A Description", "end"))
        << "a change outside any bracket is an action";
    EXPECT_EQ(errorNumber([&] { workset->EndAction(); }), err::InvalidCall);
}

}  // namespace
}  // namespace pipespec
