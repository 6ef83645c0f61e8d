#include "RecordIndex.h"

#include "SegmentFile.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>

#include <sys/stat.h>
#include <unistd.h>

namespace
{

// The end of a segment that is being written is 0.
const std::vector<const char*> MIGRATIONS = {
    "CREATE TABLE segment (id INTEGER PRIMARY KEY AUTOINCREMENT, start INTEGER NOT NULL, end INTEGER NOT NULL,"
    " bytes INTEGER NOT NULL); CREATE INDEX segment_start ON segment (start)",
};

constexpr const char* COLUMNS_OF_ALL = "SELECT id, start, end, bytes FROM segment ";

// Between the last frame of a segment and the first of the next lies an ordinary frame interval, or a moment in which
// an encoder was set up anew.
constexpr std::int64_t LARGEST_STEP_US = 2000000;

} // namespace

bool CRecordIndex::Open(const std::string& directory, std::string& problem)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    m_directory = directory;
    if (!m_database.Open(directory + "/index.db", MIGRATIONS, Durability::Process, problem))
    {
        return false;
    }
    Recover();
    return true;
}

std::string CRecordIndex::PathOf(std::int64_t id) const
{
    char name[32];
    std::snprintf(name, sizeof(name), "/%08" PRId64 ".seg", id);
    return m_directory + name;
}

RecordSegment CRecordIndex::ReadRow(CStatement& row) const
{
    RecordSegment segment;
    segment.id = row.Number();
    segment.startUs = row.Number();
    segment.endUs = row.Number();
    segment.bytes = static_cast<std::uint64_t>(row.Number());
    segment.path = PathOf(segment.id);
    return segment;
}

void CRecordIndex::Recover()
{
    std::vector<RecordSegment> unfinished;
    {
        CStatement rows = m_database.Prepare((std::string(COLUMNS_OF_ALL) + "WHERE end = 0").c_str());
        while (rows.Next())
        {
            unfinished.push_back(ReadRow(rows));
        }
    }
    for (RecordSegment& segment : unfinished)
    {
        CSegmentReader reader;
        segment.endUs = reader.Open(segment.path) ? reader.LastTime() : 0;
        struct stat status = {};
        segment.bytes = stat(segment.path.c_str(), &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
        if (segment.endUs == 0)
        {
            Remove(segment);
            continue;
        }
        m_database.Prepare("UPDATE segment SET end = ?, bytes = ? WHERE id = ?")
            .Bind(segment.endUs)
            .Bind(static_cast<std::int64_t>(segment.bytes))
            .Bind(segment.id)
            .Run();
    }
}

RecordSegment CRecordIndex::Begin(std::int64_t startUs)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    RecordSegment segment;
    if (m_database.Prepare("INSERT INTO segment (start, end, bytes) VALUES (?, 0, 0)").Bind(startUs).Run())
    {
        segment.id = m_database.LastRowId();
        segment.startUs = segment.endUs = startUs;
        segment.path = PathOf(segment.id);
        m_growing = segment;
    }
    return segment;
}

void CRecordIndex::Grow(const RecordSegment& segment)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    m_growing = segment;
}

void CRecordIndex::End(const RecordSegment& segment)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    m_growing = {};
    if (segment.bytes == 0)
    {
        Remove(segment);
        return;
    }
    m_database.Prepare("UPDATE segment SET end = ?, bytes = ? WHERE id = ?")
        .Bind(std::max(segment.endUs, segment.startUs + 1))
        .Bind(static_cast<std::int64_t>(segment.bytes))
        .Bind(segment.id)
        .Run();
}

std::vector<RecordSegment> CRecordIndex::Find(std::int64_t fromUs, std::int64_t toUs)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    std::vector<RecordSegment> found;
    CStatement rows = m_database.Prepare(
        (std::string(COLUMNS_OF_ALL) + "WHERE start <= ? AND (end >= ? OR end = 0) ORDER BY start, id").c_str());
    rows.Bind(toUs).Bind(fromUs);
    while (rows.Next())
    {
        RecordSegment segment = ReadRow(rows);
        if (segment.id == m_growing.id)
        {
            segment = m_growing;
        }
        if (segment.endUs >= fromUs && segment.endUs > 0)
        {
            found.push_back(segment);
        }
    }
    return found;
}

std::vector<RecordSection> CRecordIndex::Sections(std::int64_t fromUs, std::int64_t toUs)
{
    std::vector<RecordSection> sections;
    for (const RecordSegment& segment : Find(fromUs, toUs))
    {
        const std::int64_t startUs = std::max(segment.startUs, fromUs);
        const std::int64_t endUs = std::min(segment.endUs, toUs);
        if (!sections.empty() && startUs - sections.back().endUs <= LARGEST_STEP_US)
        {
            sections.back().endUs = std::max(sections.back().endUs, endUs);
        }
        else
        {
            sections.push_back({startUs, endUs});
        }
    }
    return sections;
}

bool CRecordIndex::IsGrowing(std::int64_t id)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_growing.id == id;
}

std::uint64_t CRecordIndex::TotalBytes()
{
    const std::lock_guard<std::mutex> guard(m_lock);
    CStatement sum = m_database.Prepare("SELECT coalesce(sum(bytes), 0) FROM segment");
    return (sum.Next() ? static_cast<std::uint64_t>(sum.Number()) : 0) + m_growing.bytes;
}

bool CRecordIndex::RemoveOldest()
{
    const std::lock_guard<std::mutex> guard(m_lock);
    RecordSegment oldest;
    {
        CStatement row =
            m_database.Prepare((std::string(COLUMNS_OF_ALL) + "WHERE end > 0 ORDER BY start, id LIMIT 1").c_str());
        if (!row.Next())
        {
            return false;
        }
        oldest = ReadRow(row);
    }
    return Remove(oldest);
}

/// The file first: a row without a file is found and removed, a file without a row would stay for ever.
bool CRecordIndex::Remove(const RecordSegment& segment)
{
    unlink(segment.path.c_str());
    return m_database.Prepare("DELETE FROM segment WHERE id = ?").Bind(segment.id).Run();
}
