// FakeStreamCtrl.h: a host's stream interface that notes what it is asked. Scheduler thread, or the test's own.
#pragma once

#include "StreamCtrl.h"

#include <mutex>
#include <string>
#include <vector>

class FakeStreamCtrl : public CStreamCtrl
{
public:
    /// The calls so far, each as one line.
    std::vector<std::string> Calls() const
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        return m_calls;
    }
    std::string LastUserText() const
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        return m_userText;
    }
    std::string Speech() const
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        return m_speech;
    }

    unsigned int OpenLiveStream(const char* userInfoXml, unsigned int chn, int stream, unsigned int& out) override
    {
        Note(userInfoXml,
             "OpenLiveStream " + std::to_string(chn) + " " + std::to_string(stream) + " " + std::to_string(out));
        return 700;
    }
    int StreamReserved() override { return 0; }
    void CloseLiveStream(unsigned int handle) override { Note("CloseLiveStream " + std::to_string(handle)); }
    unsigned int OpenRecStream(const char* userInfoXml, unsigned int chn, const NETNS::DEV_DATE& date,
                               const NETNS::DEV_TIME& time, unsigned int timeLen, unsigned int& out) override
    {
        Note(userInfoXml, "OpenRecStream " + std::to_string(chn) + " " + std::to_string(date.year) + "-" +
                              std::to_string(date.month) + "-" + std::to_string(date.day) + " " +
                              std::to_string(time.hour) + ":" + std::to_string(time.minute) + ":" +
                              std::to_string(time.second) + " " + std::to_string(timeLen) + " " + std::to_string(out));
        return 55;
    }
    void ClosePlayStream(unsigned int handle) override { Note("ClosePlayStream " + std::to_string(handle)); }
    unsigned int OpenTalkBackStream(const char* userInfoXml) override
    {
        Note(userInfoXml, "OpenTalkBackStream");
        return 77;
    }
    void CloseTalkBackStream(unsigned int handle) override { Note("CloseTalkBackStream " + std::to_string(handle)); }
    int TalkBackStreamInput(unsigned char* data, int len, int encodeType) override
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        m_calls.push_back("TalkBackStreamInput " + std::to_string(len) + " " + std::to_string(encodeType));
        m_speech.append(reinterpret_cast<const char*>(data), static_cast<std::size_t>(len));
        return 0;
    }

private:
    void Note(const std::string& call)
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        m_calls.push_back(call);
    }
    void Note(const char* userInfoXml, const std::string& call)
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        m_userText = userInfoXml;
        m_calls.push_back(call);
    }

    mutable std::mutex m_lock;
    std::vector<std::string> m_calls;
    std::string m_userText;
    std::string m_speech;
};
