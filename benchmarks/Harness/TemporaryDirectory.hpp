#pragma once

#include <Vela/System/Commons/SystemError.hpp>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace Vela::Benchmarks
{

/// A directory that goes with its content.
class TemporaryDirectory
{
public:
    TemporaryDirectory()
    {
        std::string name = (std::filesystem::temp_directory_path() / "kiro-bench-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr)
        {
            System::Commons::ThrowSystemError(name);
        }
        path = name;
    }

    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    ~TemporaryDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }

    [[nodiscard]] std::string operator/(const std::string& name) const
    {
        return (path / name).string();
    }

    void Write(const std::string& name, const std::string& text) const
    {
        std::ofstream(path / name, std::ios::binary) << text;
    }

private:
    std::filesystem::path path;
};

} // namespace Vela::Benchmarks
