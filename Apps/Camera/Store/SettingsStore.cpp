#include "SettingsStore.h"

#include "SettingsFields.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <sstream>
#include <type_traits>

namespace
{

// A record is a row for each field: a field more or less needs no new version.
const std::vector<const char*> MIGRATIONS = {
    "CREATE TABLE setting (topic TEXT NOT NULL, number INTEGER NOT NULL, field TEXT NOT NULL, value TEXT NOT NULL,"
    " PRIMARY KEY (topic, number, field)) WITHOUT ROWID",
    // From version 2 on the command line that the stored streams, ports and users began with is known.
    "CREATE TABLE given (topic TEXT PRIMARY KEY, arguments TEXT NOT NULL) WITHOUT ROWID",
};

constexpr int CRUISE_POINT_STRIDE = 1000; // the points of cruise N are the records from N times this number on

/// One number as a record of its own.
struct NumberRecord
{
    const char* name;
    std::uint32_t& number;
};

template <class Visitor>
void VisitFields(Visitor& field, NumberRecord& record)
{
    field(record.name, record.number);
}

/// A cruise without its points.
struct CruiseName
{
    unsigned int id = 0;
    std::string name;
};

template <class Visitor>
void VisitFields(Visitor& field, CruiseName& record)
{
    field("id", record.id);
    field("name", record.name);
}

std::string StreamArguments(const CameraOptions& options)
{
    std::ostringstream text;
    text << options.width << 'x' << options.height << ' ' << options.fps << ' ' << options.bitrate << ' '
         << options.gop;
    return text.str();
}

std::string PortArguments(const CameraOptions& options)
{
    return std::to_string(options.httpPort) + ' ' + std::to_string(options.rtspPort);
}

std::string UserArguments(const CameraOptions& options)
{
    std::string text;
    for (const CameraUser& user : options.users)
    {
        text += user.name + ':' + user.password + '\n'; // neither holds a line break
    }
    return text;
}

std::string TextOf(double number)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%.6f", number);
    return text;
}

} // namespace

/// Writes the fields of one record.
class CSettingsStore::CWriter
{
public:
    CWriter(CDatabase& database, const char* topic)
        : m_topic(topic), m_insert(database.Prepare("INSERT OR REPLACE INTO setting VALUES (?, ?, ?, ?)"))
    {
    }

    template <class Record>
    void Put(int number, Record& record)
    {
        m_number = number;
        VisitFields(*this, record);
    }

    template <class Number, std::enable_if_t<std::is_integral_v<Number>, int> = 0>
    void operator()(const std::string& field, Number& value)
    {
        Row(field, std::to_string(value));
    }
    void operator()(const std::string& field, double& value) { Row(field, TextOf(value)); }
    void operator()(const std::string& field, std::string& value) { Row(field, value); }

    template <std::size_t N>
    void operator()(const std::string& field, char (&value)[N])
    {
        Row(field, std::string(value, strnlen(value, N)));
    }
    template <std::size_t N>
    void operator()(const std::string& field, std::uint32_t (&list)[N], std::uint32_t& count)
    {
        std::string text;
        for (std::size_t index = 0; index < std::min<std::size_t>(count, N); ++index)
        {
            text += (index == 0 ? "" : " ") + std::to_string(list[index]);
        }
        Row(field, text);
    }

    bool Succeeded() const { return m_good; }

private:
    void Row(const std::string& field, const std::string& value)
    {
        m_good = m_insert.Reset().Bind(m_topic).Bind(m_number).Bind(field).Bind(value).Run() && m_good;
    }

    const std::string m_topic;
    CStatement m_insert;
    int m_number = 0;
    bool m_good = true;
};

/// Reads what is there of a record; a field that is not stored keeps its value.
class CSettingsStore::CReader
{
public:
    CReader(CDatabase& database, const char* topic)
    {
        CStatement rows = database.Prepare("SELECT number, field, value FROM setting WHERE topic = ?");
        rows.Bind(std::string(topic));
        while (rows.Next())
        {
            const auto number = static_cast<int>(rows.Number());
            const std::string field = rows.Text();
            m_records[number][field] = rows.Text();
        }
    }

    template <class Record>
    void Get(int number, Record& record)
    {
        const auto found = m_records.find(number);
        if (found != m_records.end())
        {
            m_fields = &found->second;
            VisitFields(*this, record);
        }
    }

    /// The records in the order of their numbers, from `first` up to but without `end`.
    template <class Record>
    std::vector<Record> List(int first, int end)
    {
        std::vector<Record> list;
        for (auto at = m_records.lower_bound(first); at != m_records.end() && at->first < end; ++at)
        {
            list.emplace_back();
            Get(at->first, list.back());
        }
        return list;
    }

