#pragma once

// A database kept in one SQLite file. Opening loads the whole database into
// memory; saving writes, in one transaction, only the objects that changed
// since the file was opened or last saved, and removes the deleted ones. A
// save cut off at any moment (power, kill) leaves the state of the last
// complete save: the write-ahead log the file runs with while it is open,
// with full syncs, sees to that.
//
// What is kept: projects with base project, access rights, languages and
// options; the system and current project; every device, attribute, chapter,
// standard table and row with all its fields and its UniqueId; links between
// objects (kept by UniqueId; an inherited one by the stored object above it); the
// workset's Globals options and PipeClassRootCDevice; the AppGlobals values;
// the name table overrides as JSON text; the stored query of every query
// container (a section that every file has, see QueryContainerFile.h). Not
// kept: undo states, clipboard, drag object, navigator, and option 64, a
// cache of pipe-class entries that starts empty. A link to an object that is no longer in the database reads
// back as none.
//
// Changes made through the loading setters (setReadOnly, setFolder,
// setCreateOption, setLinkedCount, setValueLocked) are not changes of the
// database: they are saved with the object's next change or a first save.
//
// Errors: a file that is not ours, of a newer version or damaged is error
// Configuration and nothing is written; a file opened read-only, write
// protected, or a change to a project without write access is error ReadOnly
// and nothing is written; a failing disk is error FileAccess.

#include "platform/store/Database.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>

namespace pipespec::platform {

namespace sqlite {
class Connection;
}

// What one save wrote, counted in objects (devices, attributes, tables, rows).
struct SaveSummary {
    std::size_t written = 0;
    std::size_t removed = 0;
};

// A part of the database that keeps its own tables in the same file, read
// with the objects and written in the same transaction as every save (the
// stored query containers are one). Its tables carry its own names.
class FileSection {
public:
    virtual ~FileSection() = default;
    // Creates the section's tables in a new file, or in an older one.
    virtual void createTables(const sqlite::Connection& file) const = 0;
    virtual void load(const sqlite::Connection& file, Database& database) = 0;
    virtual void save(const sqlite::Connection& file, const Database& database) = 0;
};

class ProjectFile {
public:
    enum class Access { ReadWrite, ReadOnly };

    // Writes all of `database` to a new file (an existing one is refused)
    // and keeps the database with that file from now on.
    static ProjectFile create(const std::filesystem::path& path, std::shared_ptr<Database> database,
                              std::string nameOverrides = "{}");
    static ProjectFile open(const std::filesystem::path& path, Access access = Access::ReadWrite);

    ProjectFile(ProjectFile&&) noexcept;
    ProjectFile& operator=(ProjectFile&&) noexcept;
    // Stops gathering changes; what is unsaved stays in memory only.
    ~ProjectFile();

    const std::shared_ptr<Database>& database() const;
    // The name table overrides of the database, a JSON object as text.
    const std::string& nameOverrides() const;
    void setNameOverrides(std::string json);

    // Adds a section, which is created in the file and loaded now.
    void addSection(std::unique_ptr<FileSection> section);
    SaveSummary save();

    // Undo and redo across sessions: every save that changed objects is a
    // step, kept in the file. undo takes back the newest step, redo the newest
    // undone one, each saved at once; a save that changes objects drops what
    // could be redone. Afterwards database() is a new database, read from the
    // file. False when there is no step to take. Only objects are taken back,
    // not options, application values or sections. Error ReadOnly for a file
    // that may not be written, InvalidCall while there are unsaved changes.
    bool undo();
    bool redo();
    std::size_t undoSteps() const;
    std::size_t redoSteps() const;

private:
    struct State;
    bool replay(bool undoing);
    explicit ProjectFile(std::unique_ptr<State> state);
    std::unique_ptr<State> state_;
};

}  // namespace pipespec::platform
