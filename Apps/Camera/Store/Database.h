// Database.h: one SQLite file with a schema of a known version, and prepared statements on it.
//
// One thread at a time: the owner has the lock.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

/// A prepared statement, bound from left to right and read from left to right.
class CStatement
{
public:
    /// @param statement  null when it could not be prepared: every step fails then
    explicit CStatement(sqlite3_stmt* statement) : m_statement(statement) {}
    ~CStatement();
    CStatement(CStatement&& other) noexcept;
    CStatement(const CStatement&) = delete;
    CStatement& operator=(const CStatement&) = delete;

    CStatement& Bind(std::int64_t value);
    CStatement& Bind(const std::string& value);

    /// @return true when there is a row to read; its columns are read from the first one on
    bool Next();

    /// Runs it to its end. @return false when the database refuses
    bool Run();

    /// Runs the same statement anew with other values.
    CStatement& Reset();

    std::int64_t Number();
    std::string Text();

private:
    sqlite3_stmt* m_statement;
    int m_bound = 0;
    int m_read = 0;
};

/// How much of what was written may be lost.
enum class Durability
{
    EveryCommit, ///< nothing, also when the machine loses its power
    Process,     ///< nothing when the process is killed; the last moments when the machine loses its power
};

class CDatabase
{
public:
    CDatabase() = default;
    ~CDatabase();
    CDatabase(const CDatabase&) = delete;
    CDatabase& operator=(const CDatabase&) = delete;

    /// Opens the file, makes it when missing, and brings its schema to the newest version.
    /// @param migrations  script N leads from version N to version N + 1, each in a transaction of its own
    /// @param problem     receives what a person can do something about: a damaged, unwritable or newer file
    bool Open(const std::string& path, const std::vector<const char*>& migrations, Durability durability,
              std::string& problem);

    CStatement Prepare(const char* sql);
    bool Execute(const char* sql);
    std::int64_t LastRowId() const;

    /// What SQLite says of the last failure.
    std::string LastProblem() const;

private:
    bool Migrate(const std::vector<const char*>& migrations, std::string& problem);
    bool IsSound(std::string& problem);

    sqlite3* m_database = nullptr;
    std::string m_path;
};

/// A transaction that is undone unless Commit is called.
class CTransaction
{
public:
    explicit CTransaction(CDatabase& database);
    ~CTransaction();
    CTransaction(const CTransaction&) = delete;
    CTransaction& operator=(const CTransaction&) = delete;

    bool Commit();

private:
    CDatabase& m_database;
    bool m_open;
};
