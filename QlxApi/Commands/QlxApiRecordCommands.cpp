// Commands that find what the device has recorded, the step in front of its playback over RTSP.
#include "QlxApiProtocolProc.h"

#include "QlxApiCall.h"
#include "ShareSDK.h"

#include <algorithm>
#include <cstdio>

namespace
{

const int ROWS_MAX = 256;

/// How many rows of a table the host filled; a host that reports more than there is room for is logged.
unsigned int RowsOf(int count, const char* warning)
{
    if (count > ROWS_MAX)
    {
        SHARESDK_NormalOutput(warning, __FILE__, __LINE__);
    }
    return static_cast<unsigned int>(std::clamp(count, 0, ROWS_MAX));
}

// Without leading zeros.
std::string DateText(const NETNS::DEV_DATE& date)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%hu-%hu-%hu", date.year, date.month, date.day);
    return text;
}

void TakeTime(const CQLXXMLParse& body, const char* path, NETNS::DEV_DATETIME& time)
{
    std::string text;
    if (body.GetValueStr(path, text))
    {
        CQLXApiProc::str2Datetime(text, time);
    }
}

} // namespace

// The days of the whole device: the channel plays no part.
int CQLXApiProc::SearchRecordDate(const std::string& ip, const CHttpProtocolAnalyse& request,
                                  CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    NETNS::DEV_DATE dates[ROWS_MAX] = {};
    int found = 0;
    const NETNS::DEV_RET result = m_dev->SearchRecordDate(call.Verify(), dates, ROWS_MAX, found);
    const unsigned int count = RowsOf(found, " search list size is small!");
    if (!call.Succeeded(result))
    {
        return -1;
    }
    CQLXXMLParse document;
    const unsigned int list = AddList(document, AddConfigRoot(document), "dateList", count);
    for (unsigned int i = 0; i < count; ++i)
    {
        document.AddElement(list, "item", DateText(dates[i]), false);
    }
    return call.Answer(document);
}

int CQLXApiProc::SearchByTime(const std::string& ip, const CHttpProtocolAnalyse& request,
                              CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!call.RequireBody())
    {
        return -1;
    }
    NETNS::DEV_DATETIME start = {};
    NETNS::DEV_DATETIME end = {};
    TakeTime(call.Body(), "config/search/starttime", start);
    TakeTime(call.Body(), "config/search/endtime", end);
    NETNS::DEV_RECORD_INFO sections[ROWS_MAX] = {};
    int found = 0;
    const int channel = static_cast<int>(call.Channel() - 1); // the host's search counts channels from 0
    const NETNS::DEV_RET result = m_dev->SearchRecord(call.Verify(), &start, &end, channel, sections, ROWS_MAX, found);
    const unsigned int count = RowsOf(found, " chn size is small!");
    if (!call.Succeeded(result))
    {
        return -1;
    }
    CQLXXMLParse document;
    const unsigned int list = AddList(document, AddConfigRoot(document), "timesectionList", count);
    for (unsigned int i = 0; i < count; ++i)
    {
        std::string text;
        Datetime2str(sections[i].start, text);
        const unsigned int item = AddEmpty(document, list, "item");
        document.SetAttribute(document.AddElement(item, "starttime", text, true), "type", std::string("string"));
        document.SetAttribute(document.AddValue(item, "seconds", sections[i].lengthSeconds), "type",
                              std::string("uint32"));
    }
    return call.Answer(document);
}
