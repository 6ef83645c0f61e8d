// NetSocket.h: the socket service, TCP over IPv4.
//
// A library of its own (target netsocket), so that a device maker can link another implementation of this header.
//
// Connections are known by positive `int` handles. A handle is not used again for long (some thousand million
// connections while few are open), so a stale one does not mean somebody else's connection. Every operation on a handle
// that is unknown or stale fails cleanly, with the broken flag set where there is one. Unless said otherwise an
// operation may be called from any thread, and after NET_SOCKET_Quit all of them fail fast until the next
// NET_SOCKET_Initial.
#pragma once

#include <netinet/in.h>

/// Receives the connections of a listener. Implemented by who listens, see NET_SOCKET_StartListen.
class CListenSocketObserver
{
public:
    virtual ~CListenSocketObserver() = default;

    /// A connection was accepted; its handle now belongs to the observer, who ends it with
    /// NET_SOCKET_DestroyHNetCommunication. Runs on one of the listener's own threads (a bounded pool for each
    /// listener), so a call that waits for its peer delays no other port, and delays its own port only when the whole
    /// pool waits.
    /// @param handle   the connection
    /// @param port     the local port, host order
    /// @param address  the peer's IPv4 address, network order
    virtual void OnAcceptCreateSocket(int handle, unsigned short port, unsigned int address) = 0;
};

/// Receives the data of a connection that was started as a node.
class CSocketDataObserver
{
public:
    virtual ~CSocketDataObserver() = default;

    /// Bytes came. Runs on the service's event thread; it should not wait.
    /// A call with `length` 0 tells once that the peer has closed or the connection is broken.
    /// @param handle  the connection
    /// @param data    borrowed for the call
    /// @param length  bytes in `data`
    /// @param param   as given to NET_SOCKET_RegisterNode
    /// @return not looked at
    virtual int OnSocketRecvData(int handle, const char* data, unsigned int length, void* param) = 0;
};

/// Brings the service up; further calls while it runs are fine.
/// @param reserved  null
/// @return false when its threads or descriptors could not be had
bool NET_SOCKET_Initial(const char* reserved);

/// Ends the service: every listener, thread and connection. Waiting calls of other threads are woken and fail. When it
/// returns no callback of any listener runs, also of those that were stopped before. A later NET_SOCKET_Initial starts
/// afresh. Not to be called from an observer.
void NET_SOCKET_Quit();

/// Opens a listener.
/// @param port          local port, host order; 0 lets the system choose (see NET_SOCKET_GetListenPort)
/// @param observer      borrowed until NET_SOCKET_StopListen or NET_SOCKET_Quit has returned and none of its callbacks
///                      runs
/// @param localAddress  network order; 0 is any
/// @param reuseAddress  SO_REUSEADDR
/// @return false when the port cannot be had, or this service listens on it already
bool NET_SOCKET_StartListen(unsigned short port, CListenSocketObserver* observer, unsigned int localAddress,
                            bool reuseAddress);

/// Closes the listener of a port. When it returns, no callback of that listener runs any more, except one on whose
/// thread it was called, or one that itself waits in NET_SOCKET_StopListen for the calling thread: such a callback uses
/// its observer until it returns. Accepted connections stay.
/// @param port  host order
/// @return false when the port has no listener
bool NET_SOCKET_StopListen(unsigned short port);

/// The port that a listener got.
/// @param observer  as given to NET_SOCKET_StartListen; only compared, not called
/// @return the port of a listener of this observer, the lowest if there are several; 0 for none
unsigned short NET_SOCKET_GetListenPort(const CListenSocketObserver* observer);

/// Reads what is there, without waiting.
/// @param handle  the connection
/// @param buffer  room for `length` bytes
/// @param length  above 0
/// @param broken  set when the connection is broken, closed by the peer or unknown; otherwise left alone. Data and the
///                peer's closing are told by separate calls, so that a request in front of a half-close can be
///                answered.
/// @return bytes read; 0 or less when there is nothing
int NET_SOCKET_Recv_Immediate(int handle, char* buffer, int length, bool* broken);

/// Waits until a read would bring data or the closing of the connection.
/// @param handle     the connection
/// @param timeoutMs  milliseconds to wait at most
/// @return true when it would, and at once for a handle that is unknown: the read tells; false when `timeoutMs` has
///         passed
bool NET_SOCKET_WaitRecv(int handle, unsigned int timeoutMs);

