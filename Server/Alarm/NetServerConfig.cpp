#include "NetServerConfig.h"

#include "PFFile.h"
#include "QLXXMLParse.h"
#include "ShareSDK.h"
#include "SysHelper.h"

#include <algorithm>
#include <cstdio>

namespace
{

const char NEW_FILE[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><Config></Config>";
const char UNFINISHED_SUFFIX[] = ".new";
const size_t ADDRESS_LENGTH_MAX = 15; // "255.255.255.255"

const unsigned int OPEN_TO_READ = CPFFile::ACCESS_READ | CPFFile::OPEN_ALWAYS;
const unsigned int OPEN_FIRST = CPFFile::ACCESS_WRITE | CPFFile::OPEN_NEW;
const unsigned int OPEN_UNFINISHED = CPFFile::ACCESS_WRITE | CPFFile::OPEN_CREATE;

bool ReadFile(const char* path, std::string& text)
{
    CPFFile file;
    char buffer[CNetServerCfg::FILE_BYTES_MAX] = {};
    unsigned int count = 0;
    if (!file.OpenFile(path, OPEN_TO_READ))
    {
        return false;
    }
    if (!file.Read(buffer, sizeof(buffer), count) || count < 1 || file.GetSize() != static_cast<long long>(count))
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
        return false;
    }
    text.assign(buffer, count);
    return true;
}

bool WriteFile(const char* path, unsigned int flags, const std::string& text)
{
    CPFFile file;
    return file.OpenFile(path, flags) && file.Write(text.data(), static_cast<unsigned int>(text.size())) &&
           file.GetSize() == static_cast<long long>(text.size());
}

/// Whether LoadXml will read it again. What stood around the settings in a damaged file may forbid that.
bool CanBeRead(const std::string& text)
{
    CQLXXMLParse document;
    return text.size() <= CNetServerCfg::FILE_BYTES_MAX && document.LoadXML(text);
}

/// CSysHelper::StrToIPAddress takes any numbers and anything behind them.
bool IsAddress(const std::string& text)
{
    unsigned int address = 0;
    if (text.size() > ADDRESS_LENGTH_MAX || !CSysHelper::StrToIPAddress(text.c_str(), address))
    {
        return false;
    }
    int parts[4] = {};
    char behind = 0;
    // NOLINTNEXTLINE(cert-err34-c): its range is checked below
    const int count = std::sscanf(text.c_str(), "%d.%d.%d.%d%c", &parts[0], &parts[1], &parts[2], &parts[3], &behind);
    return count == 4 && std::all_of(parts, parts + 4, [](int part) { return part >= 0 && part <= 255; });
}

/// Overwrites an element's text; one that is missing is added.
void Put(CQLXXMLParse& document, unsigned int parent, const char* name, const std::string& text)
{
    const unsigned int element = document.GetFirstItem(parent, name);
    if (element != 0)
    {
        document.SetValue(element, text, false);
    }
    else
    {
        document.AddElement(parent, name, text, false);
    }
}

} // namespace

CNetServerCfg& CNetServerCfg::Instance()
{
    static CNetServerCfg config;
    return config;
}

void CNetServerCfg::Initial(const char* path)
{
    if (path == nullptr)
    {
        return;
    }
    const CMySingleLock lock(m_lock);
    m_path = path;
    m_isInitialised = true;
}

/// Reads the file; one that is missing is made.
bool CNetServerCfg::LoadXml(CQLXXMLParse& document, const char* path)
{
    if (!m_isInitialised)
    {
        return false;
    }
    std::string text = NEW_FILE;
    const bool isThere = CPFFile::FileExist(path);
    if (isThere ? !ReadFile(path, text) : !WriteFile(path, OPEN_FIRST, text))
    {
        return false;
    }
    return document.LoadXML(text);
}

/// Writes beside the file and then takes its place, so that a failure leaves the old one whole.
bool CNetServerCfg::SaveXml(CQLXXMLParse& document)
{
    const std::string& text = *document.GetDoc();
    const std::string unfinished = m_path + UNFINISHED_SUFFIX;
    if (CanBeRead(text) && WriteFile(unfinished.c_str(), OPEN_UNFINISHED, text) &&
        std::rename(unfinished.c_str(), m_path.c_str()) == 0)
    {
        return true;
    }
    SHARESDK_AbnormalOutput("the settings file could not be written", __FILE__, __LINE__);
    CPFFile::deleteFile(unfinished.c_str());
    return false;
}

bool CNetServerCfg::QlxApiSetAlarmServerConfig(const std::string& address, int port)
{
    const CMySingleLock lock(m_lock);
    CQLXXMLParse document;
    if (!LoadXml(document, m_path.c_str()) || !IsAddress(address) || port < PORT_MIN)
    {
        return false;
    }
    const unsigned int root = document.GetFirstItem("Config");
    if (root == 0)
    {
        return false; // some other XML
    }
    unsigned int api = document.GetFirstItem(root, "QlxApi");
    if (api == 0)
    {
        api = document.AddElement(root, "QlxApi", "", false);
    }
    Put(document, api, "AlarmServAddr", address);
    Put(document, api, "AlarmServPort", std::to_string(port));
    SaveXml(document); // clients are not told of a full disk: the values are in use all the same
    return true;
}

bool CNetServerCfg::QlxApiGetAlarmServerConfig(std::string& address, int& port)
{
    address.clear();
    port = 0;
    const CMySingleLock lock(m_lock);
    CQLXXMLParse document;
    return LoadXml(document, m_path.c_str()) && document.GetValueStr("Config/QlxApi/AlarmServAddr", address) &&
           document.GetValue_i32("Config/QlxApi/AlarmServPort", port);
}
