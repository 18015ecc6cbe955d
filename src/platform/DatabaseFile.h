#pragma once

// Where the user's database lives and how a program opens it: the command
// line and the designer alike. The database is one file of our own format;
// the first run makes it from the bundled sample project, in the user's data
// directory unless another path is given. A JSON project is read as it is and
// never written: that format is for reading and exchange, and a run that
// changes it says that nothing was saved.

#include "platform/JsonNameTable.h"
#include "platform/JsonProject.h"
#include "platform/persistence/Persistence.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

namespace pipespec::platform {

// $XDG_DATA_HOME/pipespec/sample.pspec, else ~/.local/share/pipespec/sample.pspec.
std::filesystem::path defaultDatabasePath();

class DatabaseFile {
public:
    // Read writes nothing of its own (what a killed run left half done is
    // rolled back); Change refuses a write-protected one up
    // front (even for root), before anything is changed in memory.
    enum class Use { Read, Change };

    // Opens `path`; a database file that does not exist yet is made from the
    // sample project first, and `notes` is told so.
    static DatabaseFile open(const std::filesystem::path& path, Use use, const JsonNameTable& defaultNames,
                             std::ostream& notes);
    // Opens `given`, else the user's own database (defaultDatabasePath, its
    // folder made on the first run), with the shipped name table.
    static DatabaseFile openOrDefault(const std::optional<std::filesystem::path>& given, Use use, std::ostream& notes);

    const std::shared_ptr<Database>& database() const { return loaded_.database; }
    const std::shared_ptr<const JsonNameTable>& names() const { return loaded_.names; }
    const std::filesystem::path& path() const { return path_; }
    // A JSON project is read only; a database file is kept.
    bool isJsonProject() const { return !file_; }

    // Writes this run's changes to the database file: error ReadOnly for a
    // JSON project or a file opened to read.
    SaveSummary save();
    // Takes back the newest saved change of the database file, or puts back
    // the newest one taken back; false when there is none. The database is
    // read anew. Error ReadOnly for a JSON project or a file opened to read.
    bool undo();
    bool redo();
    std::size_t undoSteps() const { return file_ ? file_->undoSteps() : 0; }
    std::size_t redoSteps() const { return file_ ? file_->redoSteps() : 0; }
    // Writes the whole database to a new database file, which is kept from
    // now on; an existing file is refused and left as it was.
    void saveAs(const std::filesystem::path& target);

private:
    // The file to change: error ReadOnly for a JSON project, saying what was not done.
    ProjectFile& changeable(std::string_view doing);
    bool replay(bool (ProjectFile::*step)(), std::string_view refused);

    DatabaseFile(std::filesystem::path path, std::optional<ProjectFile> file, LoadedDatabase loaded);

    std::filesystem::path path_;
    std::optional<ProjectFile> file_;
    LoadedDatabase loaded_;
};

}  // namespace pipespec::platform
