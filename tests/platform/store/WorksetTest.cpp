// The workset: numbered options, application values, free collections, the
// number reader and the clipboard.

#include "objectmodel/DatabaseState.h"
#include "objectmodel/ExpectError.h"
#include "support/World.h"

#include <gtest/gtest.h>

namespace pipespec {
namespace {

using checks::errorNumber;
using support::World;

TEST(Workset, OptionSixtyFourIsAKeyedMapWhoseEntriesCanBeDroppedAndStoredBack)
{
    const World world;
    const auto globals = world.workset()->Globals();
    const auto cache = globals->getOption(64).map();
    ASSERT_TRUE(cache) << "the map is there before anything was cached";
    cache->Add("PC-A1", Variant(1));
    cache->Add("PC-B2", Variant(2));
    globals->setoption(64, cache);

    const auto read = globals->getOption(64).map();
    ASSERT_TRUE(read && read->Exists("PC-A1"));
    read->Remove("PC-A1");
    globals->setoption(64, read);
    const auto kept = globals->getOption(64).map();
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->Keys(), std::vector<std::string>{"PC-B2"});
    EXPECT_EQ(errorNumber([&] { read->Add("PC-B2", Variant(3)); }), err::DuplicateKey);

    // Even a value of another kind stored under 64 reads back as a map.
    globals->setoption(64, Variant("text"));
    const auto fresh = globals->getOption(64).map();
    ASSERT_TRUE(fresh);
    EXPECT_EQ(fresh->Count(), 0);
}

TEST(Workset, NumberedOptionsHoldObjectsAndProjectsHoldTheirOwn)
{
    const World world;
    const auto globals = world.workset()->Globals();
    const auto norm = world.device(world.root(world.base(), "@40"), "NORM");
    const auto selectors = world.device(world.root(world.base(), "@40"), "SELECTORS");
    const auto diameters = world.table(world.base(), "DN", {"15", "25"});

    for (const int number : {231, 235, 367, 368}) EXPECT_TRUE(globals->getOption(number).IsEmpty()) << number;
    globals->setoption(235, Variant(ObjectRef(diameters)));
    globals->setoption(367, Variant(ObjectRef(diameters)));
    globals->setoption(368, Variant(ObjectRef(selectors)));
    EXPECT_EQ(globals->getOption(235).object(), diameters);
    EXPECT_EQ(globals->getOption(367).objectAs<IStandardTable>()->Values()->Count(), 2);
    EXPECT_EQ(globals->getOption(368).objectAs<IDevice>(), selectors);
    EXPECT_TRUE(globals->getOption(368).map() == nullptr) << "a typed read of another kind is empty";

    // Options of a project are asked for by project; a base project's stay its own.
    world.base()->setOption(231, Variant(ObjectRef(norm)));
    EXPECT_EQ(globals->GetOptionFromProject(world.base(), 231).object(), norm);
    EXPECT_TRUE(globals->GetOptionFromProject(world.plant(), 231).IsEmpty());
    EXPECT_TRUE(globals->GetOptionFromProject(nullptr, 231).IsEmpty());

    // StdValues3D makes the norm dimensions of the project's chain known as option 231.
    const auto tables = world.table(world.base(), "@3D", {});
    EXPECT_EQ(world.workset()->LateBoundTools()->StdValues3D(world.plant()), tables);
    EXPECT_EQ(globals->getOption(231).objectAs<IDevice>(), norm);

    EXPECT_EQ(globals->PipeClassRootCDevice(), nullptr);
    world.workset()->globals()->setPipeClassRootCDevice(selectors);
    EXPECT_EQ(globals->PipeClassRootCDevice(), selectors);
}

class RecordingNavigator final : public INavigator {
public:
    void SetPLTObject(const ObjectRef& object) override { shown = object; }
    ObjectRef shown;
};

TEST(Workset, AppGlobalsAnswerByNameWhateverTheCase)
{
    const World world;
    const auto app = world.workset()->AppGlobals();
    EXPECT_TRUE(app->Exist("TubrixDesignerRun"));
    EXPECT_FALSE(app->TubrixDesignerRun());
    EXPECT_FALSE(app->Exist("Navigator")) << "no navigator yet";
    EXPECT_FALSE(app->Exist("Colour"));

    const auto navigator = std::make_shared<RecordingNavigator>();
    world.workset()->appGlobals()->setNavigator(navigator);
    world.workset()->appGlobals()->setTubrixDesignerRun(true);
    world.workset()->appGlobals()->setValue("Colour", Variant("blue"));
    EXPECT_TRUE(app->Exist("NAVIGATOR"));
    EXPECT_EQ(app->Navigator(), navigator);
    EXPECT_TRUE(app->TubrixDesignerRun());
    EXPECT_TRUE(app->Exist("colour"));
}

TEST(Workset, NewCollectionIsAFreeListCountedFromOne)
{
    const World world;
    const auto root = world.root(world.plant(), "@20");
    const auto a = world.device(root, "A");
    const auto b = world.device(root, "B");
    const auto list = world.workset()->NewCollection();
    EXPECT_EQ(list->Count(), 0);

    list->Add(a);
    list->Add(b);
    list->Add(a);
    EXPECT_EQ(list->Count(), 3) << "it may hold an object twice";
    EXPECT_EQ(list->IndexOf(a), 1);
    EXPECT_EQ(list->IndexOf(root), -1);
    EXPECT_EQ(list->Item("B"), b);
    EXPECT_EQ(list->Item("C"), nullptr);
    EXPECT_EQ(errorNumber([&] { list->Item(4); }), err::SubscriptOutOfRange);

    EXPECT_EQ(list->Detach(a), a);
    EXPECT_EQ(list->Count(), 2);
    EXPECT_EQ(list->IndexOf(b), 1);
    EXPECT_EQ(list->IndexOf(a), 2);
    EXPECT_EQ(a->Owner(), root) << "a free list owns nothing";
    EXPECT_EQ(errorNumber([&] { list->CreateNewWithName("X"); }), err::NotSupported);
}

TEST(Workset, StateIsKeptPerDatabaseAndGoesWhenTheDatabaseCloses)
{
    struct Count {
        int calls = 0;
    };
    WorksetRef closed;
    {
        const World first;
        const World second;
        closed = first.workset();
        ++closed->State().get<Count>().calls;
        ++closed->State().get<Count>().calls;
        EXPECT_EQ(closed->State().get<Count>().calls, 2);
        EXPECT_EQ(second.workset()->State().get<Count>().calls, 0);
    }
    EXPECT_EQ(errorNumber([&] { (void)closed->State(); }), err::ObjectNotSet);
}

TEST(Workset, ParseNumberReadsANumberOrFailsWithTypeMismatch)
{
    const World world;
    const auto& workset = *world.workset();
    EXPECT_DOUBLE_EQ(workset.ParseNumber("40"), 40.0);
    EXPECT_DOUBLE_EQ(workset.ParseNumber(" 12.5 "), 12.5);
    EXPECT_DOUBLE_EQ(workset.ParseNumber("12,5"), 12.5);
    EXPECT_DOUBLE_EQ(workset.ParseNumber("-3"), -3.0);
    EXPECT_EQ(errorNumber([&] { (void)workset.ParseNumber("DN"); }), err::TypeMismatch);
    EXPECT_EQ(errorNumber([&] { (void)workset.ParseNumber(""); }), err::TypeMismatch);
}

TEST(Workset, ClipboardPastesDevicesOntoAWritableDevice)
{
    const World world;
    const auto root = world.root(world.plant(), "@20");
    const auto target = world.device(root, "TARGET");
    const auto workset = world.workset();
    const auto clipboard = workset->Clipboard();
    EXPECT_NE(clipboard->CanPaste(target), 0) << "nothing on the clipboard";

    workset->ClipboardObjects()->Add(world.device(root, "COPIED"));
    EXPECT_EQ(clipboard->CanPaste(target), 0);
    EXPECT_NE(clipboard->CanPaste(nullptr), 0);
    EXPECT_NE(clipboard->CanPaste(world.table(world.plant(), "T", {})), 0) << "not a device";

    world.setReadOnly(target);
    EXPECT_NE(clipboard->CanPaste(target), 0) << "a read-only device takes nothing";
    world.setReadOnly(target, false);
    world.plant()->setAccessRights(0);
    EXPECT_NE(clipboard->CanPaste(target), 0) << "nor one of a project without write access";

    EXPECT_TRUE(workset->DragObject().IsEmpty());
    workset->setDragObject(Variant(ObjectRef(target)));
    EXPECT_EQ(workset->DragObject().object(), target);
}

}  // namespace
}  // namespace pipespec
