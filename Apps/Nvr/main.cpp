// main.cpp: the program netserver-nvr.

#include "NvrOptions.h"
#include "NvrProgram.h"
#include "ShareSDK.h"

#include <iostream>

namespace
{

/// A move and a watch take these signals themselves; everything else ends at once.
sigset_t TakeSignals(NvrCommand command)
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    if (command == NvrCommand::Move || command == NvrCommand::Watch)
    {
        pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    }
    signal(SIGPIPE, SIG_IGN);
    return signals;
}

} // namespace

int main(int argc, char** argv)
{
    NvrOptions options;
    switch (ParseNvrCommandLine(argc, argv, options, std::cout, std::cerr))
    {
    case NvrCommandLine::Done:
        return NVR_DONE;
    case NvrCommandLine::Bad:
        return NVR_USAGE;
    case NvrCommandLine::Run:
        break;
    }
    SHARESDK_SetLogLevel(options.verbose ? SHARESDK_LOG_ALL : SHARESDK_LOG_NONE);
    const sigset_t signals = TakeSignals(options.command);
    return CNvrProgram(options, signals, std::cout, std::cerr).Run();
}
