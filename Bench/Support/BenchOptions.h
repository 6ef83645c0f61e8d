// BenchOptions.h: the command line of a benchmark program, "--name VALUE" and "--name". Main thread.
#pragma once

#include <functional>
#include <limits>
#include <string>
#include <vector>

/// Binds options to variables, which keep their value when the option is not given. Whatever is wrong with a command
/// line ends the program with a message and status 2.
class BenchOptions
{
public:
    /// @param usage  printed when the command line does not hold; borrowed
    explicit BenchOptions(const char* usage) : m_usage(usage) {}

    /// A number from 0 to what the variable holds.
    template <typename NUMBER>
    BenchOptions& Number(const char* name, NUMBER& value)
    {
        static constexpr auto most = static_cast<unsigned long>(std::numeric_limits<NUMBER>::max());
        return Add(name, true,
                   [name, &value](const char* text) { value = static_cast<NUMBER>(ReadNumber(name, text, most)); });
    }
    BenchOptions& Text(const char* name, std::string& value);
    /// An option without a value. @param given  what the variable becomes when it is given
    BenchOptions& Switch(const char* name, bool& value, bool given = true);

    void Read(int argc, char** argv) const;

    /// Ends the program with the usage unless the values go together.
    void Require(bool sane) const;

private:
    using Take = std::function<void(const char* text)>;
    struct Option
    {
        const char* name;
        bool hasValue;
        Take take;
    };

    static unsigned long ReadNumber(const char* name, const char* text, unsigned long most);
    BenchOptions& Add(const char* name, bool hasValue, Take take);

    const char* const m_usage;
    std::vector<Option> m_options;
};
