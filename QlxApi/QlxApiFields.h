// QlxApiFields.h: the values of a host's record as rows of a table: where each stands in the documents and how it is
// written and read. Constants; any thread.
//
//     const QLX_API_FIELD<NETNS::DEV_PORT_INFO> PORT_FIELDS[] = {
//         NumberField<&NETNS::DEV_PORT_INFO::httpPort>("port/httpPort"),
//         ...
//     };
//     FillFields(document, PORT_FIELDS, record);   // each value to its path, which the document must have
//     TakeFields(body, PORT_FIELDS, record);       // each value that is there into the record
#pragma once

#include "QLXXMLParse.h"
#include "QlxApiWords.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <type_traits>

/// One value of a record.
template <typename RECORD>
struct QLX_API_FIELD
{
    const char* path; ///< below the root, or below an item
    void (*write)(CQLXXMLParse& document, const std::string& path, const RECORD& record);
    /// @return false when the text is not acceptable; a missing element leaves the record alone
    bool (*read)(const CQLXXMLParse& body, unsigned int item, const std::string& path, RECORD& record);
};

/// How a text is written.
enum QLX_API_TEXT_FORM
{
    QLX_API_PLAIN, ///< escaped
    QLX_API_CDATA, ///< in a CDATA section
};

/// What becomes of a text that is too long for its field.
enum QLX_API_LONG_TEXT
{
    QLX_API_CUT,
    QLX_API_REFUSE,
};

namespace QLX_API_DETAIL
{

template <typename POINTER>
struct MEMBER_TRAITS;
template <typename RECORD_TYPE, typename VALUE_TYPE>
struct MEMBER_TRAITS<VALUE_TYPE RECORD_TYPE::*>
{
    using RECORD = RECORD_TYPE;
    using VALUE = VALUE_TYPE;
};

template <auto MEMBER>
using RECORD_OF = typename MEMBER_TRAITS<decltype(MEMBER)>::RECORD;
template <auto MEMBER>
using VALUE_OF = typename MEMBER_TRAITS<decltype(MEMBER)>::VALUE;

} // namespace QLX_API_DETAIL

/// A number. What is read is cut to the field's width and not held against any limit; text that is no number is 0.
template <auto MEMBER>
constexpr QLX_API_FIELD<QLX_API_DETAIL::RECORD_OF<MEMBER>> NumberField(const char* path)
{
    using RECORD = QLX_API_DETAIL::RECORD_OF<MEMBER>;
    using VALUE = QLX_API_DETAIL::VALUE_OF<MEMBER>;
    return {path,
            [](CQLXXMLParse& document, const std::string& place, const RECORD& record)
            {
                if constexpr (std::is_signed_v<VALUE>)
                    document.SetValue_i32(place, record.*MEMBER);
                else
                    document.SetValue(place, static_cast<unsigned int>(record.*MEMBER));
            },
            [](const CQLXXMLParse& body, unsigned int item, const std::string& place, RECORD& record)
            {
                int number = 0;
                if (body.GetValue_i32(item, place, number))
                    record.*MEMBER = static_cast<VALUE>(number);
                return true;
            }};
}

/// A word of an enumeration. A value without a word leaves what the document holds; a word without a value is not
/// acceptable.
template <auto MEMBER, const auto& WORDS>
constexpr QLX_API_FIELD<QLX_API_DETAIL::RECORD_OF<MEMBER>> WordField(const char* path)
{
    using RECORD = QLX_API_DETAIL::RECORD_OF<MEMBER>;
    using VALUE = QLX_API_DETAIL::VALUE_OF<MEMBER>;
    return {path,
            [](CQLXXMLParse& document, const std::string& place, const RECORD& record)
            {
                const char* const word = WordOf(WORDS, record.*MEMBER);
                if (word != nullptr)
                    document.SetValue(place, word, false);
            },
            [](const CQLXXMLParse& body, unsigned int item, const std::string& place, RECORD& record)
            {
                std::string word;
                std::uint32_t value = 0;
                if (!body.GetValueStr(item, place, word))
                    return true;
                if (!ValueOf(WORDS, word, value))
                    return false;
                record.*MEMBER = static_cast<VALUE>(value);
                return true;
            }};
}

/// A switch: "true" for anything but 0, and read only as "true" or "false".
template <auto MEMBER>
constexpr QLX_API_FIELD<QLX_API_DETAIL::RECORD_OF<MEMBER>> SwitchField(const char* path)
{
    using RECORD = QLX_API_DETAIL::RECORD_OF<MEMBER>;
    QLX_API_FIELD<RECORD> field = WordField<MEMBER, BOOLEAN_WORDS>(path);
    field.write = [](CQLXXMLParse& document, const std::string& place, const RECORD& record)
    {
        document.SetValue(place, BooleanWord(record.*MEMBER != 0), false);
    };
    return field;
}

/// Copies a text into a field that ends in a zero byte; what is too long is cut.
template <size_t SIZE>
void CopyCut(const std::string& text, char (&field)[SIZE])
{
    std::memset(field, 0, SIZE);
    std::memcpy(field, text.data(), std::min(text.size(), SIZE - 1));
}

template <auto MEMBER, QLX_API_TEXT_FORM FORM, QLX_API_LONG_TEXT LONG_TEXT = QLX_API_CUT>
constexpr QLX_API_FIELD<QLX_API_DETAIL::RECORD_OF<MEMBER>> TextField(const char* path)
{
    using RECORD = QLX_API_DETAIL::RECORD_OF<MEMBER>;
    return {path,
            [](CQLXXMLParse& document, const std::string& place, const RECORD& record)
            {
                const auto& field = record.*MEMBER;
                document.SetValue(place, std::string(field, strnlen(field, sizeof(field))), FORM == QLX_API_CDATA);
            },
            [](const CQLXXMLParse& body, unsigned int item, const std::string& place, RECORD& record)
            {
                std::string text;
                if (!body.GetValueStr(item, place, text))
                    return true;
                if (LONG_TEXT == QLX_API_REFUSE && text.size() >= sizeof(record.*MEMBER))
                    return false;
                CopyCut(text, record.*MEMBER);
                return true;
            }};
}

/// Writes every value to its path.
template <typename RECORD, size_t COUNT>
void FillFields(CQLXXMLParse& document, const QLX_API_FIELD<RECORD> (&fields)[COUNT], const RECORD& record)
{
    std::string path;
    for (const QLX_API_FIELD<RECORD>& field : fields)
    {
        path = field.path;
        field.write(document, path, record);
    }
}

/// Reads every value that is there below an item. @return false at the first that is not acceptable
template <typename RECORD, size_t COUNT>
bool TakeFields(const CQLXXMLParse& body, unsigned int item, const QLX_API_FIELD<RECORD> (&fields)[COUNT],
                RECORD& record)
{
    std::string path;
    for (const QLX_API_FIELD<RECORD>& field : fields)
    {
        path = field.path;
        if (!field.read(body, item, path, record))
            return false;
    }
    return true;
}

/// The same below the root.
template <typename RECORD, size_t COUNT>
bool TakeFields(const CQLXXMLParse& body, const QLX_API_FIELD<RECORD> (&fields)[COUNT], RECORD& record)
{
    return TakeFields(body, body.GetRootItem(), fields, record);
}
