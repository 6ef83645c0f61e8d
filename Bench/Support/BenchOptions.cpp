#include "BenchOptions.h"

#include <getopt.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace
{

constexpr int WRONG_COMMAND_LINE = 2;

} // namespace

BenchOptions& BenchOptions::Add(const char* name, bool hasValue, Take take)
{
    m_options.push_back({name, hasValue, std::move(take)});
    return *this;
}

BenchOptions& BenchOptions::Text(const char* name, std::string& value)
{
    return Add(name, true, [&value](const char* text) { value = text; });
}

BenchOptions& BenchOptions::Switch(const char* name, bool& value, bool given)
{
    return Add(name, false, [&value, given](const char*) { value = given; });
}

void BenchOptions::Read(int argc, char** argv) const
{
    std::vector<option> known;
    for (const Option& one : m_options)
    {
        known.push_back({one.name, one.hasValue ? required_argument : no_argument, nullptr, 0});
    }
    known.push_back({nullptr, 0, nullptr, 0});
    int found = 0;
    int index = 0;
    while ((found = getopt_long(argc, argv, "", known.data(), &index)) == 0)
    {
        m_options[static_cast<std::size_t>(index)].take(optarg);
    }
    Require(found == -1 && optind == argc);
}

void BenchOptions::Require(bool sane) const
{
    if (!sane)
    {
        std::fputs(m_usage, stderr);
        std::exit(WRONG_COMMAND_LINE);
    }
}

unsigned long BenchOptions::ReadNumber(const char* name, const char* text, unsigned long most)
{
    char* end = nullptr;
    errno = 0;
    const unsigned long value = std::strtoul(text, &end, 10);
    const bool isNumber = *text >= '0' && *text <= '9' && *end == '\0';
    if (!isNumber || errno != 0 || value > most)
    {
        std::fprintf(stderr, "--%s needs a number from 0 to %lu, not '%s'\n", name, most, text);
        std::exit(WRONG_COMMAND_LINE);
    }
    return value;
}
