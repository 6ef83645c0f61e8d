#include "QlxApiPtz.h"

bool PtzIsOpen(CQLXApiProc& proc, CQlxApiCall& call)
{
    if (!proc.SupportPtz())
    {
        call.Answer(QLX_API_ERR_NOT_SUPPORT);
        return false;
    }
    return true;
}

bool PtzIsOpenWithBody(CQLXApiProc& proc, CQlxApiCall& call)
{
    return PtzIsOpen(proc, call) && call.HasBody();
}

int PtzRunById(CQLXApiProc& proc, CDevInterface& dev, CQlxApiCall& call, const char* path, QLX_PTZ_ID_NEED need,
               QLX_PTZ_ID_OPERATION operation)
{
    if (!PtzIsOpenWithBody(proc, call))
    {
        return -1;
    }
    int id = 0;
    if (!call.Body().GetValue_i32(path, id) && need == QLX_PTZ_ID_REQUIRED)
    {
        return call.Refuse();
    }
    return call.Answer((dev.*operation)(call.Verify(), call.Channel(), id));
}

unsigned int AddPtzStore(CQLXXMLParse& document, unsigned int parent, const char* name, unsigned int maxCount)
{
    const unsigned int list = AddEmpty(document, parent, name);
    document.SetAttribute(list, "maxCount", maxCount);
    document.SetAttribute(list, "type", std::string("list"));
    return list;
}

void DescribePtzText(CQLXXMLParse& document, unsigned int item, unsigned int maxLen)
{
    document.SetAttribute(item, "type", std::string("string"));
    document.SetAttribute(item, "maxLen", maxLen);
}
