// DevSearchBase.h: what a search for devices on the network shares, whatever protocol it speaks.
//
// No search is in service: the exported search functions answer without one. A concrete search derives from this,
// implements the eight operations, and calls the host with results built on InitSearchResultXML. The host's thread
// calls; a concrete search's threads guard their results with the lock.
#pragma once

#include "Interlocked.h"
#include "Lock.h"

#include <atomic>

class CQLXXMLParse;

class CDevSearchBase
{
public:
    /// Receives results. @param text  the document, of `length` bytes @param user  as given to Initial
    using SearchCallback = void (*)(char* text, int length, const char* source, void* user);

    virtual ~CDevSearchBase() = default;

    /// @param user  handed to the callback; borrowed until Quit. @return 1
    int Initial(SearchCallback callback, void* user);

    /// Searches once, unless the automatic search is on.
    void Search_Manual();

    /// Searches again and again. A second start, or one without a callback, ends the process.
    /// @param interval  kept for the concrete search
    void Search_StartAuto(int interval);
    void Search_StopAuto();

    /// Ends what runs; no result comes any more.
    void Quit();

    /// Adds the skeleton of a result to a document.
    static void InitSearchResultXML(CQLXXMLParse& document);

protected:
    CDevSearchBase();

    // A concrete search's operations, known by their place alone.
    virtual void Op1() = 0;
    virtual void Op2() = 0;
    virtual void Op3() = 0;
    virtual void Op4() = 0;
    virtual void Op5() = 0; ///< ends an automatic search
    virtual void Op6() = 0;
    virtual void Op7() = 0;
    virtual void Op8() = 0; ///< begins a search anew; also called at the end

    SearchCallback m_callback = nullptr;
    void* m_user = nullptr;
    int m_interval = 0;
    int m_counter = 0;
    Interlocked m_searches;
    CLock m_resultLock; ///< for a concrete search's results
    std::atomic<bool> m_isAutomatic{false};
};
