// DefaultHost.h: a device and streams without functions, for a host to derive from and override what it has.
//
// Every operation of the device answers DEV_RET_NOT_SUPPORTED unless said otherwise; the streams open nothing of their
// own. Nothing here holds state, so any thread may call it.
#pragma once

#include "DevInterface.h"
#include "StreamCtrl.h"

/// A device without functions: every operation answers NETNS::DEV_RET_NOT_SUPPORTED, counts and lengths are 0, and
/// buffers null. Differently:
///
/// - `ProcHttpData` answers with status 404,
/// - `FreeBuffer` takes back what new[] made,
/// - `GetIntegratedPtz`, `GetSupportRS485Ptz` and `GetSupportSDCard` say false,
/// - `GetUserList` knows no users, so nobody can log in over RTSP or read the alarm status,
/// - `NeedAuthorization` is true: RTSP clients must log in,
/// - `GetMaxLen` is 127.
class CDefaultDevice : public CDevInterface
{
public:
    NETNS::DEV_RET ProcHttpRequest(const std::string&, int&, std::string&) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    // Answers 404.
    NETNS::DEV_RET ProcHttpData(const char* /*message*/, int /*len*/, char*& body, int& bodyLen, int& status) override
    {
        body = nullptr;
        bodyLen = 0;
        status = 404;
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET GetWebFile(const char* /*path*/, char*& buffer, int& len) override
    {
        buffer = nullptr;
        len = 0;
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    // Takes back what new[] made.
    NETNS::DEV_RET FreeBuffer(char*& buffer) override
    {
        delete[] buffer;
        buffer = nullptr;
        return NETNS::DEV_RET_OK;
    }
    NETNS::DEV_RET GetIntegratedPtz(bool& supported) override
    {
        supported = false;
        return NETNS::DEV_RET_OK;
    }
    NETNS::DEV_RET GetSupportRS485Ptz(bool& supported) override
    {
        supported = false;
        return NETNS::DEV_RET_OK;
    }
    NETNS::DEV_RET GetSupportSDCard(bool& supported) override
    {
        supported = false;
        return NETNS::DEV_RET_OK;
    }
    // No users: nobody can log in.
    NETNS::DEV_RET GetUserList(NETNS::DEV_USER_INFO* /*list*/, int /*max*/, int& count) override
    {
        count = 0;
        return NETNS::DEV_RET_OK;
    }
    NETNS::DEV_RET GetDevInfo(const char*, NETNS::DEV_DEVICE_INFO*) override { return NETNS::DEV_RET_NOT_SUPPORTED; }
    NETNS::DEV_RET GetTimeConfig(const char*, NETNS::DEV_TIME_CONFIG*) override { return NETNS::DEV_RET_NOT_SUPPORTED; }
    NETNS::DEV_RET SetTimeConfig(const char*, const NETNS::DEV_TIME_CONFIG*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET SetDateTime(const char*, const NETNS::DEV_DATETIME*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET GetImageCaps(const char*, unsigned int, NETNS::DEV_IMAGE_CAPS*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET GetImageParam(const char*, unsigned int, NETNS::DEV_IMAGE_PARAM*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET SetImageParam(const char*, unsigned int, const NETNS::DEV_IMAGE_PARAM*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET ImageReserved() override { return NETNS::DEV_RET_NOT_SUPPORTED; }
    NETNS::DEV_RET GetVideoEncodeCaps(const char*, unsigned int, int, NETNS::DEV_VIDEO_ENCODE_CAPS*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET GetProfileName(const char*, unsigned int, int, char*, int, int& len) override
    {
        len = 0;
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    int GetProfileCount(unsigned int) override { return 0; }
    bool SupportAudioEncode(unsigned int, int) override { return false; }
    NETNS::DEV_RET SetAudioEncode(const char*, unsigned int, int) override { return NETNS::DEV_RET_NOT_SUPPORTED; }
    NETNS::DEV_RET GetVideoProfile(const char*, unsigned int, int, NETNS::DEV_VIDEO_PROFILE*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET SetVideoProfile(const char*, unsigned int, int, const NETNS::DEV_VIDEO_PROFILE*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET RequestKeyFrame(const char*, unsigned int) override { return NETNS::DEV_RET_NOT_SUPPORTED; }
    // RTSP clients must log in.
    bool NeedAuthorization() override { return true; }
    NETNS::DEV_RET GetTimeOsd(const char*, unsigned int, NETNS::DEV_TIME_OSD*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET GetChannelNameOsd(const char*, unsigned int, NETNS::DEV_CHANNEL_NAME_OSD*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET SetTimeOsd(const char*, unsigned int, NETNS::DEV_TIME_OSD) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET SetChannelNameOsd(const char*, unsigned int, NETNS::DEV_CHANNEL_NAME_OSD) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET GetPrivacyMask(const char*, unsigned int, NETNS::DEV_PRIVACY_MASK*, int, int& count) override
    {
        count = 0;
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET SetPrivacyMask(const char*, unsigned int, const NETNS::DEV_PRIVACY_MASK*, int) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET GetPtzPresetCaps(const char*, unsigned int, NETNS::DEV_PTZ_PRESET_CAPS*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET GetPtzCruiseCaps(const char*, unsigned int, NETNS::DEV_PTZ_CRUISE_CAPS*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET GetPtzProtocol(const char*, unsigned int, NETNS::DEV_PTZ_PROTOCOL*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET SetPtzProtocol(const char*, unsigned int, const NETNS::DEV_PTZ_PROTOCOL*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET PtzControl(const char*, unsigned int, int, int) override { return NETNS::DEV_RET_NOT_SUPPORTED; }
    NETNS::DEV_RET PtzGotoPreset(const char*, unsigned int, int) override { return NETNS::DEV_RET_NOT_SUPPORTED; }
    NETNS::DEV_RET PtzGetPresets(const char*, unsigned int, NETNS::DEV_PTZ_PRESET*, int, int& count) override
    {
        count = 0;
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET PtzReserved() override { return NETNS::DEV_RET_NOT_SUPPORTED; }
    NETNS::DEV_RET PtzAddPreset(const char*, unsigned int, const char*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET PtzModifyPresetName(const char*, unsigned int, int, const char*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET PtzDeletePreset(const char*, unsigned int, int) override { return NETNS::DEV_RET_NOT_SUPPORTED; }
    NETNS::DEV_RET PtzModifyPresetPosition(const char*, unsigned int, int) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET PtzGetCruises(const char*, unsigned int, NETNS::DEV_PTZ_CRUISE*, int, int& count) override
    {
        count = 0;
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET PtzGetCruisePoints(const char*, unsigned int, int, NETNS::DEV_PTZ_CRUISE_POINT*, int,
                                      int& count) override
    {
        count = 0;
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET PtzAddCruise(const char*, unsigned int, const char*, const NETNS::DEV_PTZ_CRUISE_POINT*,
                                int) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET PtzModifyCruise(const char*, unsigned int, int, const char*, const NETNS::DEV_PTZ_CRUISE_POINT*,
                                   int) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET PtzDeleteCruise(const char*, unsigned int, int) override { return NETNS::DEV_RET_NOT_SUPPORTED; }
    NETNS::DEV_RET PtzRunCruise(const char*, unsigned int, int) override { return NETNS::DEV_RET_NOT_SUPPORTED; }
    NETNS::DEV_RET PtzStopCruise(const char*, unsigned int) override { return NETNS::DEV_RET_NOT_SUPPORTED; }
    NETNS::DEV_RET GetMotionParam(const char*, unsigned int, NETNS::DEV_MOTION_CONFIG*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET GetMotionCaps(const char*, unsigned int, NETNS::DEV_MOTION_CAPS*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET SetMotionParam(const char*, unsigned int, const NETNS::DEV_MOTION_CONFIG*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET GetSensorConfig(const char*, int, NETNS::DEV_SENSOR_CONFIG*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET SetSensorConfig(const char*, int, const NETNS::DEV_SENSOR_CONFIG*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET ManualAlarmOut(const char*, int, bool) override { return NETNS::DEV_RET_NOT_SUPPORTED; }
    NETNS::DEV_RET GetAlarmOutConfig(const char*, int, NETNS::DEV_ALARM_OUT_CONFIG*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET SetAlarmOutConfig(const char*, int, const NETNS::DEV_ALARM_OUT_CONFIG*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET GetAlarmStatusXml(const char* /*verify*/, char*& xml, int& len) override
    {
        xml = nullptr;
        len = 0;
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET GetNetBasic(const char*, NETNS::DEV_NET_BASIC*) override { return NETNS::DEV_RET_NOT_SUPPORTED; }
    NETNS::DEV_RET SetNetBasic(const char*, const NETNS::DEV_NET_BASIC*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET GetPppoe(const char*, NETNS::DEV_PPPOE*) override { return NETNS::DEV_RET_NOT_SUPPORTED; }
    NETNS::DEV_RET SetPppoe(const char*, const NETNS::DEV_PPPOE*) override { return NETNS::DEV_RET_NOT_SUPPORTED; }
    NETNS::DEV_RET GetPortInfo(const char*, NETNS::DEV_PORT_INFO*) override { return NETNS::DEV_RET_NOT_SUPPORTED; }
    NETNS::DEV_RET SetPortInfo(const char*, const NETNS::DEV_PORT_INFO*) override
    {
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET GetDdns(const char*, NETNS::DEV_DDNS*) override { return NETNS::DEV_RET_NOT_SUPPORTED; }
    NETNS::DEV_RET SetDdns(const char*, const NETNS::DEV_DDNS*) override { return NETNS::DEV_RET_NOT_SUPPORTED; }
    NETNS::DEV_RET ModifyPassword(const char*, const char*) override { return NETNS::DEV_RET_NOT_SUPPORTED; }
    NETNS::DEV_RET Reboot(const char*) override { return NETNS::DEV_RET_NOT_SUPPORTED; }
    NETNS::DEV_RET GetChannelIdList(const char*, unsigned int*, int, int& count) override
    {
        count = 0;
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET SearchRecordDate(const char*, NETNS::DEV_DATE*, int, int& count) override
    {
        count = 0;
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    NETNS::DEV_RET SearchRecord(const char*, const NETNS::DEV_DATETIME*, const NETNS::DEV_DATETIME*, int,
                                NETNS::DEV_RECORD_INFO*, int, int& count) override
    {
        count = 0;
        return NETNS::DEV_RET_NOT_SUPPORTED;
    }
    int GetMaxLen(int) override { return 127; }
};

/// Live streams that are always there: opening and closing them does nothing. No recordings, no talk.
class CDefaultStreams : public CStreamCtrl
{
public:
    unsigned int OpenLiveStream(const char*, unsigned int, int, unsigned int&) override { return 0; }
    int StreamReserved() override { return 0; }
    void CloseLiveStream(unsigned int) override {}
    unsigned int OpenRecStream(const char*, unsigned int, const NETNS::DEV_DATE&, const NETNS::DEV_TIME&, unsigned int,
                               unsigned int&) override
    {
        return 0;
    }
    void ClosePlayStream(unsigned int) override {}
    unsigned int OpenTalkBackStream(const char*) override { return 0; }
    void CloseTalkBackStream(unsigned int) override {}
    int TalkBackStreamInput(unsigned char*, int, int) override { return 0; }
};
