#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Io/Directory.hpp>

#include <filesystem>
#include <system_error>

namespace Vela::System::Commons::Io
{

namespace
{

void ThrowIfFailed(const std::error_code& error, const char* what, const String& path)
{
    if (error)
    {
        throw Exception("Could not {0} directory '{1}': {2}", what, path, error.message());
    }
}

} // namespace

bool Directory::Exists(const String& path)
{
    std::error_code error;
    return std::filesystem::is_directory(path, error);
}

void Directory::Create(const String& path)
{
    std::error_code error;
    std::filesystem::create_directories(path, error);
    if (error && !Exists(path))
    {
        ThrowIfFailed(error, "create", path);
    }
}

void Directory::Delete(const String& path)
{
    std::error_code error;
    std::filesystem::remove_all(path, error);
    ThrowIfFailed(error, "delete", path);
}

String Directory::GetCurrent()
{
    std::error_code error;
    const auto current = std::filesystem::current_path(error);
    if (error)
    {
        throw Exception("Could not read the current directory: {0}", error.message());
    }
    return current.string();
}

} // namespace Vela::System::Commons::Io
