#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace tovi {

/// One SQLite connection. Every failure is an `IntelligenceError::database` with SQLite's text.
class Database {
  public:
    enum class Access { readWrite, readOnly };

    /// Opens the file, creating it for `readWrite`.
    Database(const std::string& path, Access access);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// Runs a script of one or more statements.
    void execute(const std::string& script);

    /// Rows changed by the statement that ran last.
    std::int64_t changes() const;

    sqlite3* handle() const { return handle_; }

    /// Throws with the connection's current error text.
    [[noreturn]] void fail() const;

  private:
    sqlite3* handle_ = nullptr;
};

/// One prepared statement, bound from 1 and read from 0 in order.
class Statement {
  public:
    Statement(Database& database, std::string_view sql);

    Statement& bind(std::string_view text);
    Statement& bind(std::int64_t value);
    Statement& bind(double value);
    Statement& bindNull();
    /// An object for a function of the program's own, which knows it by `type`, a constant.
    Statement& bindPointer(const void* object, const char* type);
    template <typename Value>
    Statement& bind(const std::optional<Value>& value) {
        return value ? bind(*value) : bindNull();
    }

    /// True while there is a row.
    bool step();
    /// Steps through a statement that gives no rows, then makes it ready for new values.
    void run();
    void reset();

    bool isNull(int column) const;
    std::int64_t integer(int column) const;
    double real(int column) const;
    /// Valid until the next step.
    std::string_view text(int column) const;

  private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const;
    };

    Database& database_;
    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
    int bound_ = 0;
};

/// Everything between construction and `commit`, or nothing of it.
class Transaction {
  public:
    enum class Kind { reading, writing };

    Transaction(Database& database, Kind kind);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    void commit();

  private:
    Database& database_;
    bool isOpen_ = true;
};

/// For its lifetime the connection's statements are interrupted once `stop` is requested.
class InterruptOnStop {
  public:
    InterruptOnStop(Database& database, const std::stop_token& stop);
    ~InterruptOnStop();
    InterruptOnStop(const InterruptOnStop&) = delete;
    InterruptOnStop& operator=(const InterruptOnStop&) = delete;

  private:
    Database& database_;
    std::stop_token stop_;
};

} // namespace tovi
