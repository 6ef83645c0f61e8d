#include "DevSearchBase.h"

#include "QLXXMLParse.h"
#include "SearchListener.h"
#include "SearchRecvMsg.h"

#include <string>

#include <gtest/gtest.h>

namespace
{

void OnResult(char*, int, const char*, void*) {}

/// Notes the operations by their number.
class CNotingSearch : public CDevSearchBase
{
public:
    std::string called;

    bool HasCallback() const { return m_callback != nullptr; }
    void* User() const { return m_user; }
    bool IsAutomatic() const { return m_isAutomatic; }
    int Interval() const { return m_interval; }
    int Searches() const { return m_searches; }
    int Counter() const { return m_counter; }
    void Count()
    {
        m_searches.Increment();
        ++m_counter;
    }

private:
    void Op1() override { called += '1'; }
    void Op2() override { called += '2'; }
    void Op3() override { called += '3'; }
    void Op4() override { called += '4'; }
    void Op5() override { called += '5'; }
    void Op6() override { called += '6'; }
    void Op7() override { called += '7'; }
    void Op8() override { called += '8'; }
};

TEST(DevSearchBase, ManualSearchCallsTheEighthOperation)
{
    CNotingSearch search;
    EXPECT_EQ(1, search.Initial(OnResult, &search));
    EXPECT_TRUE(search.HasCallback());
    EXPECT_EQ(&search, search.User());
    search.Search_Manual();
    EXPECT_EQ("8", search.called);
}

TEST(DevSearchBase, ManualSearchDoesNothingWhileTheAutomaticOneIsOn)
{
    CNotingSearch search;
    search.Initial(OnResult, nullptr);
    search.Search_StartAuto(30);
    EXPECT_EQ("8", search.called);
    EXPECT_TRUE(search.IsAutomatic());
    EXPECT_EQ(30, search.Interval());
    EXPECT_EQ(0, search.Searches());
    search.Search_Manual();
    EXPECT_EQ("8", search.called);
    search.Search_StopAuto();
    EXPECT_FALSE(search.IsAutomatic());
    search.Search_Manual();
    EXPECT_EQ("88", search.called);
}

TEST(DevSearchBase, AutomaticSearchBeginsToCountAnew)
{
    CNotingSearch search;
    search.Initial(OnResult, nullptr);
    EXPECT_EQ(0, search.Counter());
    search.Count();
    search.Search_StartAuto(30);
    EXPECT_EQ(0, search.Counter());
    EXPECT_EQ(0, search.Searches());
}

TEST(DevSearchBase, QuitEndsAnAutomaticSearchFirst)
{
    CNotingSearch search;
    search.Initial(OnResult, nullptr);
    search.Search_StartAuto(30);
    search.Quit();
    EXPECT_EQ("858", search.called);
    EXPECT_FALSE(search.HasCallback());
}

TEST(DevSearchBase, QuitOfAnIdleSearchCallsTheEighthOperationAlone)
{
    CNotingSearch search;
    search.Initial(OnResult, nullptr);
    search.Quit();
    EXPECT_EQ("8", search.called);
}

TEST(DevSearchBaseDeathTest, SecondAutomaticStartEndsTheProcess)
{
    CNotingSearch search;
    search.Initial(OnResult, nullptr);
    search.Search_StartAuto(30);
    EXPECT_DEATH(search.Search_StartAuto(30), "m_isAutomatic");
}

TEST(DevSearchBaseDeathTest, AutomaticStartWithoutACallbackEndsTheProcess)
{
    CNotingSearch search;
    EXPECT_DEATH(search.Search_StartAuto(30), "m_callback");
}

TEST(DevSearchBase, ResultSkeleton)
{
    CQLXXMLParse document;
    CDevSearchBase::InitSearchResultXML(document);
    EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<multicastSearchResult><types><productSeries>" // their empty texts keep these on one line
              "<enum>QLX_IPC</enum>\n"
              "            <enum>QLX_DVR</enum>\n"
              "            <enum>ONVIF</enum>\n"
              "            <enum>HK</enum>\n"
              "            <enum>DH</enum>\n"
              "        </productSeries>\n"
              "    </types>\n"
              "    <tcpIp>\n"
              "        <ipAddr type=\"list\"></ipAddr>\n"
              "    </tcpIp>\n"
              "    <port></port>\n"
              "    <productInfo></productInfo>\n"
              "</multicastSearchResult>\n",
              *document.GetDoc());
}

TEST(SearchRecvMsg, LastInitialisedOneIsTheCurrent)
{
    CSearchRecvMsg first;
    CSearchRecvMsg second;
    EXPECT_EQ(1, first.Initial(nullptr));
    EXPECT_EQ(&first, CSearchRecvMsg::Current());
    EXPECT_EQ(1, second.Initial(nullptr));
    EXPECT_EQ(&second, CSearchRecvMsg::Current());
    second.StartRecvMessage();
    second.RecvMessage();
    CSearchRecvMsg::RecvThread(&second);
    second.ResetThread();
    second.Quit();
}

TEST(SearchListener, ListensToNothing)
{
    CSearchListener listener;
    listener.Initial(nullptr, 0);
    CSearchListener::ProcListenThread(&listener); // returns at once
    listener.Destroy();
}

} // namespace
