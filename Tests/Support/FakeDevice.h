// FakeDevice.h: the host's device, as tests need it. Any thread.
//
// Every operation answers from the public members, and what a `Set` operation brings is stored in them. Set them up
// before the code under test runs; while it runs, go through Change. Each operation with a verification text asks the
// user list first: DEV_RET_NO_RIGHT unless name and password of the text are one of its users.
#pragma once

#include "DevInterface.h"

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

class CFakeDevice : public CDevInterface
{
public:
    /// One user, admin with the password admin.
    CFakeDevice();

    /// How often an operation was called. @param operation  its name: "GetDevInfo"
    int Calls(const std::string& operation) const;
    /// Names of all operations called, in order.
    std::vector<std::string> CallOrder() const;
    /// The same with their arguments, records in braces with their fields in order and texts in quotes:
    /// "SetPtzProtocol 1 {9600 1 5}", "SetVideoProfile 1 0 {...}". Verification texts are left out.
    std::vector<std::string> CallLog() const;
    void ForgetCalls();
    /// The verification text of the last call that had one.
    std::string LastVerify() const;
    /// The channel of the last call that had one.
    unsigned int LastChannel() const;
    /// Buffers handed out and not yet given back.
    int BuffersOut() const;

    /// Reads or changes the members while other threads use the device.
    void Change(const std::function<void(CFakeDevice&)>& change);
    void AddUser(const std::string& name, const std::string& password);

    std::vector<NETNS::DEV_USER_INFO> users;
    /// Results of operations by name; DEV_RET_OK for those that are not in it. The user is judged first.
    std::map<std::string, NETNS::DEV_RET> results;
    /// Counts that operations with a list tell by name, for those that do not tell what they filled.
    std::map<std::string, int> counts;

    /// Files that GetWebFile writes, by path.
    std::map<std::string, std::string> webFiles;
    std::string httpAnswer;
    bool httpAnswerIsNull = false;
    int httpStatus = 200;
    std::string lastHttpMessage;

    bool integratedPtz = false;
    bool rs485Ptz = false;
    bool sdCard = false;
    bool needAuthorization = true;
    int profileCount = 2;
    int audioType = 0;
    int ntpServerMaxLen = 127;
    std::map<int, std::string> profileNames;
    std::string newPassword;
    std::string alarmStatusXml;

    NETNS::DEV_DEVICE_INFO deviceInfo = {};
    NETNS::DEV_TIME_CONFIG timeConfig = {};
    NETNS::DEV_DATETIME dateTime = {};
    NETNS::DEV_IMAGE_CAPS imageCaps = {};
    NETNS::DEV_IMAGE_PARAM imageParam = {};
    std::map<int, NETNS::DEV_VIDEO_ENCODE_CAPS> videoCaps; // by profile
    std::map<int, NETNS::DEV_VIDEO_PROFILE> videoProfiles;
    NETNS::DEV_TIME_OSD timeOsd = {};
    NETNS::DEV_CHANNEL_NAME_OSD channelNameOsd = {};
    std::vector<NETNS::DEV_PRIVACY_MASK> privacyMasks;
    NETNS::DEV_PTZ_PRESET_CAPS presetCaps = {};
    NETNS::DEV_PTZ_CRUISE_CAPS cruiseCaps = {};
    NETNS::DEV_PTZ_PROTOCOL ptzProtocol = {};
    std::vector<NETNS::DEV_PTZ_PRESET> presets;
    std::vector<NETNS::DEV_PTZ_CRUISE> cruises;
    std::vector<NETNS::DEV_PTZ_CRUISE_POINT> cruisePoints;
    NETNS::DEV_MOTION_CONFIG motionConfig = {};
    NETNS::DEV_MOTION_CAPS motionCaps = {};
    NETNS::DEV_SENSOR_CONFIG sensorConfig = {};
    NETNS::DEV_ALARM_OUT_CONFIG alarmOutConfig = {};
    NETNS::DEV_NET_BASIC netBasic = {};
    NETNS::DEV_PPPOE pppoe = {};
    NETNS::DEV_PORT_INFO portInfo = {};
    NETNS::DEV_DDNS ddns = {};
    std::vector<unsigned int> channelIds;
    std::vector<NETNS::DEV_DATE> recordDates;
    std::vector<NETNS::DEV_RECORD_INFO> records;

