// SettingsFields.h: the names under which the fields of each record are stored. A new field is a line here.
//
// A visitor is called with the name and a reference to the field; it reads or writes. Names never change their meaning.
#pragma once

#include "DeviceSettings.h"

template <class Visitor>
void VisitFields(Visitor& field, NETNS::DEV_TIME_CONFIG& record)
{
    field("synchronizeType", record.synchronizeType);
    field("ntpServer", record.ntpServer);
    field("timeZone", record.timeZone);
    field("daylightSwitch", record.daylightSwitch);
}

template <class Visitor>
void VisitFields(Visitor& field, NETNS::DEV_IMAGE_PARAM& record)
{
    field("frequency", record.frequency);
    field("bright", record.bright);
    field("contrast", record.contrast);
    field("hue", record.hue);
    field("saturation", record.saturation);
    field("mirrorSwitch", record.mirrorSwitch);
    field("flipSwitch", record.flipSwitch);
    field("irisSwitch", record.irisSwitch);
    field("sharpenSwitch", record.sharpenSwitch);
    field("sharpenValue", record.sharpenValue);
    field("denoiseSwitch", record.denoiseSwitch);
    field("denoiseValue", record.denoiseValue);
    field("whiteBalanceMode", record.whiteBalanceMode);
    field("red", record.red);
    field("blue", record.blue);
    field("wdrSwitch", record.wdrSwitch);
    field("wdrValue", record.wdrValue);
    field("irCutMode", record.irCutMode);
}

template <class Visitor>
void VisitFields(Visitor& field, NETNS::DEV_VIDEO_PROFILE& record)
{
    field("width", record.width);
    field("height", record.height);
    field("frameRate", record.frameRate);
    field("maxBitRate", record.maxBitRate);
    field("quality", record.quality);
    field("encodeType", record.encodeType);
    field("encodeLevel", record.encodeLevel);
    field("gop", record.gop);
}

template <class Visitor>
void VisitFields(Visitor& field, NETNS::DEV_TIME_OSD& record)
{
    field("switch", record.osdSwitch);
    field("x", record.x);
    field("y", record.y);
    field("dateFormat", record.dateFormat);
}

template <class Visitor>
void VisitFields(Visitor& field, NETNS::DEV_CHANNEL_NAME_OSD& record)
{
    field("switch", record.osdSwitch);
    field("x", record.x);
    field("y", record.y);
    field("name", record.name);
}

template <class Visitor>
void VisitFields(Visitor& field, NETNS::DEV_PRIVACY_MASK& record)
{
    field("switch", record.maskSwitch);
    field("x", record.x);
    field("y", record.y);
    field("width", record.width);
    field("height", record.height);
    field("color", record.color);
}

template <class Visitor>
void VisitFields(Visitor& field, NETNS::DEV_MOTION_CONFIG& record)
{
    field("switch", record.motionSwitch);
    field("alarmHoldTime", record.alarmHoldTime);
    field("sensitivity", record.sensitivity);
    for (unsigned int row = 0; row < MOTION_ROWS; ++row)
    {
        field("row" + std::to_string(row), record.area[row].cells);
    }
    field("alarmOuts", record.alarmOuts, record.alarmOutCount);
}

template <class Visitor>
void VisitFields(Visitor& field, NETNS::DEV_SENSOR_CONFIG& record)
{
    field("name", record.name);
    field("switch", record.sensorSwitch);
    field("voltage", record.voltage);
    field("alarmHoldTime", record.alarmHoldTime);
    field("alarmOuts", record.alarmOuts, record.alarmOutCount);
}

template <class Visitor>
void VisitFields(Visitor& field, NETNS::DEV_ALARM_OUT_CONFIG& record)
{
    field("name", record.name);
    field("alarmHoldTime", record.alarmHoldTime);
}

template <class Visitor>
void VisitFields(Visitor& field, NETNS::DEV_NET_BASIC& record)
{
    field("ipSettingMode", record.ipSettingMode);
    field("staticIp", record.staticIp);
    field("staticIpRoute", record.staticIpRoute);
    field("staticIpMask", record.staticIpMask);
    field("dnsFromDhcpSwitch", record.dnsFromDhcpSwitch);
    field("dnsServer1", record.dnsServer1);
    field("dnsServer2", record.dnsServer2);
}

template <class Visitor>
void VisitFields(Visitor& field, NETNS::DEV_PPPOE& record)
{
    field("switch", record.pppoeSwitch);
    field("userName", record.userName);
    field("password", record.password);
}

template <class Visitor>
void VisitFields(Visitor& field, NETNS::DEV_PORT_INFO& record)
{
    field("httpPort", record.httpPort);
    field("netPort", record.netPort);
    field("rtspPort", record.rtspPort);
}

template <class Visitor>
void VisitFields(Visitor& field, NETNS::DEV_DDNS& record)
{
    field("switch", record.ddnsSwitch);
    field("serverType", record.serverType);
    field("userName", record.userName);
    field("password", record.password);
    field("domainName", record.domainName);
    field("serverName", record.serverName);
}

template <class Visitor>
void VisitFields(Visitor& field, NETNS::DEV_PTZ_PROTOCOL& record)
{
    field("baudRate", record.baudRate);
    field("protocol", record.protocol);
    field("address", record.address);
}

template <class Visitor>
void VisitFields(Visitor& field, PtzPreset& record)
{
    field("id", record.id);
    field("name", record.name);
    field("x", record.view.x);
    field("y", record.view.y);
    field("zoom", record.view.zoom);
}

template <class Visitor>
void VisitFields(Visitor& field, PtzCruisePoint& record)
{
    field("preset", record.preset);
    field("speed", record.speed);
    field("holdTime", record.holdTime);
}

template <class Visitor>
void VisitFields(Visitor& field, CameraUser& record)
{
    field("name", record.name);
    field("password", record.password);
}
