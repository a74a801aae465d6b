#include "HostDirectory.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/SystemError.hpp>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace Vela::System::Kiro::Testing
{

HostDirectory::HostDirectory()
    : path((std::filesystem::canonical(std::filesystem::temp_directory_path()) / "vela-test-XXXXXX").string())
{
    if (::mkdtemp(path.data()) == nullptr)
    {
        Commons::ThrowSystemError("mkdtemp");
    }
}

HostDirectory::~HostDirectory()
{
    Delete();
}

void HostDirectory::Delete() const noexcept
{
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

const String& HostDirectory::GetPath() const noexcept
{
    return path;
}

String HostDirectory::Write(const String& name, const String& text) const
{
    const std::filesystem::path file = std::filesystem::path(path) / name;
    std::error_code error;
    std::filesystem::create_directories(file.parent_path(), error);
    // Whatever the tester's umask is: the runtime warns of files that others can write.
    std::filesystem::permissions(file.parent_path(), std::filesystem::perms::owner_all, error);
    std::ofstream stream(file, std::ios::binary);
    stream << text;
    stream.close();
    if (!stream)
    {
        throw Exception("The file '{0}' cannot be written.", file.string());
    }
    return file.string();
}

} // namespace Vela::System::Kiro::Testing
