#include "NvrOptions.h"

#include "NvrKeys.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <ostream>

const char* const NVR_PASSWORD_VARIABLE = "NETSERVER_NVR_PASSWORD";

namespace
{

const char* const FOOTER =
    "Exit status: 0 done; 1 the camera answered with a fault, or with nothing that can be read;\n"
    "2 bad usage; 3 the login failed.\n"
    "'netserver-nvr get --help' and 'netserver-nvr set --help' list the keys.";

/// The texts as typed, before they are taken apart.
struct RawArguments
{
    std::vector<std::string> fields;
    int pictureIndex = 0;
    CLI::Option* password = nullptr;
};

bool IsName(const std::string& text)
{
    const auto fits = [](unsigned char c)
    {
        return std::isalnum(c) != 0 || c == '_' || c == '-';
    };
    return !text.empty() && std::isalpha(static_cast<unsigned char>(text.front())) != 0 &&
           std::all_of(text.begin(), text.end(), fits);
}

/// NAME=VALUE. @return what is wrong with it; empty when nothing is
std::string TakeField(const std::string& text, NvrOptions& options)
{
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || !IsName(text.substr(0, equals)))
    {
        return "--field: '" + text + "' is not of the form NAME=VALUE";
    }
    options.fields.emplace_back(text.substr(0, equals), text.substr(equals + 1));
    return {};
}

void TakePassword(const RawArguments& raw, NvrOptions& options)
{
    const char* const variable = std::getenv(NVR_PASSWORD_VARIABLE);
    options.hasPassword = raw.password->count() != 0 || variable != nullptr;
    const bool mayBeOfUse = !options.user.empty() || !options.camerasFile.empty();
    if (raw.password->count() == 0 && variable != nullptr && mayBeOfUse)
    {
        options.password = variable;
    }
}

std::string TakeAll(const RawArguments& raw, NvrOptions& options)
{
    TakePassword(raw, options);
    for (const std::string& field : raw.fields)
    {
        std::string problem = TakeField(field, options);
        if (!problem.empty())
        {
            return problem;
        }
    }
    if (options.command == NvrCommand::Snapshot)
    {
        options.indexes = {raw.pictureIndex};
    }
    if (options.host.empty() && (options.command != NvrCommand::Watch || options.camerasFile.empty()))
    {
        return "--host is required";
    }
    const bool hasKeys = options.command == NvrCommand::Get || options.command == NvrCommand::Raw;
    const std::string problem = hasKeys ? GetKeysProblem(options.keys) : "";
    return problem.empty() ? CredentialsProblem(options) : problem;
}

CLI::App* Command(CLI::App& app, NvrOptions& options, NvrCommand command, const char* name, const char* what)
{
    CLI::App* const sub = app.add_subcommand(name, what);
    sub->fallthrough(); // the options of the login may stand behind the command too
    sub->callback([&options, command] { options.command = command; });
    return sub;
}

void DescribeLogin(CLI::App& app, NvrOptions& options, RawArguments& raw)
{
    app.add_option("--host", options.host, "Address or name of the camera")->type_name("HOST");
    app.add_option("--port", options.port, "Port of its ONVIF services")
        ->type_name("N")
        ->check(CLI::Range(1, 65535).description(""))
        ->capture_default_str();
    app.add_option("--user", options.user, "User name; without one no login data is sent")->type_name("NAME");
    raw.password = app.add_option("--password", options.password,
                                  "Password; better in the variable NETSERVER_NVR_PASSWORD, or asked for\n"
                                  "on the terminal when it stands nowhere")
                       ->type_name("TEXT");
    app.add_option("--trace", options.traceFile,
                   "Write what camera and client say to each other into a file, with\npasswords and digests masked")
        ->type_name("FILE");
    app.add_flag("--verbose", options.verbose, "Show log lines of the library on standard error");
}

void DescribeKeys(CLI::App* sub, NvrOptions& options, RawArguments& raw)
{
    sub->add_option("KEY", options.keys, "What to read")->required();
    sub->add_option("--index", options.indexes,
                    "Number of a profile, from 0, for the keys that take one; may be\nrepeated [0]")
        ->type_name("N")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->check(CLI::Range(0, 65535).description(""));
    sub->add_option("--field", raw.fields, "A further field of each key; may be repeated")
        ->type_name("NAME=VALUE")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    sub->footer("Keys:\n" + DescribeNvrKeys(NvrGetKeys()));
}

