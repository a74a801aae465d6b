#include "FileKind.hpp"

#include <filesystem>

namespace Vela::Kiroctl
{

const char* DescribeFileKind(const String& path)
{
    using std::filesystem::file_type;
    std::error_code error;
    const auto status = std::filesystem::status(path.c_str(), error);
    switch (status.type())
    {
    case file_type::none:
        return "cannot be looked at";
    case file_type::not_found:
        return "does not exist";
    case file_type::regular:
        return "is a file";
    case file_type::directory:
        return "is a directory";
    case file_type::block:
    case file_type::character:
        return "is a device";
    default:
        return "is no file";
    }
}

} // namespace Vela::Kiroctl