    NETNS::DEV_RET ProcHttpRequest(const std::string& request, int& status, std::string& response) override;
    NETNS::DEV_RET ProcHttpData(const char* message, int len, char*& body, int& bodyLen, int& status) override;
    NETNS::DEV_RET GetWebFile(const char* path, char*& buffer, int& len) override;
    NETNS::DEV_RET FreeBuffer(char*& buffer) override;
    NETNS::DEV_RET GetIntegratedPtz(bool& supported) override;
    NETNS::DEV_RET GetSupportRS485Ptz(bool& supported) override;
    NETNS::DEV_RET GetSupportSDCard(bool& supported) override;
    NETNS::DEV_RET GetUserList(NETNS::DEV_USER_INFO* list, int max, int& count) override;
    NETNS::DEV_RET GetDevInfo(const char* verify, NETNS::DEV_DEVICE_INFO* info) override;
    NETNS::DEV_RET GetTimeConfig(const char* verify, NETNS::DEV_TIME_CONFIG* config) override;
    NETNS::DEV_RET SetTimeConfig(const char* verify, const NETNS::DEV_TIME_CONFIG* config) override;
    NETNS::DEV_RET SetDateTime(const char* verify, const NETNS::DEV_DATETIME* time) override;
    NETNS::DEV_RET GetImageCaps(const char* verify, unsigned int chn, NETNS::DEV_IMAGE_CAPS* caps) override;
    NETNS::DEV_RET GetImageParam(const char* verify, unsigned int chn, NETNS::DEV_IMAGE_PARAM* param) override;
    NETNS::DEV_RET SetImageParam(const char* verify, unsigned int chn, const NETNS::DEV_IMAGE_PARAM* param) override;
    NETNS::DEV_RET ImageReserved() override;
    NETNS::DEV_RET GetVideoEncodeCaps(const char* verify, unsigned int chn, int profile,
                                      NETNS::DEV_VIDEO_ENCODE_CAPS* caps) override;
    NETNS::DEV_RET GetProfileName(const char* verify, unsigned int chn, int profile, char* name, int size,
                                  int& len) override;
    int GetProfileCount(unsigned int chn) override;
    bool SupportAudioEncode(unsigned int chn, int type) override;
    NETNS::DEV_RET SetAudioEncode(const char* verify, unsigned int chn, int type) override;
    NETNS::DEV_RET GetVideoProfile(const char* verify, unsigned int chn, int profile,
                                   NETNS::DEV_VIDEO_PROFILE* config) override;
    NETNS::DEV_RET SetVideoProfile(const char* verify, unsigned int chn, int profile,
                                   const NETNS::DEV_VIDEO_PROFILE* config) override;
    NETNS::DEV_RET RequestKeyFrame(const char* verify, unsigned int chn) override;
    bool NeedAuthorization() override;
    NETNS::DEV_RET GetTimeOsd(const char* verify, unsigned int chn, NETNS::DEV_TIME_OSD* osd) override;
    NETNS::DEV_RET GetChannelNameOsd(const char* verify, unsigned int chn, NETNS::DEV_CHANNEL_NAME_OSD* osd) override;
    NETNS::DEV_RET SetTimeOsd(const char* verify, unsigned int chn, NETNS::DEV_TIME_OSD osd) override;
    NETNS::DEV_RET SetChannelNameOsd(const char* verify, unsigned int chn, NETNS::DEV_CHANNEL_NAME_OSD osd) override;
    NETNS::DEV_RET GetPrivacyMask(const char* verify, unsigned int chn, NETNS::DEV_PRIVACY_MASK* list, int max,
                                  int& count) override;
    NETNS::DEV_RET SetPrivacyMask(const char* verify, unsigned int chn, const NETNS::DEV_PRIVACY_MASK* list,
                                  int count) override;
    NETNS::DEV_RET GetPtzPresetCaps(const char* verify, unsigned int chn, NETNS::DEV_PTZ_PRESET_CAPS* caps) override;
    NETNS::DEV_RET GetPtzCruiseCaps(const char* verify, unsigned int chn, NETNS::DEV_PTZ_CRUISE_CAPS* caps) override;
    NETNS::DEV_RET GetPtzProtocol(const char* verify, unsigned int chn, NETNS::DEV_PTZ_PROTOCOL* protocol) override;
    NETNS::DEV_RET SetPtzProtocol(const char* verify, unsigned int chn,
                                  const NETNS::DEV_PTZ_PROTOCOL* protocol) override;
    NETNS::DEV_RET PtzControl(const char* verify, unsigned int chn, int command, int speed) override;
    NETNS::DEV_RET PtzGotoPreset(const char* verify, unsigned int chn, int index) override;
    NETNS::DEV_RET PtzGetPresets(const char* verify, unsigned int chn, NETNS::DEV_PTZ_PRESET* list, int max,
                                 int& count) override;
    NETNS::DEV_RET PtzReserved() override;
    NETNS::DEV_RET PtzAddPreset(const char* verify, unsigned int chn, const char* name) override;
    NETNS::DEV_RET PtzModifyPresetName(const char* verify, unsigned int chn, int index, const char* name) override;
    NETNS::DEV_RET PtzDeletePreset(const char* verify, unsigned int chn, int index) override;
    NETNS::DEV_RET PtzModifyPresetPosition(const char* verify, unsigned int chn, int index) override;
    NETNS::DEV_RET PtzGetCruises(const char* verify, unsigned int chn, NETNS::DEV_PTZ_CRUISE* list, int max,
                                 int& count) override;
    NETNS::DEV_RET PtzGetCruisePoints(const char* verify, unsigned int chn, int index,
                                      NETNS::DEV_PTZ_CRUISE_POINT* list, int max, int& count) override;
    NETNS::DEV_RET PtzAddCruise(const char* verify, unsigned int chn, const char* name,
                                const NETNS::DEV_PTZ_CRUISE_POINT* list, int count) override;
    NETNS::DEV_RET PtzModifyCruise(const char* verify, unsigned int chn, int index, const char* name,
                                   const NETNS::DEV_PTZ_CRUISE_POINT* list, int count) override;
    NETNS::DEV_RET PtzDeleteCruise(const char* verify, unsigned int chn, int index) override;
    NETNS::DEV_RET PtzRunCruise(const char* verify, unsigned int chn, int index) override;
    NETNS::DEV_RET PtzStopCruise(const char* verify, unsigned int chn) override;
    NETNS::DEV_RET GetMotionParam(const char* verify, unsigned int chn, NETNS::DEV_MOTION_CONFIG* config) override;
    NETNS::DEV_RET GetMotionCaps(const char* verify, unsigned int chn, NETNS::DEV_MOTION_CAPS* caps) override;
    NETNS::DEV_RET SetMotionParam(const char* verify, unsigned int chn,
                                  const NETNS::DEV_MOTION_CONFIG* config) override;
    NETNS::DEV_RET GetSensorConfig(const char* verify, int id, NETNS::DEV_SENSOR_CONFIG* config) override;
    NETNS::DEV_RET SetSensorConfig(const char* verify, int id, const NETNS::DEV_SENSOR_CONFIG* config) override;
    NETNS::DEV_RET ManualAlarmOut(const char* verify, int id, bool on) override;
    NETNS::DEV_RET GetAlarmOutConfig(const char* verify, int id, NETNS::DEV_ALARM_OUT_CONFIG* config) override;
    NETNS::DEV_RET SetAlarmOutConfig(const char* verify, int id, const NETNS::DEV_ALARM_OUT_CONFIG* config) override;
    NETNS::DEV_RET GetAlarmStatusXml(const char* verify, char*& xml, int& len) override;
    NETNS::DEV_RET GetNetBasic(const char* verify, NETNS::DEV_NET_BASIC* config) override;
    NETNS::DEV_RET SetNetBasic(const char* verify, const NETNS::DEV_NET_BASIC* config) override;
    NETNS::DEV_RET GetPppoe(const char* verify, NETNS::DEV_PPPOE* config) override;
    NETNS::DEV_RET SetPppoe(const char* verify, const NETNS::DEV_PPPOE* config) override;
    NETNS::DEV_RET GetPortInfo(const char* verify, NETNS::DEV_PORT_INFO* info) override;
    NETNS::DEV_RET SetPortInfo(const char* verify, const NETNS::DEV_PORT_INFO* info) override;
    NETNS::DEV_RET GetDdns(const char* verify, NETNS::DEV_DDNS* config) override;
    NETNS::DEV_RET SetDdns(const char* verify, const NETNS::DEV_DDNS* config) override;
    NETNS::DEV_RET ModifyPassword(const char* verify, const char* password) override;
    NETNS::DEV_RET Reboot(const char* verify) override;
    NETNS::DEV_RET GetChannelIdList(const char* verify, unsigned int* ids, int max, int& count) override;
    NETNS::DEV_RET SearchRecordDate(const char* verify, NETNS::DEV_DATE* list, int max, int& count) override;
    NETNS::DEV_RET SearchRecord(const char* verify, const NETNS::DEV_DATETIME* start, const NETNS::DEV_DATETIME* end,
                                int channel, NETNS::DEV_RECORD_INFO* list, int max, int& count) override;
    int GetMaxLen(int kind) override;

private:
    NETNS::DEV_RET Enter(const char* operation);
    NETNS::DEV_RET Enter(const char* operation, const char* verify);
    NETNS::DEV_RET Enter(const char* operation, const char* verify, unsigned int chn);
    template <typename... VALUES>
    void Note(const VALUES&... values); ///< adds arguments to the log's last line
    template <typename ROW>
    int Report(const char* operation, const std::vector<ROW>& rows, ROW* out, int max) const;
    bool IsUser(const std::string& verify) const;
    char* HandOut(const std::string& text, int& len);

    mutable std::recursive_mutex m_mutex; // over everything here; held by each operation
    std::vector<std::string> m_calls;
    std::vector<std::string> m_log;
    std::string m_lastVerify;
    unsigned int m_lastChannel = 0;
    int m_buffersOut = 0;
};
