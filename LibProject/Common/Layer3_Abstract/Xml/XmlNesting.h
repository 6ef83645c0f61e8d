// XmlNesting.h: how deep the elements of an XML text nest, found out before the text is parsed. Any thread.
#pragma once

#include <cstddef>
#include <string_view>

/// Whether elements stand more than `limit` deep within each other. Parsing and printing a document recurse element by
/// element, so this bounds their stack. Text that is no XML may give either answer behind the place where it breaks.
bool XmlNestsDeeperThan(std::string_view text, std::size_t limit);
