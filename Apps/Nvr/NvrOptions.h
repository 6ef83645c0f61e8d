// NvrOptions.h: the command line of netserver-nvr.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

enum class NvrCommand
{
    Login,    ///< shows services and profiles
    Get,      ///< reads keys
    Set,      ///< sends a document
    Snapshot, ///< fetches a picture
    Move,     ///< moves the camera for a while
    Stop,     ///< stops it
    Presets,  ///< lists them
    Goto,     ///< moves to one
    Raw,      ///< reads keys and shows the SOAP instead of the answer
    Watch,    ///< tells of motion and alarm inputs as they come
};

struct NvrOptions
{
    std::string host; ///< name or address
    unsigned short port = 80;
    std::string user;
    std::string password;
    bool hasPassword = false; ///< given on the command line or in the environment
    std::string traceFile;    ///< empty: none
    bool verbose = false;     ///< log lines of the library on standard error

    NvrCommand command = NvrCommand::Login;
    std::vector<std::string> keys;                           ///< of Get and Raw
    std::vector<int> indexes;                                ///< for the keys that take one
    std::vector<std::pair<std::string, std::string>> fields; ///< further fields of each key, by name
    std::string file;                                        ///< of Set ("-": standard input) and Snapshot
    int x = 0;                                               ///< of Move, percent of full speed
    int y = 0;
    int zoom = 0;
    unsigned int moveMs = 500;
    std::string preset;            ///< of Goto
    std::string camerasFile;       ///< of Watch; empty: the one camera of the login
    unsigned int watchSeconds = 0; ///< 0: until a signal
    bool json = false;             ///< of Watch
};

/// Environment variable with the password.
extern const char* const NVR_PASSWORD_VARIABLE;

/// The library keeps user name, password and the colon between them in 63 bytes.
constexpr std::size_t MAX_NVR_CREDENTIALS = 62;

enum class NvrCommandLine
{
    Run,  ///< the options are filled
    Done, ///< help was printed: exit with 0
    Bad,  ///< a message was printed: exit with 2
};

/// Reads the command line, and the password from the environment.
/// @param out  takes the help text  @param err  takes the message about a bad argument
NvrCommandLine ParseNvrCommandLine(int argc, const char* const* argv, NvrOptions& options, std::ostream& out,
                                   std::ostream& err);

/// What is wrong with the credentials, for a person to read; empty when nothing is.
std::string CredentialsProblem(const NvrOptions& options);
