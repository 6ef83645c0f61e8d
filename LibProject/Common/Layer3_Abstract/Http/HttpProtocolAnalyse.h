// HttpProtocolAnalyse.h: one HTTP message: reads a request, or builds a response.
//
// The method word is never looked at, header names count as they are spelled, and a response always closes its
// connection. Local to one worker.
#pragma once

#include "HttpDefine.h"

#include <string>
#include <string_view>

class CHttpProtocolAnalyse
{
public:
    CHttpProtocolAnalyse() = default;
    explicit CHttpProtocolAnalyse(const std::string& message);
    CHttpProtocolAnalyse(const char* message, int length);

    /// The URL names a command: it is not empty and holds no ".".
    bool IsRequestCmd() const;
    /// Anything else is a file, the empty URL too.
    bool IsRequestFile() const;
    /// The message is an answer: its header begins with "HTTP".
    bool IsResponse() const;

    /// The decoded URL without its leading "/" and its query; a query stays for "queryQRInfo" only.
    const std::string& GetUrl() const;
    void SetURL(const std::string& url);

    /// @param len  receives the length. @return the bytes behind the header, borrowed; an empty text when there are
    /// none
    const char* GetPayLoad(int& len) const;
    /// The same for the whole message.
    const char* GetBuf(int& len) const;

    /// @param info  receives the encoded credentials of a Basic authorization (RFC 7617)
    /// @return false, with `info` left alone, when the request brings none
    bool GetVerifyInfo(std::string& info) const;

    /// Builds a response.
    /// @param status    a status of g_HTTPStatusMap; any other ends the process
    /// @param body      null: `len` zero bytes are sent
    /// @param len       below 0 counts as 0
    /// @param authInfo  text of the "AuthInfo:" line, which is always sent; cut at 512 characters
    /// @return 1
    int SetResPackage(HTTP_DEFINE::HttpStatusCode status, const char* body, int len, const std::string& authInfo);
    /// Builds a response that is a header only.
    void SetResponseHeader(HTTP_DEFINE::HttpStatusCode status);
    /// Adds a line behind the header's last one; a message without a header ends the process.
    void SetHeaderLine(const char* line);

    /// Builds a request of a client's. No caller in this library.
    void SetHTTPConfig(const std::string& url, const char* body, int len, const std::string& auth);
    /// The number in a response's status line, 0 when there is none.
    int GetStatusCode() const;
    /// Adds a line of the name, a blank and the number.
    void SetHeaderExtra(const char* name, unsigned int value);
    /// @return false when the header has no such name with a number behind it
    bool GetHeaderExtra(const char* name, unsigned int& value) const;

    /// The MIME type by this object's own URL; empty for an extension that no type knows.
    const std::string& GetMimeType() const;

private:
    void AnalyzeHttpPack(const char* message, int length);
    std::string_view Header() const;
    int CreateHttpHeader(HTTP_DEFINE::HttpStatusCode status, char* out, int len, const std::string& authInfo) const;
    void FilterURL();
    static std::string URLDecode(std::string_view text);
    static unsigned int fromHex(const char& digit);

    HTTP_DEFINE::_HTTP_PROTOCOL_ m_protocol;
};
