// LocalPorts.h: the state of TCP ports of this machine, as its kernel tells it.
#pragma once

#include <istream>
#include <string>

/// Whether a server could listen on the port now.
/// @param why  receives the kernel's word for it when not
bool IsPortFree(unsigned short port, std::string& why);

/// Whether this process may not listen on the port because it is one below 1024.
bool IsPrivileged(unsigned short port);

/// Whether something accepts connections on 127.0.0.1.
bool DoesPortAnswer(unsigned short port);

/// Connections that clients have to a port now.
unsigned int CountConnections(unsigned short port);

/// The same, of a table in the format of /proc/net/tcp.
unsigned int CountConnections(std::istream& table, unsigned short port);
