// A database file after faults: a save killed at any moment, a writer
// killed in the middle of a transaction, a disk that is full. Every session
// opens the file afterwards, a reader included, and finds the last complete
// save. The kills are real: a child process is killed with SIGKILL.

#include "objectmodel/ExpectError.h"
#include "platform/persistence/Persistence.h"
#include "platform/persistence/SqliteFile.h"
#include "support/DatabaseComparison.h"
#include "support/TempDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sqlite3.h>

#include <chrono>
#include <csignal>
#include <random>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace pipespec {
namespace {

using checks::errorNumber;
using platform::Database;
using platform::ProjectFile;
using testing::IsEmpty;

constexpr int kDevices = 40;
constexpr int kAttributes = 10;

std::shared_ptr<Database> firstGeneration()
{
    auto database = Database::create();
    const auto plant = database->addProject("PLANT");
    const auto root = plant->addRoot("@20");
    for (int d = 0; d < kDevices; ++d) {
        const auto chapter = root->createChild("D" + std::to_string(d))->createSpec("GD");
        for (int a = 0; a < kAttributes; ++a) chapter->createSpec("A" + std::to_string(a))->SetValue("0");
    }
    database->workset()->appGlobals()->setValue("Generation", std::int64_t{0});
    return database;
}

std::int64_t generationOf(const Database& database)
{
    return std::get<std::int64_t>(database.workset()->appGlobals()->value("Generation").storage());
}

// One generation: every attribute takes its number, a device is added and
// one made three generations ago is deleted.
void advance(Database& database)
{
    const auto generation = generationOf(database) + 1;
    const auto text = std::to_string(generation);
    const auto root = database.project("PLANT")->root("@20");
    for (const auto& device : root->ownChildren().items())
        if (const auto chapter = device->ownSpecs().find("GD"))
            for (const auto& attribute : chapter->ownSpecs().items()) attribute->SetValue(text);
    root->createChild("N" + text)->createSpec("GD")->SetValue(text);
    if (const auto old = root->ownChildren().find("N" + std::to_string(generation - 3))) old->Delete();
    database.workset()->appGlobals()->setValue("Generation", generation);
}

// Saves generation after generation, writing a byte to `saved` after each.
[[noreturn]] void saveUntilKilled(const std::filesystem::path& path, int saved)
{
    try {
        auto file = ProjectFile::open(path);
        for (;;) {
            advance(*file.database());
            file.save();
            if (::write(saved, "s", 1) != 1) break;
        }
    } catch (...) {
    }
    ::_exit(1);
}

TEST(CrashTest, AKilledSaveLeavesTheLastCompleteSave)
{
    support::TempDirectory directory;
    const auto path = directory / "crash.pspec";
    ProjectFile::create(path, firstGeneration());
    auto expected = firstGeneration();

    // The kill waits for a random number of complete saves, then lands at a
    // random moment of the next ones: counted, not timed, so that a slow
    // (sanitizer, loaded) machine kills in the same places.
    std::mt19937 random(20240611);
    std::uniform_int_distribution<int> savesFirst(0, 2);
    std::uniform_int_distribution<int> delayUs(0, 20'000);
    for (int trial = 0; trial < 30; ++trial) {
        int saved[2];
        ASSERT_EQ(::pipe(saved), 0);
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            ::close(saved[0]);
            saveUntilKilled(path, saved[1]);
        }
        ::close(saved[1]);
        char byte = 0;
        for (int n = savesFirst(random); n > 0; --n) ASSERT_EQ(::read(saved[0], &byte, 1), 1) << "trial " << trial;
        std::this_thread::sleep_for(std::chrono::microseconds(delayUs(random)));
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        ::close(saved[0]);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the saving process ended on its own in trial " << trial;

        const auto reopened = ProjectFile::open(path, ProjectFile::Access::ReadOnly);
        const auto generation = generationOf(*reopened.database());
        ASSERT_GE(generation, generationOf(*expected)) << "trial " << trial;
        while (generationOf(*expected) < generation) advance(*expected);
        EXPECT_THAT(support::differences(*expected, *reopened.database(), {.uniqueIds = false}), IsEmpty())
            << "trial " << trial << ", generation " << generation;
    }
    EXPECT_GT(generationOf(*expected), 0);
}

TEST(CrashTest, AReaderRollsBackWhatAKilledWriterLeftHalfDone)
{
    support::TempDirectory directory;
    const auto path = directory / "killed.pspec";
    const auto saved = firstGeneration();
    ProjectFile::create(path, saved);

    // A writer whose changes outgrow its page cache writes them into the
    // file, their old pages kept in a journal beside it, and is killed
    // before its commit.
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const auto file = platform::sqlite::Connection::open(path, platform::sqlite::Connection::Mode::ReadWrite);
        file.exec("PRAGMA cache_size = 2; BEGIN IMMEDIATE; UPDATE objects SET description = hex(randomblob(200))");
        ::kill(::getpid(), SIGKILL);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    ASSERT_TRUE(std::filesystem::exists(path.string() + "-journal"));

    const auto reopened = ProjectFile::open(path, ProjectFile::Access::ReadOnly);
    EXPECT_THAT(support::differences(*saved, *reopened.database()), IsEmpty());
}

// A disk that fills up, for the database files of this process: SQLite's own
// files with a check in front of the calls that take space. While full, a
// write past a file's end and the index of a write-ahead log fail as on a
// full disk; overwriting in place goes on.
class FullDisk {
public:
    FullDisk() : system_(sqlite3_vfs_find(nullptr)), vfs_(*system_)
    {
        active = this;
        vfs_.zName = "full-disk";
        vfs_.szOsFile = static_cast<int>(sizeof(File)) + system_->szOsFile;
        vfs_.xOpen = &FullDisk::open;
        sqlite3_vfs_register(&vfs_, 1);
    }
    ~FullDisk()
    {
        sqlite3_vfs_register(system_, 1);
        sqlite3_vfs_unregister(&vfs_);
        active = nullptr;
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

    bool full = false;

private:
    struct File {
        sqlite3_file base;
        sqlite3_file* system;
    };
    static sqlite3_file* of(sqlite3_file* file) { return reinterpret_cast<File*>(file)->system; }
    static const sqlite3_io_methods& methods(sqlite3_file* file) { return *of(file)->pMethods; }

    static int open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags)
    {
        auto* wrapped = reinterpret_cast<File*>(file);
        wrapped->system = reinterpret_cast<sqlite3_file*>(wrapped + 1);
        const int code = active->system_->xOpen(active->system_, name, wrapped->system, flags, outFlags);
        wrapped->base.pMethods = wrapped->system->pMethods ? &kMethods : nullptr;
        return code;
    }

