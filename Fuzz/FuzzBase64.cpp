// The Base64 decoders, with rooms of every small size: the first byte of the input is the room.
#include "Base64Coder.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace
{

void Require(bool condition)
{
    if (!condition)
    {
        std::abort();
    }
}

void DecodeBytes(const std::string& text, unsigned long room)
{
    const std::unique_ptr<unsigned char[]> out(new unsigned char[room]);
    unsigned long length = room;
    const int result = CBase64Coder::Decode(text, out.get(), &length);
    Require(result == 1 ? length <= room : length == room);
}

void DecodeText(const std::string& text, unsigned int room)
{
    CBase64Coder coder;
    const std::unique_ptr<char[]> out(new char[room]);
    const unsigned int count = coder.base64decone(text.c_str(), out.get(), room);
    Require(room == 0 ? count == 0 : strnlen(out.get(), room) < room && count <= room);

    const std::unique_ptr<char[]> whole(new char[text.size() * 3 / 4 + 2]);
    coder.base64decone(text.c_str(), whole.get());
}

// What was encoded is decoded to the same bytes.
void GoRound(const std::string& bytes)
{
    std::string text;
    CBase64Coder::Encode(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), text);
    std::string back(bytes.size() + 1, '\0');
    unsigned long length = back.size();
    Require(CBase64Coder::Decode(text, reinterpret_cast<unsigned char*>(&back[0]), &length) == 1);
    Require(back.substr(0, length) == bytes);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
    {
        return 0;
    }
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    DecodeBytes(text, data[0]);
    DecodeText(text, data[0]);
    GoRound(text);
    return 0;
}
