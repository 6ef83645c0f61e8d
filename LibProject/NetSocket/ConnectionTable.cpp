// ConnectionTable.cpp: handles and the connections behind them.
#include "ConnectionTable.h"

#include <utility>

namespace
{

constexpr unsigned int NO_SLOT = CConnectionTable::SLOTS;

/// Generations run from 1 to this, so that no handle is 0.
constexpr unsigned int GENERATION_MAX = (1u << (31 - CConnectionTable::SLOT_BITS)) - 1;

} // namespace

CConnectionTable::CConnectionTable() : m_slots(SLOTS), m_lastFree(SLOTS - 1)
{
    for (unsigned int i = 0; i < SLOTS; ++i)
    {
        m_slots[i].nextFree = i + 1;
    }
}

int CConnectionTable::Insert(const std::shared_ptr<CConnection>& connection)
{
    std::lock_guard<std::mutex> lock(m_lock);
    if (m_firstFree == NO_SLOT)
    {
        return 0;
    }
    const unsigned int index = m_firstFree;
    Slot& slot = m_slots[index];
    m_firstFree = slot.nextFree;
    slot.generation = slot.generation == GENERATION_MAX ? 1 : slot.generation + 1;
    slot.connection = connection;
    const int handle = static_cast<int>(slot.generation << SLOT_BITS | index);
    connection->SetHandle(handle);
    return handle;
}

CConnectionTable::Slot* CConnectionTable::FindSlot(int handle)
{
    if (handle <= 0)
    {
        return nullptr;
    }
    const auto number = static_cast<unsigned int>(handle);
    Slot& slot = m_slots[number % SLOTS];
    return slot.connection != nullptr && slot.generation == number >> SLOT_BITS ? &slot : nullptr;
}

std::shared_ptr<CConnection> CConnectionTable::Find(int handle)
{
    std::lock_guard<std::mutex> lock(m_lock);
    const Slot* slot = FindSlot(handle);
    return slot != nullptr ? slot->connection : nullptr;
}

std::shared_ptr<CConnection> CConnectionTable::Empty(Slot& slot)
{
    const auto index = static_cast<unsigned int>(&slot - m_slots.data());
    slot.nextFree = NO_SLOT;
    if (m_firstFree == NO_SLOT)
    {
        m_firstFree = index;
    }
    else
    {
        m_slots[m_lastFree].nextFree = index;
    }
    m_lastFree = index;
    return std::move(slot.connection);
}

std::shared_ptr<CConnection> CConnectionTable::Take(int handle)
{
    std::lock_guard<std::mutex> lock(m_lock);
    Slot* slot = FindSlot(handle);
    return slot != nullptr ? Empty(*slot) : nullptr;
}

std::vector<std::shared_ptr<CConnection>> CConnectionTable::TakeAll()
{
    std::vector<std::shared_ptr<CConnection>> taken;
    std::lock_guard<std::mutex> lock(m_lock);
    for (Slot& slot : m_slots)
    {
        if (slot.connection != nullptr)
        {
            taken.push_back(Empty(slot));
        }
    }
    return taken;
}
