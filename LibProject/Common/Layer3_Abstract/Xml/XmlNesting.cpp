#include "XmlNesting.h"

namespace
{

struct SkippedRow
{
    std::string_view begin;
    std::string_view end;
};

// What looks like markup and holds no elements. First match wins.
const SkippedRow SKIPPED[] = {
    {"<?", "?>"},
    {"<!--", "-->"},
    {"<![CDATA[", "]]>"},
    {"<!", ">"},
};

bool StartsWith(std::string_view text, std::string_view prefix)
{
    return text.substr(0, prefix.size()) == prefix;
}

// @return where the text behind the section goes on, npos when it does not end; 0 when none begins here
std::size_t SkippedLength(std::string_view text)
{
    for (const SkippedRow& row : SKIPPED)
    {
        if (StartsWith(text, row.begin))
        {
            const std::size_t end = text.find(row.end, row.begin.size());
            return end == std::string_view::npos ? end : end + row.end.size();
        }
    }
    return 0;
}

// @return the place of the ">" that ends a tag, not of one within a quoted value; npos when there is none
std::size_t TagEnd(std::string_view text)
{
    for (std::size_t i = 1; i < text.size(); ++i)
    {
        if (text[i] == '>')
        {
            return i;
        }
        if (text[i] == '"' || text[i] == '\'')
        {
            i = text.find(text[i], i + 1);
            if (i == std::string_view::npos)
            {
                return i;
            }
        }
    }
    return std::string_view::npos;
}

} // namespace

bool XmlNestsDeeperThan(std::string_view text, std::size_t limit)
{
    std::size_t depth = 0;
    for (std::size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<'))
    {
        text.remove_prefix(at);
        const std::size_t skipped = SkippedLength(text);
        if (skipped != 0)
        {
            text.remove_prefix(skipped < text.size() ? skipped : text.size());
            continue;
        }
        const std::size_t name = text.find_first_not_of(" \t\r\n\v\f", 1);
        const std::size_t end = TagEnd(text);
        const bool closing = name != std::string_view::npos && text[name] == '/';
        if (closing)
        {
            depth -= depth > 0 ? 1 : 0;
        }
        else if (++depth > limit)
        {
            return true;
        }
        if (end == std::string_view::npos)
        {
            return false;
        }
        if (!closing && text[end - 1] == '/')
        {
            --depth;
        }
        text.remove_prefix(end + 1);
    }
    return false;
}