    template <class Number, std::enable_if_t<std::is_integral_v<Number>, int> = 0>
    void operator()(const std::string& field, Number& value)
    {
        if (const std::string* const text = Find(field))
        {
            value = std::is_signed_v<Number> ? static_cast<Number>(std::strtoll(text->c_str(), nullptr, 10))
                                             : static_cast<Number>(std::strtoull(text->c_str(), nullptr, 10));
        }
    }
    void operator()(const std::string& field, double& value)
    {
        if (const std::string* const text = Find(field))
        {
            value = std::strtod(text->c_str(), nullptr);
        }
    }
    void operator()(const std::string& field, std::string& value)
    {
        if (const std::string* const text = Find(field))
        {
            value = *text;
        }
    }
    template <std::size_t N>
    void operator()(const std::string& field, char (&value)[N])
    {
        if (const std::string* const text = Find(field))
        {
            std::snprintf(value, N, "%s", text->c_str());
        }
    }
    template <std::size_t N>
    void operator()(const std::string& field, std::uint32_t (&list)[N], std::uint32_t& count)
    {
        if (const std::string* const text = Find(field))
        {
            std::istringstream numbers(*text);
            for (count = 0; count < N && numbers >> list[count]; ++count)
            {
            }
        }
    }

private:
    using Fields = std::map<std::string, std::string>;

    const std::string* Find(const std::string& field) const
    {
        const auto found = m_fields->find(field);
        return found == m_fields->end() ? nullptr : &found->second;
    }

    std::map<int, Fields> m_records;
    const Fields* m_fields = nullptr;
};

bool CSettingsStore::Open(const std::string& path, std::string& problem)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_database.Open(path, MIGRATIONS, Durability::EveryCommit, problem);
}

void CSettingsStore::Load(const CameraOptions& options, DeviceSettings& settings)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    LoadPicture(settings);
    LoadAlarms(settings);
    LoadNetwork(settings);
    LoadPtz(settings);
    LoadGiven(options, settings);
}

void CSettingsStore::LoadPicture(DeviceSettings& settings)
{
    NumberRecord audio{"type", settings.audioType};
    CReader(m_database, "time").Get(0, settings.time);
    CReader(m_database, "image").Get(0, settings.image);
    CReader(m_database, "audio").Get(0, audio);
    CReader(m_database, "timeOsd").Get(0, settings.timeOsd);
    CReader(m_database, "nameOsd").Get(0, settings.nameOsd);
    settings.masks = CReader(m_database, "mask").List<NETNS::DEV_PRIVACY_MASK>(0, INT32_MAX);
}

void CSettingsStore::LoadAlarms(DeviceSettings& settings)
{
    CReader(m_database, "motion").Get(0, settings.motion);
    CReader sensors(m_database, "sensor");
    for (unsigned int id = 0; id < SENSOR_COUNT; ++id)
    {
        sensors.Get(static_cast<int>(id), settings.sensors[id]);
    }
    CReader alarmOuts(m_database, "alarmOut");
    for (unsigned int id = 0; id < ALARM_OUT_COUNT; ++id)
    {
        alarmOuts.Get(static_cast<int>(id), settings.alarmOuts[id]);
    }
}

void CSettingsStore::LoadNetwork(DeviceSettings& settings)
{
    CReader(m_database, "net").Get(0, settings.net);
    CReader(m_database, "pppoe").Get(0, settings.pppoe);
    CReader(m_database, "ddns").Get(0, settings.ddns);
}

void CSettingsStore::LoadPtz(DeviceSettings& settings)
{
    NumberRecord focus{"focus", settings.focus};
    NumberRecord iris{"iris", settings.iris};
    CReader(m_database, "ptzProtocol").Get(0, settings.ptzProtocol);
    CReader lens(m_database, "ptzLens");
    lens.Get(0, focus);
    lens.Get(0, iris);
    settings.presets = CReader(m_database, "preset").List<PtzPreset>(0, INT32_MAX);
    CReader points(m_database, "cruisePoint");
    settings.cruises.clear();
    for (const CruiseName& cruise : CReader(m_database, "cruise").List<CruiseName>(0, INT32_MAX))
    {
        const int first = static_cast<int>(cruise.id) * CRUISE_POINT_STRIDE;
        settings.cruises.push_back(
            {cruise.id, cruise.name, points.List<PtzCruisePoint>(first, first + CRUISE_POINT_STRIDE)});
    }
}

/// What the command line gives the first values of.
void CSettingsStore::LoadGiven(const CameraOptions& options, DeviceSettings& settings)
{
    if (IsGivenAgain("stream", StreamArguments(options)))
    {
        CReader streams(m_database, "stream");
        for (unsigned int index = 0; index < VIDEO_STREAMS; ++index)
        {
            streams.Get(static_cast<int>(index), settings.profiles[index]);
        }
    }
    if (IsGivenAgain("port", PortArguments(options)))
    {
        CReader(m_database, "port").Get(0, settings.ports);
    }
    if (IsGivenAgain("user", UserArguments(options)))
    {
        std::vector<CameraUser> users = CReader(m_database, "user").List<CameraUser>(0, INT32_MAX);
        if (!users.empty())
        {
            settings.users = std::move(users);
        }
    }
}

