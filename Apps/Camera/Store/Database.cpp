#include "Database.h"

#include <sqlite3.h>

#include <utility>

namespace
{

constexpr int BUSY_LIMIT_MS = 5000; // another process, like a person's sqlite3, may hold the file for a moment
constexpr const char* CHECK_RIGHTS = "check the rights of its directory and the free space there";

std::string Quoted(const std::string& path)
{
    return "'" + path + "'";
}

} // namespace

CStatement::~CStatement()
{
    sqlite3_finalize(m_statement);
}

CStatement::CStatement(CStatement&& other) noexcept
    : m_statement(std::exchange(other.m_statement, nullptr)), m_bound(other.m_bound), m_read(other.m_read)
{
}

CStatement& CStatement::Bind(std::int64_t value)
{
    sqlite3_bind_int64(m_statement, ++m_bound, value);
    return *this;
}

CStatement& CStatement::Bind(const std::string& value)
{
    sqlite3_bind_text(m_statement, ++m_bound, value.data(), static_cast<int>(value.size()), SQLITE_TRANSIENT);
    return *this;
}

bool CStatement::Next()
{
    m_read = 0;
    return sqlite3_step(m_statement) == SQLITE_ROW;
}

bool CStatement::Run()
{
    int result = sqlite3_step(m_statement);
    while (result == SQLITE_ROW)
    {
        result = sqlite3_step(m_statement);
    }
    return result == SQLITE_DONE;
}

CStatement& CStatement::Reset()
{
    sqlite3_reset(m_statement);
    m_bound = 0;
    return *this;
}

std::int64_t CStatement::Number()
{
    return sqlite3_column_int64(m_statement, m_read++);
}

std::string CStatement::Text()
{
    const int column = m_read++;
    const unsigned char* const text = sqlite3_column_text(m_statement, column);
    const int length = sqlite3_column_bytes(m_statement, column);
    return text == nullptr ? std::string()
                           : std::string(reinterpret_cast<const char*>(text), static_cast<std::size_t>(length));
}

CDatabase::~CDatabase()
{
    sqlite3_close(m_database);
}

bool CDatabase::Open(const std::string& path, const std::vector<const char*>& migrations, Durability durability,
                     std::string& problem)
{
    m_path = path;
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_FULLMUTEX;
    const int opened = sqlite3_open_v2(path.c_str(), &m_database, flags, nullptr);
    if (opened != SQLITE_OK)
    {
        problem = Quoted(path) + " cannot be opened: " + LastProblem() + "; " + CHECK_RIGHTS;
        return false;
    }
    sqlite3_busy_timeout(m_database, BUSY_LIMIT_MS);
    if (!IsSound(problem))
    {
        return false;
    }
    const bool ready =
        Execute("PRAGMA journal_mode=WAL") &&
        Execute(durability == Durability::EveryCommit ? "PRAGMA synchronous=FULL" : "PRAGMA synchronous=NORMAL") &&
        Execute("BEGIN IMMEDIATE") && Execute("COMMIT");
    if (!ready || sqlite3_db_readonly(m_database, "main") != 0)
    {
        problem = Quoted(path) + " cannot be written: " + LastProblem() + "; " + CHECK_RIGHTS;
        return false;
    }
    return Migrate(migrations, problem);
}

bool CDatabase::IsSound(std::string& problem)
{
    std::string found;
    {
        CStatement check = Prepare("PRAGMA quick_check(1)");
        found = check.Next() ? check.Text() : LastProblem();
    }
    if (found != "ok")
    {
        problem = Quoted(m_path) + " is damaged (" + found + "); move it away to start with the defaults";
        return false;
    }
    return true;
}

bool CDatabase::Migrate(const std::vector<const char*>& migrations, std::string& problem)
{
    std::int64_t version = 0;
    {
        CStatement asked = Prepare("PRAGMA user_version");
        version = asked.Next() ? asked.Number() : 0;
    }
    if (version < 0 || version > static_cast<std::int64_t>(migrations.size()))
    {
        problem = Quoted(m_path) + " has version " + std::to_string(version) + ", this program knows " +
                  std::to_string(migrations.size()) + " and older: it was written by a newer program";
        return false;
    }
    for (std::size_t step = static_cast<std::size_t>(version); step < migrations.size(); ++step)
    {
        CTransaction transaction(*this);
        const std::string next = "PRAGMA user_version=" + std::to_string(step + 1);
        if (!Execute(migrations[step]) || !Execute(next.c_str()) || !transaction.Commit())
        {
            problem =
                Quoted(m_path) + " cannot be brought to version " + std::to_string(step + 1) + ": " + LastProblem();
            return false;
        }
    }
    return true;
}

CStatement CDatabase::Prepare(const char* sql)
{
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(m_database, sql, -1, &statement, nullptr);
    return CStatement(statement);
}

bool CDatabase::Execute(const char* sql)
{
    return sqlite3_exec(m_database, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

std::int64_t CDatabase::LastRowId() const
{
    return sqlite3_last_insert_rowid(m_database);
}

std::string CDatabase::LastProblem() const
{
    return m_database == nullptr ? "out of memory" : sqlite3_errmsg(m_database);
}

CTransaction::CTransaction(CDatabase& database) : m_database(database), m_open(database.Execute("BEGIN IMMEDIATE")) {}

CTransaction::~CTransaction()
{
    if (m_open)
    {
        m_database.Execute("ROLLBACK");
    }
}

bool CTransaction::Commit()
{
    if (!m_open || !m_database.Execute("COMMIT"))
    {
        return false;
    }
    m_open = false;
    return true;
}
