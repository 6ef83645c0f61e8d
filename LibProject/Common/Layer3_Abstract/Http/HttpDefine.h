// HttpDefine.h: the record behind an HTTP message, and the tables of status words and MIME types.
//
// The tables are built before any thread runs and only read afterwards.
#pragma once

#include <map>
#include <string>

namespace HTTP_DEFINE
{

using HttpStatusCode = int;

/// One message, whole.
struct _HTTP_PROTOCOL_ // NOLINT(bugprone-reserved-identifier)
{
    int totalLength = 0;    ///< bytes in `buffer`, header and payload together
    int payloadLength = 0;  ///< bytes behind the header
    std::string url;        ///< without the leading "/"
    char* buffer = nullptr; ///< owned, from new[], with a zero byte behind its bytes; null when empty

    _HTTP_PROTOCOL_() = default;
    ~_HTTP_PROTOCOL_();
    _HTTP_PROTOCOL_(const _HTTP_PROTOCOL_& other);
    _HTTP_PROTOCOL_& operator=(const _HTTP_PROTOCOL_& other);

    /// Frees the buffer and makes room for `room` bytes, not initialised. Lengths become 0.
    void Reallocate(int room);
};

struct _HTTP_STATUS_INFO_ // NOLINT(bugprone-reserved-identifier)
{
    std::string status;      ///< the words of the status line
    std::string description; ///< held, not sent
};

extern const std::map<HttpStatusCode, _HTTP_STATUS_INFO_> g_HTTPStatusMap;

/// MIME types by a run of extensions, written one behind the other. The map's order is the order of lookup.
extern const std::map<std::string, std::string> g_ContentTypeMap;

} // namespace HTTP_DEFINE
