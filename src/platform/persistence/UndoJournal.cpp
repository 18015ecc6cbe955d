#include "platform/persistence/UndoJournal.h"

#include "platform/persistence/PersistenceFormat.h"

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>

namespace pipespec::platform::format {

namespace {

// The columns of `objects`, each prefixed: "OLD.name, OLD.description, ...".
std::string columnList(std::string_view prefix = {})
{
    std::string columns;
    for (const auto column : kColumns) columns.append(columns.empty() ? "" : ", ").append(prefix).append(column);
    return columns;
}

// The journal's rows are rows of `objects` with the step in front and a mark
// whether the row was there before the step (1) or was added by it (0).
std::string schema()
{
    return "CREATE TABLE IF NOT EXISTS journal_steps(step INTEGER PRIMARY KEY, side INTEGER NOT NULL);"
           "CREATE TABLE IF NOT EXISTS journal_rows(step INTEGER NOT NULL, present INTEGER NOT NULL, " +
           columnList() + ", PRIMARY KEY(step, id)) WITHOUT ROWID;";
}

// The first touch of a row in a step decides its image: the row as it was,
// or, if there was none, the mark that the step added it. Touched rows are
// kept in a table of their own: a guard that looked into journal_rows, the
// table being written, would make SQLite copy that table on every firing.
// The guards are written out, as an OR clause inside a trigger gives way to
// the outer statement's (the writer's INSERT OR REPLACE); for the touched
// table itself either resolution does.
constexpr std::string_view kNow = "(SELECT step FROM temp.journal_now)";

std::string untouched(std::string_view id)
{
    return "NOT EXISTS(SELECT 1 FROM temp.journal_touched WHERE id = " + std::string(id) + ")";
}

std::string recordingTrigger(std::string_view name, std::string_view event, std::string_view id,
                             std::string_view recording)
{
    return "CREATE TEMP TRIGGER " + std::string(name) + " BEFORE " + std::string(event) +
           " ON main.objects WHEN EXISTS(SELECT 1 FROM temp.journal_now) BEGIN " + std::string(recording) +
           " INSERT OR IGNORE INTO journal_touched(id) VALUES(" + std::string(id) + "); END;";
}

// A removal has the row as it was at hand.
std::string recordingOld(std::string_view name, std::string_view event)
{
    return recordingTrigger(name, event, "OLD.id",
                            "INSERT INTO journal_rows SELECT " + std::string(kNow) + ", 1, " + columnList("OLD.") +
                                " WHERE " + untouched("OLD.id") + ";");
}

// An insertion may replace a row, which it looks up; else the step added the row.
std::string recordingInsert()
{
    return recordingTrigger("journal_insert", "INSERT", "NEW.id",
                            "INSERT INTO journal_rows SELECT " + std::string(kNow) + ", 1, " + columnList() +
                                " FROM main.objects WHERE id = NEW.id AND " + untouched("NEW.id") +
                                "; INSERT INTO journal_rows(step, present, id) SELECT " + std::string(kNow) +
                                ", 0, NEW.id WHERE " + untouched("NEW.id") +
                                " AND NOT EXISTS(SELECT 1 FROM main.objects WHERE id = NEW.id);");
}

}  // namespace

void UndoJournal::createTables(const sqlite::Connection& file) { file.exec(schema()); }

UndoJournal::UndoJournal(const sqlite::Connection& file) : file_(file)
{
    createTables(file_);
    file_.exec("CREATE TEMP TABLE journal_now(step INTEGER NOT NULL); CREATE TEMP TABLE journal_touched(id INTEGER "
               "PRIMARY KEY)");
    file_.exec(recordingOld("journal_delete", "DELETE"));
    file_.exec(recordingInsert());
}

void UndoJournal::open(Side side)
{
    step_ = file_.integer("SELECT coalesce(max(step), 0) + 1 FROM journal_steps");
    file_.prepare("INSERT INTO journal_steps(step, side) VALUES(?1, ?2)")
        .bind(1, step_)
        .bind(2, std::int64_t{static_cast<int>(side)})
        .run();
    file_.exec("DELETE FROM temp.journal_touched");
    file_.prepare("INSERT INTO temp.journal_now(step) VALUES(?1)").bind(1, step_).run();
}

bool UndoJournal::close()
{
    file_.exec("DELETE FROM temp.journal_now");
    auto rows = file_.prepare("SELECT count(*) FROM journal_rows WHERE step = ?1");
    rows.bind(1, step_).step();
    const bool held = rows.integer(0) > 0;
    if (!held) file_.prepare("DELETE FROM journal_steps WHERE step = ?1").bind(1, step_).run();
    return held;
}

void UndoJournal::beginSave() { open(Side::Undo); }

void UndoJournal::recordBeforeUpdate(const std::vector<std::int64_t>& ids)
{
    const auto list = nlohmann::json(ids).dump();
    file_
        .prepare("INSERT INTO journal_rows SELECT ?1, 1, " + columnList("kept.") +
                 " FROM json_each(?2) AS listed JOIN main.objects AS kept ON kept.id = listed.value WHERE " +
                 untouched("kept.id"))
        .bind(1, step_)
        .bind(2, list)
        .run();
}

void UndoJournal::endSave()
{
    if (!close()) return;
    file_.exec("DELETE FROM journal_rows WHERE step IN (SELECT step FROM journal_steps WHERE side = 1);"
               "DELETE FROM journal_steps WHERE side = 1");
    auto oldest = file_.prepare("SELECT step FROM journal_steps WHERE side = 0 ORDER BY step DESC LIMIT 1 OFFSET ?1");
    if (!oldest.bind(1, static_cast<std::int64_t>(kDepth)).step()) return;
    const auto dropFrom = oldest.integer(0);
    file_.prepare("DELETE FROM journal_rows WHERE step <= ?1").bind(1, dropFrom).run();
    file_.prepare("DELETE FROM journal_steps WHERE step <= ?1").bind(1, dropFrom).run();
}

bool UndoJournal::replay(Side side)
{
    auto newest = file_.prepare("SELECT max(step) FROM journal_steps WHERE side = ?1");
    newest.bind(1, std::int64_t{static_cast<int>(side)}).step();
    if (newest.isNull(0)) return false;
    const auto taken = newest.integer(0);

    open(side == Side::Undo ? Side::Redo : Side::Undo);
    file_.prepare("DELETE FROM objects WHERE id IN (SELECT id FROM journal_rows WHERE step = ?1 AND present = 0)")
        .bind(1, taken)
        .run();
    const auto columns = columnList();
    file_
        .prepare("INSERT OR REPLACE INTO objects(" + columns + ") SELECT " + columns +
                 " FROM journal_rows WHERE step = ?1 AND present = 1")
        .bind(1, taken)
        .run();
    close();
    file_.prepare("DELETE FROM journal_rows WHERE step = ?1").bind(1, taken).run();
    file_.prepare("DELETE FROM journal_steps WHERE step = ?1").bind(1, taken).run();
    return true;
}

std::size_t UndoJournal::steps(Side side) const
{
    auto count = file_.prepare("SELECT count(*) FROM journal_steps WHERE side = ?1");
    count.bind(1, std::int64_t{static_cast<int>(side)}).step();
    return static_cast<std::size_t>(count.integer(0));
}

}  // namespace pipespec::platform::format
