// QlxApiPtz.h: what the commands of the camera's head share.
//
// A device that cannot do both, a built-in head and one over RS485, refuses all of them. A command that takes a body
// leaves a request without one unanswered, also where nothing is read from it. The bodies' paths do not begin with
// "config", so clients may leave that element out. HTTP workers; nothing here has a state.
#pragma once

#include "QlxApiCall.h"

enum QLX_PTZ_ID_NEED
{
    QLX_PTZ_ID_READ,     ///< a missing one is 0
    QLX_PTZ_ID_REQUIRED, ///< a missing one is refused
};
using QLX_PTZ_ID_OPERATION = NETNS::DEV_RET (CDevInterface::*)(const char* verify, unsigned int chn, int index);

/// Whether the device serves these commands; answers error 1 when it does not.
bool PtzIsOpen(CQLXApiProc& proc, CQlxApiCall& call);
/// The same for a command that takes a body; without one the reply stays empty.
bool PtzIsOpenWithBody(CQLXApiProc& proc, CQlxApiCall& call);

/// Commands that do one thing with the preset or cruise of an id. @return what the command returns
int PtzRunById(CQLXApiProc& proc, CDevInterface& dev, CQlxApiCall& call, const char* path, QLX_PTZ_ID_NEED need,
               QLX_PTZ_ID_OPERATION operation);

/// A list that says how many items the device can store. @return its item
unsigned int AddPtzStore(CQLXXMLParse& document, unsigned int parent, const char* name, unsigned int maxCount);
/// Says that an element holds a text, and how long it may be.
void DescribePtzText(CQLXXMLParse& document, unsigned int item, unsigned int maxLen);

const unsigned int PTZ_PRESET_NAME_LEN = 11;

/// A document of such a list with its named items.
template <typename ROW>
void AddPtzNames(CQLXXMLParse& document, const char* name, unsigned int maxCount, unsigned int maxLen, const ROW* rows,
                 int count)
{
    const unsigned int list = AddPtzStore(document, AddConfigRoot(document), name, maxCount);
    DescribePtzText(document, AddEmpty(document, list, "itemType"), maxLen);
    for (int i = 0; i < count; ++i)
    {
        const unsigned int item = document.AddElement(list, "item", QlxApiTextOf(rows[i].name), true);
        document.SetAttribute(item, "id", static_cast<unsigned int>(rows[i].id));
    }
}
