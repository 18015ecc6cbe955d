// Undo and redo across sessions: every save is a step kept in the database
// file, which a later session takes back and puts again.

#include "objectmodel/ExpectError.h"
#include "platform/persistence/Persistence.h"
#include "support/DatabaseComparison.h"
#include "support/TempDirectory.h"
#include "support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pipespec {
namespace {

using checks::errorNumber;
using platform::ProjectFile;
using support::differences;
using testing::IsEmpty;

constexpr std::string_view kPipeClass = "PLANT:@20|PIPECLASSES|PC-A1";

// A catalogue of three flanges and a pipe class with one element of its own.
struct DropWorld : support::World {
    std::vector<DeviceRef> components;
    DeviceRef pipeClassA1;

    DropWorld()
    {
        const auto catalogue = path(base(), "@40|CAT|FLANGES");
        for (const auto* name : {"FL-WN-PN16", "FL-WN-PN25", "FL-WN-PN40"})
            components.push_back(device(catalogue, name, {{"CONN.DN1", "100"}, {"GD.VFCD", "10100"}}));
        pipeClassA1 = pipeClass(path(plant(), "@20|PIPECLASSES"), "PC-A1", "10000");
        device(pipeClassA1, "001", {{"GD.Mark", "kept"}})->SetCDevice(components.front());
    }

    // What dropping the components on the class makes: an element per
    // component with its own attributes, and the class counts them.
    void dropComponents() const
    {
        int number = 2;
        for (const auto& component : components) {
            const auto element =
                device(pipeClassA1, "00" + std::to_string(number++), {{"GD.Source", component->Name()}});
            element->SetCDevice(component);
        }
        attribute(pipeClassA1, "GD.Elements", "4");
    }
};

class UndoAcrossSessions : public testing::Test {
protected:
    support::TempDirectory directory;
    std::filesystem::path file = directory / "project.pspec";

    // What the file holds now, read by a session of its own.
    ProjectFile snapshot() const { return ProjectFile::open(file, ProjectFile::Access::ReadOnly); }
    std::size_t elementsInFile() const
    {
        const auto pipeClass = asDevice(snapshot().database()->objectByFullName(kPipeClass, nullptr));
        return static_cast<std::size_t>(must(pipeClass).OwnElements()->Count());
    }
};

TEST_F(UndoAcrossSessions, ADropOfElementsIsTakenBackWholeAndPutBackWhole)
{
    {
        DropWorld world;
        auto session = ProjectFile::create(file, world.database());
        EXPECT_EQ(session.undoSteps(), 0u) << "making the file is no step";
        world.dropComponents();
        session.save();
        EXPECT_EQ(session.undoSteps(), 1u);
    }
    const auto dropped = snapshot();
    ASSERT_EQ(elementsInFile(), 4u);

    {
        auto session = ProjectFile::open(file);
        ASSERT_TRUE(session.undo());
        EXPECT_EQ(session.undoSteps(), 0u);
        EXPECT_EQ(session.redoSteps(), 1u);
        EXPECT_FALSE(session.undo()) << "nothing before the first save";
        // The session works on the database as it is after the undo.
        const auto pipeClass = asDevice(session.database()->objectByFullName(kPipeClass, nullptr));
        EXPECT_EQ(must(pipeClass).OwnElements()->Count(), 1);
        EXPECT_EQ(must(pipeClass).Spec("GD.Elements"), nullptr);
    }
    EXPECT_EQ(elementsInFile(), 1u);
    const DropWorld untouched;
    EXPECT_THAT(differences(*untouched.database(), *snapshot().database(), {.uniqueIds = false}), IsEmpty());

    {
        auto session = ProjectFile::open(file);
        ASSERT_TRUE(session.redo());
        EXPECT_FALSE(session.redo());
        EXPECT_EQ(session.undoSteps(), 1u);
    }
    EXPECT_THAT(differences(*dropped.database(), *snapshot().database()), IsEmpty())
        << "the same objects, ids included";
}

TEST_F(UndoAcrossSessions, ANewChangeDropsWhatCouldBeRedoneAndEachStepIsTakenInTurn)
{
    DropWorld world;
    auto session = ProjectFile::create(file, world.database());
    world.dropComponents();
    session.save();
    // A second step: the first element goes, its neighbours move up.
    must(world.pipeClassA1->OwnElements()->Item("001")).Delete();
    session.save();
    const auto removed = snapshot();
    EXPECT_EQ(session.save().written, 0u);
    EXPECT_EQ(session.undoSteps(), 2u) << "a save that changes nothing is no step";

    ASSERT_TRUE(session.undo());
    EXPECT_EQ(elementsInFile(), 4u);
    ASSERT_TRUE(session.undo());
    EXPECT_EQ(elementsInFile(), 1u);
    ASSERT_TRUE(session.redo());
    ASSERT_TRUE(session.redo());
    EXPECT_THAT(differences(*removed.database(), *session.database()), IsEmpty());

    ASSERT_TRUE(session.undo());
    const auto pipeClass = asDevice(session.database()->objectByFullName(kPipeClass, nullptr));
    must(pipeClass).SetDescription("changed after an undo");
    session.save();
    EXPECT_EQ(session.redoSteps(), 0u);
    EXPECT_FALSE(session.redo());
    EXPECT_EQ(session.undoSteps(), 2u);
}

TEST_F(UndoAcrossSessions, FieldsRewrittenInPlaceComeBackAsTheyWereAndNewObjectsGo)
{
    DropWorld world;
    auto session = ProjectFile::create(file, world.database());
    const auto before = snapshot();
    // One save rewrites fields of stored objects and makes a new element,
    // whose fields it writes after making it.
    world.pipeClassA1->SetDescription("renumbered");
    must(world.pipeClassA1->Spec("GD.VFCD")).SetValue("10001");
    world.dropComponents();
    session.save();
    const auto after = snapshot();

    ASSERT_TRUE(session.undo());
    EXPECT_THAT(differences(*before.database(), *session.database()), IsEmpty());
    ASSERT_TRUE(session.redo());
    EXPECT_THAT(differences(*after.database(), *session.database()), IsEmpty());
}

TEST_F(UndoAcrossSessions, WhatWouldBeLostOrMayNotBeWrittenIsRefused)
{
    DropWorld world;
    auto session = ProjectFile::create(file, world.database());
    world.dropComponents();
    session.save();

    world.device(world.pipeClassA1, "099");
    EXPECT_EQ(errorNumber([&] { session.undo(); }), err::InvalidCall) << "unsaved changes";
    EXPECT_EQ(session.undoSteps(), 1u);
    EXPECT_EQ(elementsInFile(), 4u);

    auto reader = snapshot();
    EXPECT_EQ(errorNumber([&] { reader.undo(); }), err::ReadOnly);
    EXPECT_EQ(reader.undoSteps(), 0u) << "a file open to read shows no steps";
}

}  // namespace
}  // namespace pipespec
