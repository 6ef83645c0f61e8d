// RecordIndex.h: which segments there are and when they were recorded; kept in SQLite beside them.
//
// Any thread.
#pragma once

#include "Database.h"

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

struct RecordSegment
{
    std::int64_t id = 0;
    std::int64_t startUs = 0; ///< microseconds since 1970, UTC
    std::int64_t endUs = 0;   ///< of the last frame
    std::uint64_t bytes = 0;
    std::string path;
};

/// Recorded without a gap.
struct RecordSection
{
    std::int64_t startUs = 0;
    std::int64_t endUs = 0;
};

class CRecordIndex
{
public:
    /// @param directory  of the index and the segments; must exist
    ///
    /// Segments that a killed process left unfinished are taken up to their last whole frame.
    bool Open(const std::string& directory, std::string& problem);

    /// Makes room for a segment. @return what to write; id 0 when the index refuses
    RecordSegment Begin(std::int64_t startUs);

    /// The segment that is being written has grown. Kept in memory only.
    void Grow(const RecordSegment& segment);

    /// The segment is complete; one without a frame is forgotten.
    void End(const RecordSegment& segment);

    /// The segments that hold something between two times, in order of their start.
    std::vector<RecordSegment> Find(std::int64_t fromUs, std::int64_t toUs);

    /// The same as sections, clipped to the two times.
    std::vector<RecordSection> Sections(std::int64_t fromUs, std::int64_t toUs);

    /// Whether a segment is still being written.
    bool IsGrowing(std::int64_t id);

    std::uint64_t TotalBytes();

    /// Removes the oldest complete segment with its file. @return false when there is none, or it stays in the index
    bool RemoveOldest();

private:
    void Recover();
    bool Remove(const RecordSegment& segment);
    std::string PathOf(std::int64_t id) const;
    RecordSegment ReadRow(CStatement& row) const;

    std::mutex m_lock;
    std::string m_directory;
    CDatabase m_database;
    RecordSegment m_growing; // id 0: none
};
