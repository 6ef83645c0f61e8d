#include "NvrProgram.h"

#include "NvrAnswer.h"
#include "NvrKeys.h"
#include "NvrWatch.h"
#include "OnvifSDK.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <memory>
#include <ostream>

#include <termios.h>
#include <time.h>
#include <tinyxml2.h>
#include <unistd.h>

namespace
{

constexpr std::size_t LARGEST_DOCUMENT = 1 << 20;
constexpr std::size_t WATCH_ROUND_MS = 10000; // in which each watched camera is looked after once
constexpr char INTERRUPT = '\x03';            // Ctrl-C
const char* const SEE_TRACE = "; --trace FILE shows the exchanges";

/// A "Set" document with one key and texts at paths of up to three names below it.
class CSetDocument
{
public:
    explicit CSetDocument(const char* key)
    {
        tinyxml2::XMLElement* const root = m_document.NewElement("Set");
        m_document.InsertEndChild(root);
        root->SetAttribute("version", "1.0");
        root->SetAttribute("systemType", "ipc");
        m_key = root->InsertNewChildElement(key);
    }

    CSetDocument& Add(std::initializer_list<const char*> path, const std::string& text)
    {
        tinyxml2::XMLElement* at = m_key;
        for (const char* name : path)
        {
            tinyxml2::XMLElement* const known = at->FirstChildElement(name);
            at = known != nullptr ? known : at->InsertNewChildElement(name);
        }
        at->SetText(text.c_str());
        return *this;
    }

    std::string Text() const
    {
        tinyxml2::XMLPrinter printer;
        m_document.Print(&printer);
        return printer.CStr();
    }

private:
    tinyxml2::XMLDocument m_document;
    tinyxml2::XMLElement* m_key = nullptr;
};

std::string StopDocument()
{
    return CSetDocument("ptzStop").Add({"panTilt"}, "true").Add({"zoom"}, "true").Text();
}

/// Reads a line from the terminal without showing it. @return false without a terminal, and when it is given up
bool ReadHidden(const std::string& prompt, std::string& line)
{
    const std::unique_ptr<FILE, int (*)(FILE*)> terminal(std::fopen("/dev/tty", "r+"), &std::fclose);
    termios shown = {};
    if (terminal == nullptr || tcgetattr(fileno(terminal.get()), &shown) != 0)
    {
        return false;
    }
    const int fd = fileno(terminal.get());
    termios hidden = shown;
    hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO | ISIG); // a signal would leave the terminal without its echo
    tcsetattr(fd, TCSAFLUSH, &hidden);
    std::fputs(prompt.c_str(), terminal.get());
    std::fflush(terminal.get());
    char text[256] = {};
    const bool read = std::fgets(text, sizeof(text), terminal.get()) != nullptr;
    tcsetattr(fd, TCSAFLUSH, &shown);
    std::fputs("\n", terminal.get());
    line.assign(text, std::strcspn(text, "\n"));
    return read && line.find(INTERRUPT) == std::string::npos;
}

/// Of a file that ReadAll did not read; "-" is standard input.
std::string ReadProblem(const std::string& path)
{
    if (path != "-" && access(path.c_str(), R_OK) != 0)
    {
        return "cannot read '" + path + "': " + std::strerror(errno);
    }
    return "cannot read '" + path + "': it is no text, or has more than 1 MiB";
}

bool ReadAll(std::istream& in, std::string& text)
{
    char part[4096];
    while (text.size() <= LARGEST_DOCUMENT && (in.read(part, sizeof(part)), in.gcount() > 0))
    {
        text.append(part, static_cast<std::size_t>(in.gcount()));
    }
    return !in.bad() && text.size() <= LARGEST_DOCUMENT;
}

} // namespace

CNvrProgram::CNvrProgram(const NvrOptions& options, const sigset_t& signals, std::ostream& out, std::ostream& err)
    : m_options(options), m_signals(signals), m_out(out), m_err(err), m_trace(err)
{
    ONVIF_CLIENT_SetTraceObserver(&m_trace);
}

CNvrProgram::~CNvrProgram()
{
    ONVIF_CLIENT_SetTraceObserver(nullptr);
}

