// RTSP_Datagram.h: what the four links share in sending and receiving. Any thread.
#pragma once

/// @param ip  network order
/// @return the length when sent, 0 when it would block, -1 on error
int RtpSendDatagram(int sock, const char* data, int length, unsigned int ip, unsigned short port);

/// @return bytes, 0 when nothing is there, -1 on error
int RtpRecvDatagram(int sock, char* buffer, int length);