/// Whether the arguments are those that the stored values began with; if not, the stored values are dropped.
bool CSettingsStore::IsGivenAgain(const char* topic, const std::string& arguments)
{
    {
        CStatement asked = m_database.Prepare("SELECT arguments FROM given WHERE topic = ?");
        if (asked.Bind(std::string(topic)).Next() && asked.Text() == arguments)
        {
            return true;
        }
    }
    CTransaction transaction(m_database);
    Forget(topic);
    m_database.Prepare("INSERT OR REPLACE INTO given VALUES (?, ?)").Bind(std::string(topic)).Bind(arguments).Run();
    transaction.Commit();
    return false;
}

bool CSettingsStore::Forget(const char* topic)
{
    return m_database.Prepare("DELETE FROM setting WHERE topic = ?").Bind(std::string(topic)).Run();
}

bool CSettingsStore::Save(SettingsTopic topic, const DeviceSettings& settings)
{
    DeviceSettings copy = settings; // the visitors of reader and writer are the same and take fields to change
    const std::lock_guard<std::mutex> guard(m_lock);
    CTransaction transaction(m_database);
    return Write(topic, copy) && transaction.Commit();
}

template <class Record>
bool CSettingsStore::WriteOne(const char* topic, Record& record)
{
    CWriter writer(m_database, topic);
    writer.Put(0, record);
    return writer.Succeeded();
}

/// @param records  anything that can be walked; they replace all that were stored
template <class Records>
bool CSettingsStore::WriteAll(const char* topic, Records& records)
{
    bool good = Forget(topic);
    CWriter writer(m_database, topic);
    int number = 0;
    for (auto& record : records)
    {
        writer.Put(number++, record);
    }
    return writer.Succeeded() && good;
}

bool CSettingsStore::WriteCruises(std::vector<PtzCruise>& cruises)
{
    bool good = Forget("cruise") && Forget("cruisePoint");
    CWriter names(m_database, "cruise");
    CWriter points(m_database, "cruisePoint");
    int number = 0;
    for (PtzCruise& cruise : cruises)
    {
        CruiseName name{cruise.id, cruise.name};
        names.Put(number++, name);
        int point = static_cast<int>(cruise.id) * CRUISE_POINT_STRIDE;
        for (PtzCruisePoint& one : cruise.points)
        {
            points.Put(point++, one);
        }
    }
    return good && names.Succeeded() && points.Succeeded();
}

bool CSettingsStore::Write(SettingsTopic topic, DeviceSettings& settings)
{
    NumberRecord audio{"type", settings.audioType};
    NumberRecord focus{"focus", settings.focus};
    NumberRecord iris{"iris", settings.iris};
    switch (topic)
    {
    case SettingsTopic::Time:
        return WriteOne("time", settings.time);
    case SettingsTopic::Image:
        return WriteOne("image", settings.image);
    case SettingsTopic::Streams:
        return WriteAll("stream", settings.profiles);
    case SettingsTopic::Audio:
        return WriteOne("audio", audio);
    case SettingsTopic::Osd:
        return WriteOne("timeOsd", settings.timeOsd) && WriteOne("nameOsd", settings.nameOsd);
    case SettingsTopic::Masks:
        return WriteAll("mask", settings.masks);
    case SettingsTopic::Motion:
        return WriteOne("motion", settings.motion);
    case SettingsTopic::Sensors:
        return WriteAll("sensor", settings.sensors);
    case SettingsTopic::AlarmOuts:
        return WriteAll("alarmOut", settings.alarmOuts);
    case SettingsTopic::Network:
        return WriteOne("net", settings.net);
    case SettingsTopic::Pppoe:
        return WriteOne("pppoe", settings.pppoe);
    case SettingsTopic::Ports:
        return WriteOne("port", settings.ports);
    case SettingsTopic::Ddns:
        return WriteOne("ddns", settings.ddns);
    case SettingsTopic::PtzProtocol:
        return WriteOne("ptzProtocol", settings.ptzProtocol);
    case SettingsTopic::PtzLens:
        return WriteOne("ptzLens", focus) && WriteOne("ptzLens", iris);
    case SettingsTopic::Presets:
        return WriteAll("preset", settings.presets);
    case SettingsTopic::Cruises:
        return WriteCruises(settings.cruises);
    case SettingsTopic::Users:
        return WriteAll("user", settings.users);
    }
    return false;
}