    static int write(sqlite3_file* file, const void* data, int amount, sqlite3_int64 offset)
    {
        sqlite3_int64 size = 0;
        methods(file).xFileSize(of(file), &size);
        if (active->full && offset + amount > size) return SQLITE_FULL;
        return methods(file).xWrite(of(file), data, amount, offset);
    }

    static int mapIndex(sqlite3_file* file, int region, int size, int extend, void volatile** mapped)
    {
        if (active->full && extend) return SQLITE_IOERR_SHMSIZE;
        return methods(file).xShmMap(of(file), region, size, extend, mapped);
    }

    static constexpr sqlite3_io_methods kMethods = {
        2,
        [](sqlite3_file* f) { return methods(f).xClose(of(f)); },
        [](sqlite3_file* f, void* data, int amount, sqlite3_int64 offset) {
            return methods(f).xRead(of(f), data, amount, offset);
        },
        &FullDisk::write,
        [](sqlite3_file* f, sqlite3_int64 size) { return methods(f).xTruncate(of(f), size); },
        [](sqlite3_file* f, int flags) { return methods(f).xSync(of(f), flags); },
        [](sqlite3_file* f, sqlite3_int64* size) { return methods(f).xFileSize(of(f), size); },
        [](sqlite3_file* f, int lock) { return methods(f).xLock(of(f), lock); },
        [](sqlite3_file* f, int lock) { return methods(f).xUnlock(of(f), lock); },
        [](sqlite3_file* f, int* reserved) { return methods(f).xCheckReservedLock(of(f), reserved); },
        [](sqlite3_file* f, int op, void* argument) { return methods(f).xFileControl(of(f), op, argument); },
        [](sqlite3_file* f) { return methods(f).xSectorSize(of(f)); },
        [](sqlite3_file* f) { return methods(f).xDeviceCharacteristics(of(f)); },
        &FullDisk::mapIndex,
        [](sqlite3_file* f, int offset, int count, int flags) {
            return methods(f).xShmLock(of(f), offset, count, flags);
        },
        [](sqlite3_file* f) { methods(f).xShmBarrier(of(f)); },
        [](sqlite3_file* f, int remove) { return methods(f).xShmUnmap(of(f), remove); },
        nullptr,
        nullptr,
    };

    static inline FullDisk* active = nullptr;
    sqlite3_vfs* system_;
    sqlite3_vfs vfs_;
};

TEST(CrashTest, ASaveThatFindsTheDiskFullLeavesAFileThatOpens)
{
    support::TempDirectory directory;
    const auto path = directory / "full.pspec";
    const auto saved = firstGeneration();
    ProjectFile::create(path, saved);

    FullDisk disk;
    {
        auto session = ProjectFile::open(path);
        advance(*session.database());
        disk.full = true;
        EXPECT_EQ(errorNumber([&] { session.save(); }), err::FileAccess);
    }
    // Read while the disk is still full.
    const auto reopened = ProjectFile::open(path, ProjectFile::Access::ReadOnly);
    EXPECT_THAT(support::differences(*saved, *reopened.database()), IsEmpty());
}

}  // namespace
}  // namespace pipespec
