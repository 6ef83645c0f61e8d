// What all transforms share: the status of a key.
#include "XmlTransform.h"

#include "TransformAnswer.h"

namespace
{

const char* const FAULT_PATH = "s:Envelope/s:Body/s:Fault";

/// @return the fault's element in the device's document, 0 for none
unsigned int FindFault(const COnvifXmlParse& soap)
{
    return soap.GetFirstItem(FAULT_PATH);
}

bool BlamesAnArgument(const COnvifXmlParse& soap, unsigned int fault)
{
    std::string code;
    std::string subcode;
    return soap.GetValueStr(fault, "s:Code/s:Value", code) && code == "s:Sender" &&
           soap.GetValueStr(fault, "s:Code/s:Subcode/s:Value", subcode) && subcode == "ter:InvalidArgVal";
}

void AddSuccess(CQLXXMLParse& answer, unsigned int item)
{
    answer.AddValue(item, "status", "success", false);
}

void AddFault(const COnvifXmlParse& soap, unsigned int fault, unsigned int errorCode, CQLXXMLParse& answer,
              unsigned int item)
{
    const unsigned int status = answer.AddValue(item, "status", "fail", false);
    answer.AddValue(status, "errorCode", errorCode);
    std::string description;
    if (soap.GetValueStr(fault, "s:Reason/s:Text", description))
    {
        answer.AddValue(status, "description", description, false);
    }
}

} // namespace

bool CXmlTransform::TransResponseBase(const COnvifXmlParse& soap, CQLXXMLParse& answer, unsigned int item)
{
    const unsigned int fault = FindFault(soap);
    if (fault == 0)
    {
        AddSuccess(answer, item);
        return true;
    }
    AddFault(soap, fault, ONVIF_FAULT, answer, item);
    return false;
}

bool CXmlTransform::TransResponseBase(const std::string& soap, CQLXXMLParse& answer, unsigned int item)
{
    return TransResponseBase(COnvifXmlParse(soap), answer, item);
}

int CXmlTransform::TransResponseGeneric(const COnvifXmlParse& soap, CQLXXMLParse& answer, unsigned int item)
{
    const unsigned int fault = FindFault(soap);
    if (fault == 0)
    {
        AddSuccess(answer, item);
        return ONVIF_OK;
    }
    const int errorCode = BlamesAnArgument(soap, fault) ? ONVIF_INVALID_ARG : ONVIF_FAULT;
    AddFault(soap, fault, static_cast<unsigned int>(errorCode), answer, item);
    return errorCode;
}

int CXmlTransform::TransResponseGeneric(const std::string& soap, CQLXXMLParse& answer, unsigned int item)
{
    return TransResponseGeneric(COnvifXmlParse(soap), answer, item);
}

void CXmlTransform::TransSetBaseResponse(const std::string& soap, std::string& answer, const std::string& key)
{
    CTransformAnswer out(soap, answer, "SetResponse", key);
    out.AddStatus();
}
