#include "HttpDataPacket.h"

#include "Limits.h"
#include "PFAssert.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

namespace
{

const char HEADER_END[] = "\r\n\r\n";
const int HEADER_END_LENGTH = 4;
const std::string_view CONTENT_LENGTH = "Content-Length:";
const int LEAST_ROOM = 512;

// A number at the start of the text, clamped to the range of int; 0 when there is none.
int NumberOf(const std::string& text)
{
    const long number = std::strtol(text.c_str(), nullptr, 10);
    return static_cast<int>(std::clamp<long>(number, INT_MIN, INT_MAX));
}

} // namespace

_DATA_PACK_::~_DATA_PACK_()
{
    delete[] m_pBuff;
}

void _DATA_PACK_::Clear()
{
    delete[] m_pBuff;
    m_pBuff = nullptr;
    m_nLen = 0;
    m_room = 0;
    m_headerLength = 0;
    m_searchedLength = 0;
}

void _DATA_PACK_::Append(const char* pBuff, int nLen)
{
    PF_ASSERT(pBuff != nullptr && nLen > 0);
    PF_ASSERT(nLen < INT_MAX - m_nLen);
    const int needed = m_nLen + nLen + 1;
    if (needed > m_room)
    {
        const int doubled = m_room > INT_MAX / 2 ? INT_MAX : m_room * 2;
        const int room = std::max({needed, doubled, LEAST_ROOM});
        std::unique_ptr<char[]> grown(new char[static_cast<size_t>(room)]);
        if (m_nLen > 0)
        {
            std::memcpy(grown.get(), m_pBuff, static_cast<size_t>(m_nLen));
        }
        delete[] m_pBuff;
        m_pBuff = grown.release();
        m_room = room;
    }
    std::memcpy(m_pBuff + m_nLen, pBuff, static_cast<size_t>(nLen));
    m_nLen += nLen;
    m_pBuff[m_nLen] = '\0';
}

void _DATA_PACK_::StrCpy(const char* pSrc, int nLen)
{
    PF_ASSERT(pSrc != nullptr && nLen > 0);
    Clear();
    Append(pSrc, nLen);
}

void _DATA_PACK_::DelFromHeader(int nLen)
{
    PF_ASSERT(nLen <= m_nLen && m_pBuff != nullptr);
    const int left = m_nLen - nLen;
    if (left == 0)
    {
        Clear();
        return;
    }
    std::memmove(m_pBuff, m_pBuff + nLen, static_cast<size_t>(left) + 1);
    m_nLen = left;
    m_headerLength = 0;
    m_searchedLength = 0;
}

void _DATA_PACK_::MoveFromHeader(int nLen, _DATA_PACK_& to)
{
    if (nLen < m_nLen)
    {
        to.StrCpy(m_pBuff, nLen);
        DelFromHeader(nLen);
        return;
    }
    std::swap(m_pBuff, to.m_pBuff);
    std::swap(m_nLen, to.m_nLen);
    std::swap(m_room, to.m_room);
    Clear();
}

int _DATA_PACK_::GetHeader(std::string& header) const
{
    const int length = HeaderLength();
    if (length > 0)
    {
        header.assign(m_pBuff, static_cast<size_t>(length));
    }
    return length;
}

int _DATA_PACK_::HeaderLength() const
{
    if (m_headerLength > 0 || m_pBuff == nullptr)
    {
        return m_headerLength;
    }
    // The blank line may have begun within what was searched before.
    const char* const from = m_pBuff + std::max(0, m_searchedLength - (HEADER_END_LENGTH - 1));
    const char* const end = std::strstr(from, HEADER_END);
    if (end != nullptr)
    {
        m_headerLength = static_cast<int>(end - m_pBuff) + HEADER_END_LENGTH;
        return m_headerLength;
    }
    m_searchedLength = static_cast<int>(from - m_pBuff) + static_cast<int>(std::strlen(from));
    return 0;
}

CHttpDataPacket::~CHttpDataPacket()
{
    for (_DATA_PACK_* pack : m_pending)
    {
        delete pack;
    }
}

void CHttpDataPacket::PushBack(const char* data, unsigned int len)
{
    if (IsHeaderTooLong())
    {
        return;
    }
    PF_ASSERT(len <= INT_MAX);
    m_pack.Append(data, static_cast<int>(len));
    while (RecombinePacket() && m_pack.Length() > 0)
    {
    }
}

// @return whether a message was cut and there may be another
bool CHttpDataPacket::RecombinePacket()
{
    if (!m_front.known)
    {
        ReadAnnouncement();
    }
    if (!m_front.known)
    {
        return false;
    }
    if (!m_front.hasBody)
    {
        Cut(m_front.headerLength);
        return m_pack.Length() > 0;
    }
    const unsigned int available = static_cast<unsigned int>(m_pack.Length() - m_front.headerLength);
    if (m_contentLength > LIMIT_HTTP_MESSAGE_BYTES)
    {
        Cut(m_pack.Length()); // too large to wait for: handled with what has come
        return true;
    }
    if (m_contentLength > available)
    {
        return false;
    }
    Cut(m_front.headerLength + static_cast<int>(m_contentLength));
    return true;
}

void CHttpDataPacket::ReadAnnouncement()
{
    const int headerLength = m_pack.HeaderLength();
    if (headerLength == 0)
    {
        return;
    }
    m_front.known = true;
    m_front.headerLength = headerLength;
    const std::string_view header(m_pack.m_pBuff, static_cast<size_t>(headerLength));
    const size_t found = header.find(CONTENT_LENGTH);
    m_front.hasBody = found != std::string_view::npos;
    if (m_front.hasBody)
    {
        const size_t begin = found + CONTENT_LENGTH.size();
        const size_t end = header.find("\r\n", begin); // there is one: the header ends in two
        m_contentLength = static_cast<unsigned int>(NumberOf(std::string(header.substr(begin, end - begin))));
    }
}

void CHttpDataPacket::Cut(int length)
{
    m_pending.push_back(new _DATA_PACK_);
    m_pack.MoveFromHeader(length, *m_pending.back());
    m_front = Announcement();
}

bool CHttpDataPacket::IsComplete() const
{
    return m_contentLength > LIMIT_HTTP_MESSAGE_BYTES || m_pack.Length() == 0;
}

bool CHttpDataPacket::IsHeaderTooLong() const
{
    return !m_front.known && static_cast<size_t>(m_pack.Length()) > LIMIT_HTTP_MESSAGE_BYTES;
}

bool CHttpDataPacket::HasPendingPacket() const
{
    return !m_pending.empty();
}

_DATA_PACK_* CHttpDataPacket::GetNextPendingPacket()
{
    if (m_pending.empty())
    {
        return nullptr;
    }
    _DATA_PACK_* const pack = m_pending.front();
    m_pending.pop_front();
    return pack;
}

void CHttpDataPacket::ReleasePack(_DATA_PACK_*& pack)
{
    delete pack;
    pack = nullptr;
}
