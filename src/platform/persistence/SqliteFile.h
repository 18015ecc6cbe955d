#pragma once

// A thin owner of SQLite's C handles: a connection, its prepared statements
// and a transaction that rolls back unless committed. Every failure becomes a
// PlatformError naming the file and SQLite's own message.

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace pipespec::platform::sqlite {

class Statement;

// Statements refer to their connection: keep it in place while they live.
class Connection {
public:
    enum class Mode { ReadOnly, ReadWrite, Create };

    // Create makes a new file and refuses one that exists; the others
    // refuse a missing file and anything but a regular file (a pipe would
    // block the first read for ever). ReadOnly takes the file for writing
    // where the system lets it, yet runs no statement that writes: so
    // SQLite can roll back what a killed writer left half done, which a
    // reader must see undone. A lock held by another connection is waited
    // for up to kPatience.
    static constexpr std::chrono::milliseconds kPatience{5000};
    static Connection open(const std::filesystem::path& path, Mode mode);

    void exec(std::string_view sql) const;
    Statement prepare(std::string_view sql) const;
    // The single value of a query such as "PRAGMA user_version".
    std::int64_t integer(std::string_view sql) const;
    std::string text(std::string_view sql) const;
    // The file may not be written: opened so, or write-protected on disk.
    bool readOnly() const { return readOnly_; }
    // How long to wait for another connection's lock before giving up.
    void setPatience(std::chrono::milliseconds patience) const;
    // Rows changed by the last statement that changed any.
    std::int64_t changes() const;
    const std::string& path() const { return path_; }

    // Throws for a result code other than OK, ROW or DONE.
    void check(int code, std::string_view doing) const;

private:
    struct Close {
        void operator()(sqlite3* db) const noexcept;
    };
    Connection(std::unique_ptr<sqlite3, Close> db, std::string path) : db_(std::move(db)), path_(std::move(path)) {}

    std::unique_ptr<sqlite3, Close> db_;
    std::string path_;
    bool readOnly_ = false;
};

// A prepared statement, reused: bind, step until done, then reset.
class Statement {
public:
    Statement& bind(int index, std::int64_t value);
    Statement& bind(int index, double value);
    Statement& bind(int index, std::string_view text);
    // A text that stays where it is until the statement has run: SQLite
    // reads it in place instead of copying it.
    Statement& bindInPlace(int index, std::string_view text);
    Statement& bindNull(int index);

    // Steps once; true while it gives a row.
    bool step();
    // Runs a statement that gives no rows, then makes it ready for the next run.
    void run();
    void reset();

    bool isNull(int column) const;
    bool isText(int column) const;
    std::int64_t integer(int column) const;
    double real(int column) const;
    std::string text(int column) const;
    // The text of a column, valid until the next step or reset.
    std::string_view textView(int column) const;

private:
    friend class Connection;
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const noexcept;
    };
    Statement(sqlite3_stmt* statement, const Connection& connection) : statement_(statement), connection_(&connection)
    {
    }
    void check(int code, std::string_view doing) const { connection_->check(code, doing); }

    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
    const Connection* connection_;
};

// BEGIN IMMEDIATE (Write: the write lock now) or BEGIN (Read: one view of
// the file from the first read to the end); ROLLBACK when left without commit().
class Transaction {
public:
    enum class Kind { Read, Write };
    explicit Transaction(const Connection& connection, Kind kind = Kind::Write);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    void commit();

private:
    const Connection& connection_;
    bool open_ = true;
};

}  // namespace pipespec::platform::sqlite
