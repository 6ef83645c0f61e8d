// HostRecords.h: a fake device whose records are of one byte throughout: switches on and off, words that nobody knows,
// texts without an end, counts beyond the tables. Local to one test.
#pragma once

#include "FakeDevice.h"

#include <cstring>
#include <vector>

template <typename RECORD>
void FillRecord(RECORD& record, int byte)
{
    std::memset(static_cast<void*>(&record), byte, sizeof(record));
}

template <typename ROW>
void FillRows(std::vector<ROW>& rows, size_t count, int byte)
{
    rows.resize(count);
    for (ROW& row : rows)
        FillRecord(row, byte);
}

/// @param byte  from 0 to 255. Lists are as long as the library has room for.
inline void FillHostRecords(CFakeDevice& device, int byte)
{
    FillRecord(device.deviceInfo, byte);
    FillRecord(device.timeConfig, byte);
    FillRecord(device.imageCaps, byte);
    device.imageCaps.wdrSwitchDefault = 0; // the one default that has no place in its document
    FillRecord(device.imageParam, byte);
    FillRecord(device.timeOsd, byte);
    FillRecord(device.channelNameOsd, byte);
    FillRecord(device.presetCaps, byte);
    FillRecord(device.cruiseCaps, byte);
    FillRecord(device.ptzProtocol, byte);
    FillRecord(device.motionConfig, byte);
    FillRecord(device.motionCaps, byte);
    FillRecord(device.sensorConfig, byte);
    FillRecord(device.alarmOutConfig, byte);
    FillRecord(device.netBasic, byte);
    FillRecord(device.pppoe, byte);
    FillRecord(device.portInfo, byte);
    FillRecord(device.ddns, byte);
    for (int profile = 0; profile < 2; ++profile)
    {
        FillRecord(device.videoCaps[profile], byte);
        FillRecord(device.videoProfiles[profile], byte);
        device.videoProfiles[profile].encodeType = 2; // any other is refused
    }
    FillRows(device.privacyMasks, 8, byte);
    FillRows(device.presets, 256, byte);
    FillRows(device.cruises, 12, byte);
    FillRows(device.cruisePoints, 256, byte);
    FillRows(device.recordDates, 256, byte);
    FillRows(device.records, 256, byte);
}
