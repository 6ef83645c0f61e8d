// CameraDevice.h: the camera as the library's clients see it through the XML API and RTSP.
//
// Called on HTTP workers and on the RTSP scheduler at the same time. One lock guards the settings; the RTSP scheduler
// never takes it. Whatever an operation accepts is on disk before it answers.
#pragma once

#include "AlarmBoard.h"
#include "CameraUsers.h"
#include "DefaultHost.h"
#include "DeviceEffects.h"
#include "PtzHead.h"
#include "PtzTour.h"
#include "RecordIndex.h"
#include "SettingsStore.h"

#include <functional>
#include <mutex>
#include <string>

struct ControlRequest;

class CCameraDevice : public CDefaultDevice
{
public:
    /// What the device works on; all of it is borrowed for the device's life.
    struct Parts
    {
        CSettingsStore& store;
        CCameraUsers& users;
        CPtzHead& head;
        CAlarmBoard& alarms;
        CRecordIndex& records;
        CDeviceEffects& effects;
    };

    /// @param settings  as they are stored
    CCameraDevice(const CameraOptions& options, const Parts& parts, const DeviceSettings& settings);

    /// A copy of the settings as they are now.
    DeviceSettings Settings() const;

    /// Has the effects of all picture settings happen once more: for media that were set up while one was changed.
    void RepeatPictureEffects();

    NETNS::DEV_RET ProcHttpData(const char* message, int len, char*& body, int& bodyLen, int& status) override;
    NETNS::DEV_RET GetIntegratedPtz(bool& supported) override;
    NETNS::DEV_RET GetSupportRS485Ptz(bool& supported) override;
    NETNS::DEV_RET GetUserList(NETNS::DEV_USER_INFO* list, int max, int& count) override;
    NETNS::DEV_RET GetDevInfo(const char* verify, NETNS::DEV_DEVICE_INFO* info) override;
    NETNS::DEV_RET GetTimeConfig(const char* verify, NETNS::DEV_TIME_CONFIG* config) override;
    NETNS::DEV_RET SetTimeConfig(const char* verify, const NETNS::DEV_TIME_CONFIG* config) override;
    /// Refuses: the clock is the machine's.
    NETNS::DEV_RET SetDateTime(const char* verify, const NETNS::DEV_DATETIME* time) override;
    bool NeedAuthorization() override;
    /// Refuses a password that some kind of login could not carry.
    NETNS::DEV_RET ModifyPassword(const char* verify, const char* newPassword) override;
    NETNS::DEV_RET Reboot(const char* verify) override;
    NETNS::DEV_RET GetChannelIdList(const char* verify, unsigned int* ids, int max, int& count) override;
    int GetMaxLen(int kind) override;

    NETNS::DEV_RET GetImageCaps(const char* verify, unsigned int chn, NETNS::DEV_IMAGE_CAPS* caps) override;
    NETNS::DEV_RET GetImageParam(const char* verify, unsigned int chn, NETNS::DEV_IMAGE_PARAM* param) override;
    NETNS::DEV_RET SetImageParam(const char* verify, unsigned int chn, const NETNS::DEV_IMAGE_PARAM* param) override;
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
    /// Places are in pixels of the whole picture, whatever the size of a stream.
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
    /// A speed outside of the limits counts as the nearest one. Ends a cruise.
    NETNS::DEV_RET PtzControl(const char* verify, unsigned int chn, int command, int speed) override;
    NETNS::DEV_RET PtzGotoPreset(const char* verify, unsigned int chn, int index) override;
    NETNS::DEV_RET PtzGetPresets(const char* verify, unsigned int chn, NETNS::DEV_PTZ_PRESET* list, int max,
                                 int& count) override;
    /// The preset gets the smallest id that is free, from 1 on, and the view of the moment.
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
    /// Sensors and outputs count from 0, as the lists of the API do.
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
    /// Refuses ports that are 0, equal, or taken by another program.
    NETNS::DEV_RET SetPortInfo(const char* verify, const NETNS::DEV_PORT_INFO* info) override;
    NETNS::DEV_RET GetDdns(const char* verify, NETNS::DEV_DDNS* config) override;
    NETNS::DEV_RET SetDdns(const char* verify, const NETNS::DEV_DDNS* config) override;

    NETNS::DEV_RET SearchRecordDate(const char* verify, NETNS::DEV_DATE* list, int max, int& count) override;
    /// The zero date as start stands for the first recording, as end for now. Channels count from 0 here.
    NETNS::DEV_RET SearchRecord(const char* verify, const NETNS::DEV_DATETIME* start, const NETNS::DEV_DATETIME* end,
                                int channel, NETNS::DEV_RECORD_INFO* list, int max, int& count) override;

private:
    using Change = std::function<NETNS::DEV_RET(DeviceSettings& settings)>;

    NETNS::DEV_RET CheckUser(const char* verify) const;
    NETNS::DEV_RET Check(const char* verify, unsigned int chn) const;
    /// Changes a copy of the settings, stores it and puts it in force; all or nothing.
    NETNS::DEV_RET Apply(NETNS::DEV_RET checked, SettingsTopic topic, const Change& change);
    template <class Record>
    NETNS::DEV_RET Read(NETNS::DEV_RET checked, Record* out, Record DeviceSettings::*member) const
    {
        if (checked == NETNS::DEV_RET_OK)
        {
            const std::lock_guard<std::mutex> guard(m_lock);
            *out = m_settings.*member;
        }
        return checked;
    }

    bool Control(const ControlRequest& request);
    std::string StateXml();
    NETNS::DEV_RET MoveLens(std::uint32_t DeviceSettings::*member, int step);

    const CameraOptions m_options;
    const Parts m_parts;

    mutable std::mutex m_lock; // held while the effects run: they come in the order of the changes
    DeviceSettings m_settings;

    CPtzTour m_tour; // last: its thread uses the head
};
