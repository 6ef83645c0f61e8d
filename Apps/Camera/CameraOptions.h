// CameraOptions.h: the command line of netserver-camera.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

/// Where pictures and sound come from.
enum class SourceKind
{
    Test, ///< a moving test picture and a quiet tone
    File, ///< a media file, looped
    V4l2, ///< a capture device of this machine
    Rtsp, ///< another camera
};

/// Which kinds of PTZ head the camera says it has. Clients get at the PTZ commands only when it has both.
enum class PtzSupport
{
    None,
    Integrated,
    Rs485,
    Both,
};

struct CameraUser
{
    std::string name;
    std::string password;
};

struct CameraOptions
{
    unsigned short httpPort = 8080;
    unsigned short rtspPort = 8554;
    std::string webRoot; ///< empty: the pages that come with the program
    std::string dataDir; ///< empty: a directory of the user's
    SourceKind source = SourceKind::Test;
    std::string location;      ///< path of the file or the device, or the URL; empty for Test
    unsigned int width = 1280; ///< pixels, a multiple of four so that the sub stream has even sides
    unsigned int height = 720;
    unsigned int fps = 15;
    unsigned int bitrate = 1000; ///< kbit/s of the main stream
    unsigned int gop = 30;       ///< frames from one key frame to the next
    std::vector<CameraUser> users{{"admin", "admin"}};
    bool rtspAuth = true;
    unsigned int channels = 1;
    bool compat = false;
    bool announce = false; ///< over UPnP
    bool verbose = false;  ///< all log lines of the library
    PtzSupport ptz = PtzSupport::Both;
    unsigned int recordLimit = 1024; ///< MB that recordings may take; 0: nothing is recorded
    std::string talkOut;             ///< WAV file for clients' speech; empty: it is played
};

/// RTSP logins fail for everybody once a device reports eight users.
constexpr std::size_t MAX_CAMERA_USERS = 7;
/// Names and passwords travel to the library in fields of 20 bytes that end in a zero byte.
constexpr std::size_t MAX_CREDENTIAL_LENGTH = 19;
/// Channel number 39 stands for two-way audio.
constexpr unsigned int MAX_CAMERA_CHANNELS = 32;

enum class CommandLine
{
    Run,  ///< the options are filled
    Done, ///< help was printed: exit with 0
    Bad,  ///< a message was printed: exit with 2
};

/// Reads the command line.
/// @param out  takes the help text  @param err  takes the message about a bad argument
CommandLine ParseCommandLine(int argc, const char* const* argv, CameraOptions& options, std::ostream& out,
                             std::ostream& err);

/// What is wrong with a password, for a person to read; empty when a client can send it in every kind of login.
std::string PasswordProblem(const std::string& password);
