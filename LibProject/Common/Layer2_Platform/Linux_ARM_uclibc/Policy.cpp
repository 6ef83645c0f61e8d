#include "Policy.h"

#include <atomic>

namespace
{

// NET_POLICY_... of the public header.
const unsigned int POLICY_BIT_STANDARD_RTSP = 1;
const unsigned int POLICY_BIT_NO_ANNOUNCE = 2;

std::atomic<unsigned int> s_currentBits{0};

} // namespace

CPolicy::CPolicy(unsigned int bits) : m_bits(bits) {}

CPolicy CPolicy::Current()
{
    return CPolicy(s_currentBits.load());
}

void CPolicy::SetCurrent(CPolicy policy)
{
    s_currentBits.store(policy.m_bits);
}

unsigned int CPolicy::Bits() const
{
    return m_bits;
}

bool CPolicy::StandardRtsp() const
{
    return (m_bits & POLICY_BIT_STANDARD_RTSP) != 0;
}

bool CPolicy::NoAnnounce() const
{
    return (m_bits & POLICY_BIT_NO_ANNOUNCE) != 0;
}
