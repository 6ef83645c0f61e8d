#include "XmlBounds.h"

namespace
{

const char OPEN_REFERENCE[] = "&#";
const std::size_t REFERENCE_LENGTH_MAX = 32; // "&#x10FFFF;" has 10; zeros may stand in front of the digits

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

/// A tag that a text begins with.
struct TAG
{
    std::size_t end = std::string_view::npos; ///< place of its ">", not of one within a quoted value
    std::size_t attributes = 0;
    bool isClosing = false; ///< "</a>"
    bool isEmpty = false;   ///< "<a/>"
};

TAG ReadTag(std::string_view text)
{
    TAG tag;
    const std::size_t name = text.find_first_not_of(" \t\r\n\v\f", 1);
    tag.isClosing = name != std::string_view::npos && text[name] == '/';
    for (std::size_t i = 1; i < text.size(); ++i)
    {
        if (text[i] == '>')
        {
            tag.end = i;
            tag.isEmpty = !tag.isClosing && text[i - 1] == '/';
            return tag;
        }
        if (text[i] == '"' || text[i] == '\'')
        {
            ++tag.attributes;
            i = text.find(text[i], i + 1);
            if (i == std::string_view::npos)
            {
                return tag;
            }
        }
    }
    return tag;
}

bool MarkupIsWithin(const XML_BOUNDS& bounds, std::string_view text)
{
    std::size_t depth = 0;
    std::size_t nodes = 0;
    for (std::size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<'))
    {
        text.remove_prefix(at);
        const std::size_t skipped = SkippedLength(text);
        const TAG tag = skipped == 0 ? ReadTag(text) : TAG();
        nodes += tag.isClosing ? 0 : 1 + tag.attributes;
        if (tag.isClosing)
        {
            depth -= depth > 0 ? 1 : 0;
        }
        else if (skipped == 0)
        {
            ++depth;
        }
        if (depth > bounds.nesting || nodes > bounds.nodes || tag.attributes > bounds.attributes)
        {
            return false;
        }
        depth -= tag.isEmpty ? 1 : 0;
        const std::size_t next = skipped != 0 ? skipped : tag.end;
        if (next >= text.size()) // npos too: the text breaks off here
        {
            return true;
        }
        text.remove_prefix(next);
    }
    return true;
}

bool ReferencesAreWithin(std::size_t limit, std::string_view text)
{
    std::size_t open = 0;
    for (std::size_t at = text.find(OPEN_REFERENCE); at != std::string_view::npos;
         at = text.find(OPEN_REFERENCE, at + 1))
    {
        const bool isEnded = text.substr(at, REFERENCE_LENGTH_MAX).find(';') != std::string_view::npos;
        open += isEnded ? 0 : 1;
        if (open > limit)
        {
            return false;
        }
    }
    return true;
}

} // namespace

bool XmlIsWithin(const XML_BOUNDS& bounds, std::string_view text)
{
    return MarkupIsWithin(bounds, text) && ReferencesAreWithin(bounds.openReferences, text);
}
