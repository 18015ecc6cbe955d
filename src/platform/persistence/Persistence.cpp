#include "platform/persistence/Persistence.h"

#include "objectmodel/Errors.h"
#include "platform/persistence/PersistenceFormat.h"
#include "platform/persistence/SqliteFile.h"
#include "platform/persistence/UndoJournal.h"
#include "platform/query/QueryContainerFile.h"

#include <optional>
#include <random>
#include <system_error>
#include <vector>

namespace pipespec::platform {

namespace {

// Small pages: a typical save changes a few attributes of many objects,
// each in a page of its own, and every changed page is written whole. Only a
// new file takes it; an older one keeps its page size.
void configureNew(const sqlite::Connection& file)
{
    file.exec("PRAGMA page_size = " + std::to_string(format::kPageSize) +
              "; PRAGMA journal_mode = MEMORY; PRAGMA synchronous = FULL");
}

// A closed database is one file, its header set to the rollback-journal
// mode (no write-ahead log, hence no file beside it). The first write of a
// session switches it to write-ahead logging: a save appends the pages it
// changed to a log beside the file and syncs once, instead of copying every
// page to a rollback journal before changing it in place. The log is folded
// into the file when it passes kLogPages and when the session ends, which
// switches the file back. Full syncs make a save hold across a power cut; a
// kill during one leaves the last complete save, which the log gives back at
// the next open. The page cache holds the pages of a large save, so that none
// of them is written to the log before the commit and again with it.
constexpr int kLogPages = 65536;
constexpr int kCacheKiB = 65536;

void configureForWriting(const sqlite::Connection& file)
{
    file.exec("PRAGMA synchronous = FULL; PRAGMA cache_size = -" + std::to_string(kCacheKiB) +
              "; PRAGMA wal_autocheckpoint = " + std::to_string(kLogPages));
}

// A switch rewrites the mode in the file's first page. It goes by way of a
// journal in memory, which leaves no journal file beside the database for a
// kill to make hot (a reader could not open the file until a writer rolled
// it back) and needs no new space: on a full disk the file still goes back
// to the mode that a reader opens without making files of its own.
// `mode` as SQLite names it: "wal", "delete".
void switchJournal(const sqlite::Connection& file, const std::string& mode)
{
    file.exec("PRAGMA journal_mode = MEMORY");
    try {
        if (file.text("PRAGMA journal_mode = " + mode) == mode) return;
        throw PlatformError(err::FileAccess,
                            "Database file " + file.path() + " cannot be given a " + mode + " journal");
    } catch (const PlatformError&) {
        // Never left with the journal in memory, which a kill during a write would not survive.
        file.exec("PRAGMA journal_mode = DELETE");
        throw;
    }
}

// Ours, of a version we read; anything else is refused before any write.
void checkFormat(const sqlite::Connection& file)
{
    if (file.integer("PRAGMA application_id") != format::kApplicationId)
        throw PlatformError(err::Configuration, "Database file " + file.path() + " is not a pipespec database");
    const auto version = file.integer("PRAGMA user_version");
    if (version > format::kVersion)
        throw PlatformError(err::Configuration, "Database file " + file.path() +
                                                    " was written by a newer version (format " +
                                                    std::to_string(version) + "); this program reads format " +
                                                    std::to_string(format::kVersion) + " and older");
    if (version < 1)
        throw PlatformError(err::Configuration,
                            "Database file " + file.path() + " is damaged: it has no format version");
}

// The sections that every file keeps, so that no caller can forget one and
// lose what it holds at the next save.
std::vector<std::unique_ptr<FileSection>> standardSections()
{
    std::vector<std::unique_ptr<FileSection>> sections;
    sections.push_back(queryContainerSection());
    return sections;
}

// A new file is written under a name of its own beside the target and given
// the target's name only when complete, so that no one ever opens half a
// file: a kill on the way leaves the draft, never a damaged database.
std::filesystem::path draftOf(const std::filesystem::path& path)
{
    std::random_device random;
    return path.string() + ".new-" + std::to_string(random());
}

// Gives the draft the target's name unless that exists by now.
void publish(const std::filesystem::path& draft, const std::filesystem::path& path)
{
    std::error_code failed;
    std::filesystem::create_hard_link(draft, path, failed);
    if (failed == std::errc::file_exists)
        throw PlatformError(err::FileAccess,
                            "Database file " + path.string() + " exists already; it is not overwritten");
    if (failed)
        throw PlatformError(err::FileAccess, "Database file " + path.string() + " cannot be made: " + failed.message());
    std::filesystem::remove(draft, failed);
}

}  // namespace

struct ProjectFile::State {
    State(sqlite::Connection connection, std::shared_ptr<Database> kept, std::string overrides,
          std::vector<std::unique_ptr<FileSection>> kinds, std::int64_t generationRead)
        : file(std::move(connection)),
          database(std::move(kept)),
          nameOverrides(std::move(overrides)),
          sections(std::move(kinds)),
          generation(generationRead)
    {
        if (file.readOnly()) return;
        configureForWriting(file);
        journal.emplace(file);
        for (const auto& section : sections) section->createTables(file);
    }

