#include "CameraOptions.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <ostream>
#include <set>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr unsigned int MIN_SIDE = 64;
constexpr unsigned int MAX_SIDE = 4096;

const char* const FOOTER =
    "Exit status: 0 ended by a signal; 1 the camera could not start, or could not go on; 2 bad usage.";

/// The texts as typed, before they are taken apart.
struct RawArguments
{
    std::string source = "test";
    std::string size = "1280x720";
    std::vector<std::string> users;
    bool noRtspAuth = false;
    std::string ptz = "both";
};

bool StartsWith(const std::string& text, const char* prefix)
{
    return text.rfind(prefix, 0) == 0;
}

bool IsKind(const std::string& path, mode_t kind)
{
    struct stat info = {};
    return stat(path.c_str(), &info) == 0 && (info.st_mode & S_IFMT) == kind;
}

bool IsPlain(char c)
{
    return c > ' ' && c < 0x7f;
}

std::string TakeFile(const std::string& path, CameraOptions& options)
{
    if (!IsKind(path, S_IFREG) || access(path.c_str(), R_OK) != 0)
    {
        return "--source: cannot read the file '" + path + "'; check its path and its rights";
    }
    options.source = SourceKind::File;
    options.location = path;
    return {};
}

std::string TakeDevice(const std::string& path, CameraOptions& options)
{
    if (path.empty())
    {
        return "--source: v4l2: needs a device, like v4l2:/dev/video0";
    }
    options.source = SourceKind::V4l2;
    options.location = path;
    return {};
}

std::string TakeSource(const std::string& text, CameraOptions& options)
{
    if (text == "test")
    {
        options.source = SourceKind::Test;
        options.location.clear();
        return {};
    }
    if (StartsWith(text, "file:"))
    {
        return TakeFile(text.substr(5), options);
    }
    if (StartsWith(text, "v4l2:"))
    {
        return TakeDevice(text.substr(5), options);
    }
    if (StartsWith(text, "rtsp://") && text.size() > 7)
    {
        options.source = SourceKind::Rtsp;
        options.location = text;
        return {};
    }
    return "--source: '" + text + "' is none of test, file:PATH, v4l2:DEVICE, rtsp://...";
}

/// A number of up to five digits and nothing else. @return 0 for any other text
unsigned int ReadSide(const std::string& text)
{
    const bool digits = !text.empty() && text.size() <= 5 && text.find_first_not_of("0123456789") == std::string::npos;
    return digits ? static_cast<unsigned int>(std::strtoul(text.c_str(), nullptr, 10)) : 0;
}

std::string TakeSize(const std::string& text, CameraOptions& options)
{
    const std::size_t cross = text.find('x');
    const unsigned int width = ReadSide(text.substr(0, cross));
    const unsigned int height = cross == std::string::npos ? 0 : ReadSide(text.substr(cross + 1));
    if (width == 0 || height == 0)
    {
        return "--size: '" + text + "' is not of the form 1280x720";
    }
    const auto fits = [](unsigned int side)
    {
        return side >= MIN_SIDE && side <= MAX_SIDE && side % 4 == 0;
    };
    if (!fits(width) || !fits(height))
    {
        return "--size: both sides must be multiples of 4 from 64 to 4096, not " + text;
    }
    options.width = width;
    options.height = height;
    return {};
}

// A double quote would end the name in the header of an RTSP login, a colon in that of an HTTP login.
std::string NameProblem(const std::string& name)
{
    if (name.empty() || name.size() > MAX_CREDENTIAL_LENGTH)
    {
        return "a user name has 1 to 19 characters";
    }
    const auto usable = [](char c)
    {
        return IsPlain(c) && c != '"' && c != ':';
    };
    if (!std::all_of(name.begin(), name.end(), usable))
    {
        return "a user name is made of printable ASCII characters without blanks, double quotes and colons";
    }
    return {};
}

std::string TakeUser(const std::string& text, std::vector<CameraUser>& users)
{
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos)
    {
        return "--user: the argument is not of the form NAME:PASSWORD";
    }
    CameraUser user{text.substr(0, colon), text.substr(colon + 1)};
    std::string problem = NameProblem(user.name);
    if (problem.empty())
    {
        problem = PasswordProblem(user.password);
    }
    if (!problem.empty())
    {
        return "--user: " + problem;
    }
    users.push_back(std::move(user));
    return {};
}

std::string TakeUsers(const std::vector<std::string>& texts, CameraOptions& options)
{
    if (texts.empty())
    {
        return {};
    }
    if (texts.size() > MAX_CAMERA_USERS)
    {
        return "--user: at most 7 users";
    }
    options.users.clear();
    std::set<std::string> names;
    for (const std::string& text : texts)
    {
        std::string problem = TakeUser(text, options.users);
        if (!problem.empty())
        {
            return problem;
        }
        if (!names.insert(options.users.back().name).second)
        {
            return "--user: the name '" + options.users.back().name + "' is given twice";
        }
    }
    return {};
}

std::string TakePtz(const std::string& text, CameraOptions& options)
{
    static const std::map<std::string, PtzSupport> KINDS = {{"none", PtzSupport::None},
                                                            {"integrated", PtzSupport::Integrated},
                                                            {"rs485", PtzSupport::Rs485},
                                                            {"both", PtzSupport::Both}};
    const auto found = KINDS.find(text);
    if (found == KINDS.end())
    {
        return "--ptz: '" + text + "' is none of none, integrated, rs485, both";
    }
    options.ptz = found->second;
    return {};
}

std::string CheckTheRest(const CameraOptions& options)
{
    if (options.httpPort == options.rtspPort)
    {
        return "--http-port and --rtsp-port must differ";
    }
    if (!options.webRoot.empty() && !IsKind(options.webRoot, S_IFDIR))
    {
        return "--web-root: no directory '" + options.webRoot + "'; leave it out for the built-in pages";
    }
    return {};
}

