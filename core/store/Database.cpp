#include "core/store/Database.h"

#include "core/records/IntelligenceError.h"

#include <sqlite3.h>

namespace tovi {

Database::Database(const std::string& path, Access access) {
    const int flags = SQLITE_OPEN_FULLMUTEX |
                      (access == Access::readOnly ? SQLITE_OPEN_READONLY
                                                  : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    if (sqlite3_open_v2(path.c_str(), &handle_, flags, nullptr) != SQLITE_OK) {
        sqlite3_close(handle_);
        throw IntelligenceError::database("Unable to open index");
    }
    sqlite3_busy_timeout(handle_, 5000);
}

Database::~Database() {
    sqlite3_close(handle_);
}

void Database::execute(const std::string& script) {
    if (sqlite3_exec(handle_, script.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) fail();
}

std::int64_t Database::changes() const {
    return sqlite3_changes64(handle_);
}

void Database::fail() const {
    throw IntelligenceError::database(sqlite3_errmsg(handle_));
}

void Statement::Finalize::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

Statement::Statement(Database& database, std::string_view sql) : database_(database) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v3(database.handle(), sql.data(), static_cast<int>(sql.size()),
                           SQLITE_PREPARE_PERSISTENT, &statement, nullptr) != SQLITE_OK) {
        database.fail();
    }
    statement_.reset(statement);
}

Statement& Statement::bind(std::string_view text) {
    // An empty view may have no address, which SQLite would take for NULL.
    const char* bytes = text.data() != nullptr ? text.data() : "";
    if (sqlite3_bind_text64(statement_.get(), ++bound_, bytes, text.size(), SQLITE_TRANSIENT,
                            SQLITE_UTF8) != SQLITE_OK) {
        database_.fail();
    }
    return *this;
}

Statement& Statement::bind(std::int64_t value) {
    if (sqlite3_bind_int64(statement_.get(), ++bound_, value) != SQLITE_OK) database_.fail();
    return *this;
}

Statement& Statement::bind(double value) {
    if (sqlite3_bind_double(statement_.get(), ++bound_, value) != SQLITE_OK) database_.fail();
    return *this;
}

Statement& Statement::bindNull() {
    if (sqlite3_bind_null(statement_.get(), ++bound_) != SQLITE_OK) database_.fail();
    return *this;
}

Statement& Statement::bindPointer(const void* object, const char* type) {
    // SQLite hands the address on as it is; the function that takes it only reads.
    if (sqlite3_bind_pointer(statement_.get(), ++bound_, const_cast<void*>(object), type,
                             nullptr) != SQLITE_OK) {
        database_.fail();
    }
    return *this;
}

bool Statement::step() {
    switch (sqlite3_step(statement_.get())) {
    case SQLITE_ROW:
        return true;
    case SQLITE_DONE:
        return false;
    default:
        database_.fail();
    }
}

void Statement::run() {
    struct Reset {
        Statement& statement;
        ~Reset() { statement.reset(); }
    } const reset{*this};
    while (step()) {
    }
}

void Statement::reset() {
    sqlite3_reset(statement_.get());
    sqlite3_clear_bindings(statement_.get());
    bound_ = 0;
}

bool Statement::isNull(int column) const {
    return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL;
}

std::int64_t Statement::integer(int column) const {
    return sqlite3_column_int64(statement_.get(), column);
}

double Statement::real(int column) const {
    return sqlite3_column_double(statement_.get(), column);
}

std::string_view Statement::text(int column) const {
    const unsigned char* bytes = sqlite3_column_text(statement_.get(), column);
    if (bytes == nullptr) return {};
    return {reinterpret_cast<const char*>(bytes),
            static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column))};
}

Transaction::Transaction(Database& database, Kind kind) : database_(database) {
    database_.execute(kind == Kind::writing ? "BEGIN IMMEDIATE" : "BEGIN");
}

Transaction::~Transaction() {
    if (!isOpen_) return;
    try {
        database_.execute("ROLLBACK");
    } catch (const IntelligenceError&) {
        // The failure that ended the transaction is the one to report.
    }
}

void Transaction::commit() {
    database_.execute("COMMIT");
    isOpen_ = false;
}

InterruptOnStop::InterruptOnStop(Database& database, const std::stop_token& stop)
    : database_(database), stop_(stop) {
    sqlite3_progress_handler(
        database_.handle(), 1000,
        [](void* token) { return static_cast<std::stop_token*>(token)->stop_requested() ? 1 : 0; },
        &stop_);
}

InterruptOnStop::~InterruptOnStop() {
    sqlite3_progress_handler(database_.handle(), 0, nullptr, nullptr);
}

} // namespace tovi
