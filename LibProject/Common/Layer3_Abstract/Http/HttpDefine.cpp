#include "HttpDefine.h"

#include <cstring>
#include <iterator>
#include <utility>

namespace HTTP_DEFINE
{

namespace
{

// clang-format off
const std::pair<const HttpStatusCode, _HTTP_STATUS_INFO_> HTTPStatusValue[] = {
    {200, {"OK",                    ""}},
    {302, {"Found",                 "Directories must end with a slash."}},
    {400, {"Bad Request",           "Unsupported method."}},
    {401, {"Unauthorized",          "The requested method is not recognized by this server."}},   // as for 501
    {403, {"Forbidden",             ""}},
    {404, {"Not Found",             "The requested URL was not found on this server."}},
    {408, {"Request Timeout",       "No request appeared within a reasonable time period."}},
    {500, {"Internal Server Error", "Internal Server Error"}},
    {501, {"Not Implemented",       "The requested method is not recognized by this server."}},
};

const std::pair<const std::string, std::string> ContentType[] = {
    {"",                 "application/octet-stream"},
    {".avi",             "video/x-msvideo"},
    {".cod",             "application/vnd.rim.cod"},
    {".css",             "text/css"},
    {".gif",             "image/gif"},
    {".htm.html",        "text/html"},
    {".jad",             "text/vnd.sun.j2me.app-descriptor"},
    {".jpg.jpeg",        "image/jpeg"},
    {".mid.midi",        "audio/midi"},
    {".mp3",             "audio/mpeg"},
    {".mpe.mpeg",        "video/mpeg"},
    {".png",             "image/png"},
    {".qt.mov",          "video/quicktime"},
    {".txt.h.c.cc.cpp",  "text/plain"},
    {".wav",             "audio/wav"},
    {".xml",             "text/xml"},
};
// clang-format on

} // namespace

const std::map<HttpStatusCode, _HTTP_STATUS_INFO_> g_HTTPStatusMap(std::begin(HTTPStatusValue),
                                                                   std::end(HTTPStatusValue));
const std::map<std::string, std::string> g_ContentTypeMap(std::begin(ContentType), std::end(ContentType));

_HTTP_PROTOCOL_::~_HTTP_PROTOCOL_()
{
    delete[] buffer;
}

_HTTP_PROTOCOL_::_HTTP_PROTOCOL_(const _HTTP_PROTOCOL_& other)
{
    *this = other;
}

_HTTP_PROTOCOL_& _HTTP_PROTOCOL_::operator=(const _HTTP_PROTOCOL_& other)
{
    if (this == &other)
    {
        return *this;
    }
    delete[] buffer;
    buffer = nullptr;
    if (other.buffer != nullptr && other.totalLength > 0)
    {
        Reallocate(other.totalLength + 1);
        std::memcpy(buffer, other.buffer, static_cast<size_t>(other.totalLength));
        buffer[other.totalLength] = '\0';
    }
    url = other.url;
    totalLength = other.totalLength;
    payloadLength = other.payloadLength;
    return *this;
}

void _HTTP_PROTOCOL_::Reallocate(int room)
{
    delete[] buffer;
    buffer = nullptr; // stays null when the allocation throws
    totalLength = 0;
    payloadLength = 0;
    buffer = new char[static_cast<size_t>(room)];
}

} // namespace HTTP_DEFINE
