// TempDirectory.h: a directory of its own for a test, removed with all that is in it. Local to one test.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

class CTempDirectory
{
public:
    CTempDirectory()
    {
        std::string path = (std::filesystem::temp_directory_path() / "netserver-test-XXXXXX").string();
        if (mkdtemp(path.data()) == nullptr)
        {
            std::abort();
        }
        m_path = path;
    }
    ~CTempDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    CTempDirectory(const CTempDirectory&) = delete;
    CTempDirectory& operator=(const CTempDirectory&) = delete;

    std::string Path(const std::string& name = std::string()) const
    {
        return name.empty() ? m_path : m_path + "/" + name;
    }

    /// @return the file's path
    std::string Write(const std::string& name, const std::string& content) const
    {
        std::ofstream(Path(name), std::ios::binary) << content;
        return Path(name);
    }

    std::string Read(const std::string& name) const
    {
        std::ifstream file(Path(name), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }

private:
    std::string m_path;
};
