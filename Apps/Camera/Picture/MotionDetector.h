// MotionDetector.h: looks for movement in the cells of a grid over the picture.
//
// Local to one thread.
#pragma once

#include "DevInterface.h"
#include "Picture.h"

#include <vector>

/// Compares the brightness of each picture with that of one a fraction of a second before, cell by cell. A cell moves
/// when its samples differ by more than the sensitivity's threshold in the mean; the picture moves when a cell does
/// that the area holds. In a row's mask the leftmost cell is the highest of the bits for the columns.
class CMotionDetector
{
public:
    /// @return whether there is movement in the area
    bool Look(const Picture& picture, const NETNS::DEV_MOTION_CONFIG& config);

    /// The next picture is not compared: what it shows has changed for another reason.
    void Forget() { m_before.clear(); }

private:
    void TakeSamples(const Picture& picture);
    bool IsMoving(const NETNS::DEV_MOTION_CONFIG& config) const;
    int MeanDifference(unsigned int row, unsigned int column, unsigned int rows, unsigned int columns) const;

    std::vector<std::uint8_t> m_now; // every fourth sample of every fourth row
    std::vector<std::uint8_t> m_before;
    unsigned int m_width = 0; // of the samples
    unsigned int m_height = 0;
    std::uint64_t m_beforeUs = 0;
    bool m_moving = false;
};
