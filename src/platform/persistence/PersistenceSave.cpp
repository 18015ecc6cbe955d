#include "platform/persistence/PersistenceFormat.h"

#include "objectmodel/Errors.h"
#include "objectmodel/Options.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace pipespec::platform::format {

ObjectKind kindOf(const StoredObject& object)
{
    switch (object.SystemType()) {
    case systemtype::Root: return ObjectKind::Root;
    case systemtype::Device: return ObjectKind::Device;
    case systemtype::Specification: return ObjectKind::Specification;
    case systemtype::StandardTable: return ObjectKind::Table;
    case systemtype::StandardValue: return ObjectKind::Row;
    default:
        throw PlatformError(err::Internal, object.SystemFullName() + " is no kind of object a database file keeps");
    }
}

namespace {
// An inherited object is kept as the id of the nearest stored object above
// it and the rest of its full name from there: "1234|001#CONN.DN1". So the
// link survives a rename above, and goes when that object goes.
std::string inheritedLink(const StoredObject& temporary)
{
    auto above = temporary.owner();
    while (above && above->SystemTemporary()) above = above->owner();
    if (!above) return {};
    const auto fullName = temporary.SystemFullName();
    return std::to_string(above->uniqueNumber()) + fullName.substr(above->SystemFullName().size());
}
}  // namespace

void bindLink(sqlite::Statement& statement, int parameter, const ObjectRef& target)
{
    const auto stored = std::dynamic_pointer_cast<StoredObject>(target);
    if (!stored || stored->IsDeleted())
        statement.bindNull(parameter);
    else if (stored->SystemTemporary())
        statement.bind(parameter, inheritedLink(*stored));
    else
        statement.bind(parameter, static_cast<std::int64_t>(stored->uniqueNumber()));
}

namespace {

using sqlite::Statement;

std::int64_t idOf(const StoredObject& object) { return static_cast<std::int64_t>(object.uniqueNumber()); }

void bindFlag(Statement& statement, int parameter, bool flag) { statement.bind(parameter, std::int64_t{flag ? 1 : 0}); }

void bindTexts(Statement& statement, int parameter, const std::vector<std::string>& texts)
{
    if (texts.empty())
        statement.bindNull(parameter);
    else
        statement.bind(parameter, nlohmann::json(texts).dump());
}

// Binds the fields of an object to parameters 1 to FieldCount; the fields
// another kind has stay NULL. Texts kept in the object are read in place.
void bindFields(Statement& statement, const StoredObject& object)
{
    const auto at = [](Field field) { return field + 1; };
    statement.bindInPlace(at(Name), object.nameView());
    statement.bindInPlace(at(Description), object.storedDescription());
    statement.bindInPlace(at(Xml), object.storedXml());
    bindFlag(statement, at(Folder), object.IsFolder());
    bindFlag(statement, at(ReadOnly), object.ReadOnly());
    switch (kindOf(object)) {
    case ObjectKind::Root:
    case ObjectKind::Device: {
        const auto& device = static_cast<const platform::Device&>(object);
        statement.bind(at(CreateOption), std::int64_t{device.CreateOption()});
        bindLink(statement, at(CDevice), device.CDevice());
        break;
    }
    case ObjectKind::Specification: {
        const auto& spec = static_cast<const platform::Specification&>(object);
        const auto& extras = spec.extras();
        statement.bindInPlace(at(Value), spec.plainValue());
        statement.bind(at(ValueType), spec.ValueType());
        bindLink(statement, at(StandardTable), extras.table);
        bindLink(statement, at(Link), extras.link);
        bindLink(statement, at(Inherits), extras.inheritedChapter);
        statement.bindInPlace(at(InheritMode), extras.inheritMode);
        statement.bindInPlace(at(ControlType), extras.controlType);
        statement.bindInPlace(at(ControlProperties), extras.controlProperties);
        statement.bind(at(AnswerMode), std::int64_t{extras.answerMode});
        statement.bind(at(LinkedCount), std::int64_t{extras.linkedCount});
        bindFlag(statement, at(ValueLocked), spec.valueLocked());
        bindTexts(statement, at(XValues), extras.xValues);
        bindTexts(statement, at(LanguageValues), extras.languageValues);
        break;
    }
    case ObjectKind::Row:
        statement.bindInPlace(at(Value), static_cast<const platform::StandardValue&>(object).plainValue());
        break;
    case ObjectKind::Table: break;
    }
}

// Binds an option value as a kind at `parameter` and the value after it.
void bindOption(Statement& statement, int parameter, const Variant& value, const std::string& where)
{
    const auto kind = [&](ValueKind k) { statement.bind(parameter, static_cast<std::int64_t>(k)); };
    std::visit(
        [&](const auto& held) {
            using T = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<T, std::monostate>) {
                kind(ValueKind::Empty);
            } else if constexpr (std::is_same_v<T, bool>) {
                kind(ValueKind::Flag);
                bindFlag(statement, parameter + 1, held);
            } else if constexpr (std::is_same_v<T, std::int64_t>) {
                kind(ValueKind::Whole);
                statement.bind(parameter + 1, held);
            } else if constexpr (std::is_same_v<T, double>) {
                kind(ValueKind::Real);
                statement.bind(parameter + 1, held);
            } else if constexpr (std::is_same_v<T, std::string>) {
                kind(ValueKind::Text);
                statement.bind(parameter + 1, held);
            } else if constexpr (std::is_same_v<T, ObjectRef>) {
                kind(ValueKind::Object);
                bindLink(statement, parameter + 1, held);
            } else {
                throw PlatformError(err::NotSupported,
                                    where + " holds a list or a map, which a database file cannot keep");
            }
        },
        value.storage());
}

