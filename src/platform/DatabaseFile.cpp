#include "platform/DatabaseFile.h"

#include "objectmodel/Errors.h"
#include "objectmodel/JsonInput.h"

#include <nlohmann/json.hpp>

#include <cstdlib>
#include <fstream>
#include <system_error>

namespace pipespec::platform {

namespace fs = std::filesystem;

namespace {

bool isJsonProjectPath(const fs::path& path) { return path.extension() == ".json"; }

// The permission bits decide, not the rights of the process: root may write
// anything, yet a file its owner write-protected is meant to stay as it is.
bool writeProtected(const fs::path& path)
{
    constexpr auto anyWrite = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    return (fs::status(path).permissions() & anyWrite) == fs::perms::none;
}

std::shared_ptr<const JsonNameTable> namesOf(const ProjectFile& file, const fs::path& path,
                                             const JsonNameTable& defaultNames)
{
    return defaultNames.overlaid(
        parseJson(file.nameOverrides(), "Database file " + path.string() + " is damaged: its name table text"),
        path.string());
}

}  // namespace

fs::path defaultDatabasePath()
{
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    const char* home = std::getenv("HOME");
    fs::path base;
    if (dataHome && *dataHome)
        base = dataHome;
    else if (home && *home)
        base = fs::path(home) / ".local" / "share";
    else
        throw PlatformError(err::FileAccess, "Neither XDG_DATA_HOME nor HOME is set: give the database with --db FILE");
    return base / "pipespec" / "sample.pspec";
}

DatabaseFile::DatabaseFile(fs::path path, std::optional<ProjectFile> file, LoadedDatabase loaded)
    : path_(std::move(path)),
      file_(std::move(file)),
      loaded_(std::move(loaded))
{
}

DatabaseFile DatabaseFile::open(const fs::path& path, Use use, const JsonNameTable& defaultNames, std::ostream& notes)
{
    // A pipe or a device would block the first read for ever.
    std::error_code ignored;
    if (const auto status = fs::status(path, ignored); fs::exists(status) && !fs::is_regular_file(status))
        throw PlatformError(err::FileAccess, "Database file " + path.string() + " is not a regular file");
    if (isJsonProjectPath(path)) {
        return DatabaseFile(path, std::nullopt, loadJsonProject(path, defaultNames));
    }
    if (!fs::exists(path)) {
        auto sample = loadJsonProject(sampleProjectPath(), defaultNames);
        auto file = ProjectFile::create(path, sample.database, sample.nameOverrides);
        notes << "pipespec: made the database " << path.string() << " from the sample project\n";
        return DatabaseFile(path, std::move(file), std::move(sample));
    }
    if (use == Use::Change && writeProtected(path))
        throw PlatformError(err::ReadOnly,
                            "Database file " + path.string() + " is write-protected; nothing is changed");
    auto file =
        ProjectFile::open(path, use == Use::Read ? ProjectFile::Access::ReadOnly : ProjectFile::Access::ReadWrite);
    LoadedDatabase loaded{file.database(), namesOf(file, path, defaultNames), file.nameOverrides()};
    return DatabaseFile(path, std::move(file), std::move(loaded));
}

DatabaseFile DatabaseFile::openOrDefault(const std::optional<fs::path>& given, Use use, std::ostream& notes)
{
    const auto defaultNames = JsonNameTable::load(JsonNameTable::shippedPath());
    if (given) return open(*given, use, *defaultNames, notes);
    const auto path = defaultDatabasePath();
    fs::create_directories(path.parent_path());
    return open(path, use, *defaultNames, notes);
}

ProjectFile& DatabaseFile::changeable(std::string_view doing)
{
    if (!file_)
        throw PlatformError(err::ReadOnly, "Project file " + path_.string() +
                                               " is a JSON project, which is only read; " + std::string(doing));
    return *file_;
}

SaveSummary DatabaseFile::save() { return changeable("nothing is saved").save(); }

bool DatabaseFile::undo() { return replay(&ProjectFile::undo, "nothing is undone"); }
bool DatabaseFile::redo() { return replay(&ProjectFile::redo, "nothing is redone"); }

bool DatabaseFile::replay(bool (ProjectFile::*step)(), std::string_view refused)
{
    const bool taken = (changeable(refused).*step)();
    // The file has read the database anew: from now on that one is the run's.
    loaded_.database = file_->database();
    return taken;
}

void DatabaseFile::saveAs(const fs::path& target)
{
    // One file at a time gathers the changes of a database, so the old one
    // lets go first; should the new one fail, the database is kept by none.
    file_.reset();
    file_.emplace(ProjectFile::create(target, loaded_.database, loaded_.nameOverrides));
    path_ = target;
}

}  // namespace pipespec::platform
