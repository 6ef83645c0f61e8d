// CameraUsers.h: who may use the camera, and the judgement of the text that the library hands over for a user.
//
// Any thread: HTTP workers and the RTSP scheduler ask at the same time.
#pragma once

#include "CameraOptions.h"

#include <mutex>
#include <string>
#include <vector>

class CCameraUsers
{
public:
    explicit CCameraUsers(std::vector<CameraUser> users);

    std::vector<CameraUser> List() const;

    /// Whether `verify` names a user of this camera and that user's password.
    ///
    /// The text is the library's, around a name and a password as some client sent them: any byte but zero, also "<".
    /// So it is not parsed. It is compared as a whole with what it must be for each user in turn, and nobody can write
    /// that without knowing the password.
    bool IsKnown(const char* verify) const;

    /// The name of the user in `verify`; empty when it names none of them with the right password.
    std::string NameOf(const char* verify) const;

    /// Whether there is such a user with this password.
    bool IsKnown(const std::string& name, const std::string& password) const;

    /// Takes effect with the next question.
    void Replace(std::vector<CameraUser> users);

private:
    std::size_t Find(const char* verify) const; // index of the user; m_users.size() for none; m_lock is held

    mutable std::mutex m_lock;
    std::vector<CameraUser> m_users;
};
