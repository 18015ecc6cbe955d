// The database file: what goes in comes back object by object, a save writes
// only what changed and removes what was deleted, and a file that is not
// ours, too new, damaged or not to be written is refused without a write.

#include "platform/persistence/Persistence.h"
#include "objectmodel/ExpectError.h"
#include "platform/JsonProject.h"
#include "platform/persistence/SqliteFile.h"
#include "platform/query/Query.h"
#include "platform/query/QueryContainer.h"
#include "support/DatabaseComparison.h"
#include "support/TempDirectory.h"
#include "support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <thread>

namespace pipespec {
namespace {

using checks::errorNumber;
using platform::ProjectFile;
using support::differences;
using testing::HasSubstr;
using testing::IsEmpty;

// A file that is not there reads as empty.
std::string bytesOf(const std::filesystem::path& file)
{
    if (!std::filesystem::exists(file)) return {};
    std::string bytes(std::filesystem::file_size(file), '\0');
    std::ifstream(file, std::ios::binary).read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return bytes;
}

// Every kind of object and every field the store keeps, across two projects,
// with options, application values and links of each kind.
// A stored query with every setting away from its default, two filters of
// different value kinds, a sort and grid settings two levels deep.
platform::StoredQueryObject richStoredQuery()
{
    platform::ColumnSettings code{"FunctionCode", "~010fd Funktionscode", 9,    false, true, valuekind::Value,
                                  "GD.VFCD",      sourcekind::Attribute,  "GD", true,  2,    false,
                                  true,           extendedkind::Value,    true, false, 3};
    platform::ColumnSettings description;
    description.key = "FunctionCodeDesc";
    description.valueKind = valuekind::DisplayValue;
    platform::StoredQueryObject stored;
    stored.queryOrg.columns = {{code, ""}, {description, "FunctionCode"}};
    stored.queryOrg.filters = {{"FunctionCode", filteroperator::AtLeast, filterlink::Or, Variant(std::int64_t{10200})},
                               {"FunctionCodeDesc", filteroperator::Contains, filterlink::None, Variant("Flange")},
                               {"FunctionCode", filteroperator::Less, filterlink::None, Variant(2.5)}};
    stored.queryOrg.sorts = {{"FunctionCode", sortdirection::Descending}, {"", sortdirection::None}};
    stored.queryOrg.servers = {"QuorlPipeSpecComp.PipeSpecComp"};
    auto& grid = stored.objectSet.child("TopQGridCDevices").child("QGrid");
    grid.kind = "Grid";
    grid.values["Width.FunctionCode"] = "9";
    stored.objectSet.child("Empty");
    return stored;
}

// Puts a stored query into a container as a list control does: through the
// attached object, then Save.
void store(const DeviceRef& containerDevice, const platform::StoredQueryObject& stored)
{
    const auto container = platform::queryContainerOf(containerDevice);
    auto& attached = must(container->XObj());
    attached.TopQuery()->SetQueryOrg(platform::Query::fromDefinition(stored.queryOrg));
    *attached.ObjectSet() = stored.objectSet;
    container->Save();
    container->ReleaseXObj();
}

struct RichWorld : support::World {
    DeviceRef baseComponent;
    DeviceRef flange;
    DeviceRef classA1;
    DeviceRef queryContainer;

