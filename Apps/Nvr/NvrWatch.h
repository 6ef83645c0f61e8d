// NvrWatch.h: prints a line for each call of the library about a camera's motion and alarm inputs.
//
// The main thread adds cameras and looks after them; the library's check thread calls.
#pragma once

#include "AlarmStateObserver.h"
#include "NvrCameras.h"

#include <iosfwd>
#include <map>
#include <mutex>
#include <set>
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

    /// Looks whether the next camera in turn can be connected to. One that cannot is logged out, since it forgets who
    /// has subscribed; when it is back, or came too late for Add, it is logged in. One that refuses the login is asked
    /// again only when it was away: cameras lock out who tries too often.
    /// @return what has changed, for a person to read; empty when nothing has
    std::string CheckNext();
    /// How many cameras CheckNext goes round.
    std::size_t Cameras() const { return m_cameras.size(); }

    void OnMotionState(unsigned int token, bool state) override;
    void OnAlarmInState(unsigned int token, unsigned int index, bool state) override;

private:
    enum class State
    {
        Watched,
        Away,
        Refused, ///< it answers, but not to this login
    };
    struct Camera
    {
        NvrCamera camera;
        std::string address;
        State state;
        unsigned int token; ///< of a watched one
    };

    unsigned int LogIn(Camera& camera);
    void LogOut(const Camera& camera);
    void Forget(unsigned int token);
    void Print(unsigned int token, const std::string& event, bool state);

    std::vector<Camera> m_cameras; ///< main thread only
    std::size_t m_next = 0;        ///< for CheckNext

    std::mutex m_mutex; ///< for all that follows
    std::ostream& m_out;
    const bool m_isJson;
    std::map<unsigned int, std::string> m_names;             ///< by token
    std::map<unsigned int, std::set<std::string>> m_ongoing; ///< events that are on, by token
};

/// A line about an event. @param unixMs  milliseconds since 1970
std::string NvrEventLine(long long unixMs, const std::string& camera, const std::string& event, bool state,
                         bool isJson);
