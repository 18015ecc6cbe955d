#include "platform/persistence/SqliteFile.h"

#include "objectmodel/Errors.h"

#include <sqlite3.h>

#include <limits>
#include <system_error>

namespace pipespec::platform::sqlite {

namespace {
int length(std::string_view text)
{
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throw PlatformError(err::InvalidCall,
                            "a text of " + std::to_string(text.size()) + " bytes is too long to be stored");
    return static_cast<int>(text.size());
}
}  // namespace

void Connection::Close::operator()(sqlite3* db) const noexcept { sqlite3_close_v2(db); }
void Statement::Finalize::operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }

Connection Connection::open(const std::filesystem::path& path, Mode mode)
{
    std::error_code ignored;
    const auto status = std::filesystem::status(path, ignored);
    const bool exists = std::filesystem::exists(status);
    if (mode == Mode::Create && exists)
        throw PlatformError(err::FileAccess,
                            "Database file " + path.string() + " exists already; it is not overwritten");
    if (mode != Mode::Create && !exists)
        throw PlatformError(err::FileAccess, "Database file " + path.string() + " does not exist");
    if (mode != Mode::Create && !std::filesystem::is_regular_file(status))
        throw PlatformError(err::FileAccess, "Database file " + path.string() + " is not a regular file");

    const int flags = mode == Mode::Create ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE : SQLITE_OPEN_READWRITE;
    sqlite3* raw = nullptr;
    const int code = sqlite3_open_v2(path.c_str(), &raw, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    Connection connection(std::unique_ptr<sqlite3, Close>(raw), path.string());
    connection.check(code, "opening");
    sqlite3_extended_result_codes(raw, 1);
    connection.setPatience(kPatience);
    connection.readOnly_ = mode == Mode::ReadOnly || sqlite3_db_readonly(raw, "main") != 0;
    if (mode == Mode::ReadOnly) connection.exec("PRAGMA query_only = ON");
    return connection;
}

void Connection::setPatience(std::chrono::milliseconds patience) const
{
    sqlite3_busy_timeout(db_.get(), static_cast<int>(patience.count()));
}

void Connection::check(int code, std::string_view doing) const
{
    if (code == SQLITE_OK || code == SQLITE_ROW || code == SQLITE_DONE) return;
    const auto file = "Database file " + path_;
    // The statement would only hide the one thing to know.
    if ((code & 0xff) == SQLITE_BUSY)
        throw PlatformError(err::FileAccess, file + " is in use by another run, which did not let go of it within " +
                                                 std::to_string(kPatience.count() / 1000) +
                                                 " seconds; try again later");
    const std::string what =
        file + ": " + std::string(doing) + " failed: " + (db_ ? sqlite3_errmsg(db_.get()) : sqlite3_errstr(code));
    switch (code & 0xff) {
    case SQLITE_READONLY: throw PlatformError(err::ReadOnly, what);
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
    case SQLITE_FORMAT:
        throw PlatformError(err::Configuration, what + " (the file is damaged or not a pipespec database)");
    default: throw PlatformError(err::FileAccess, what);
    }
}

void Connection::exec(std::string_view sql) const
{
    check(sqlite3_exec(db_.get(), std::string(sql).c_str(), nullptr, nullptr, nullptr), sql);
}

Statement Connection::prepare(std::string_view sql) const
{
    sqlite3_stmt* raw = nullptr;
    const int code = sqlite3_prepare_v3(db_.get(), sql.data(), length(sql), SQLITE_PREPARE_PERSISTENT, &raw, nullptr);
    Statement statement(raw, *this);
    check(code, sql);
    return statement;
}

namespace {
template <class Read>
auto singleValue(const Connection& connection, std::string_view sql, Read read)
{
    auto statement = connection.prepare(sql);
    if (!statement.step())
        throw PlatformError(err::Configuration,
                            "Database file " + connection.path() + ": " + std::string(sql) + " gave no value");
    return read(statement);
}
}  // namespace

std::int64_t Connection::integer(std::string_view sql) const
{
    return singleValue(*this, sql, [](const Statement& statement) { return statement.integer(0); });
}

std::string Connection::text(std::string_view sql) const
{
    return singleValue(*this, sql, [](const Statement& statement) { return statement.text(0); });
}

std::int64_t Connection::changes() const { return sqlite3_changes64(db_.get()); }

// ---- Statement ---------------------------------------------------------

Statement& Statement::bind(int index, std::int64_t value)
{
    check(sqlite3_bind_int64(statement_.get(), index, value), "binding a number");
    return *this;
}

Statement& Statement::bind(int index, double value)
{
    check(sqlite3_bind_double(statement_.get(), index, value), "binding a number");
    return *this;
}

Statement& Statement::bind(int index, std::string_view text)
{
    check(sqlite3_bind_text(statement_.get(), index, text.data(), length(text), SQLITE_TRANSIENT), "binding a text");
    return *this;
}

Statement& Statement::bindInPlace(int index, std::string_view text)
{
    check(sqlite3_bind_text(statement_.get(), index, text.data(), length(text), SQLITE_STATIC), "binding a text");
    return *this;
}

Statement& Statement::bindNull(int index)
{
    check(sqlite3_bind_null(statement_.get(), index), "binding");
    return *this;
}

bool Statement::step()
{
    const int code = sqlite3_step(statement_.get());
    if (code == SQLITE_ROW) return true;
    if (code != SQLITE_DONE) {
        sqlite3_reset(statement_.get());
        check(code, sqlite3_sql(statement_.get()));
    }
    return false;
}

void Statement::run()
{
    while (step()) {}
    reset();
}

void Statement::reset()
{
    sqlite3_reset(statement_.get());
    sqlite3_clear_bindings(statement_.get());
}

bool Statement::isNull(int column) const { return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL; }
bool Statement::isText(int column) const { return sqlite3_column_type(statement_.get(), column) == SQLITE_TEXT; }
std::int64_t Statement::integer(int column) const { return sqlite3_column_int64(statement_.get(), column); }
double Statement::real(int column) const { return sqlite3_column_double(statement_.get(), column); }

std::string Statement::text(int column) const { return std::string(textView(column)); }

std::string_view Statement::textView(int column) const
{
    const auto* bytes = sqlite3_column_text(statement_.get(), column);
    const int size = sqlite3_column_bytes(statement_.get(), column);
    // NULL reads as an empty text that points somewhere, as copying it may need.
    return bytes ? std::string_view(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size))
                 : std::string_view("");
}

// ---- Transaction -------------------------------------------------------

Transaction::Transaction(const Connection& connection, Kind kind) : connection_(connection)
{
    connection_.exec(kind == Kind::Write ? "BEGIN IMMEDIATE" : "BEGIN");
}

Transaction::~Transaction()
{
    if (!open_) return;
    // A failed save leaves the file as it was; there is nothing to report
    // beyond the error that brought us here.
    try {
        connection_.exec("ROLLBACK");
    } catch (const PlatformError&) {
    }
}

void Transaction::commit()
{
    connection_.exec("COMMIT");
    open_ = false;
}

}  // namespace pipespec::platform::sqlite
