#include "platform/Persistence.h"

#include "objectmodel/Errors.h"
#include "platform/PersistenceFormat.h"
#include "platform/QueryContainerFile.h"
#include "platform/UndoJournal.h"
#include "platform/SqliteFile.h"

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

    sqlite::Connection file;
    std::shared_ptr<Database> database;
    std::string nameOverrides;
    std::vector<std::unique_ptr<FileSection>> sections;
    // None for a file that may not be written.
    std::optional<format::UndoJournal> journal;
};

namespace {

// A kill during a save must leave the last complete save: the rollback
// journal undoes a cut-off transaction when the file is next opened, and
// full syncs make that hold across a power cut too. A journal beside the
// file exists only while a save runs, so a closed database is one file.
void configure(const sqlite::Connection& file)
{
    if (file.readOnly()) return;
    file.exec("PRAGMA journal_mode = DELETE; PRAGMA synchronous = FULL");
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
        configure(file);
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
    configure(file);
    auto database = Database::create();
    auto nameOverrides = format::readDatabase(file, *database);
    ProjectFile opened(std::make_unique<State>(std::move(file), std::move(database), std::move(nameOverrides),
                                                std::vector<std::unique_ptr<FileSection>>{}));
    for (auto& section : standardSections()) opened.addSection(std::move(section));
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
    state_->journal->beginSave();
    const auto summary = format::writeDatabase(file, *state_->database, state_->nameOverrides, format::SaveScope::Changes);
    for (const auto& section : state_->sections) section->save(file, *state_->database);
    state_->journal->endSave();
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
