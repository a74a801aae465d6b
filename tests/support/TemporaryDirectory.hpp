#pragma once

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace Vela::Testing
{

/// A directory of its own for one test, deleted with all that is in it.
class TemporaryDirectory
{
public:
    TemporaryDirectory()
    {
        // Whatever the tester's own is: files that a group can write are not trusted.
        ::umask(022);
        std::string name = (std::filesystem::temp_directory_path() / "vela-test-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
        {
            throw std::runtime_error("Cannot make a temporary directory");
        }
        path = std::filesystem::canonical(name);
    }

    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    ~TemporaryDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }

    [[nodiscard]] const std::filesystem::path& GetPath() const noexcept
    {
        return path;
    }

    /// The absolute path of something in the directory.
    [[nodiscard]] std::string operator/(const std::string& name) const
    {
        return (path / name).string();
    }

    /// Writes a file, making the directories above it, and answers its path.
    std::string Write(const std::string& name, const std::string& text) const
    {
        const std::filesystem::path file = path / name;
        std::filesystem::create_directories(file.parent_path());
        // Some file systems flush a file that is written over, which takes a hundred times longer than a new one.
        std::filesystem::remove(file);
        std::ofstream(file, std::ios::binary) << text;
        return file.string();
    }

    /// The contents of a file; empty when it is missing.
    [[nodiscard]] std::string Read(const std::string& name) const
    {
        std::ifstream stream(path / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

private:
    std::filesystem::path path;
};

} // namespace Vela::Testing
