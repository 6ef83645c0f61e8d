// Policy.h: which standard behaviours the host has switched on in place of what clients in the field lean on.
//
// A small value: a connection takes a copy of the current policy when it begins and asks that copy by name, so that a
// change takes effect for connections made afterwards. Any thread.
#pragma once

class CPolicy
{
public:
    /// @param bits  a union of NET_POLICY_...; unknown bits are kept and ask for nothing
    explicit CPolicy(unsigned int bits = 0);

    /// The policy that connections made from now on shall have.
    static CPolicy Current();
    static void SetCurrent(CPolicy policy);

    unsigned int Bits() const;

    /// Method words are compared whole, a live audio track's RTP clock is its sample rate, and a frame list that
    /// refuses a frame does not keep it from the lists behind.
    bool StandardRtsp() const;

    /// The device stays silent: it is not announced over UPnP, and no port serves a description.
    bool NoAnnounce() const;

private:
    unsigned int m_bits;
};
