#include "NvrAnswer.h"

#include <tinyxml2.h>

#include <algorithm>
#include <functional>

using tinyxml2::XMLDocument;
using tinyxml2::XMLElement;

namespace
{

using Row = std::vector<std::string>;

const XMLElement* Find(const XMLElement* from, std::initializer_list<const char*> path)
{
    for (auto name = path.begin(); name != path.end() && from != nullptr; ++name)
    {
        from = from->FirstChildElement(*name);
    }
    return from;
}

std::string TextOf(const XMLElement* element)
{
    return element != nullptr && element->GetText() != nullptr ? element->GetText() : "";
}

std::string TextAt(const XMLElement* from, std::initializer_list<const char*> path)
{
    return TextOf(Find(from, path));
}

/// Columns as wide as their widest cell, two blanks between them.
std::string Tabulate(const std::vector<Row>& rows)
{
    std::vector<std::size_t> widths;
    for (const Row& row : rows)
    {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t column = 0; column < row.size(); ++column)
        {
            widths[column] = std::max(widths[column], row[column].size());
        }
    }
    std::string text;
    for (const Row& row : rows)
    {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column)
        {
            line += row[column] + std::string(widths[column] - row[column].size() + 2, ' ');
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    }
    return text;
}

void CollectFaults(const XMLElement* key, const XMLElement* element, std::vector<std::string>& faults)
{
    for (const XMLElement* child = element->FirstChildElement(); child != nullptr; child = child->NextSiblingElement())
    {
        const bool isFault = std::string("status") == child->Name() && TextOf(child).rfind("fail", 0) == 0;
        if (isFault)
        {
            const std::string description = TextAt(child, {"description"});
            faults.push_back(std::string(key->Name()) + ": fault " + TextAt(child, {"errorCode"}) + ": " +
                             (description.empty() ? "the camera gives no reason" : description));
        }
        else
        {
            CollectFaults(key, child, faults);
        }
    }
}

void MaskFrom(std::string& text, const std::string& begin, const char* end)
{
    const std::size_t at = text.find(begin);
    if (at != std::string::npos)
    {
        const std::size_t from = at + begin.size();
        text.replace(from, std::min(text.find_first_of(end, from), text.size()) - from, "***");
    }
}

} // namespace

std::string IndentAnswer(const std::string& answer)
{
    XMLDocument document;
    if (document.Parse(answer.c_str()) != tinyxml2::XML_SUCCESS)
    {
        return answer;
    }
    tinyxml2::XMLPrinter printer;
    document.Print(&printer);
    return printer.CStr();
}

std::vector<std::string> FaultsOf(const std::string& answer)
{
    std::vector<std::string> faults;
    XMLDocument document;
    document.Parse(answer.c_str());
    const XMLElement* const root = document.RootElement();
    for (const XMLElement* key = root != nullptr ? root->FirstChildElement() : nullptr; key != nullptr;
         key = key->NextSiblingElement())
    {
        CollectFaults(key, key, faults);
    }
    return faults;
}

std::string TabulateServices(const std::string& answer)
{
    XMLDocument document;
    document.Parse(answer.c_str());
    std::vector<Row> rows = {{"SERVICE", "PATH"}};
    for (const XMLElement* item = Find(document.RootElement(), {"serviceUrl", "item"}); item != nullptr;
         item = item->NextSiblingElement("item"))
    {
        const char* const service = item->Attribute("service");
        rows.push_back({service != nullptr ? service : "", "/" + TextOf(item)});
    }
    return Tabulate(rows);
}

std::string TabulateProfiles(const std::string& answer)
{
    XMLDocument document;
    document.Parse(answer.c_str());
    std::vector<Row> rows = {{"INDEX", "TOKEN", "NAME", "ENCODING", "SIZE", "FRAMES/S", "KBIT/S", "PTZ"}};
    for (const XMLElement* profile = Find(document.RootElement(), {"profiles", "profile"}); profile != nullptr;
         profile = profile->NextSiblingElement("profile"))
    {
        rows.push_back({std::to_string(rows.size() - 1), TextAt(profile, {"token"}), TextAt(profile, {"name"}),
                        TextAt(profile, {"videoEncode", "encode"}), TextAt(profile, {"videoEncode", "resolution"}),
                        TextAt(profile, {"videoEncode", "frameRate"}), TextAt(profile, {"videoEncode", "bitrate"}),
                        Find(profile, {"PTZ"}) != nullptr ? "yes" : "no"});
    }
    return Tabulate(rows);
}

std::string TabulatePresets(const std::string& answer)
{
    XMLDocument document;
    document.Parse(answer.c_str());
    std::vector<Row> rows = {{"TOKEN", "NAME"}};
    for (const XMLElement* item = Find(document.RootElement(), {"presets", "item"}); item != nullptr;
         item = item->NextSiblingElement("item"))
    {
        rows.push_back({TextAt(item, {"token"}), TextAt(item, {"name"})});
    }
    return Tabulate(rows);
}

std::string MaskRequest(const std::string& request)
{
    std::string masked = request;
    MaskFrom(masked, "Authorization: Basic ", "\r\n");
    MaskFrom(masked, "#PasswordDigest\">", "<");
    return masked;
}

bool IsPicture(const std::string& bytes)
{
    return bytes.compare(0, 2, "\xff\xd8") == 0 || bytes.compare(0, 4, "\x89PNG") == 0 ||
           bytes.compare(0, 2, "BM") == 0;
}
