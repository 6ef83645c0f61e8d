// PFSocket.h: bringing the sockets of the platform up and down. Linux needs neither. Any thread.
#pragma once

class CPFSocket
{
public:
    CPFSocket() = default;
    ~CPFSocket() = default;

    /// @return 0
    static int Startup() { return 0; }
    static int Cleanup() { return 0; }
};
