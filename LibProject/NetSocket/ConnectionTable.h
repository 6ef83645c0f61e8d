// ConnectionTable.h: handles and the connections behind them. Any thread.
//
// A handle is a slot's number and its generation, 31 bits in all. Slots are used in turn, and a slot's generation grows
// with each use: a handle comes again only after its slot has been used 524287 times.
#pragma once

#include "Connection.h"

#include <memory>
#include <mutex>
#include <vector>

class CConnectionTable
{
public:
    static constexpr int SLOT_BITS = 12;
    static constexpr unsigned int SLOTS = 1u << SLOT_BITS;

    CConnectionTable();

    /// @return the connection's handle, 0 when every slot is taken
    int Insert(const std::shared_ptr<CConnection>& connection);
    /// @return null for a handle that is unknown or stale
    std::shared_ptr<CConnection> Find(int handle);
    /// Find, and the handle is stale from now on.
    std::shared_ptr<CConnection> Take(int handle);
    std::vector<std::shared_ptr<CConnection>> TakeAll();

private:
    struct Slot
    {
        std::shared_ptr<CConnection> connection;
        unsigned int generation = 0;
        unsigned int nextFree = 0;
    };

    Slot* FindSlot(int handle);
    std::shared_ptr<CConnection> Empty(Slot& slot);

    std::mutex m_lock;
    std::vector<Slot> m_slots;
    unsigned int m_firstFree = 0; // the slot that has been free for longest; NO_SLOT when none is
    unsigned int m_lastFree = 0;
};