/// Sends what the connection takes. While an outgoing connect is under way it waits for it, so that connect, send and
/// destroy in a row deliver, one second at most counted from the start of the connect; then it gives the connect up.
/// When the peer's window is shut it waits up to 100 ms.
/// @param handle  the connection
/// @param data    borrowed for the call
/// @param length  bytes in `data`
/// @param broken  set when the connection is broken or unknown, or the connect failed; otherwise left alone
/// @return bytes taken, 0 or less when none
int NET_SOCKET_Send_Immediate(int handle, const char* data, int length, bool& broken);

/// NET_SOCKET_Send_Immediate for bytes behind which the connection is ended at once: they may be held back until
/// NET_SOCKET_DestroyHNetCommunication, so that the end travels in one packet with them.
/// @param handle  the connection
/// @param data    borrowed for the call
/// @param length  bytes in `data`
/// @param broken  set when the connection is broken or unknown, or the connect failed; otherwise left alone
/// @return bytes taken, 0 or less when none
int NET_SOCKET_Send_Last(int handle, const char* data, int length, bool& broken);

/// Ends a connection; the handle is free at once. What was sent is delivered: the sending side is shut down, and what
/// the peer still sends is read and dropped for up to 1 second or 64 KiB, off the caller's thread, before the socket is
/// closed. Does nothing for an unknown handle.
/// @param handle  the connection
void NET_SOCKET_DestroyHNetCommunication(int handle);

/// Tells who is at the other end.
/// @param handle   the connection
/// @param address  receives the peer's address and port, network order
/// @return false, with `address` zeroed, when it is not known
bool NET_SOCKET_GetRemoteIP(int handle, sockaddr_in& address);

/// Writes an address as dotted text.
/// @param address  IPv4, network order
/// @param text     room for 16 bytes
void NET_SOCKET_Inet_ntoa(unsigned int address, char* text);

/// Starts an outgoing connection and returns at once.
/// @param reserved  0
/// @param address   dotted text
/// @param port      host order
/// @return a positive handle, also when the address is no address or the connect fails at once: the failure is told by
///         NET_SOCKET_PopConnectResult and by the first send. Below 1 only when the service is down.
int NET_SOCKET_AddConnect(unsigned int reserved, const char* address, unsigned short port);

/// Tells how an outgoing connect is doing.
/// @param handle     of NET_SOCKET_AddConnect
/// @param result     receives 0 while the connect is under way, a positive number once connected, a negative one when
///                   it failed
/// @param timeoutMs  milliseconds to wait for an outcome
/// @return false for an unknown handle, with `result` negative
bool NET_SOCKET_PopConnectResult(int handle, int& result, unsigned int timeoutMs);

/// Gives up a connect that is under way; the handle stays until NET_SOCKET_DestroyHNetCommunication.
/// @param handle  of NET_SOCKET_AddConnect
void NET_SOCKET_DelConnect(int handle);

/// Binds a data observer to a connection; nothing is delivered before NET_SOCKET_Start.
/// @param handle    the connection
/// @param observer  borrowed until NET_SOCKET_Stop or NET_SOCKET_UnRegisterNode has returned
/// @param param     handed to the observer, not looked at
/// @param option1   1
/// @param option2   1
/// @return false for an unknown handle, or one that has an observer already
bool NET_SOCKET_RegisterNode(int handle, CSocketDataObserver* observer, void* param, int option1, int option2);

/// Begins the delivery of received bytes on the service's event thread.
/// @param handle  the connection
/// @return false when no observer is bound
bool NET_SOCKET_Start(int handle);

/// Ends the delivery. When it returns, no callback of this node runs any more, except one from which it was called.
/// @param handle  the connection
/// @return false when no observer is bound
bool NET_SOCKET_Stop(int handle);

/// NET_SOCKET_Stop, and removes the observer.
/// @param handle  the connection
/// @return false when no observer is bound
bool NET_SOCKET_UnRegisterNode(int handle);

/// One exchange: connects, sends everything, receives until `endMark` has come, the buffer is full, the peer closes or
/// the time is up, and closes.
/// @param ip         dotted text
/// @param port       host order
/// @param send       what to send; borrowed for the call
/// @param sendLen    bytes in `send`
/// @param recv       receives the bytes, always with a zero byte behind them
/// @param recvSize   room in `recv`, above 0, the zero byte included
/// @param endMark    text that ends the answer, what comes behind it is dropped; null or empty: until the peer closes.
///                   One from ":" to ">", as ":Envelope>", ends it in a closing tag only, whatever prefix that has
/// @param timeoutMs  limit of the whole exchange, connect included
/// @return bytes received, -1 when no connection came about
int NET_SOCKET_SimpleClientComm(const char* ip, unsigned short port, const char* send, unsigned int sendLen, char* recv,
                                unsigned int recvSize, const char* endMark, unsigned int timeoutMs);
