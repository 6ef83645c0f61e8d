// ViewScaler.h: enlarges the part of a picture that the digital head looks at to the whole picture.
//
// Local to one thread.
#pragma once

#include "DeviceSettings.h"
#include "Picture.h"

#include <vector>

class CViewScaler
{
public:
    /// Does nothing at zoom 1.
    void Apply(const Picture& picture, const PtzView& view);

private:
    struct Tap
    {
        unsigned int first; // sample or row at the left of the place
        unsigned int second;
        int weight; // of the second one, in 1/256
    };

    void ScalePlane(const PicturePlane& plane, const PtzView& view);
    static void MakeTaps(std::vector<Tap>& taps, unsigned int side, double middle, double zoom);

    std::vector<std::uint8_t> m_source;
    std::vector<Tap> m_columns;
    std::vector<Tap> m_rows;
};
