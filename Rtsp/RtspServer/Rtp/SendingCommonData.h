// SendingCommonData.h: bytes on their way to a socket.
#pragma once

struct SENDING_COMMON_DATA
{
    char* data = nullptr; ///< an array from new[]; whoever holds the record deletes it
    int length = 0;       ///< bytes in `data`
    int sent = 0;         ///< bytes that are out
};