    RichWorld()
    {
        const auto catalogue = path(base(), "@40|CAT|FLANGES");
        setFolder(catalogue);
        baseComponent = device(catalogue, "FL-BASE", {{"GD.VFCD", "10100"}, {"PIPE.VSTD", "FLAN"}});
        flange = device(catalogue, "FL-WN", {{"CONN.DN1", "100"}});
        flange->SetCDevice(baseComponent);
        flange->SetDescription("Vorschweißflansch");
        flange->SetXmlText("<Part BranchPart=\"1\"/>");
        setCreateOption(flange, 1);
        const auto diameters = table(base(), "DN", {"50", "100"});
        must(diameters->row("50")).SetDescription("DN 50");
        must(must(diameters->createChild("PN")).createRow("16")).SetValue("PN16");
        must(flange->Spec("CONN.DN1")).SetStandardTable(diameters);

        classA1 = pipeClass(path(plant(), "@20|PIPECLASSES"), "PC-A1", "10000", true);
        const auto title = attribute(classA1, "TXT.Title", "plain");
        title->SetValueType("C");
        title->SetLanguageValue(1, "Titel");
        title->SetLanguageValue(2, "Title");
        title->SetDescription("Klassentitel");
        list(classA1, "NR.Range", {"15", "", "600"})->SetAnswerMode(2);
        attribute(classA1, "E3D.Source", "")->SetLinkObject(flange);
        // An element that inherits its attributes: the link goes to an inherited one.
        const auto element = device(classA1, "001");
        element->SetCDevice(flange);
        attribute(classA1, "E3D.Inherited", "")->SetLinkObject(element->Spec("CONN.DN1"));
        const auto chapter = asSpec(classA1->Spec("TXT"));
        chapter->SetInheritMode("@C");
        chapter->InheritFrom(asSpec(baseComponent->Spec("PIPE")));
        chapter->SetControlType("QuorlSUIEdit.SUIEdit");
        chapter->SetControlProperties("Left=10;Top=20");
        must(std::dynamic_pointer_cast<platform::Specification>(title)).setLinkedCount(3);
        setValueLocked(classA1->Spec("GD.VFCD"));

        plant()->setOption(231, Variant(baseComponent));
        plant()->setOption(235, "DIN");
        plant()->setOption(367, 2.5);
        plant()->setOption(368, true);
        plant()->setOption(10, std::int64_t{42});
        const auto globals = workset()->globals();
        globals->setoption(231, Variant(flange));
        globals->setoption(500, "remembered");
        globals->setoption(501, Variant());
        globals->getOption(64).map()->Add("PLANT:@20|PIPECLASSES|PC-A1", "cached");
        globals->setPipeClassRootCDevice(path(plant(), "@20|PIPECLASSES"));
        workset()->appGlobals()->setTubrixDesignerRun(true);
        workset()->appGlobals()->setValue("Mode", "edit");
        workset()->appGlobals()->setValue("Count", std::int64_t{7});

        queryContainer = platform::QueryCreator().Create(path(plant(), "@20|PIPECLASSES"), 1);
        store(queryContainer, richStoredQuery());
        platform::QueryCreator().Create(path(plant(), "@20|PIPECLASSES"), 0);

        setReadOnly(baseComponent->Spec("PIPE"));
        setReadOnly(baseComponent);
        base()->setAccessRights(0);
    }
};

class PersistenceTest : public testing::Test {
protected:
    support::TempDirectory directory;
    std::filesystem::path file = directory / "project.pspec";
};

TEST_F(PersistenceTest, WhatIsSavedComesBackObjectByObject)
{
    RichWorld world;
    ProjectFile::create(file, world.database(), R"({"GD":{"VFCD":"VFCD"}})");
    const auto reopened = ProjectFile::open(file);
    const auto& database = *reopened.database();

    EXPECT_THAT(differences(*world.database(), database), IsEmpty());
    EXPECT_EQ(reopened.nameOverrides(), R"({"GD":{"VFCD":"VFCD"}})");
    // The link to an inherited attribute finds the same kind of object again.
    const auto pipeClass = asDevice(database.objectByFullName("PLANT:@20|PIPECLASSES|PC-A1", nullptr));
    const auto link =
        must(std::dynamic_pointer_cast<platform::Specification>(must(pipeClass).Spec("E3D.Inherited"))).link();
    EXPECT_TRUE(must(link).SystemTemporary());
    // The cache of pipe-class entries starts empty.
    EXPECT_EQ(database.workset()->globals()->getOption(64).map()->Count(), 0);
    // New objects do not take the numbers of loaded ones.
    const auto fresh = world.device(pipeClass, "002");
    const auto number = [](const DeviceRef& device) {
        return must(std::dynamic_pointer_cast<platform::StoredObject>(device)).uniqueNumber();
    };
    EXPECT_GT(number(fresh), number(world.flange));
}

TEST_F(PersistenceTest, StoredQueriesComeBackWithTheirContainers)
{
    RichWorld world;
    auto saved = ProjectFile::create(file, world.database());
    const auto containerIn = [](const ProjectFile& project) {
        return platform::queryContainerOf(
            project.database()->objectByFullName("PLANT:@20|PIPECLASSES|TQContainer001", nullptr));
    };
    const auto definitionIn = [&](const ProjectFile& project) {
        return dynamic_cast<const platform::Query&>(*must(containerIn(project)->XObj()).TopQuery()->QueryOrg())
            .definition();
    };
    {
        const auto reopened = ProjectFile::open(file);
        EXPECT_THAT(differences(*world.database(), *reopened.database()), IsEmpty());
        EXPECT_EQ(definitionIn(reopened), richStoredQuery().queryOrg);
        EXPECT_EQ(*must(containerIn(reopened)->XObj()).ObjectSet(), richStoredQuery().objectSet);
        EXPECT_FALSE(platform::queryContainerOf(
                         reopened.database()->objectByFullName("PLANT:@20|PIPECLASSES|TQContainer002", nullptr))
                         ->HasXObj())
            << "a container without an attached object stays without";
    }

    // A changed stored query is a difference, and the next save keeps it.
    auto changed = richStoredQuery();
    changed.queryOrg.columns.front().settings.editable = false;
    changed.objectSet.child("TopQGridCDevices").child("QGrid").values["Width.FunctionCode"] = "12";
    store(world.queryContainer, changed);
    EXPECT_THAT(differences(*world.database(), *ProjectFile::open(file).database()),
                testing::ElementsAre(HasSubstr("PLANT:@20|PIPECLASSES|TQContainer001: stored query")));
    saved.save();
    EXPECT_EQ(definitionIn(ProjectFile::open(file)), changed.queryOrg);

    // A container whose device is deleted goes with it.
    world.queryContainer->Delete();
    saved.save();
    EXPECT_THAT(differences(*world.database(), *ProjectFile::open(file).database()), IsEmpty());

    // A filter value that is an object would not be the same object in the
    // next session: refused, and the file keeps its last save.
    const auto another = platform::QueryCreator().Create(world.path(world.plant(), "@20|PIPECLASSES"), 1);
    auto withObject = richStoredQuery();
    withObject.queryOrg.filters.front().value = Variant(world.flange);
    store(another, withObject);
    const auto before = bytesOf(file);
    EXPECT_EQ(errorNumber([&] { saved.save(); }), err::NotSupported);
    EXPECT_EQ(bytesOf(file), before);
}

TEST_F(PersistenceTest, TheSampleProjectComesBackObjectByObject)
{
    const auto names = platform::JsonNameTable::load(platform::JsonNameTable::shippedPath());
    const auto sample = platform::loadJsonProject(platform::sampleProjectPath(), *names);
    ProjectFile::create(file, sample.database);

    EXPECT_THAT(differences(*sample.database, *ProjectFile::open(file).database()), IsEmpty());
}

TEST_F(PersistenceTest, TheComparisonSeesADifference)
{
    RichWorld world;
    ProjectFile::create(file, world.database());
    auto reopened = ProjectFile::open(file);
    const auto flange = reopened.database()->objectByFullName("BASE:@40|CAT|FLANGES|FL-WN", nullptr);
    reopened.database()->project("BASE")->setAccessRights(1);
    must(must(flange).Spec("CONN.DN1")).SetValue("150");

    EXPECT_THAT(
        differences(*world.database(), *reopened.database()),
        testing::UnorderedElementsAre(HasSubstr("BASE:@40|CAT|FLANGES|FL-WN#CONN.DN1: value is '150', expected '100'"),
                                      HasSubstr("access rights")));
}

TEST_F(PersistenceTest, ASaveWritesOnlyWhatChangedAndRemovesWhatWasDeleted)
{
    RichWorld world;
    auto saved = ProjectFile::create(file, world.database());
    const auto reopenedEqualsMemory = [&] {
        return differences(*world.database(), *ProjectFile::open(file).database());
    };

    EXPECT_EQ(saved.save().written, 0u);

    world.attribute(world.classA1, "GD.VFCD", "10001");
    auto summary = saved.save();
    EXPECT_EQ(summary.written, 1u);
    EXPECT_EQ(summary.removed, 0u);
    EXPECT_THAT(reopenedEqualsMemory(), IsEmpty());

    // A new device with a chapter of two attributes, and its owner's list of members.
    world.device(world.classA1, "002", {{"GD.A", "1"}, {"GD.B", "2"}});
    summary = saved.save();
    EXPECT_EQ(summary.written, 5u);
    EXPECT_THAT(reopenedEqualsMemory(), IsEmpty());

    // Deleting takes everything below along; the owner is written for its list.
    must(world.classA1->OwnElements()->Item("002")).Delete();
    summary = saved.save();
    EXPECT_EQ(summary.removed, 4u);
    EXPECT_EQ(summary.written, 1u);
    EXPECT_THAT(reopenedEqualsMemory(), IsEmpty());

    // Renaming and moving in the list are changes too.
    world.classA1->SetName("PC-A2");
    const auto members = world.classA1->OwnElements();
    const auto element = members->Item("001");
    members->Detach(element);
    world.device(world.classA1, "003");
    members->AddObject(element);
    saved.save();
    EXPECT_THAT(reopenedEqualsMemory(), IsEmpty());
}

TEST_F(PersistenceTest, UndoneAndRedoneChangesAreSavedAsWell)
{
    RichWorld world;
    auto saved = ProjectFile::create(file, world.database());
    const auto undo = world.workset()->NewUndoState();
    world.workset()->SetCurrentUndoState(undo);
    world.device(world.classA1, "002", {{"GD.A", "1"}});
    must(world.classA1->OwnElements()->Item("001")).Delete();
    saved.save();

    undo->Undo();
    saved.save();
    auto reopened = ProjectFile::open(file);
    EXPECT_THAT(differences(*world.database(), *reopened.database()), IsEmpty());
    EXPECT_TRUE(reopened.database()->objectByFullName("PLANT:@20|PIPECLASSES|PC-A1|001", nullptr));
    EXPECT_FALSE(reopened.database()->objectByFullName("PLANT:@20|PIPECLASSES|PC-A1|002", nullptr));

    undo->Redo();
    saved.save();
    EXPECT_THAT(differences(*world.database(), *ProjectFile::open(file).database()), IsEmpty());
}

TEST_F(PersistenceTest, AFileThatIsNotOursTooNewOrDamagedIsRefusedAndLeftAsItWas)
{
    // What opening says of a file it must refuse as not right, leaving it as it was.
    const auto refusal = [](const std::filesystem::path& path) {
        const auto before = bytesOf(path);
        try {
            ProjectFile::open(path);
        } catch (const PlatformError& e) {
            EXPECT_EQ(e.number(), err::Configuration) << path;
            EXPECT_EQ(bytesOf(path), before) << path;
            return std::string(e.what());
        }
        return std::string("accepted");
    };
    const auto text = directory / "notes.txt";
    std::ofstream(text) << "not a database at all, but long enough to look like a header or two.\n";
    EXPECT_NE(refusal(text), "accepted");
    const auto foreign = directory / "foreign.db";
    platform::sqlite::Connection::open(foreign, platform::sqlite::Connection::Mode::Create).exec("CREATE TABLE t(x)");
    EXPECT_NE(refusal(foreign), "accepted");

    // Copies of a good file changed with SQL: each is refused naming the file.
    RichWorld world;
    ProjectFile::create(file, world.database());
    const auto changedBy = [&](const std::string& name, const std::string& sql) {
        const auto copy = directory / name;
        std::filesystem::copy_file(file, copy);
        platform::sqlite::Connection::open(copy, platform::sqlite::Connection::Mode::ReadWrite).exec(sql);
        return copy;
    };
    EXPECT_THAT(refusal(changedBy("newer.pspec", "PRAGMA user_version = 99")), HasSubstr("newer version"));
    EXPECT_NE(refusal(changedBy("bad-query.pspec",
                                R"(UPDATE query_containers SET stored = '{"columns": [], "filters": []}')")),
              "accepted");
    const std::string firstDevice = "(SELECT min(id) FROM objects WHERE kind = 2)";
    const std::string lastDevice = "(SELECT max(id) FROM objects WHERE kind = 2)";
    EXPECT_THAT(refusal(changedBy("self.pspec", "UPDATE objects SET owner = id WHERE id = " + firstDevice)),
                HasSubstr("self.pspec is damaged: object"));
    EXPECT_THAT(refusal(changedBy("circle.pspec",
                                  "UPDATE objects SET owner = " + lastDevice + " WHERE id = " + firstDevice + ";" +
                                      "UPDATE objects SET owner = " + firstDevice + " WHERE id = " + lastDevice)),
                HasSubstr("its owners go round in a circle"));
    EXPECT_THAT(
        refusal(changedBy("deep.pspec",
                          "WITH RECURSIVE chain(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM chain WHERE n < 100000) "
                          "INSERT INTO objects(name, id, kind, project, owner, position) "
                          "SELECT 'D' || n, 10000000 + n, 2, 'PLANT', 10000000 + n - 1, 0 FROM chain;"
                          "UPDATE objects SET owner = " +
                              firstDevice + " WHERE id = 10000001")),
        HasSubstr("deep.pspec is damaged: its objects nest deeper than 256 levels"));
    EXPECT_THAT(
        refusal(changedBy("link.pspec", "UPDATE objects SET link = '99999999999999999999|001#GD.X' WHERE kind = 3")),
        HasSubstr("link.pspec is damaged: a link names object 99999999999999999999"));
    std::string deepQuery = R"({"columns": [], "filters": [], "sorts": [], "objectSet": )";
    for (int i = 0; i < 100'000; ++i) deepQuery += R"({"name": "N", "kind": "", "values": {}, "children": [)";
    deepQuery += R"({"name": "N", "kind": "", "values": {}, "children": []})";
    for (int i = 0; i < 100'000; ++i) deepQuery += "]}";
    EXPECT_THAT(refusal(changedBy("query.pspec", "UPDATE query_containers SET stored = '" + deepQuery + "}'")),
                HasSubstr("nests deeper than 512 levels"));
    // A row without a value is not damaged: it reads as an empty value.
    const auto opened =
        ProjectFile::open(changedBy("no-value.pspec", "UPDATE objects SET value = NULL WHERE kind = 5"));
    EXPECT_EQ(must(must(opened.database()->project("BASE")->tableRoot()->child("DN")).row("50")).Value(), "");

    const auto damaged = directory / "damaged.pspec";
    auto bytes = bytesOf(file);
    ASSERT_GT(bytes.size(), 3 * 4096u);
    std::fill(bytes.begin() + 4096, bytes.end(), '\xA5');
    std::ofstream(damaged, std::ios::binary) << bytes;
    EXPECT_NE(refusal(damaged), "accepted");

    EXPECT_EQ(errorNumber([&] { ProjectFile::open(directory / "missing.pspec"); }), err::FileAccess);
    EXPECT_EQ(errorNumber([&] { ProjectFile::create(file, world.database()); }), err::FileAccess);
}

TEST_F(PersistenceTest, WhatMayNotBeWrittenIsNeverWritten)
{
    RichWorld world;
    ProjectFile::create(file, world.database());
    const auto before = bytesOf(file);
    const auto written = std::filesystem::last_write_time(file);

    // A session that writes nothing leaves the file as it was, its time included.
    {
        auto idle = ProjectFile::open(file);
        EXPECT_FALSE(idle.undo());
        EXPECT_FALSE(idle.redo());
    }
    EXPECT_TRUE(bytesOf(file) == before);
    EXPECT_EQ(std::filesystem::last_write_time(file), written);

    // A file opened read-only.
    auto readOnly = ProjectFile::open(file, ProjectFile::Access::ReadOnly);
    const auto pipeClass = readOnly.database()->objectByFullName("PLANT:@20|PIPECLASSES|PC-A1", nullptr);
    must(must(pipeClass).Spec("GD.VFCD")).SetValue("10009");
    EXPECT_EQ(errorNumber([&] { readOnly.save(); }), err::ReadOnly);
    EXPECT_EQ(bytesOf(file), before);

    // A change to a project that has since lost its write access: refused
    // before the file is touched.
    auto writable = ProjectFile::open(file);
    const auto opened = bytesOf(file);
    const auto log = std::filesystem::path(file.string() + "-wal");
    const auto logged = bytesOf(log);
    const auto plant = writable.database()->project("PLANT");
    must(must(plant->ObjectByPath("@20|PIPECLASSES|PC-A1", 0)).Spec("GD.VFCD")).SetValue("10009");
    plant->setAccessRights(0);
    EXPECT_EQ(errorNumber([&] { writable.save(); }), err::ReadOnly);
    EXPECT_TRUE(bytesOf(file) == opened && bytesOf(log) == logged);

    // A project without write access is left alone while the others are saved.
    plant->setAccessRights(1);
    writable.save();
    // Closed, the database is one file again.
    {
        const auto closed = std::move(writable);
    }
    EXPECT_FALSE(std::filesystem::exists(log));
    EXPECT_EQ(ProjectFile::open(file).database()->project("BASE")->AccessRights(), 0);
}

TEST_F(PersistenceTest, SessionsSharingAFileWaitForEachOtherAndNeverSaveOverEachOther)
{
    RichWorld world;
    ProjectFile::create(file, world.database());

    // A lock that another connection holds for a moment is waited for.
    {
        const auto other = platform::sqlite::Connection::open(file, platform::sqlite::Connection::Mode::ReadWrite);
        other.exec("BEGIN EXCLUSIVE");
        std::thread letGo([&other] {
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            other.exec("COMMIT");
        });
        EXPECT_EQ(errorNumber([&] { ProjectFile::open(file); }), 0);
        letGo.join();
    }

    const auto elementIn = [](const ProjectFile& session, const std::string& name) {
        return session.database()->objectByFullName("PLANT:@20|PIPECLASSES|PC-A1|" + name, nullptr);
    };
    const auto addElement = [&](const ProjectFile& session, const std::string& name) {
        world.device(asDevice(session.database()->objectByFullName("PLANT:@20|PIPECLASSES|PC-A1", nullptr)), name,
                     {{"GD.Mark", name}});
    };
    auto first = ProjectFile::open(file);
    auto second = ProjectFile::open(file);
    auto idle = ProjectFile::open(file);
    addElement(first, "002");
    addElement(second, "003");
    first.save();

    // The second session read the file before the first saved: its save and
    // an undo would write over that save, and are refused untouched.
    const auto saved = bytesOf(file);
    const auto log = std::filesystem::path(file.string() + "-wal");
    const auto logged = bytesOf(log);
    EXPECT_EQ(errorNumber([&] { second.save(); }), err::FileChanged);
    EXPECT_EQ(errorNumber([&] { idle.undo(); }), err::FileChanged);
    EXPECT_TRUE(bytesOf(file) == saved && bytesOf(log) == logged);
    EXPECT_FALSE(elementIn(ProjectFile::open(file, ProjectFile::Access::ReadOnly), "003"));

    // Read anew, the file takes the change, and that session goes on
    // saving; now the first one is behind.
    auto again = ProjectFile::open(file);
    addElement(again, "003");
    again.save();
    addElement(again, "004");
    again.save();
    EXPECT_EQ(errorNumber([&] { first.save(); }), err::FileChanged);
    const auto reopened = ProjectFile::open(file, ProjectFile::Access::ReadOnly);
    for (const auto* name : {"002", "003", "004"}) EXPECT_EQ(world.value(elementIn(reopened, name), "GD.Mark"), name);
}

// A part of the database with a table of its own, saved with the objects.
class NoteSection final : public platform::FileSection {
public:
    std::string note;

    void createTables(const platform::sqlite::Connection& file) const override
    {
        file.exec("CREATE TABLE IF NOT EXISTS notes(text TEXT)");
    }
    void load(const platform::sqlite::Connection& file, platform::Database&) override
    {
        auto rows = file.prepare("SELECT text FROM notes");
        while (rows.step()) note = rows.text(0);
    }
    void save(const platform::sqlite::Connection& file, const platform::Database&) override
    {
        file.exec("DELETE FROM notes");
        file.prepare("INSERT INTO notes(text) VALUES(?1)").bind(1, note).run();
    }
};

TEST_F(PersistenceTest, ASectionKeepsItsOwnTablesInTheSameFile)
{
    RichWorld world;
    auto saved = ProjectFile::create(file, world.database());
    auto section = std::make_unique<NoteSection>();
    section->note = "query containers go here";
    saved.addSection(std::move(section));
    saved.save();

    auto reopened = ProjectFile::open(file);
    auto loaded = std::make_unique<NoteSection>();
    const auto& note = loaded->note;
    reopened.addSection(std::move(loaded));
    EXPECT_EQ(note, "query containers go here");
}

}  // namespace
}  // namespace pipespec
