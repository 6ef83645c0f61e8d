// NvrTrace.h: shows what camera and client say to each other: to a file, to standard output, and in short to the person
// who waits.
//
// One thread.
#pragma once

#include "OnvifTraceObserver.h"

#include <fstream>
#include <iosfwd>
#include <string>

class CNvrTrace : public CONVIFTraceObserver
{
public:
    /// @param messages  takes a line for each exchange that took long
    explicit CNvrTrace(std::ostream& messages) : m_messages(messages) {}

    /// Writes each exchange into a file from now on. @return false when it cannot be written
    bool OpenFile(const std::string& path);
    /// Writes each exchange to a stream too. @param out  null: no longer
    void ShowOn(std::ostream* out) { m_out = out; }

    void OnExchange(const ONVIF_TRACE& trace) override;

    /// What became of the last exchange, for a person to read.
    const std::string& LastOutcome() const { return m_lastOutcome; }

    /// The name of the operation in a request: "GetProfiles".
    static std::string OperationOf(const std::string& request);

private:
    std::ostream& m_messages;
    std::ostream* m_out = nullptr;
    std::ofstream m_file;
    std::string m_lastOutcome;
};