    // A session that wrote leaves the file one file again, which a reader
    // opens without making files beside it: without write access to the
    // folder, or on a full disk. The switch is made once this connection
    // has let go, by one in exclusive locking mode, which keeps the log's
    // index in its own memory: the index beside the file may be what a full
    // disk kept from being made. Another session still on the file keeps it
    // in the log until the last one closes; that one is not waited for, a
    // destructor cannot report the refusal, nor is anything lost by it.
    ~State()
    {
        if (!logging) return;
        const auto path = file.path();
        journal.reset();
        {
            const auto closed = std::move(file);
        }
        try {
            const auto last = sqlite::Connection::open(path, sqlite::Connection::Mode::ReadWrite);
            last.setPatience(std::chrono::milliseconds(0));
            last.exec("PRAGMA locking_mode = EXCLUSIVE");
            switchJournal(last, "delete");
            // Under the exclusive lock no one reads by the index: what a
            // full disk left of it goes.
            std::error_code ignored;
            std::filesystem::remove(path + "-shm", ignored);
        } catch (const PlatformError&) {
        }
    }
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    void requireWritable(std::string_view refused) const
    {
        if (file.readOnly())
            throw PlatformError(err::ReadOnly,
                                "Database file " + file.path() + " is open read-only; " + std::string(refused));
    }

    // Another session that saved since this one read the file would lose its
    // save under this one's: refused. Asked before the file is touched, and
    // again under the write lock, where the answer holds until the commit.
    void requireUnchanged(std::string_view refused) const
    {
        if (format::readGeneration(file) == generation) return;
        throw PlatformError(err::FileChanged, "Database file " + file.path() +
                                                  " was changed by someone else since this session read it; " +
                                                  std::string(refused) + ": read it anew, or save to another file");
    }

    // Puts the file in the log (see configureForWriting) before the first write.
    void enterLog()
    {
        if (!logging && file.text("PRAGMA journal_mode") != "wal") switchJournal(file, "wal");
        logging = true;
    }

    // Under the write lock: the file still at the generation read, which
    // the write counts on; note it with committed().
    void claimNextGeneration(std::string_view refused) const
    {
        requireUnchanged(refused);
        format::writeGeneration(file, generation + 1);
    }
    void committed() { ++generation; }

