// NvrSession.h: one login to one camera, through the exported functions of the library.
//
// One thread.
#pragma once

#include "NvrOptions.h"

#include <string>

class CNvrSession
{
public:
    CNvrSession();
    ~CNvrSession();
    CNvrSession(const CNvrSession&) = delete;
    CNvrSession& operator=(const CNvrSession&) = delete;

    /// @param address  dotted text
    /// @return 0, or the library's result code
    unsigned int Login(const NvrOptions& options, const std::string& address);

    /// @param request  a document whose keys the library knows
    /// @param answer   receives the answer document, or the bytes of a picture; empty when there is none
    /// @return what the library returned
    bool Get(const std::string& request, std::string& answer) const;
    bool Set(const std::string& request, std::string& answer) const;

    /// How many profiles with a video encoder the camera has; asks nobody.
    int CountProfiles() const;

private:
    unsigned int m_token;
};

/// Result code of a login that the camera did not answer.
constexpr unsigned int LOGIN_NO_ANSWER = 4;

/// Result codes of a login in words, and what to do about it.
std::string DescribeLoginError(unsigned int error);

/// The camera's address as dotted text. @return empty for a name that is not known
std::string ResolveHost(const std::string& host);
