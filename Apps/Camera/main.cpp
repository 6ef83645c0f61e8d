// main.cpp: the program netserver-camera.

#include "Camera.h"
#include "CameraOptions.h"
#include "PictureElement.h"
#include "ShareSDK.h"

#include <gst/gst.h>

#include <cstdio>
#include <iostream>

#include <malloc.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

/// Left alone, the C library learns from each large block that is given back to keep blocks of that size, in every
/// thread's heap: a few requests and pictures of a megabyte would leave tens of megabytes behind.
void GiveLargeMemoryBack()
{
    constexpr int LARGE_BYTES = 128 * 1024; // where the C library begins with it
    constexpr int HEAPS = 4;                // instead of eight for each core
    mallopt(M_MMAP_THRESHOLD, LARGE_BYTES);
    mallopt(M_TRIM_THRESHOLD, LARGE_BYTES);
    mallopt(M_ARENA_MAX, HEAPS);
}

/// Standard output carries one line only. What the libraries print there goes to standard error.
/// @return a descriptor of the real standard output
int SetStandardOutputApart()
{
    std::fflush(stdout);
    const int real = dup(STDOUT_FILENO);
    dup2(STDERR_FILENO, STDOUT_FILENO);
    return real;
}

/// Blocks the stop signals in this thread and in all that it starts. A client that goes away in the middle of an
/// answer shall not end the process.
sigset_t TakeSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    signal(SIGPIPE, SIG_IGN);
    return signals;
}

} // namespace

int main(int argc, char** argv)
{
    GiveLargeMemoryBack(); // in front of the first thread
    CameraOptions options;
    switch (ParseCommandLine(argc, argv, options, std::cout, std::cerr))
    {
    case CommandLine::Done:
        return 0;
    case CommandLine::Bad:
        return 2;
    case CommandLine::Run:
        break;
    }
    SHARESDK_SetLogLevel(options.verbose ? SHARESDK_LOG_ALL : SHARESDK_LOG_ABNORMAL);
    const sigset_t stopSignals = TakeSignals();
    umask(077); // settings, recordings and speech are nobody else's
    const int readyFd = SetStandardOutputApart();
    gst_init(nullptr, nullptr);
    RegisterPictureElement();
    CCamera camera(options, stopSignals);
    return camera.Run(readyFd);
}
