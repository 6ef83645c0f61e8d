#include "CameraUsers.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace
{

/// Walks over a text that must consist of given pieces.
class CPieces
{
public:
    explicit CPieces(const char* text) : m_at(text) {}

    CPieces& Take(const std::string& piece)
    {
        if (m_at != nullptr)
        {
            m_at = std::strncmp(m_at, piece.c_str(), piece.size()) == 0 ? m_at + piece.size() : nullptr;
        }
        return *this;
    }

    CPieces& SkipBlanks()
    {
        m_at = m_at == nullptr ? nullptr : m_at + std::strspn(m_at, " \t\r\n");
        return *this;
    }

    CPieces& SkipAddress()
    {
        m_at = m_at == nullptr ? nullptr : m_at + std::strspn(m_at, "0123456789abcdefABCDEF.:");
        return *this;
    }

    bool IsAtEnd() const { return m_at != nullptr && *m_at == '\0'; }

private:
    const char* m_at; // null once a piece was not there
};

bool NamesUser(const char* verify, const CameraUser& user)
{
    return CPieces(verify)
        .Take("<?xml version=\"1.0\" encoding=\"UTF-8\"?>")
        .SkipBlanks()
        .Take("<userinfo>")
        .SkipBlanks()
        .Take("<username>" + user.name + "</username>")
        .SkipBlanks()
        .Take("<password>" + user.password + "</password>")
        .SkipBlanks()
        .Take("<ip>")
        .SkipAddress()
        .Take("</ip>")
        .SkipBlanks()
        .Take("</userinfo>")
        .SkipBlanks()
        .IsAtEnd();
}

} // namespace

CCameraUsers::CCameraUsers(std::vector<CameraUser> users) : m_users(std::move(users)) {}

std::vector<CameraUser> CCameraUsers::List() const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_users;
}

bool CCameraUsers::IsKnown(const char* verify) const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    return Find(verify) < m_users.size();
}

std::string CCameraUsers::NameOf(const char* verify) const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    const std::size_t index = Find(verify);
    return index < m_users.size() ? m_users[index].name : std::string();
}

bool CCameraUsers::IsKnown(const std::string& name, const std::string& password) const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    return std::any_of(m_users.begin(), m_users.end(),
                       [&](const CameraUser& user) { return user.name == name && user.password == password; });
}

void CCameraUsers::Replace(std::vector<CameraUser> users)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    m_users = std::move(users);
}

std::size_t CCameraUsers::Find(const char* verify) const
{
    std::size_t index = 0;
    while (index < m_users.size() && (verify == nullptr || !NamesUser(verify, m_users[index])))
    {
        ++index;
    }
    return index;
}