NvrExit CNvrProgram::Run()
{
    if (!m_options.traceFile.empty() && !m_trace.OpenFile(m_options.traceFile))
    {
        return Fail(NVR_USAGE, "--trace: cannot write '" + m_options.traceFile + "': " + std::strerror(errno) +
                                   "; give another file");
    }
    if (m_options.command == NvrCommand::Set && !ReadFile())
    {
        return NVR_USAGE;
    }
    if (!AskForPassword())
    {
        return NVR_USAGE;
    }
    if (m_options.command == NvrCommand::Watch)
    {
        return Watch();
    }
    const std::string address = ResolveHost(m_options.host);
    if (address.empty())
    {
        return Fail(NVR_USAGE,
                    "--host: '" + m_options.host +
                        "' is no IPv4 address and no name that is known; check its spelling, or give the address");
    }
    Progress("logging in to " + address + ":" + std::to_string(m_options.port));
    const unsigned int error = m_session.Login(m_options, address);
    if (error != 0)
    {
        return Fail(NVR_NO_LOGIN, LoginProblem(error));
    }
    return RunCommand();
}

NvrExit CNvrProgram::RunCommand()
{
    const std::string problem = NeedProblem();
    if (!problem.empty())
    {
        return Fail(NVR_USAGE, problem);
    }
    switch (m_options.command)
    {
    case NvrCommand::Login:
        return ShowLogin();
    case NvrCommand::Get:
        return Get();
    case NvrCommand::Set:
        return Set();
    case NvrCommand::Snapshot:
        return Snapshot();
    case NvrCommand::Move:
        return Move();
    case NvrCommand::Stop:
        return Stop();
    case NvrCommand::Presets:
        return Presets();
    case NvrCommand::Goto:
        return Goto();
    case NvrCommand::Raw:
        return Raw();
    case NvrCommand::Watch:
        break; // has logins of its own
    }
    return NVR_USAGE;
}

NvrExit CNvrProgram::ShowLogin()
{
    std::string services;
    m_session.Get(MakeGetDocument({"serviceUrl"}, {}, {}), services);
    std::string profiles;
    const NvrExit status = Fetch({"profiles"}, profiles);
    if (status == NVR_DONE)
    {
        m_out << TabulateServices(services) << "\n" << TabulateProfiles(profiles);
    }
    return status;
}

NvrExit CNvrProgram::Get()
{
    std::string answer;
    const NvrExit status = Fetch(m_options.keys, answer);
    const bool isRequest = m_options.keys.front() == "pullMessages";
    m_out << (isRequest ? MaskRequest(answer) : IndentAnswer(answer));
    return status;
}

NvrExit CNvrProgram::Raw()
{
    m_trace.ShowOn(&m_out);
    std::string answer;
    return Fetch(m_options.keys, answer);
}

// A camera's module and rule are written under the names that a read of this login has found.
NvrExit CNvrProgram::Set()
{
    const std::vector<std::string> keys = SetDocumentKeys(m_document);
    if (std::find(keys.begin(), keys.end(), "motion") != keys.end())
    {
        std::string answer;
        m_session.Get(MakeGetDocument({"motion"}, {}, {}), answer);
    }
    return SendSet(m_document, true);
}

NvrExit CNvrProgram::SendSet(const std::string& document, bool showsAnswer)
{
    std::string answer;
    const bool good = m_session.Set(document, answer);
    if (showsAnswer)
    {
        m_out << IndentAnswer(answer);
    }
    return Judge(good, answer, "the document");
}

NvrExit CNvrProgram::Snapshot()
{
    std::string picture;
    if (!m_session.Get(MakeGetDocument({"snapshotURI"}, m_options.indexes, {}), picture) || !IsPicture(picture))
    {
        return Fail(NVR_FAILED, "no picture came; " + m_trace.LastOutcome() + SEE_TRACE);
    }
    std::ofstream file;
    const bool isFile = m_options.file != "-";
    if (isFile)
    {
        file.open(m_options.file, std::ios::binary | std::ios::trunc);
    }
    std::ostream& target = isFile ? file : m_out;
    target << picture << std::flush;
    if (!target)
    {
        return Fail(NVR_USAGE,
                    "cannot write '" + m_options.file + "': " + std::strerror(errno) + "; give another file");
    }
    Progress(std::to_string(picture.size()) + " bytes");
    return NVR_DONE;
}

