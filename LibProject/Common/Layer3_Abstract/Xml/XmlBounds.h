// XmlBounds.h: what an XML text asks of the parser, found out before it is parsed. Any thread.
#pragma once

#include "Limits.h"

#include <cstddef>
#include <string_view>

/// What a document may hold.
struct XML_BOUNDS
{
    std::size_t nesting;        ///< elements within elements: parsing and printing recurse, so this bounds their stack
    std::size_t nodes;          ///< elements, comments and other markup: each costs the memory of many bytes of text
    std::size_t attributes;     ///< of one element: each is compared with all in front of it
    std::size_t openReferences; ///< "&#" with no ";" near: each is looked for through the rest of its text
};

constexpr XML_BOUNDS XML_DOCUMENT_BOUNDS = {LIMIT_XML_NESTING, LIMIT_XML_NODES, LIMIT_XML_ATTRIBUTES,
                                            LIMIT_XML_OPEN_REFERENCES};

/// Whether a text stays within the bounds. Text that is no XML may give either answer behind the place where it breaks.
bool XmlIsWithin(const XML_BOUNDS& bounds, std::string_view text);
