#include "platform/Persistence.h"

#include "objectmodel/Errors.h"
#include "platform/PersistenceFormat.h"
#include "platform/SqliteFile.h"

#include <system_error>
#include <vector>

namespace pipespec::platform {

struct ProjectFile::State {
    sqlite::Connection file;
    std::shared_ptr<Database> database;
    std::string nameOverrides;
    std::vector<std::unique_ptr<FileSection>> sections;
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
    try {
        configure(file);
        sqlite::Transaction transaction(file);
        file.exec(format::kSchema);
        file.exec("PRAGMA application_id = " + std::to_string(format::kApplicationId));
        file.exec("PRAGMA user_version = " + std::to_string(format::kVersion));
        format::writeDatabase(file, *database, nameOverrides, format::SaveScope::Everything);
        transaction.commit();
    } catch (...) {
        // Half a new file is no file: it would pass for ours and hold nothing.
        { const auto closed = std::move(file); }
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
        throw;
    }
    database->forgetChanges();
    return ProjectFile(std::make_unique<State>(State{std::move(file), std::move(database), std::move(nameOverrides), {}}));
}

ProjectFile ProjectFile::open(const std::filesystem::path& path, Access access)
{
    auto file = sqlite::Connection::open(path, access == Access::ReadOnly ? sqlite::Connection::Mode::ReadOnly
                                                                           : sqlite::Connection::Mode::ReadWrite);
    checkFormat(file);
    configure(file);
    auto database = Database::create();
    auto nameOverrides = format::readDatabase(file, *database);
    return ProjectFile(std::make_unique<State>(State{std::move(file), std::move(database), std::move(nameOverrides), {}}));
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
    const auto summary = format::writeDatabase(file, *state_->database, state_->nameOverrides, format::SaveScope::Changes);
    for (const auto& section : state_->sections) section->save(file, *state_->database);
    transaction.commit();
    state_->database->forgetChanges();
    return summary;
}

}  // namespace pipespec::platform
