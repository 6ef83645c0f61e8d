// DeviceAnswer.h: answers of devices in the prefixes of several makers, and the host's answer in short.
#pragma once

#include <string>
#include <utility>
#include <vector>

/// A maker's way of writing SOAP: the prefix of the envelope, and those of the services, each by ours.
struct Maker
{
    const char* name;
    std::vector<std::pair<std::string, std::string>> prefixes; ///< ours and the maker's, for all that differ
};

inline const std::vector<Maker>& Makers()
{
    static const std::vector<Maker> makers = {
        {"Ours", {}},
        {"Usual",
         {{"s", "SOAP-ENV"}, {"mdw", "trt"}, {"img", "timg"}, {"ptzw", "tptz"}, {"ana", "tan"}, {"dio", "tmd"}}},
        {"Unusual",
         {{"s", "env"},
          {"tds", "a"},
          {"tt", "b"},
          {"mdw", "c"},
          {"img", "d"},
          {"ptzw", "e"},
          {"ana", "f"},
          {"dio", "g"}}},
    };
    return makers;
}

inline std::string WithPrefix(std::string text, const std::string& ours, const std::string& theirs)
{
    for (const std::string begin : {"<", "</", "xmlns:"})
    {
        const std::string end = begin == "xmlns:" ? "=" : ":";
        const std::string from = begin + ours + end;
        const std::string to = begin + theirs + end;
        for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        {
            text.replace(at, from.size(), to);
        }
    }
    return text;
}

/// A document with what stands in its body, written with our prefixes.
inline std::string DeviceAnswer(const std::string& body, const Maker& maker = Makers().front())
{
    std::string text =
        "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
        "<s:Envelope xmlns:s=\"http://www.w3.org/2003/05/soap-envelope\" "
        "xmlns:tds=\"http://www.onvif.org/ver10/device/wsdl\" xmlns:tt=\"http://www.onvif.org/ver10/schema\" "
        "xmlns:mdw=\"http://www.onvif.org/ver10/media/wsdl\" xmlns:img=\"http://www.onvif.org/ver20/imaging/wsdl\" "
        "xmlns:ptzw=\"http://www.onvif.org/ver20/ptz/wsdl\" xmlns:ana=\"http://www.onvif.org/ver20/analytics/wsdl\" "
        "xmlns:dio=\"http://www.onvif.org/ver10/deviceIO/wsdl\"><s:Header/><s:Body>" +
        body + "</s:Body></s:Envelope>";
    for (const auto& [ours, theirs] : maker.prefixes)
    {
        text = WithPrefix(text, ours, theirs);
    }
    return text;
}

/// A fault that blames an argument, which these transforms do not tell apart from any other.
inline std::string DeviceFault(const Maker& maker = Makers().front())
{
    return DeviceAnswer("<s:Fault><s:Code><s:Value>s:Sender</s:Value><s:Subcode>"
                        "<s:Value>ter:InvalidArgVal</s:Value></s:Subcode></s:Code><s:Reason><s:Text>No way</s:Text>"
                        "</s:Reason></s:Fault>",
                        maker);
}

/// A host's answer without its declaration and the blanks between its elements.
inline std::string InShort(const std::string& answer)
{
    std::string text;
    bool between = false;
    for (const char c : answer.substr(answer.find("?>") == std::string::npos ? 0 : answer.find("?>") + 2))
    {
        between = c == '\n' || (between && c == ' ');
        text += between ? "" : std::string(1, c);
    }
    return text;
}

/// What all transforms tell of DeviceFault.
inline const char* const FAULT_STATUS =
    "<status>fail<errorCode>5</errorCode><description>No way</description></status>";
