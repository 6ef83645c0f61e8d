// OnvifTypes.h: service keys, result codes and records that the ONVIF client's sources share. Constants; any thread.
#pragma once

/// Keys of the table of service paths.
inline constexpr const char* SERVICE_DEVICE = "device";
inline constexpr const char* SERVICE_MEDIA = "media";
inline constexpr const char* SERVICE_EVENTS = "events";
inline constexpr const char* SERVICE_PTZ = "ptz";
inline constexpr const char* SERVICE_IMAGING = "imaging";
inline constexpr const char* SERVICE_DEVICEIO = "deviceIO";
inline constexpr const char* SERVICE_ANALYTICS = "analytics";
inline constexpr const char* SERVICE_RECORDING = "recording";
inline constexpr const char* SERVICE_SEARCH = "search";
inline constexpr const char* SERVICE_REPLAY = "replay";
inline constexpr const char* SERVICE_DISPLAY = "display";
inline constexpr const char* SERVICE_RECEIVER = "receiver";

/// Where every device has its device service.
inline constexpr const char* DEFAULT_DEVICE_SERVICE = "onvif/device_service";
/// The media service of a device that says nothing about its services.
inline constexpr const char* DEFAULT_MEDIA_SERVICE = "onvif/Media";

/// Categories of GetCapabilities.
enum SERVICE_TYPE
{
    SERVICE_TYPE_MEDIA = 0,
    SERVICE_TYPE_PTZ = 1,
    SERVICE_TYPE_IMAGING = 2,
    SERVICE_TYPE_EVENTS = 3,
    SERVICE_TYPE_DEVICE = 4,
    SERVICE_TYPE_ANALYTICS = 5,
    SERVICE_TYPE_SEARCH = 6,
    SERVICE_TYPE_DEVICEIO = 7,
    SERVICE_TYPE_RECEIVER = 8,
    SERVICE_TYPE_RECORDING = 9,
    SERVICE_TYPE_DISPLAY = 10,
    SERVICE_TYPE_REPLAY = 11,
};

/// Results of exchanges and commands; a host sees those of a login.
enum ONVIF_RESULT : int
{
    ONVIF_OK = 0,
    ONVIF_NOTHING_DONE = 1,   ///< no argument to work on
    ONVIF_UNREADABLE = 2,     ///< a document came, but not what was asked for
    ONVIF_NO_XML = 4,         ///< nothing came, or no XML declaration
    ONVIF_FAULT = 5,          ///< a SOAP fault
    ONVIF_NO_ENVELOPE = 6,    ///< something that does not talk SOAP
    ONVIF_INVALID_ARG = 30,   ///< a SOAP fault that blames an argument
    ONVIF_MISSING_FIELD = 32, ///< the host's request lacks a field
    ONVIF_UNAUTHORIZED = 401, ///< the device refuses the credentials
};

/// One media profile: texts of at most 63 bytes, what is longer is cut.
struct ONVIF_PROFILE_TOKEN
{
    char profileToken[64];
    char videoSourceToken[64];
    char videoEncoderToken[64];
    char ptzToken[64];
    char videoAnalyticsToken[64];
    char motionModuleName[64]; ///< filled by reads of "motion"
    char motionRuleName[64];   ///< filled by reads of "motion"
    char encodeName[64];       ///< the encoder configuration's name, or its token
};

/// Speed ranges of a PTZ device, as whole numbers.
struct ONVIF_PTZ_VELOCITY
{
    int panMin;
    int panMax;
    int tiltMin;
    int tiltMax;
    int zoomMin;
    int zoomMax;
};

/// A range, as whole numbers.
struct ONVIF_RANGE
{
    int min;
    int max;
};
