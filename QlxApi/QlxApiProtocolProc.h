// QlxApiProtocolProc.h: turns one HTTP request that names an API command into one HTTP response.
//
// What all commands share stands here: the command table, the error answers, the user verification text, and helpers
// for URLs and times. The commands themselves are in Commands/, a file per family.
//
// Up to four HTTP workers run commands at once; there is no lock, since nothing changes after Init.
#pragma once

#include "DevInterface.h"
#include "HttpProtocolAnalyse.h"

#include <array>
#include <ctime>
#include <string>

class CQLXApiProc;

/// A command's number. The numbers and their words are the rows of QlxApiCommands.
enum QLX_API_CMD : unsigned int
{
};

/// Error codes as clients see them.
enum QLX_API_ERR
{
    QLX_API_ERR_OK = 0,          ///< 200 with the success document
    QLX_API_ERR_NOT_SUPPORT = 1, ///< 400: unknown command, or the device has no such function
    QLX_API_ERR_BAD_PARAM = 3,   ///< 400: the body is missing or a value is not acceptable
    QLX_API_ERR_DEV_FAILED = 4,  ///< 400: the device failed
    QLX_API_ERR_NO_RIGHT = 6,    ///< 401 with a challenge and no body
};

struct QLX_API_COMMAND
{
    /// @return 0 on success, -1 on failure; the outcome is in the response
    using OPERATION = int (CQLXApiProc::*)(const std::string& ip, const CHttpProtocolAnalyse& request,
                                           CHttpProtocolAnalyse& response);

    const char* word;    ///< first word of the URL path, matched exactly
    unsigned int value;  ///< QLX_API_CMD
    OPERATION operation; ///< null: the word is known, the answer is error 1
};

using QLX_API_COMMAND_TABLE = std::array<QLX_API_COMMAND, 59>;

/// Every command, in ascending order of its number.
const QLX_API_COMMAND_TABLE& QlxApiCommands();

class CQLXApiProc
{
public:
    static CQLXApiProc& Instance();

    /// @param dev  kept, not owned; logged when null. @return 1
    int Init(unsigned int channels, CDevInterface* dev);

    /// Runs a command. @param ip  the peer's address as dotted text. @return 0; the outcome is in the response
    int ProcCmd(const std::string& ip, QLX_API_CMD cmd, const CHttpProtocolAnalyse& request,
                CHttpProtocolAnalyse& response);

    /// Answers with an error code, or with the success document for code 0.
    static void CommonResp(CHttpProtocolAnalyse& response, QLX_API_ERR code);
    /// The same with the code that stands for a host's result.
    static void CommonResp(CHttpProtocolAnalyse& response, NETNS::DEV_RET result);

    /// Room for a user verification text.
    static constexpr int VERIFY_SIZE = 512;
    /// Builds the user verification text from the request's Basic credentials, which it neither checks nor escapes;
    /// without credentials name and password are empty. @param out  zeroed, room for VERIFY_SIZE bytes
    static void GetUserVerifyXml(std::string ip, const CHttpProtocolAnalyse& request, char* out);
    /// The request's user name and password, each up to 31 characters. A password may hold colons but no white space:
    /// the first blank ends it. @return false when the request brings no credentials
    static bool GetUserInfo(const CHttpProtocolAnalyse& request, std::string& user, std::string& password);

    /// The number behind the URL's first "/", 1 when there is none. It is not checked against the channel count.
    static unsigned int GetChnIDFromUrl(const std::string& url);
    /// The text behind the URL's second "/". @return false when there is none
    static bool GetActionFromUrl(const std::string& url, std::string& action);

    /// Writes local time as "YYYY-MM-DD hh:mm:ss". @param seconds  since 1970 @param out  room for TIME_SIZE bytes
    static void Time2Str(std::time_t seconds, char* out);
    static constexpr int TIME_SIZE = 80;
    /// Reads such a text. With fewer than six fields a line is logged and those read so far stand.
    static void str2Datetime(const std::string& text, NETNS::DEV_DATETIME& time);
    static void Datetime2str(const NETNS::DEV_DATETIME& time, std::string& text);

    /// Whether PTZ commands are served: only when the device has a built-in PTZ and drives one over RS485 as well.
    bool SupportPtz();

    // The commands. Each is of this form and returns 0 on success, -1 on failure; the outcome is in the response.
    using COMMAND = int(const std::string& ip, const CHttpProtocolAnalyse& request, CHttpProtocolAnalyse& response);

    COMMAND GetDeviceInfo, Reboot, GetDateAndTime, SetDateAndTime, ModifyPassword;
    COMMAND GetChnList, GetAlarmInList, GetAlarmOutList;
    COMMAND GetImageConfig, SetImageConfig, GetImageOsdCfg, SetImageOsdCfg, GetPrivacyMaskCfg, SetPrivacyMaskCfg;
    COMMAND GetSnapShot;
    COMMAND GetStreamCaps, GetVideoStreamCfg, SetVideoStreamCfg, GetAudioStreamCfg, SetAudioStreamCfg, RequestKeyFrame;
    COMMAND GetAlarmStauts, ManualAlarmOut, GetMotionConfig, SetMotionConfig, GetAlarmInConfig, SetAlarmInConfig;
    COMMAND GetAlarmOutConfig, SetAlarmOutConfig, GetAlarmServerConfig, SetAlarmServerConfig;
    COMMAND PtzGetCaps, PtzGetProtocolConfig, PtzSetProtocolConfig, PtzControl;
    COMMAND PtzGetPresets, PtzAddPreset, PtzDeletePreset, PtzModifyPresetPosition, PtzModifyPresetName, PtzGotoPreset;
    COMMAND PtzGetCruises, PtzGetCruise, PtzAddCruise, PtzDeleteCruise, PtzModifyCruise, PtzRunCruise, PtzStopCruise;
    COMMAND GetNetBasicConfig, SetNetBasicConfig, GetNetPppoeConfig, SetNetPppoeConfig, GetPortConfig, SetPortConfig;
    COMMAND GetDdnsConfig, SetDdnsConfig;
    COMMAND SearchRecordDate, SearchByTime;

private:
    CQLXApiProc() = default;

    // Both constant after Init, which runs before requests come.
    unsigned int m_channels = 0;
    CDevInterface* m_dev = nullptr;
};