// Whether objects are part of the database now: not deleted, not inherited,
// and each owner up to a root still holds them. The changed objects of a save
// share their owners, so what was found for an owner is kept.
class Membership {
public:
    bool holds(const StoredObject& object)
    {
        if (const auto known = known_.find(&object); known != known_.end()) return known->second;
        const bool held = check(object);
        known_.emplace(&object, held);
        return held;
    }

private:
    bool check(const StoredObject& object)
    {
        if (object.IsDeleted() || object.SystemTemporary()) return false;
        const auto owner = object.owner();
        const auto name = object.nameView();
        if (!owner) {
            const auto project = object.storeProject();
            return project && (project->root(name).get() == &object || project->tableRoot().get() == &object);
        }
        const auto* held = [&]() -> const StoredObject* {
            switch (kindOf(object)) {
            case ObjectKind::Root:
            case ObjectKind::Device: return static_cast<const platform::Device&>(*owner).ownChildren().find(name).get();
            case ObjectKind::Specification: return static_cast<const SpecHolder&>(*owner).ownSpecs().find(name).get();
            case ObjectKind::Table: return static_cast<const platform::StandardTable&>(*owner).child(name).get();
            case ObjectKind::Row: return static_cast<const platform::StandardTable&>(*owner).row(name).get();
            }
            return nullptr;
        }();
        return held == &object && holds(*owner);
    }

    std::unordered_map<const StoredObject*, bool> known_;
};

class Writer {
public:
    explicit Writer(const sqlite::Connection& file)
        : file_(file),
          insert_(file.prepare(insertSql())),
          update_(file.prepare(updateSql())),
          membersOf_(file.prepare("SELECT id, position FROM objects WHERE owner = ?1")),
          rootsOf_(file.prepare("SELECT id, position FROM objects WHERE owner IS NULL AND project = ?1")),
          removeTree_(file.prepare("WITH RECURSIVE doomed(id) AS (SELECT ?1 UNION ALL SELECT objects.id FROM objects "
                                   "JOIN doomed ON objects.owner = doomed.id) DELETE FROM objects WHERE id IN doomed"))
    {
    }

    SaveSummary everything(const Database& database)
    {
        for (const auto& project : database.projects())
            forEachMember(*project,
                          [&](const auto& member, std::size_t position) { writeTree(*member, nullptr, position); });
        return summary();
    }

    // Each changed object gets its fields rewritten and its members in the
    // file made to match: those gone are removed with all below them, new
    // ones are written whole, moved ones get their new position. The roots
    // of every writable project are matched the same way, as a project takes
    // new roots without a change of any object. Removal goes first for all,
    // so that an object moved to another owner is written after it left.
    // The members in the file are read once, before removal: what a removal
    // takes away below another changed owner is written again whole by the
    // owner it moved to.
    SaveSummary changes(const std::vector<ChangedOwner>& owners, const BeforeUpdate& beforeUpdate)
    {
        std::vector<FileMembers> inFile;
        inFile.reserve(owners.size());
        for (const auto& owner : owners) inFile.push_back(membersInFile(owner));
        for (std::size_t i = 0; i < owners.size(); ++i) removeGoneMembers(owners[i], inFile[i]);
        for (std::size_t i = 0; i < owners.size(); ++i) writeNewMembers(owners[i], inFile[i]);
        if (beforeUpdate) {
            std::vector<std::int64_t> ids;
            ids.reserve(owners.size());
            for (const auto& owner : owners)
                if (owner.object) ids.push_back(owner.id);
            beforeUpdate(ids);
        }
        for (const auto& owner : owners)
            if (owner.object) updateFields(*owner.object);
        return summary();
    }

private:
    SaveSummary summary() const { return {written_.size(), removed_}; }

