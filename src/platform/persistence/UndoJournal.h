#pragma once

// Undo and redo across sessions, kept in the database file. Each save that
// changes objects is one step: the journal keeps the rows of `objects` as
// they were before the step (the before-images of rows it changed or
// removed) and the ids of the rows it added. Undoing a step puts the
// before-images back and removes the added rows, and while it does so the
// journal records what it overwrote and removed as a step of the redo side,
// so that redo is the same operation taken from the other side. A save that
// changes objects clears the redo side; the undo side keeps kDepth steps.
//
// Rows added, replaced or removed are recorded by temporary triggers of the
// file's connection, so the journal sees them however the writer reaches
// them, and another program that opens the file fires nothing. Rows whose
// fields a save rewrites in place are recorded all at once before the writer
// updates them (recordBeforeUpdate): a trigger on each update cost a
// thousand times a statement. Only objects are
// journaled: options, application values and the sections are not.
// Not part of the platform's interface.

#include "platform/persistence/SqliteFile.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace pipespec::platform::format {

class UndoJournal {
public:
    enum class Side : int { Undo = 0, Redo = 1 };
    static constexpr std::size_t kDepth = 50;

    // Creates the journal's tables in a file that lacks them.
    static void createTables(const sqlite::Connection& file);
    // Creates the tables as createTables does, and the triggers that record
    // while a step is open. The file must be writable and outlive the journal.
    explicit UndoJournal(const sqlite::Connection& file);
    UndoJournal(const UndoJournal&) = delete;
    UndoJournal& operator=(const UndoJournal&) = delete;

    // Records the rows that a save changes between begin and end as one step
    // of the undo side; all within the caller's transaction.
    void beginSave();
    // The rows of `ids` as they are now, unless the step has them already.
    // For the last writes of a step, after its insertions and removals: the
    // rows are not marked as touched, as nothing writes them again.
    void recordBeforeUpdate(const std::vector<std::int64_t>& ids);
    void endSave();

    // Takes back the newest step of `side`, recording its inverse on the
    // other side, within the caller's transaction; false if there is none.
    bool replay(Side side);
    std::size_t steps(Side side) const;

private:
    void open(Side side);
    // Ends the open step; an empty one is dropped. True if it held rows.
    bool close();

    const sqlite::Connection& file_;
    std::int64_t step_ = 0;
};

}  // namespace pipespec::platform::format