void DescribeMove(CLI::App* sub, NvrOptions& options)
{
    const auto percent = CLI::Range(-100, 100).description("");
    sub->add_option("X", options.x, "Percent of full speed to the right")->required()->check(percent);
    sub->add_option("Y", options.y, "Percent of full speed upwards")->required()->check(percent);
    sub->add_option("ZOOM", options.zoom, "Percent of full speed closer")->required()->check(percent);
    sub->add_option("--ms", options.moveMs, "Milliseconds until the camera is stopped")
        ->type_name("N")
        ->check(CLI::Range(1, 60000).description(""))
        ->capture_default_str();
}

void DescribeWatch(CLI::App* sub, NvrOptions& options)
{
    sub->add_option("--seconds", options.watchSeconds, "End after so many seconds")
        ->type_name("N")
        ->check(CLI::Range(1, 1000000).description(""));
    sub->add_option("--cameras", options.camerasFile,
                    "Watch the cameras of a file instead of --host; a line for each:\nHOST[:PORT] [USER [PASSWORD]]")
        ->type_name("FILE");
    sub->add_flag("--json", options.json, "Print a JSON object for each line");
    sub->footer("Cameras that push their events reach this machine on port 6699.");
}

void Describe(CLI::App& app, NvrOptions& options, RawArguments& raw)
{
    DescribeLogin(app, options, raw);
    app.set_version_flag("--version", "netserver-nvr " NVR_VERSION, "Print the version and exit");
    app.require_subcommand(1);
    app.footer(FOOTER);

    Command(app, options, NvrCommand::Login, "login", "Show the camera's services and profiles");
    DescribeKeys(Command(app, options, NvrCommand::Get, "get", "Read settings, as an XML document"), options, raw);
    CLI::App* const set = Command(app, options, NvrCommand::Set, "set", "Send a document that changes settings");
    set->add_option("FILE", options.file, "The document; - is standard input")->required();
    set->footer("The document:\n  <Set version=\"1.0\" systemType=\"ipc\"> with a key in each child\nKeys:\n" +
                DescribeNvrKeys(NvrSetKeys()));
    CLI::App* const snapshot = Command(app, options, NvrCommand::Snapshot, "snapshot", "Fetch a picture");
    snapshot->add_option("INDEX", raw.pictureIndex, "Number of the profile, from 0")
        ->required()
        ->check(CLI::Range(0, 65535).description(""));
    snapshot->add_option("FILE", options.file, "Where to write it; - is standard output")->required();
    DescribeMove(Command(app, options, NvrCommand::Move, "move", "Move the camera for a while"), options);
    Command(app, options, NvrCommand::Stop, "stop", "Stop the camera");
    Command(app, options, NvrCommand::Presets, "presets", "List the presets");
    CLI::App* const goTo = Command(app, options, NvrCommand::Goto, "goto", "Move to a preset");
    goTo->add_option("TOKEN", options.preset, "Its token, as 'presets' lists it")->required();
    DescribeWatch(
        Command(app, options, NvrCommand::Watch, "watch", "Tell of motion and alarm inputs as they come, until Ctrl-C"),
        options);
    CLI::App* const rawCommand =
        Command(app, options, NvrCommand::Raw, "raw", "Read settings, and show the SOAP instead of the answer");
    DescribeKeys(rawCommand, options, raw);
}

NvrCommandLine Refuse(std::ostream& err, const std::string& problem)
{
    err << "netserver-nvr: " << problem << "; --help tells how it is used\n";
    return NvrCommandLine::Bad;
}

} // namespace

NvrCommandLine ParseNvrCommandLine(int argc, const char* const* argv, NvrOptions& options, std::ostream& out,
                                   std::ostream& err)
{
    CLI::App app("Reads and changes ONVIF cameras.", "netserver-nvr");
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
        return NvrCommandLine::Done;
    }
    const std::string problem = TakeAll(raw, options);
    if (!problem.empty())
    {
        return Refuse(err, problem);
    }
    return NvrCommandLine::Run;
}

std::string CredentialsProblem(const NvrOptions& options)
{
    if (options.user.size() + options.password.size() > MAX_NVR_CREDENTIALS)
    {
        return "user name and password may have 62 bytes together";
    }
    if (options.user.find(':') != std::string::npos)
    {
        return "--user: a name with a colon cannot be sent";
    }
    return {};
}