    static std::string insertSql()
    {
        std::string columns;
        std::string parameters;
        for (std::size_t i = 0; i < kColumns.size(); ++i) {
            columns += (i ? ", " : "") + std::string(kColumns[i]);
            parameters += (i ? ", ?" : "?") + std::to_string(i + 1);
        }
        return "INSERT OR REPLACE INTO objects(" + columns + ") VALUES(" + parameters + ")";
    }

    static std::string updateSql()
    {
        std::string assignments;
        for (int i = 0; i < FieldCount; ++i)
            assignments +=
                (i ? ", " : "") + std::string(kColumns[static_cast<std::size_t>(i)]) + " = ?" + std::to_string(i + 1);
        return "UPDATE objects SET " + assignments + " WHERE id = ?" + std::to_string(Id + 1);
    }

    void writeRow(const StoredObject& object, const StoredObject* owner, std::size_t position)
    {
        bindFields(insert_, object);
        insert_.bind(Id + 1, idOf(object));
        insert_.bind(Kind + 1, static_cast<std::int64_t>(kindOf(object)));
        insert_.bind(Project + 1, must(object.storeProject()).Name());
        if (owner) insert_.bind(Owner + 1, idOf(*owner));
        insert_.bind(Position + 1, static_cast<std::int64_t>(position));
        insert_.run();
        written_.insert(idOf(object));
    }

    void writeTree(const StoredObject& object, const StoredObject* owner, std::size_t position)
    {
        writeRow(object, owner, position);
        forEachMember(object, [&](const auto& member, std::size_t at) { writeTree(*member, &object, at); });
    }

    void updateFields(const StoredObject& object)
    {
        bindFields(update_, object);
        update_.bind(Id + 1, idOf(object));
        update_.run();
        written_.insert(idOf(object));
    }

    template <class Visit>
    void visitMembers(const ChangedOwner& owner, Visit&& visit) const
    {
        if (owner.object)
            forEachMember(*owner.object, visit);
        else
            forEachMember(*owner.project, visit);
    }

    // The owner's members as the file has them: id -> position.
    using FileMembers = std::unordered_map<std::int64_t, std::int64_t>;
    FileMembers membersInFile(const ChangedOwner& owner)
    {
        auto& query = owner.object ? membersOf_ : rootsOf_;
        if (owner.object)
            query.bind(1, idOf(*owner.object));
        else
            query.bind(1, owner.project->Name());
        FileMembers members;
        while (query.step()) members.emplace(query.integer(0), query.integer(1));
        query.reset();
        return members;
    }

    // Leaves in `inFile` the members that stay.
    void removeGoneMembers(const ChangedOwner& owner, FileMembers& inFile)
    {
        if (inFile.empty()) return;
        auto gone = inFile;
        visitMembers(owner, [&](const auto& member, std::size_t) { gone.erase(idOf(*member)); });
        for (const auto& [id, position] : gone) {
            removeTree_.bind(1, id);
            removeTree_.run();
            removed_ += static_cast<std::size_t>(file_.changes());
            inFile.erase(id);
        }
    }

    void writeNewMembers(const ChangedOwner& owner, const FileMembers& inFile)
    {
        visitMembers(owner, [&](const auto& member, std::size_t position) {
            const auto found = inFile.find(idOf(*member));
            if (found == inFile.end())
                writeTree(*member, owner.object, position);
            else if (found->second != static_cast<std::int64_t>(position))
                writeRow(*member, owner.object, position);
        });
    }

    const sqlite::Connection& file_;
    Statement insert_;
    Statement update_;
    Statement membersOf_;
    Statement rootsOf_;
    Statement removeTree_;
    // An object written whole and then its fields again counts once.
    std::unordered_set<std::int64_t> written_;
    std::size_t removed_ = 0;
};

constexpr std::string_view kGenerationKey = "generation";