// The camera is told to stop also when the answer to the move was lost: it may be moving.
NvrExit CNvrProgram::Move()
{
    CSetDocument move("continuousMove");
    move.Add({"ptz", "velocity", "x"}, std::to_string(m_options.x));
    move.Add({"ptz", "velocity", "y"}, std::to_string(m_options.y));
    move.Add({"ptz", "velocity", "zoom"}, std::to_string(m_options.zoom));
    const NvrExit moved = SendSet(move.Text(), false);
    if (moved == NVR_DONE && !WaitForEndOfMove())
    {
        Progress("interrupted, stopping the camera");
    }
    const NvrExit stopped = SendSet(StopDocument(), false);
    return moved != NVR_DONE ? moved : stopped;
}

NvrExit CNvrProgram::Stop()
{
    return SendSet(StopDocument(), false);
}

NvrExit CNvrProgram::Presets()
{
    std::string answer;
    const NvrExit status = Fetch({"presets"}, answer);
    if (status == NVR_DONE)
    {
        m_out << TabulatePresets(answer);
    }
    return status;
}

NvrExit CNvrProgram::Goto()
{
    return SendSet(CSetDocument("gotoPreset").Add({"presetToken"}, m_options.preset).Text(), false);
}

/// Goes on with the cameras that can be logged in to.
NvrExit CNvrProgram::Watch()
{
    std::vector<NvrCamera> cameras;
    if (!ReadCameras(cameras))
    {
        return NVR_USAGE;
    }
    CNvrWatch watch(m_out, m_options.json);
    std::size_t number = 0;
    std::size_t watched = 0;
    for (const NvrCamera& camera : cameras)
    {
        const std::string name = camera.host + ":" + std::to_string(camera.port);
        const std::string address = ResolveHost(camera.host);
        if (address.empty())
        {
            Fail(NVR_NO_LOGIN, name + ": no IPv4 address and no name that is known; check its spelling");
            continue;
        }
        Progress("logging in to " + name + " (" + std::to_string(++number) + " of " + std::to_string(cameras.size()) +
                 ")");
        const unsigned int error = watch.Add(camera, address);
        if (error != 0)
        {
            Fail(NVR_NO_LOGIN, name + ": " + LoginProblem(error));
            continue;
        }
        ++watched;
    }
    if (watched == 0)
    {
        return NVR_NO_LOGIN;
    }
    Progress("watching " + std::to_string(watched) + " of " + std::to_string(cameras.size()) + ", Ctrl-C ends it");
    LookAfterCameras(watch);
    return NVR_DONE;
}

bool CNvrProgram::AskForPassword()
{
    if (m_options.user.empty() || m_options.hasPassword)
    {
        return true;
    }
    if (!ReadHidden("Password of " + m_options.user + ": ", m_options.password))
    {
        Fail(NVR_USAGE, std::string("no password: set ") + NVR_PASSWORD_VARIABLE + ", or give --password");
        return false;
    }
    const std::string problem = CredentialsProblem(m_options);
    return problem.empty() || Fail(NVR_USAGE, problem) == NVR_DONE;
}

bool CNvrProgram::ReadFile()
{
    std::ifstream file;
    const bool isFile = m_options.file != "-";
    if (isFile)
    {
        file.open(m_options.file, std::ios::binary);
    }
    if ((isFile && !file.is_open()) || !ReadAll(isFile ? file : std::cin, m_document))
    {
        Fail(NVR_USAGE, ReadProblem(m_options.file));
        return false;
    }
    const std::string problem = SetDocumentProblem(m_document);
    return problem.empty() || Fail(NVR_USAGE, m_options.file + ": " + problem) == NVR_DONE;
}

bool CNvrProgram::ReadCameras(std::vector<NvrCamera>& cameras)
{
    if (m_options.camerasFile.empty())
    {
        cameras.push_back({m_options.host, m_options.port, m_options.user, m_options.password});
        return true;
    }
    std::ifstream file(m_options.camerasFile, std::ios::binary);
    std::string text;
    if (!file.is_open() || !ReadAll(file, text))
    {
        Fail(NVR_USAGE, "--cameras: " + ReadProblem(m_options.camerasFile));
        return false;
    }
    const std::string problem = ReadNvrCameras(text, m_options, cameras);
    return problem.empty() || Fail(NVR_USAGE, m_options.camerasFile + ": " + problem) == NVR_DONE;
}

