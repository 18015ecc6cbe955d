#pragma once

// Where the command line keeps its database and how a run opens it. The
// database is one file of our own format; the first run makes it from the
// bundled sample project, in the user's data directory unless --db names
// another path. A JSON project named by --db is read as it is and never
// written: that format is for reading and exchange, and a run that changes
// it says that nothing was saved.

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

namespace pipespec::cli {

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
    static DatabaseFile open(const std::filesystem::path& path, Use use, const platform::JsonNameTable& defaultNames,
                             std::ostream& notes);

    const std::shared_ptr<platform::Database>& database() const { return loaded_.database; }
    const std::shared_ptr<const platform::JsonNameTable>& names() const { return loaded_.names; }
    const std::filesystem::path& path() const { return path_; }
    // A JSON project is read only; a database file is kept.
    bool isJsonProject() const { return !file_; }

    // Writes this run's changes to the database file: error ReadOnly for a
    // JSON project or a file opened to read.
    platform::SaveSummary save();
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
    platform::ProjectFile& changeable(std::string_view doing);
    bool replay(bool (platform::ProjectFile::*step)(), std::string_view refused);

    DatabaseFile(std::filesystem::path path, std::optional<platform::ProjectFile> file,
                 platform::LoadedDatabase loaded);

    std::filesystem::path path_;
    std::optional<platform::ProjectFile> file_;
    platform::LoadedDatabase loaded_;
};

}  // namespace pipespec::cli
