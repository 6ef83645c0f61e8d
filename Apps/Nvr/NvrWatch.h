// NvrWatch.h: prints a line for each call of the library about a camera's motion and alarm inputs.
//
// The main thread adds cameras; the library's check thread calls.
#pragma once

#include "AlarmStateObserver.h"
#include "NvrCameras.h"

#include <iosfwd>
#include <map>
#include <mutex>
#include <string>
#include <vector>

class CNvrWatch : public CONVIFAlarmStateObserver
{
public:
    /// @param isJson  one JSON object a line instead of words
    CNvrWatch(std::ostream& out, bool isJson);
    /// Ends watching and the logins.
    ~CNvrWatch() override;
    CNvrWatch(const CNvrWatch&) = delete;
    CNvrWatch& operator=(const CNvrWatch&) = delete;

    /// Logs in and begins to watch. @param address  dotted text. @return 0, or the library's result code
    unsigned int Add(const NvrCamera& camera, const std::string& address);

    void OnMotionState(unsigned int token, bool state) override;
    void OnAlarmInState(unsigned int token, unsigned int index, bool state) override;

private:
    void Print(unsigned int token, const char* event, bool state);

    std::mutex m_mutex; ///< for all that follows
    std::ostream& m_out;
    const bool m_isJson;
    std::map<unsigned int, std::string> m_names; ///< by token
};

/// A line about an event. @param unixMs  milliseconds since 1970
std::string NvrEventLine(long long unixMs, const std::string& camera, const std::string& event, bool state,
                         bool isJson);
