#include "platform/persistence/Persistence.h"

#include "objectmodel/Errors.h"
#include "platform/persistence/PersistenceFormat.h"
#include "platform/query/QueryContainerFile.h"
#include "platform/persistence/UndoJournal.h"
#include "platform/persistence/SqliteFile.h"

#include <optional>
#include <system_error>
#include <vector>

namespace pipespec::platform {

struct ProjectFile::State {
    State(sqlite::Connection connection, std::shared_ptr<Database> kept, std::string overrides,
          std::vector<std::unique_ptr<FileSection>> kinds)
        : file(std::move(connection)), database(std::move(kept)), nameOverrides(std::move(overrides)), sections(std::move(kinds))
    {
        if (!file.readOnly()) journal.emplace(file);
    }

    // A closed database is one file again, which a reader without write
    // access to its folder can open. Another connection still on the file
    // keeps it in log mode until the last one closes; a destructor cannot
    // report that, nor is anything lost by it.
    ~State()
    {
        if (!journal) return;
        try {
            file.exec("PRAGMA journal_mode = DELETE");
        } catch (const PlatformError&) {
        }
    }
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    sqlite::Connection file;
    std::shared_ptr<Database> database;
    std::string nameOverrides;
    std::vector<std::unique_ptr<FileSection>> sections;
    // None for a file that may not be written.
    std::optional<format::UndoJournal> journal;
};

namespace {

// Small pages: a typical save changes a few attributes of many objects,
// each in a page of its own, and every changed page is written whole. Only a
// new file takes it; an older one keeps its page size.
void configureNew(const sqlite::Connection& file)
{
    file.exec("PRAGMA page_size = " + std::to_string(format::kPageSize) + "; PRAGMA synchronous = FULL");
}

// While a file is open for writing, a save appends the pages it changed to a
// log beside the file (write-ahead logging) and syncs once, instead of
// copying every page to a rollback journal before changing it in place. The
// log is folded into the file when it passes kLogPages and when the file is
// closed. Full syncs make a save hold across a power cut; a kill during one
// leaves the last complete save, which the log gives back at the next open.
// The page cache holds the pages of a large save, so that none of them is
// written to the log before the commit and again with it.
constexpr int kLogPages = 65536;
constexpr int kCacheKiB = 65536;

void configureForWriting(const sqlite::Connection& file)
{
    if (file.readOnly()) return;
    file.exec("PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL; PRAGMA cache_size = -" + std::to_string(kCacheKiB) +
              "; PRAGMA wal_autocheckpoint = " + std::to_string(kLogPages));
}

// Ours, of a version we read; anything else is refused before any write.
void checkFormat(const sqlite::Connection& file)
{
    if (file.integer("PRAGMA application_id") != format::kApplicationId)
        throw PlatformError(err::Configuration, "Database file " + file.path() + " is not a pipespec database");
    const auto version = file.integer("PRAGMA user_version");
    if (version > format::kVersion)
        throw PlatformError(err::Configuration, "Database file " + file.path() + " was written by a newer version (format " +
                                                    std::to_string(version) + "); this program reads format " +
                                                    std::to_string(format::kVersion) + " and older");
    if (version < 1) throw PlatformError(err::Configuration, "Database file " + file.path() + " is damaged: it has no format version");
}

// The sections that every file keeps, so that no caller can forget one and
// lose what it holds at the next save.
std::vector<std::unique_ptr<FileSection>> standardSections()
{
    std::vector<std::unique_ptr<FileSection>> sections;
    sections.push_back(queryContainerSection());
    return sections;
}

}  // namespace

ProjectFile::ProjectFile(std::unique_ptr<State> state) : state_(std::move(state)) { state_->database->trackChanges(true); }
ProjectFile::ProjectFile(ProjectFile&&) noexcept = default;

ProjectFile& ProjectFile::operator=(ProjectFile&& other) noexcept
{
    if (this != &other) {
        if (state_) state_->database->trackChanges(false);
        state_ = std::move(other.state_);
    }
    return *this;
}

ProjectFile::~ProjectFile()
{
    if (state_) state_->database->trackChanges(false);
}

ProjectFile ProjectFile::create(const std::filesystem::path& path, std::shared_ptr<Database> database, std::string nameOverrides)
{
    auto file = sqlite::Connection::open(path, sqlite::Connection::Mode::Create);
    auto sections = standardSections();
    try {
        configureNew(file);
        sqlite::Transaction transaction(file);
        file.exec(format::kSchema);
        file.exec("PRAGMA application_id = " + std::to_string(format::kApplicationId));
        file.exec("PRAGMA user_version = " + std::to_string(format::kVersion));
        format::writeDatabase(file, *database, nameOverrides, format::SaveScope::Everything);
        for (const auto& section : sections) {
            section->createTables(file);
            section->save(file, *database);
        }
        transaction.commit();
        configureForWriting(file);
    } catch (...) {
        // Half a new file is no file: it would pass for ours and hold nothing.
        { const auto closed = std::move(file); }
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
        throw;
    }
    database->forgetChanges();
    return ProjectFile(
        std::make_unique<State>(std::move(file), std::move(database), std::move(nameOverrides), std::move(sections)));
}

ProjectFile ProjectFile::open(const std::filesystem::path& path, Access access)
{
    auto file = sqlite::Connection::open(path, access == Access::ReadOnly ? sqlite::Connection::Mode::ReadOnly
                                                                           : sqlite::Connection::Mode::ReadWrite);
    checkFormat(file);
    auto database = Database::create();
    auto nameOverrides = format::readDatabase(file, *database);
    ProjectFile opened(std::make_unique<State>(std::move(file), std::move(database), std::move(nameOverrides),
                                                std::vector<std::unique_ptr<FileSection>>{}));
    for (auto& section : standardSections()) opened.addSection(std::move(section));
    // Only a file that was read whole is switched to the log: a refused one stays as it was.
    configureForWriting(opened.state_->file);
    return opened;
}

const std::shared_ptr<Database>& ProjectFile::database() const { return state_->database; }
const std::string& ProjectFile::nameOverrides() const { return state_->nameOverrides; }
void ProjectFile::setNameOverrides(std::string json) { state_->nameOverrides = std::move(json); }

void ProjectFile::addSection(std::unique_ptr<FileSection> section)
{
    if (!state_->file.readOnly()) section->createTables(state_->file);
    section->load(state_->file, *state_->database);
    state_->sections.push_back(std::move(section));
}

SaveSummary ProjectFile::save()
{
    const auto& file = state_->file;
    if (file.readOnly()) throw PlatformError(err::ReadOnly, "Database file " + file.path() + " is open read-only; nothing is saved");
    sqlite::Transaction transaction(file);
    auto& journal = *state_->journal;
    journal.beginSave();
    const auto summary = format::writeDatabase(file, *state_->database, state_->nameOverrides, format::SaveScope::Changes,
                                               [&journal](const auto& ids) { journal.recordBeforeUpdate(ids); });
    for (const auto& section : state_->sections) section->save(file, *state_->database);
    journal.endSave();
    transaction.commit();
    state_->database->forgetChanges();
    return summary;
}

bool ProjectFile::undo() { return replay(true); }
bool ProjectFile::redo() { return replay(false); }

std::size_t ProjectFile::undoSteps() const { return state_->journal ? state_->journal->steps(format::UndoJournal::Side::Undo) : 0; }
std::size_t ProjectFile::redoSteps() const { return state_->journal ? state_->journal->steps(format::UndoJournal::Side::Redo) : 0; }

bool ProjectFile::replay(bool undoing)
{
    auto& state = *state_;
    if (!state.journal)
        throw PlatformError(err::ReadOnly, "Database file " + state.file.path() + " is open read-only; nothing is undone or redone");
    // What is not saved is not in the journal: taking back a step under it
    // would lose it without a word.
    if (!state.database->changes().empty())
        throw PlatformError(err::InvalidCall, "Database file " + state.file.path() +
                                                  ": the database has unsaved changes; save them before undo or redo");
    sqlite::Transaction transaction(state.file);
    if (!state.journal->replay(undoing ? format::UndoJournal::Side::Undo : format::UndoJournal::Side::Redo)) return false;
    // The file is read back before the commit: a step that leaves the file
    // unreadable is not taken.
    auto database = Database::create();
    auto nameOverrides = format::readDatabase(state.file, *database);
    for (const auto& section : state.sections) section->load(state.file, *database);
    transaction.commit();
    state.database->trackChanges(false);
    state.database = std::move(database);
    state.nameOverrides = std::move(nameOverrides);
    state.database->trackChanges(true);
    return true;
}

}  // namespace pipespec::platform
