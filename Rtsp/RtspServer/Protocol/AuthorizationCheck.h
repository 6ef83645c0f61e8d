// AuthorizationCheck.h: judges one request's Authorization header against the device's users (RFC 2617, without qop).
//
// Built for each request. Any thread.
#pragma once

#include "NetTypes.h"

#include <string>
#include <vector>

constexpr const char* QLX_RTSP_REALM = "RTSP SERVER";

class CAuthorizationCheck
{
public:
    enum Type
    {
        AUTHORIZATION_NONE = 0,
        AUTHORIZATION_DIGEST = 1,
        AUTHORIZATION_BASIC = 2,
    };

    /// @param users    the device's users; borrowed, must outlive this object
    /// @param nonce    what the session last sent; empty before the first challenge
    /// @param request  the whole message
    CAuthorizationCheck(const std::vector<NETNS::DEV_USER_INFO>& users, const std::string& realm,
                        const std::string& nonce, const std::string& method, const std::string& request);

    /// Whether the request may be served. Digest is judged by the users. Basic is not offered and passes only when no
    /// password can be read from the header.
    bool IsCheckOk();

    /// What the request brought; exact case, and Digest wins over Basic. @return a value of Type
    int GetAuthorizatoinType() const;

    std::string GetUserName() const { return m_userName; } ///< after a passed Digest check
    std::string GetPassword() const { return m_password; } ///< after a passed Digest check

private:
    bool DigestCheck();
    bool BasicCheck();
    void TakeUser(const std::string& userName);
    bool GetFieldValue(const char* name, std::string& value) const;
    void ComputeDigestResponse(const std::string& method, const std::string& realm, const std::string& nonce,
                               const std::string& uri, std::string& response) const;

    const std::vector<NETNS::DEV_USER_INFO>& m_users;
    const std::string m_realm;
    const std::string m_nonce;
    const std::string m_method;
    const std::string m_request;
    std::string m_userName;
    std::string m_password;
};
