// HttpDataPacket.h: cuts the bytes of a connection into HTTP messages.
//
// A small HTTP on purpose: header names count as they are spelled, and a message without "Content-Length:" ends with
// its header. Local to one worker.
#pragma once

#include <deque>
#include <string>

/// Bytes of one message in the making, with a zero byte behind them.
class _DATA_PACK_ // NOLINT(bugprone-reserved-identifier)
{
public:
    _DATA_PACK_() = default;
    ~_DATA_PACK_();
    _DATA_PACK_(const _DATA_PACK_&) = delete;
    _DATA_PACK_& operator=(const _DATA_PACK_&) = delete;

    /// @param pBuff  not null @param nLen  above 0
    void Append(const char* pBuff, int nLen);
    /// Replaces the contents. @param pSrc  not null @param nLen  above 0
    void StrCpy(const char* pSrc, int nLen);
    /// Removes the first bytes. @param nLen  at most Length()
    void DelFromHeader(int nLen);
    /// @param header  receives everything up to and including the first blank line
    /// @return its length, 0 when there is none in front of the first zero byte
    int GetHeader(std::string& header) const;
    /// GetHeader's result alone. What was searched once is not searched again when bytes are appended.
    int HeaderLength() const;
    int Length() const { return m_nLen; }

    /// Moves the first `nLen` bytes into `to`, which is empty.
    void MoveFromHeader(int nLen, _DATA_PACK_& to);

    char* m_pBuff = nullptr; ///< from new[]; null when empty
    int m_nLen = 0;

private:
    void Clear();

    int m_room = 0;                   // bytes of m_pBuff, doubled when they do not suffice
    mutable int m_headerLength = 0;   // once found
    mutable int m_searchedLength = 0; // bytes that hold no end of the header and no zero byte
};

class CHttpDataPacket
{
public:
    CHttpDataPacket() = default;
    ~CHttpDataPacket();
    CHttpDataPacket(const CHttpDataPacket&) = delete;
    CHttpDataPacket& operator=(const CHttpDataPacket&) = delete;

    /// Takes received bytes and cuts the messages that they complete. @param len  above 0
    void PushBack(const char* data, unsigned int len);

    /// Whether reading can end: nothing is left uncut, or a body is announced that is too large to wait for. True
    /// before any byte came, so ask after PushBack.
    bool IsComplete() const;

    /// Whether more came without an end of the header than any header may have. No message comes of it any more.
    bool IsHeaderTooLong() const;

    bool HasPendingPacket() const;
    /// Takes the oldest message; null when there is none. Give it back with ReleasePack.
    _DATA_PACK_* GetNextPendingPacket();
    /// Deletes a message and sets the pointer to null.
    static void ReleasePack(_DATA_PACK_*& pack);

private:
    // How the message at the front of m_pack ends, once its header is there.
    struct Announcement
    {
        bool known = false;
        bool hasBody = false; // "Content-Length:" stands in the header
        int headerLength = 0;
    };

    bool RecombinePacket();
    void ReadAnnouncement();
    void Cut(int length);

    std::deque<_DATA_PACK_*> m_pending; // owned
    _DATA_PACK_ m_pack;                 // bytes not yet cut
    unsigned int m_contentLength = 0;   // the last one seen; a negative one is a huge one
    Announcement m_front;
};
