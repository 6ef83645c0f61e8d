// SettingsStore.h: keeps the camera's settings in SQLite, so that they outlive the program.
//
// Any thread. What a Save has returned true for is on disk, whatever happens to the process afterwards.
#pragma once

#include "Database.h"
#include "DeviceSettings.h"

#include <mutex>
#include <string>

/// The parts that are saved one at a time.
enum class SettingsTopic
{
    Time,
    Image,
    Streams,
    Audio,
    Osd,
    Masks,
    Motion,
    Sensors,
    AlarmOuts,
    Network,
    Pppoe,
    Ports,
    Ddns,
    PtzProtocol,
    PtzLens,
    Presets,
    Cruises,
    Users,
};

class CSettingsStore
{
public:
    /// @param problem  receives what keeps the file from being used
    bool Open(const std::string& path, std::string& problem);

    /// Puts what is stored over the defaults.
    ///
    /// The command line gives the first streams, ports and users. A camera that is started again with the same ones
    /// has what clients have made of them since; one that is started with others has those.
    void Load(const CameraOptions& options, DeviceSettings& settings);

    /// @return false when it could not be written
    bool Save(SettingsTopic topic, const DeviceSettings& settings);

private:
    class CWriter;
    class CReader;

    void LoadPicture(DeviceSettings& settings);
    void LoadAlarms(DeviceSettings& settings);
    void LoadNetwork(DeviceSettings& settings);
    void LoadPtz(DeviceSettings& settings);
    void LoadGiven(const CameraOptions& options, DeviceSettings& settings);
    bool IsGivenAgain(const char* topic, const std::string& arguments);
    bool Forget(const char* topic);
    bool Write(SettingsTopic topic, DeviceSettings& settings);
    template <class Record>
    bool WriteOne(const char* topic, Record& record);
    template <class Records>
    bool WriteAll(const char* topic, Records& records);
    bool WriteCruises(std::vector<PtzCruise>& cruises);

    std::mutex m_lock;
    CDatabase m_database;
};
