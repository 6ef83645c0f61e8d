#include "SearchRecvMsg.h"

#include "ShareSDK.h"

#include <algorithm>
#include <iterator>

CSearchRecvMsg* CSearchRecvMsg::s_instance = nullptr;

int CSearchRecvMsg::Initial(CDeviceSearch* search)
{
    m_search = search;
    s_instance = this;
    std::fill(std::begin(m_threads), std::end(m_threads), 0u);
    m_threadCount = 0;
    return 1;
}

void CSearchRecvMsg::Quit()
{
    EndThreads();
}

void CSearchRecvMsg::ResetThread()
{
    EndThreads();
    m_threadCount = 0;
}

void CSearchRecvMsg::EndThreads()
{
    for (int i = 0; i < m_threadCount; ++i)
    {
        SHARESDK_DestroyThread(m_threads[i], __FILE__, __LINE__);
        m_threads[i] = 0;
    }
    m_search = nullptr;
}

void CSearchRecvMsg::RecvThread(void* /*receiver*/) {}

void CSearchRecvMsg::StartRecvMessage() {}

void CSearchRecvMsg::RecvMessage() {}