/// Whether the command is about a profile, of which a camera may have none.
bool CNvrProgram::NeedsProfile() const
{
    switch (m_options.command)
    {
    case NvrCommand::Move:
    case NvrCommand::Stop:
    case NvrCommand::Presets:
    case NvrCommand::Goto:
        return true;
    case NvrCommand::Set:
        return AnyNeedsProfile(NvrSetKeys(), SetDocumentKeys(m_document));
    default:
        return AnyNeedsProfile(NvrGetKeys(), m_options.keys);
    }
}

/// What the command needs and the camera has not.
std::string CNvrProgram::NeedProblem() const
{
    const int profiles = m_session.CountProfiles();
    for (const int index : m_options.indexes)
    {
        if (index >= profiles)
        {
            return "there is no profile " + std::to_string(index) + ": the camera has " + std::to_string(profiles) +
                   ", counted from 0; 'login' lists them";
        }
    }
    return profiles == 0 && NeedsProfile()
               ? "this needs a profile with a video encoder, and the camera has none; 'login' lists what it has"
               : "";
}

NvrExit CNvrProgram::Fetch(const std::vector<std::string>& keys, std::string& answer)
{
    const bool good = m_session.Get(MakeGetDocument(keys, m_options.indexes, m_options.fields), answer);
    while (!answer.empty() && answer.back() == '\0')
    {
        answer.pop_back();
    }
    std::string names;
    for (const std::string& key : keys)
    {
        names += (names.empty() ? "'" : ", '") + key + "'";
    }
    return Judge(good, answer, names);
}

/// A fault is told by the answer; without an answer, or with one of which a part is missing, the last exchange tells.
NvrExit CNvrProgram::Judge(bool good, const std::string& answer, const std::string& what)
{
    const std::vector<std::string> faults = FaultsOf(answer);
    for (const std::string& fault : faults)
    {
        Fail(NVR_FAILED, fault);
    }
    if (!faults.empty())
    {
        return NVR_FAILED;
    }
    return good && !answer.empty()
               ? NVR_DONE
               : Fail(NVR_FAILED, "no usable answer to " + what + "; " + m_trace.LastOutcome() + SEE_TRACE);
}

/// @return false when a signal came first
bool CNvrProgram::WaitForEndOfMove() const
{
    const timespec limit = {m_options.moveMs / 1000, static_cast<long>(m_options.moveMs % 1000) * 1000000};
    return sigtimedwait(&m_signals, nullptr, &limit) < 0;
}

/// Until a signal or the end of the time that was asked for. A camera's turn comes every ten seconds, so that one that
/// starts anew, which takes longer, is not missed.
void CNvrProgram::LookAfterCameras(CNvrWatch& watch)
{
    const std::chrono::milliseconds pause(WATCH_ROUND_MS / watch.Cameras());
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(m_options.watchSeconds);
    for (;;)
    {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        const bool isLast = m_options.watchSeconds != 0 && left <= pause;
        const long long waitMs = isLast ? std::max<long long>(left.count(), 0) : pause.count();
        const timespec limit = {static_cast<time_t>(waitMs / 1000), static_cast<long>(waitMs % 1000) * 1000000};
        const bool isSignal = sigtimedwait(&m_signals, nullptr, &limit) >= 0;
        if (isSignal || isLast)
        {
            return;
        }
        const std::string change = watch.CheckNext();
        if (!change.empty())
        {
            m_err << "netserver-nvr: " << change << std::endl;
        }
    }
}

std::string CNvrProgram::LoginProblem(unsigned int error) const
{
    const std::string last = error == LOGIN_NO_ANSWER ? " (" + m_trace.LastOutcome() + ")" : "";
    return "login failed with code " + std::to_string(error) + ": " + DescribeLoginError(error) + last;
}

NvrExit CNvrProgram::Fail(NvrExit status, const std::string& message)
{
    m_err << "netserver-nvr: " << message << std::endl;
    return status;
}

/// For a person who waits; scripts see nothing of it.
void CNvrProgram::Progress(const std::string& message)
{
    if (isatty(STDERR_FILENO) != 0)
    {
        m_err << "netserver-nvr: " << message << std::endl;
    }
}