// Everything that is not an object: the projects themselves, their languages
// and options, the workset's options and the application values. These are
// few and rewritten whole, the generation aside; a project without write
// access keeps what the file has, unless the file is new.
enum class SaveScope { Everything, Changes };
void writeSettings(const sqlite::Connection& file, const Database& database, std::string_view nameOverrides,
                   SaveScope scope)
{
    file.prepare("DELETE FROM meta WHERE key <> ?1").bind(1, kGenerationKey).run();
    file.exec("DELETE FROM projects; DELETE FROM workset_options; DELETE FROM app_values");
    auto meta = file.prepare("INSERT INTO meta(key, value) VALUES(?1, ?2)");
    const auto setMeta = [&meta](std::string_view key, const auto& bindValue) {
        meta.bind(1, key);
        bindValue(meta, 2);
        meta.run();
    };
    const auto text = [](std::string_view value) { return [value](Statement& s, int at) { s.bind(at, value); }; };
    if (const auto system = database.systemProject()) setMeta("system_project", text(system->Name()));
    if (const auto current = database.workset()->CurrentProject()) setMeta("current_project", text(current->Name()));
    setMeta("name_overrides", text(nameOverrides));
    const auto globals = database.workset()->globals();
    setMeta("pipe_class_root", [&](Statement& s, int at) { bindLink(s, at, globals->PipeClassRootCDevice()); });
    setMeta("designer_run",
            [&](Statement& s, int at) { bindFlag(s, at, database.workset()->appGlobals()->TubrixDesignerRun()); });

    auto project = file.prepare("INSERT INTO projects(position, name, base, access_rights) VALUES(?1, ?2, ?3, ?4)");
    auto removeLanguages = file.prepare("DELETE FROM languages WHERE project = ?1");
    auto language = file.prepare("INSERT INTO languages(project, position, name) VALUES(?1, ?2, ?3)");
    auto removeOptions = file.prepare("DELETE FROM project_options WHERE project = ?1");
    auto projectOption =
        file.prepare("INSERT INTO project_options(project, number, kind, value) VALUES(?1, ?2, ?3, ?4)");
    std::int64_t position = 0;
    for (const auto& each : database.projects()) {
        project.bind(1, position++).bind(2, each->Name()).bind(4, std::int64_t{each->AccessRights()});
        if (const auto base = each->BaseProject()) project.bind(3, base->Name());
        project.run();
        if (scope == SaveScope::Changes && !each->writable()) continue;

        removeLanguages.bind(1, each->Name());
        removeLanguages.run();
        std::int64_t index = 0;
        for (const auto& name : each->languages()) {
            language.bind(1, each->Name()).bind(2, index++).bind(3, name->Name());
            language.run();
        }
        removeOptions.bind(1, each->Name());
        removeOptions.run();
        for (const auto& [number, value] : each->options()) {
            projectOption.bind(1, each->Name()).bind(2, std::int64_t{number});
            bindOption(projectOption, 3, value, "option " + std::to_string(number) + " of project " + each->Name());
            projectOption.run();
        }
    }

    auto worksetOption = file.prepare("INSERT INTO workset_options(number, kind, value) VALUES(?1, ?2, ?3)");
    for (const auto& [number, value] : globals->options()) {
        if (number == option::PipeClassCache) continue;
        worksetOption.bind(1, std::int64_t{number});
        bindOption(worksetOption, 2, value, "workset option " + std::to_string(number));
        worksetOption.run();
    }
    auto appValue = file.prepare("INSERT INTO app_values(name, kind, value) VALUES(?1, ?2, ?3)");
    for (const auto& [name, value] : database.workset()->appGlobals()->values()) {
        appValue.bind(1, name);
        bindOption(appValue, 2, value, "application value " + name);
        appValue.run();
    }
}

}  // namespace

std::vector<ChangedOwner> changedOwners(const Database& database)
{
    std::vector<ChangedOwner> owners;
    for (const auto& project : database.projects())
        if (project->writable()) owners.push_back({project.get(), nullptr});
    const auto projects = static_cast<std::ptrdiff_t>(owners.size());
    Membership membership;
    for (const auto& object : database.changes()) {
        if (!membership.holds(*object)) continue;
        const auto& project = must(object->storeProject());
        if (!project.writable())
            throw PlatformError(err::ReadOnly, "no write access to project " + project.Name() + ": " +
                                                   object->SystemFullName() + " was changed; nothing is saved");
        owners.push_back({&project, object.get(), idOf(*object)});
    }
    // In the order of the file, so that the pages are read and written in sequence.
    std::sort(owners.begin() + projects, owners.end(),
              [](const ChangedOwner& a, const ChangedOwner& b) { return a.id < b.id; });
    return owners;
}

SaveSummary writeEverything(const sqlite::Connection& file, const Database& database, std::string_view nameOverrides)
{
    const auto summary = Writer(file).everything(database);
    writeSettings(file, database, nameOverrides, SaveScope::Everything);
    return summary;
}

SaveSummary writeChanges(const sqlite::Connection& file, const Database& database, std::string_view nameOverrides,
                         const std::vector<ChangedOwner>& owners, const BeforeUpdate& beforeUpdate)
{
    const auto summary = Writer(file).changes(owners, beforeUpdate);
    writeSettings(file, database, nameOverrides, SaveScope::Changes);
    return summary;
}

std::int64_t readGeneration(const sqlite::Connection& file)
{
    auto generation = file.prepare("SELECT value FROM meta WHERE key = ?1");
    return generation.bind(1, kGenerationKey).step() ? generation.integer(0) : 0;
}

void writeGeneration(const sqlite::Connection& file, std::int64_t generation)
{
    file.prepare("INSERT OR REPLACE INTO meta(key, value) VALUES(?1, ?2)")
        .bind(1, kGenerationKey)
        .bind(2, generation)
        .run();
}

}  // namespace pipespec::platform::format