std::string TakeAll(const RawArguments& raw, CameraOptions& options)
{
    options.rtspAuth = !raw.noRtspAuth;
    std::string problem = TakeSource(raw.source, options);
    if (problem.empty())
    {
        problem = TakeSize(raw.size, options);
    }
    if (problem.empty())
    {
        problem = TakeUsers(raw.users, options);
    }
    if (problem.empty())
    {
        problem = TakePtz(raw.ptz, options);
    }
    return problem.empty() ? CheckTheRest(options) : problem;
}

void Describe(CLI::App& app, CameraOptions& options, RawArguments& raw)
{
    app.add_option("--http-port", options.httpPort, "Port of the web page and the XML API")
        ->type_name("N")
        ->check(CLI::Range(1, 65535).description(""))
        ->capture_default_str()
        ->group("Network");
    app.add_option("--rtsp-port", options.rtspPort, "Port of the live streams (RTSP)")
        ->type_name("N")
        ->check(CLI::Range(1, 65535).description(""))
        ->capture_default_str()
        ->group("Network");
    app.add_option("--web-root", options.webRoot, "Directory of the web pages, in place of the built-in ones")
        ->type_name("DIR")
        ->group("Network");
    app.add_option("--data-dir", options.dataDir,
                   "Directory of the settings and recordings; made when missing\n[~/.local/state/netserver-camera]")
        ->type_name("DIR")
        ->group("Network");

    app.add_option("--source", raw.source, "Where the pictures come from:\ntest | file:PATH | v4l2:DEVICE | rtsp://...")
        ->type_name("SOURCE")
        ->capture_default_str()
        ->group("Pictures");
    app.add_option("--size", raw.size, "Size of the main stream; the sub stream has half of it")
        ->type_name("WxH")
        ->capture_default_str()
        ->group("Pictures");
    app.add_option("--fps", options.fps, "Frames per second")
        ->type_name("N")
        ->check(CLI::Range(1, 60).description(""))
        ->capture_default_str()
        ->group("Pictures");
    app.add_option("--bitrate", options.bitrate, "Bit rate of the main stream")
        ->type_name("KBIT")
        ->check(CLI::Range(16, 100000).description(""))
        ->capture_default_str()
        ->group("Pictures");
    app.add_option("--gop", options.gop, "Frames from one key frame to the next")
        ->type_name("N")
        ->check(CLI::Range(1, 1000).description(""))
        ->capture_default_str()
        ->group("Pictures");
    app.add_option("--channels", options.channels, "Channels; all show the same source")
        ->type_name("N")
        ->check(CLI::Range(1U, MAX_CAMERA_CHANNELS).description(""))
        ->capture_default_str()
        ->group("Pictures");

    app.add_option("--ptz", raw.ptz, "Kinds of PTZ head: none | integrated | rs485 | both")
        ->type_name("KIND")
        ->capture_default_str()
        ->group("Pictures");
    app.add_option("--record-limit", options.recordLimit,
                   "Space for recordings, the oldest make room; 0 records nothing")
        ->type_name("MB")
        ->check(CLI::Range(0, 1000000).description(""))
        ->capture_default_str()
        ->group("Pictures");

    app.add_option("--talk-out", options.talkOut, "Write what clients say to a WAV file, in place of playing it")
        ->type_name("FILE")
        ->group("Clients");
    app.add_option("--user", raw.users, "A user who may log in; repeatable, up to 7 times\n[admin:admin]")
        ->type_name("NAME:PASSWORD")
        ->allow_extra_args(false)
        ->group("Clients");
    app.add_flag("--no-rtsp-auth", raw.noRtspAuth, "RTSP clients need not log in")->group("Clients");
    app.add_flag("--compat", options.compat, "Keep the RTSP oddities that old clients may lean on")->group("Clients");
    app.add_flag("--verbose", options.verbose, "Show all log lines on standard error, not only those about trouble")
        ->group("Clients");
    app.add_flag("--announce", options.announce, "Announce the camera over UPnP, with its description on port 33899")
        ->group("Clients");
}

CommandLine Refuse(std::ostream& err, const std::string& problem)
{
    err << "netserver-camera: " << problem << "; --help lists the options\n";
    return CommandLine::Bad;
}

} // namespace

std::string PasswordProblem(const std::string& password)
{
    if (password.empty() || password.size() > MAX_CREDENTIAL_LENGTH)
    {
        return "a password has 1 to 19 characters";
    }
    if (!std::all_of(password.begin(), password.end(), IsPlain))
    {
        return "a password is made of printable ASCII characters without blanks";
    }
    return {};
}

CommandLine ParseCommandLine(int argc, const char* const* argv, CameraOptions& options, std::ostream& out,
                             std::ostream& err)
{
    CLI::App app("A network camera in software: web page and XML API over HTTP, live H.264 and G.711 over RTSP.",
                 "netserver-camera");
    app.set_help_flag("-h,--help", "Print this text and exit");
    app.set_version_flag("--version", "netserver-camera " CAMERA_VERSION, "Print the version and exit");
    app.footer(FOOTER);
    app.get_formatter()->column_width(28);
    RawArguments raw;
    Describe(app, options, raw);
    try
    {
        app.parse(argc, argv);
    }
    catch (const CLI::ParseError& error)
    {
        if (error.get_exit_code() != 0)
        {
            return Refuse(err, error.what());
        }
        app.exit(error, out, err);
        return CommandLine::Done;
    }
    const std::string problem = TakeAll(raw, options);
    if (!problem.empty())
    {
        return Refuse(err, problem);
    }
    return CommandLine::Run;
}
