// A save killed at any moment leaves the last complete save. A child process
// saves one generation after another and is killed with SIGKILL at a random
// moment; the file it leaves must open and hold exactly some generation,
// which the test rebuilds by making the same changes in memory.

#include "platform/persistence/Persistence.h"
#include "support/DatabaseComparison.h"
#include "support/TempDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <random>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace pipespec {
namespace {

using platform::Database;
using platform::ProjectFile;

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

[[noreturn]] void saveUntilKilled(const std::filesystem::path& path)
{
    try {
        auto file = ProjectFile::open(path);
        for (;;) {
            advance(*file.database());
            file.save();
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

    std::mt19937 random(20240611);
    // Wide enough that a save completes now and then even in a sanitizer build.
    std::uniform_int_distribution<int> delayMs(2, 250);
    for (int trial = 0; trial < 30; ++trial) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) saveUntilKilled(path);
        std::this_thread::sleep_for(std::chrono::milliseconds(delayMs(random)));
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the saving process ended on its own in trial " << trial;

        const auto reopened = ProjectFile::open(path);
        const auto generation = generationOf(*reopened.database());
        ASSERT_GE(generation, generationOf(*expected)) << "trial " << trial;
        while (generationOf(*expected) < generation) advance(*expected);
        EXPECT_THAT(support::differences(*expected, *reopened.database(), {.uniqueIds = false}), testing::IsEmpty())
            << "trial " << trial << ", generation " << generation;
    }
    EXPECT_GT(generationOf(*expected), 0);
}

}  // namespace
}  // namespace pipespec
