#pragma once

// The layout of a database file, shared by the code that writes it and the
// code that reads it. Not part of the platform's interface.
//
// One row of `objects` per stored device, attribute or chapter, standard
// table and row, keyed by its UniqueId number. A row names its owner's id
// (none for the roots and the table root of a project) and its position
// among the owner's members of its kind. Links to other objects hold the
// target's id, or for an inherited (temporary) target the id of the nearest
// stored object above it and the rest of the path from there. The small
// tables around it hold what belongs to projects and to the workset.
// Option values that are objects are kept as links are.
//
// A change of layout raises kVersion; a file of a higher version is refused.

#include "objectmodel/Variant.h"
#include "platform/persistence/Persistence.h"
#include "platform/persistence/SqliteFile.h"
#include "platform/store/Database.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace pipespec::platform::format {

// "PSPC" in the file header, so that no other SQLite file passes for ours.
inline constexpr std::int64_t kApplicationId = 0x50535043;
// 2: the undo journal; a program that does not keep it must not write the file.
inline constexpr std::int64_t kVersion = 2;

// The page size of a new file, in bytes.
inline constexpr int kPageSize = 1024;

inline constexpr std::string_view kSchema = R"sql(
CREATE TABLE meta(key TEXT PRIMARY KEY, value) WITHOUT ROWID;
CREATE TABLE projects(position INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE, base TEXT, access_rights INTEGER NOT NULL);
CREATE TABLE languages(project TEXT NOT NULL, position INTEGER NOT NULL, name TEXT NOT NULL,
                       PRIMARY KEY(project, position)) WITHOUT ROWID;
CREATE TABLE project_options(project TEXT NOT NULL, number INTEGER NOT NULL, kind INTEGER NOT NULL, value,
                             PRIMARY KEY(project, number)) WITHOUT ROWID;
CREATE TABLE workset_options(number INTEGER PRIMARY KEY, kind INTEGER NOT NULL, value);
CREATE TABLE app_values(name TEXT PRIMARY KEY, kind INTEGER NOT NULL, value) WITHOUT ROWID;
CREATE TABLE objects(
    name TEXT NOT NULL, description TEXT, xml TEXT, folder INTEGER, read_only INTEGER,
    create_option INTEGER, cdevice, value TEXT, value_type TEXT, standard_table, link, inherits,
    inherit_mode TEXT, control_type TEXT, control_properties TEXT, answer_mode INTEGER, linked_count INTEGER,
    value_locked INTEGER, x_values TEXT, language_values TEXT,
    id INTEGER PRIMARY KEY, kind INTEGER NOT NULL, project TEXT NOT NULL, owner INTEGER, position INTEGER NOT NULL);
CREATE INDEX objects_by_owner ON objects(owner);
)sql";

// The fields of an object row, in column order: the n-th field is column n
// of a SELECT and parameter n + 1 of an INSERT or UPDATE.
enum Field : int {
    Name,
    Description,
    Xml,
    Folder,
    ReadOnly,
    CreateOption,
    CDevice,
    Value,
    ValueType,
    StandardTable,
    Link,
    Inherits,
    InheritMode,
    ControlType,
    ControlProperties,
    AnswerMode,
    LinkedCount,
    ValueLocked,
    XValues,
    LanguageValues,
    FieldCount
};
// Where the object stands, after the fields.
enum Place : int { Id = FieldCount, Kind, Project, Owner, Position, ColumnCount };

inline constexpr std::array<std::string_view, ColumnCount> kColumns = {"name",
                                                                       "description",
                                                                       "xml",
                                                                       "folder",
                                                                       "read_only",
                                                                       "create_option",
                                                                       "cdevice",
                                                                       "value",
                                                                       "value_type",
                                                                       "standard_table",
                                                                       "link",
                                                                       "inherits",
                                                                       "inherit_mode",
                                                                       "control_type",
                                                                       "control_properties",
                                                                       "answer_mode",
                                                                       "linked_count",
                                                                       "value_locked",
                                                                       "x_values",
                                                                       "language_values",
                                                                       "id",
                                                                       "kind",
                                                                       "project",
                                                                       "owner",
                                                                       "position"};

enum class ObjectKind : std::int64_t { Root = 1, Device = 2, Specification = 3, Table = 4, Row = 5 };
ObjectKind kindOf(const StoredObject& object);

// How an option value is kept: a kind column and a value column.
enum class ValueKind : std::int64_t { Empty = 0, Flag = 1, Whole = 2, Real = 3, Text = 4, Object = 5 };

// An object as it is kept in a link column: the id of a stored object, a
// text for an inherited one (see inheritedLink), or NULL for none and for
// what is no longer in the database.
void bindLink(sqlite::Statement& statement, int parameter, const ObjectRef& target);

// Calls visit(member, position) for the own members of an owner, each list
// of one kind in order: devices, then attributes; tables, then rows.
template <class Visit>
void forEachMember(const StoredObject& owner, Visit&& visit)
{
    const auto each = [&visit](const auto& list) {
        std::size_t position = 0;
        for (const auto& member : list.items()) visit(std::static_pointer_cast<StoredObject>(member), position++);
    };
    switch (kindOf(owner)) {
    case ObjectKind::Root:
    case ObjectKind::Device:
        each(static_cast<const platform::Device&>(owner).ownChildren());
        each(static_cast<const platform::Device&>(owner).ownSpecs());
        break;
    case ObjectKind::Specification: each(static_cast<const platform::Specification&>(owner).ownSpecs()); break;
    case ObjectKind::Table:
        each(static_cast<const platform::StandardTable&>(owner).ownTables());
        each(static_cast<const platform::StandardTable&>(owner).ownRows());
        break;
    case ObjectKind::Row: break;
    }
}

// The members of a project itself: its roots, then its table root.
template <class Visit>
void forEachMember(const StoreProject& project, Visit&& visit)
{
    std::size_t position = 0;
    for (const auto& root : project.roots().items()) visit(std::static_pointer_cast<StoredObject>(root), position++);
    visit(std::static_pointer_cast<StoredObject>(project.tableRoot()), std::size_t{0});
}

// What a save of changes rewrites: the list of roots of every writable
// project, then each changed object still in the database, in the order of
// the file. Made before the file is touched: a change to a project without
// write access is error ReadOnly, and the file stays as it was.
struct ChangedOwner {
    const StoreProject* project;
    const StoredObject* object;  // none: the project's list of roots
    std::int64_t id = 0;         // the object's
};
std::vector<ChangedOwner> changedOwners(const Database& database);

// Writes all of a database into a new file.
SaveSummary writeEverything(const sqlite::Connection& file, const Database& database, std::string_view nameOverrides);
// Writes what changed since the last save: `owners` from changedOwners. It
// tells `beforeUpdate` the ids of the rows whose fields it is about to
// rewrite in place, all at once; these updates are the last writes to objects.
using BeforeUpdate = std::function<void(const std::vector<std::int64_t>& ids)>;
SaveSummary writeChanges(const sqlite::Connection& file, const Database& database, std::string_view nameOverrides,
                         const std::vector<ChangedOwner>& owners, const BeforeUpdate& beforeUpdate);

// The save generation: a number that every write of a file counts up, kept
// beside the settings; a file that never had one is at 0.
std::int64_t readGeneration(const sqlite::Connection& file);
void writeGeneration(const sqlite::Connection& file, std::int64_t generation);

// Reads a whole file into an empty database; gives the name table overrides.
// A file that does not hold together is error Configuration.
std::string readDatabase(const sqlite::Connection& file, Database& database);

}  // namespace pipespec::platform::format
