// NvrProgram.h: what netserver-nvr does, from the login to its exit status.
//
// One thread. A signal that ends the program during a move stops the camera first; during a watch the library calls on
// a thread of its own.
#pragma once

#include "NvrCameras.h"
#include "NvrOptions.h"
#include "NvrSession.h"
#include "NvrTrace.h"

#include <iosfwd>

#include <signal.h>

/// Exit statuses.
enum NvrExit
{
    NVR_DONE = 0,
    NVR_FAILED = 1, ///< the camera answered with a fault, or with nothing that can be read
    NVR_USAGE = 2,
    NVR_NO_LOGIN = 3,
};

class CNvrWatch;

class CNvrProgram
{
public:
    /// @param signals  blocked ones that end a move or a watch
    CNvrProgram(const NvrOptions& options, const sigset_t& signals, std::ostream& out, std::ostream& err);
    ~CNvrProgram();
    CNvrProgram(const CNvrProgram&) = delete;
    CNvrProgram& operator=(const CNvrProgram&) = delete;

    NvrExit Run();

private:
    NvrExit RunCommand();
    NvrExit ShowLogin();
    NvrExit Get();
    NvrExit Raw();
    NvrExit Set();
    NvrExit SendSet(const std::string& document, bool showsAnswer);
    NvrExit Snapshot();
    NvrExit Move();
    NvrExit Stop();
    NvrExit Presets();
    NvrExit Goto();
    NvrExit Watch();

    bool AskForPassword();
    bool ReadFile();
    bool ReadCameras(std::vector<NvrCamera>& cameras);
    void LookAfterCameras(CNvrWatch& watch);
    bool NeedsProfile() const;
    std::string NeedProblem() const;
    NvrExit Fetch(const std::vector<std::string>& keys, std::string& answer);
    NvrExit Judge(bool good, const std::string& answer, const std::string& what);
    bool WaitForEndOfMove() const;
    std::string LoginProblem(unsigned int error) const;
    NvrExit Fail(NvrExit status, const std::string& message);
    void Progress(const std::string& message);

    NvrOptions m_options;
    const sigset_t m_signals;
    std::ostream& m_out;
    std::ostream& m_err;
    std::string m_document; // of Set
    CNvrTrace m_trace;
    CNvrSession m_session;
};
