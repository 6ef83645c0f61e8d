#include "AuthorizationCheck.h"

#include "Base64Coder.h"
#include "MD5.h"

#include <cstdio>
#include <cstring>

namespace
{
const char DIGEST_HEADER[] = "Authorization: Digest";
const char BASIC_HEADER[] = "Authorization: Basic";
const char BASIC_VALUE[] = "Authorization: Basic ";

std::string Digest(const std::string& text)
{
    char digits[33];
    PUB_MD5Encrypt(text.data(), static_cast<int>(text.size()), digits, false);
    return digits;
}

std::string FieldText(const char (&field)[20])
{
    return std::string(field, strnlen(field, sizeof(field)));
}
} // namespace

CAuthorizationCheck::CAuthorizationCheck(const std::vector<NETNS::DEV_USER_INFO>& users, const std::string& realm,
                                         const std::string& nonce, const std::string& method,
                                         const std::string& request)
    : m_users(users), m_realm(realm), m_nonce(nonce), m_method(method), m_request(request)
{
}

bool CAuthorizationCheck::IsCheckOk()
{
    switch (GetAuthorizatoinType())
    {
    case AUTHORIZATION_DIGEST:
        return DigestCheck();
    case AUTHORIZATION_BASIC:
        return BasicCheck();
    default:
        return false;
    }
}

int CAuthorizationCheck::GetAuthorizatoinType() const
{
    if (m_request.find(DIGEST_HEADER) != std::string::npos)
        return AUTHORIZATION_DIGEST;
    if (m_request.find(BASIC_HEADER) != std::string::npos)
        return AUTHORIZATION_BASIC;
    return AUTHORIZATION_NONE;
}

bool CAuthorizationCheck::DigestCheck()
{
    std::string userName;
    std::string nonce;
    std::string realm;
    std::string uri;
    std::string response;
    if (!GetFieldValue("username", userName) || !GetFieldValue("nonce", nonce) || !GetFieldValue("realm", realm) ||
        !GetFieldValue("uri", uri) || !GetFieldValue("response", response))
        return false;
    if (m_users.empty())
        return false;

    TakeUser(userName);
    if (realm != m_realm || nonce != m_nonce)
        return false;
    std::string expected;
    ComputeDigestResponse(m_method, realm, nonce, uri, expected);
    return response == expected;
}

// The last user of a name wins. An unknown one leaves name and password empty, and the check goes on with them.
void CAuthorizationCheck::TakeUser(const std::string& userName)
{
    for (const NETNS::DEV_USER_INFO& user : m_users)
    {
        if (FieldText(user.userName) == userName)
        {
            m_userName = userName;
            m_password = FieldText(user.password);
        }
    }
}

// The name is searched in the whole message, so it may be found in front of the header.
bool CAuthorizationCheck::GetFieldValue(const char* name, std::string& value) const
{
    const std::size_t found = m_request.find(name);
    if (found == std::string::npos)
        return false;
    const std::size_t open = m_request.find('"', found);
    if (open == std::string::npos)
        return false;
    const std::size_t close = m_request.find('"', open + 1);
    if (close == std::string::npos)
        return false;
    value = m_request.substr(open + 1, close - open - 1);
    return true;
}

void CAuthorizationCheck::ComputeDigestResponse(const std::string& method, const std::string& realm,
                                                const std::string& nonce, const std::string& uri,
                                                std::string& response) const
{
    const std::string ha1 = Digest(m_userName + ":" + realm + ":" + m_password);
    const std::string ha2 = Digest(method + ":" + uri);
    response = Digest(ha1 + ":" + nonce + ":" + ha2);
}

// Nothing fills the password on this way, so what passes is a header from which no password can be read. The last
// character of the Base64 text is not decoded. Clients see it so.
bool CAuthorizationCheck::BasicCheck()
{
    const std::size_t found = m_request.find(BASIC_VALUE);
    if (found == std::string::npos)
        return false;
    const std::size_t start = found + strlen(BASIC_VALUE);
    const std::size_t end = m_request.find_first_of("\r\n", start);
    if (end == std::string::npos || end - start <= 1)
        return false;

    char credentials[128];
    CBase64Coder coder;
    coder.base64decone(m_request.substr(start, end - start - 1).c_str(), credentials, sizeof(credentials));
    char password[32] = "";
    sscanf(credentials, "%*[^:]:%31s", password);
    return m_password == password;
}