    sqlite::Connection file;
    std::shared_ptr<Database> database;
    std::string nameOverrides;
    std::vector<std::unique_ptr<FileSection>> sections;
    // None for a file that may not be written.
    std::optional<format::UndoJournal> journal;
    // The generation of the file as this session read or last wrote it.
    std::int64_t generation;
    // Whether this session has put the file in the log.
    bool logging = false;
};

ProjectFile::ProjectFile(std::unique_ptr<State> state) : state_(std::move(state))
{
    state_->database->trackChanges(true);
}
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

ProjectFile ProjectFile::create(const std::filesystem::path& path, std::shared_ptr<Database> database,
                                std::string nameOverrides)
{
    std::error_code ignored;
    if (std::filesystem::exists(path, ignored))
        throw PlatformError(err::FileAccess,
                            "Database file " + path.string() + " exists already; it is not overwritten");
    const auto draft = draftOf(path);
    auto sections = standardSections();
    try {
        {
            const auto file = sqlite::Connection::open(draft, sqlite::Connection::Mode::Create);
            configureNew(file);
            sqlite::Transaction transaction(file);
            file.exec(format::kSchema);
            file.exec("PRAGMA application_id = " + std::to_string(format::kApplicationId));
            file.exec("PRAGMA user_version = " + std::to_string(format::kVersion));
            format::writeEverything(file, *database, nameOverrides);
            format::UndoJournal::createTables(file);
            for (const auto& section : sections) {
                section->createTables(file);
                section->save(file, *database);
            }
            transaction.commit();
        }
        publish(draft, path);
    } catch (...) {
        std::filesystem::remove(draft, ignored);
        throw;
    }
    database->forgetChanges();
    return ProjectFile(std::make_unique<State>(sqlite::Connection::open(path, sqlite::Connection::Mode::ReadWrite),
                                               std::move(database), std::move(nameOverrides), std::move(sections), 0));
}

ProjectFile ProjectFile::open(const std::filesystem::path& path, Access access)
{
    auto file = sqlite::Connection::open(path, access == Access::ReadOnly ? sqlite::Connection::Mode::ReadOnly
                                                                          : sqlite::Connection::Mode::ReadWrite);
    auto database = Database::create();
    auto sections = standardSections();
    std::string nameOverrides;
    std::int64_t generation = 0;
    {
        // One view of the file from the first read to the last, whatever
        // another session saves meanwhile. Nothing is written: a refused
        // file stays as it was.
        const sqlite::Transaction reading(file, sqlite::Transaction::Kind::Read);
        checkFormat(file);
        nameOverrides = format::readDatabase(file, *database);
        for (const auto& section : sections) section->load(file, *database);
        generation = format::readGeneration(file);
    }
    return ProjectFile(std::make_unique<State>(std::move(file), std::move(database), std::move(nameOverrides),
                                               std::move(sections), generation));
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
    auto& state = *state_;
    constexpr std::string_view refused = "nothing is saved";
    state.requireWritable(refused);
    state.requireUnchanged(refused);
    const auto owners = format::changedOwners(*state.database);
    state.enterLog();
    sqlite::Transaction transaction(state.file);
    state.claimNextGeneration(refused);
    auto& journal = *state.journal;
    journal.beginSave();
    const auto summary = format::writeChanges(state.file, *state.database, state.nameOverrides, owners,
                                              [&journal](const auto& ids) { journal.recordBeforeUpdate(ids); });
    for (const auto& section : state.sections) section->save(state.file, *state.database);
    journal.endSave();
    transaction.commit();
    state.committed();
    state.database->forgetChanges();
    return summary;
}

bool ProjectFile::undo() { return replay(true); }
bool ProjectFile::redo() { return replay(false); }

std::size_t ProjectFile::undoSteps() const
{
    return state_->journal ? state_->journal->steps(format::UndoJournal::Side::Undo) : 0;
}
std::size_t ProjectFile::redoSteps() const
{
    return state_->journal ? state_->journal->steps(format::UndoJournal::Side::Redo) : 0;
}

bool ProjectFile::replay(bool undoing)
{
    auto& state = *state_;
    const std::string_view refused = undoing ? "nothing is undone" : "nothing is redone";
    state.requireWritable(refused);
    // What is not saved is not in the journal: taking back a step under it
    // would lose it without a word.
    if (!state.database->changes().empty())
        throw PlatformError(err::InvalidCall, "Database file " + state.file.path() +
                                                  ": the database has unsaved changes; save them before undo or redo");
    const auto side = undoing ? format::UndoJournal::Side::Undo : format::UndoJournal::Side::Redo;
    // No step to take leaves the file untouched.
    if (state.journal->steps(side) == 0) return false;
    state.requireUnchanged(refused);
    state.enterLog();
    sqlite::Transaction transaction(state.file);
    state.claimNextGeneration(refused);
    if (!state.journal->replay(side)) return false;
    // The file is read back before the commit: a step that leaves the file
    // unreadable is not taken.
    auto database = Database::create();
    auto nameOverrides = format::readDatabase(state.file, *database);
    for (const auto& section : state.sections) section->load(state.file, *database);
    transaction.commit();
    state.committed();
    state.database->trackChanges(false);
    state.database = std::move(database);
    state.nameOverrides = std::move(nameOverrides);
    state.database->trackChanges(true);
    return true;
}

}  // namespace pipespec::platform
