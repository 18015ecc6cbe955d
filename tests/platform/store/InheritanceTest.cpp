// Inheritance in the store: what a device and its chapters take from the
// CDevice chain and from inherited chapters, the temporary objects that stand
// for it, making them persistent, the refused cycles, and what read-only
// objects and projects refuse.

#include "objectmodel/ExpectError.h"
#include "support/World.h"

#include <gtest/gtest.h>

namespace pipespec {
namespace {

using checks::errorNumber;
using support::World;

// A catalogue chain in the base project, KIND <- COMP, and a plant device on it.
struct Chain {
    explicit Chain(const World& world)
        : catalogue(world.device(world.root(world.base(), "@40"), "CAT")),
          kind(world.device(catalogue, "KIND", {{"GD.VFCD", "10100"}, {"GD.TEXT", "kind"}, {"CONN.DN1", "100"}})),
          component(world.device(catalogue, "COMP", {{"GD.TEXT", "component"}})),
          user(world.device(world.root(world.plant(), "@20"), "USER", {{"GD.OWN", "own"}}))
    {
        component->SetCDevice(kind);
        user->SetCDevice(component);
    }
    DeviceRef catalogue, kind, component, user;
};

TEST(Inheritance, SpecLooksAtOwnThenTheInheritedChapterThenTheCDeviceChain)
{
    const World world;
    const Chain chain(world);
    const auto& user = chain.user;
    const auto pattern = world.device(chain.catalogue, "PATTERN", {{"GD.TEXT", "pattern"}, {"GD.EXTRA", "x"}});

    EXPECT_EQ(user->Spec("GD.TEXT")->Value(), "component") << "the nearest base object wins";
    user->Spec("GD")->InheritFrom(pattern->Spec("GD"));
    EXPECT_EQ(user->Spec("GD")->InheritedChapter(), pattern->Spec("GD"));
    EXPECT_EQ(user->Spec("GD.TEXT")->Value(), "pattern") << "the inherited chapter comes before the CDevice chain";
    EXPECT_EQ(user->Spec("GD.EXTRA")->Value(), "x");
    EXPECT_EQ(user->Spec("GD.VFCD")->Value(), "10100") << "two levels up the chain";
    EXPECT_EQ(user->Spec("GD.OWN")->Value(), "own");
    EXPECT_FALSE(user->Spec("GD.OWN")->SystemTemporary());
    EXPECT_TRUE(user->Spec("GD.VFCD")->SystemTemporary());
    EXPECT_EQ(user->Spec("GD.VFCD")->InheritanceOrigin(), chain.kind->Spec("GD.VFCD"));

    // A chapter the device does not have itself, and the qualified name of what it holds.
    const auto connection = user->Spec("CONN");
    ASSERT_TRUE(connection);
    EXPECT_TRUE(connection->SystemTemporary());
    const auto diameter = user->Spec("CONN.DN1");
    EXPECT_EQ(diameter->Value(), "100");
    EXPECT_EQ(diameter->NestedName(), "CONN.DN1");
    EXPECT_EQ(chain.kind->Spec(diameter->NestedName()), diameter->InheritanceOrigin());
    EXPECT_EQ(connection->Specifications()->Count(), 1);
    EXPECT_EQ(user->Specs()->Count(), 2) << "own GD and inherited CONN, each once";

    EXPECT_EQ(user->Spec("NONE"), nullptr);
    EXPECT_EQ(user->Spec("GD.NONE"), nullptr);
    EXPECT_EQ(user->Spec("NONE.DN1"), nullptr);
}

TEST(Inheritance, ElementsAddInheritedChildrenByNameAsTemporaryObjects)
{
    const World world;
    const Chain chain(world);
    world.device(chain.kind, "P1");
    const auto kindP2 = world.device(chain.kind, "P2");
    const auto componentP2 = world.device(chain.component, "P2");
    world.setFolder(kindP2);
    const auto own = world.device(chain.user, "P3");

    const auto elements = chain.user->Elements();
    ASSERT_EQ(elements->Count(), 3);
    EXPECT_EQ(elements->Item(1), own) << "own children first";
    EXPECT_EQ(elements->Item("P2")->InheritanceOrigin(), componentP2) << "the nearest of that name";
    EXPECT_EQ(elements->Item("P1")->InheritanceOrigin(), chain.kind->OwnElements()->Item("P1"));
    EXPECT_TRUE(elements->Item("P1")->SystemTemporary());
    EXPECT_EQ(elements->Item("P1"), elements->Item("P1"));
    EXPECT_EQ(elements->IndexOf(elements->Item("P1")), 3);
    EXPECT_EQ(chain.user->OwnElements()->Count(), 1);
    EXPECT_EQ(chain.user->Devices()->Count(), 1);
    EXPECT_EQ(chain.user->OwnElements()->Item("P1"), nullptr);
    EXPECT_EQ(chain.user->CDevice(), chain.component);
    EXPECT_EQ(chain.component->CDevice(), chain.kind);
    EXPECT_EQ(chain.kind->CDevice(), nullptr);

    // Without its own P2 the component shows the kind's again, which is a folder.
    EXPECT_EQ(chain.component->Elements()->Item("P2"), componentP2);
    EXPECT_FALSE(componentP2->IsFolder());
    componentP2->Delete();
    EXPECT_EQ(elements->Item("P2")->InheritanceOrigin(), kindP2);
    EXPECT_TRUE(elements->Item("P2")->IsFolder());

    // A new own child of an inherited name takes its place; the list held all along shows it.
    const auto mine = world.device(chain.user, "P1");
    world.device(chain.user, "P4");
    EXPECT_EQ(elements->Count(), 4);
    EXPECT_EQ(elements->Item(2), mine);
    EXPECT_EQ(elements->Item("P1"), mine);
}

TEST(Inheritance, MakePersistentTurnsTheTemporaryObjectItselfIntoAStoredOne)
{
    const World world;
    const Chain chain(world);
    world.device(chain.kind, "PORT")->SetDescription("port of the kind");
    const auto& user = chain.user;

    must(std::dynamic_pointer_cast<platform::Specification>(chain.kind->Spec("CONN.DN1"))).setValueLocked(true);
    const auto inherited = user->Spec("CONN.DN1");
    ASSERT_TRUE(inherited->CanMakePersistent());
    inherited->SetValue("200");  // accepted and lost: not stored, not undone
    EXPECT_EQ(inherited->Value(), "100");
    EXPECT_TRUE(inherited->SystemTemporary());
    EXPECT_TRUE(inherited->IsValueLocked(0)) << "locked where it comes from";

    inherited->MakePersistent();
    EXPECT_FALSE(inherited->SystemTemporary());
    EXPECT_EQ(user->Spec("CONN.DN1"), inherited);
    EXPECT_FALSE(user->Spec("CONN")->SystemTemporary()) << "its chapter was stored first";
    EXPECT_EQ(user->Spec("CONN")->OwnSpecifications()->Item("DN1"), inherited);
    EXPECT_EQ(inherited->InheritanceOrigin(), inherited);
    EXPECT_EQ(inherited->Value(), "100");
    EXPECT_TRUE(inherited->IsValueLocked(0));
    inherited->SetValue("200");
    EXPECT_EQ(chain.kind->Spec("CONN.DN1")->Value(), "100");

    const auto port = user->Elements()->Item("PORT");
    ASSERT_TRUE(port->CanMakePersistent());
    port->MakePersistent();
    EXPECT_EQ(user->OwnElements()->Item("PORT"), port);
    EXPECT_FALSE(port->SystemTemporary());
    EXPECT_EQ(port->Description(), "port of the kind") << "it keeps what it showed";
    EXPECT_EQ(asDevice(port)->CDevice(), chain.kind->OwnElements()->Item("PORT"));
    EXPECT_FALSE(port->CanMakePersistent()) << "it is stored now";
}

TEST(Inheritance, CanMakePersistentOnlyWhereTheWriteWouldStick)
{
    const World world;
    const Chain chain(world);
    const auto inherited = chain.user->Spec("GD.VFCD");
    EXPECT_TRUE(inherited->CanMakePersistent());

    EXPECT_FALSE(chain.component->Spec("GD.VFCD")->CanMakePersistent()) << "outside the current project";

    world.plant()->setAccessRights(0);
    EXPECT_FALSE(inherited->CanMakePersistent()) << "no write access";
    world.plant()->setAccessRights(1);

    world.setReadOnly(chain.kind->Spec("GD.VFCD"));
    EXPECT_FALSE(inherited->CanMakePersistent()) << "what it stands for is read-only";
    world.setReadOnly(chain.kind->Spec("GD.VFCD"), false);

    // The inherited chapter would have to be stored in the device first.
    world.setReadOnly(chain.user);
    EXPECT_FALSE(chain.user->Spec("CONN")->CanMakePersistent());
    EXPECT_FALSE(chain.user->Spec("CONN.DN1")->CanMakePersistent());
    EXPECT_EQ(errorNumber([&] { chain.user->Spec("CONN.DN1")->MakePersistent(); }), err::ReadOnly);
    EXPECT_TRUE(chain.user->Spec("CONN.DN1")->SystemTemporary());
    world.setReadOnly(chain.user, false);

    world.workset()->SetCurrentProject(world.base());
    EXPECT_FALSE(inherited->CanMakePersistent()) << "not the current project any more";
}

TEST(Inheritance, LinksThatWouldCloseACycleAreRefusedAndChangeNothing)
{
    const World world;
    const Chain chain(world);

    EXPECT_EQ(errorNumber([&] { chain.kind->SetCDevice(chain.user); }), err::CycleRefused);
    EXPECT_EQ(errorNumber([&] { chain.kind->SetCDevice(chain.kind); }), err::CycleRefused);
    EXPECT_EQ(chain.kind->CDevice(), nullptr);
    EXPECT_EQ(chain.user->Spec("GD.VFCD")->Value(), "10100");

    const auto first = world.device(chain.catalogue, "FIRST", {{"GD.A", "1"}});
    const auto second = world.device(chain.catalogue, "SECOND", {{"GD.B", "2"}});
    first->Spec("GD")->InheritFrom(second->Spec("GD"));
    EXPECT_EQ(errorNumber([&] { second->Spec("GD")->InheritFrom(first->Spec("GD")); }), err::CycleRefused);
    EXPECT_EQ(errorNumber([&] { first->Spec("GD")->InheritFrom(first->Spec("GD")); }), err::CycleRefused);
    EXPECT_EQ(second->Spec("GD")->InheritedChapter(), nullptr);
    EXPECT_EQ(first->Spec("GD.B")->Value(), "2");

    // A chapter inherits from the chapter of that name up the CDevice chain, so
    // that chapter cannot inherit back.
    EXPECT_EQ(errorNumber([&] { chain.kind->Spec("GD")->InheritFrom(chain.user->Spec("GD")); }), err::CycleRefused);
    EXPECT_EQ(chain.kind->Spec("GD")->InheritedChapter(), nullptr);

    // Either kind of link may close the circle, whichever comes first: the
    // base object would hand FIRST's GD to SECOND's GD, which FIRST's GD
    // inherits from; also through a device below the one linked, and one
    // level down, where an attribute inherits what its chapter inherits.
    EXPECT_EQ(errorNumber([&] { second->SetCDevice(first); }), err::CycleRefused);
    EXPECT_EQ(second->CDevice(), nullptr);
    const auto upper = world.device(chain.catalogue, "UPPER", {{"GD.X", "x"}});
    const auto middle = world.device(chain.catalogue, "MIDDLE");
    const auto lower = world.device(chain.catalogue, "LOWER", {{"GD.Y", "y"}});
    lower->SetCDevice(middle);
    upper->Spec("GD")->InheritFrom(lower->Spec("GD"));
    EXPECT_EQ(errorNumber([&] { middle->SetCDevice(upper); }), err::CycleRefused);
    EXPECT_EQ(middle->CDevice(), nullptr);
    const auto third = world.device(chain.catalogue, "THIRD", {{"GD.A", "3"}});
    third->Spec("GD.A")->InheritFrom(first->Spec("GD.A"));
    EXPECT_EQ(errorNumber([&] { first->Spec("GD")->InheritFrom(third->Spec("GD")); }), err::CycleRefused);
    EXPECT_EQ(first->Spec("GD")->InheritedChapter(), second->Spec("GD"));

    middle->SetCDevice(chain.kind);
    EXPECT_EQ(upper->Spec("GD.VFCD")->Value(), "10100") << "a link that closes no circle is taken";
}

TEST(Inheritance, ChainsDeeperThanAWalkMayGoAreRefused)
{
    const World world;
    const auto catalogue = world.device(world.root(world.base(), "@40"), "CAT");
    const auto devices = [&](const std::string& prefix) {
        std::vector<DeviceRef> made;
        for (int i = 0; i < 300; ++i) made.push_back(world.device(catalogue, prefix + std::to_string(i)));
        world.attribute(made.back(), "GD.LAST", "last");
        return made;
    };

    // Linked from the top down, the chain is refused once it grows too deep.
    const auto topDown = devices("T");
    long refused = 0;
    for (auto i = topDown.size() - 1; i > 0 && !refused; --i)
        refused = errorNumber([&] { topDown[i - 1]->SetCDevice(topDown[i]); });
    EXPECT_EQ(refused, err::InvalidCall);
    // Linked from the bottom up, each link looks short; a walk down the whole
    // chain stops with an error instead of going on.
    const auto bottomUp = devices("B");
    for (std::size_t i = 0; i + 1 < bottomUp.size(); ++i) bottomUp[i]->SetCDevice(bottomUp[i + 1]);
    EXPECT_EQ(errorNumber([&] { (void)bottomUp.front()->Spec("GD.LAST"); }), err::InvalidCall);
}

TEST(ReadOnly, WritesToReadOnlyObjectsAreRefusedAndChangeNothing)
{
    const World world;
    const Chain chain(world);
    const auto root = world.root(world.plant(), "@20");
    const auto device = world.device(root, "LOCKED", {{"GD.V", "1"}});
    const auto child = world.device(device, "CHILD");
    const auto value = device->Spec("GD.V");
    world.setReadOnly(device);
    world.setReadOnly(value);

    EXPECT_TRUE(device->ReadOnly());
    EXPECT_EQ(errorNumber([&] { device->SetName("OTHER"); }), err::ReadOnly);
    EXPECT_EQ(errorNumber([&] { device->SetDescription("changed"); }), err::ReadOnly);
    EXPECT_EQ(errorNumber([&] { device->SetCDevice(chain.kind); }), err::ReadOnly);
    EXPECT_EQ(errorNumber([&] { device->OwnElements()->CreateNewWithName("NEW"); }), err::ReadOnly);
    EXPECT_EQ(errorNumber([&] { child->Delete(); }), err::ReadOnly) << "its children are part of it";
    EXPECT_EQ(errorNumber([&] { device->OwnElements()->Detach(child); }), err::ReadOnly);
    EXPECT_EQ(errorNumber([&] { value->SetValue("2"); }), err::ReadOnly);
    EXPECT_TRUE(value->IsValueLocked(0));

    EXPECT_EQ(root->OwnElements()->Item("LOCKED"), device);
    EXPECT_EQ(device->Description(), "");
    EXPECT_EQ(device->CDevice(), nullptr);
    EXPECT_EQ(device->OwnElements()->Count(), 1);
    EXPECT_FALSE(child->IsDeleted());
    EXPECT_EQ(value->Value(), "1");
}

TEST(ReadOnly, AProjectWithoutWriteAccessRefusesEveryWrite)
{
    const World world;
    const auto root = world.root(world.plant(), "@20");
    const auto device = world.device(root, "D", {{"GD.V", "1"}});
    const auto value = device->Spec("GD.V");
    world.plant()->setAccessRights(0);

    EXPECT_EQ(world.plant()->AccessRights() & 1, 0);
    EXPECT_EQ(errorNumber([&] { value->SetValue("2"); }), err::ReadOnly);
    EXPECT_EQ(errorNumber([&] { device->OwnElements()->CreateNewWithName("NEW"); }), err::ReadOnly);
    EXPECT_EQ(errorNumber([&] { root->OwnElements()->CreateNewWithName("NEW"); }), err::ReadOnly) << "a fixed root too";
    EXPECT_EQ(errorNumber([&] { world.plant()->StandardTables()->CreateNewWithName("T"); }), err::ReadOnly);
    EXPECT_EQ(errorNumber([&] { device->Delete(); }), err::ReadOnly);
    EXPECT_TRUE(value->IsValueLocked(0));

    EXPECT_EQ(value->Value(), "1");
    EXPECT_EQ(root->OwnElements()->Count(), 1);
    EXPECT_EQ(device->OwnElements()->Count(), 0);
    EXPECT_EQ(world.plant()->StandardTables()->Count(), 0);
    EXPECT_FALSE(device->IsDeleted());

    // An unowned copy is in no project's care until it is added somewhere.
    const auto copy = device->Copy();
    copy->SetDescription("copy");
    EXPECT_EQ(errorNumber([&] { device->OwnElements()->AddObject(copy); }), err::ReadOnly);
}

}  // namespace
}  // namespace pipespec
