#include "XmlFile.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/SystemError.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

namespace Vela::System::Commons::Xml
{

XmlFile::XmlFile(const String& path, const XmlPosition& includedFrom, Io::TrustedFile use)
    : filePath(path)
    , position(includedFrom)
    // A pipe without a writer would block the open.
    , file(RetryInterrupted([&] { return open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); }))
{
    struct stat status = {};
    if (!file.IsValid() || fstat(file.Get(), &status) != 0)
    {
        Throw(GetErrorText(errno));
    }
    if (!S_ISREG(status.st_mode))
    {
        Throw("not a regular file");
    }
    Io::FileTrust::Require(use, path, file.Get());
    identity = {status.st_dev, status.st_ino};
    expectedSize = static_cast<std::uint64_t>(status.st_size);
}

XmlFile::Identity XmlFile::GetIdentity() const noexcept
{
    return identity;
}

String XmlFile::Read() const
{
    // Room for one byte more than the file is said to have shows its end; a file that has grown meanwhile gets more.
    String text(static_cast<std::size_t>(std::min<std::uint64_t>(expectedSize, XmlReader::maxSize)) + 1, '\0');
    std::size_t size = 0;
    for (;;)
    {
        const ssize_t count = RetryInterrupted([&] { return read(file.Get(), &text[size], text.size() - size); });
        if (count < 0)
        {
            Throw(GetErrorText(errno));
        }
        if (count == 0)
        {
            text.resize(size);
            return text;
        }
        size += static_cast<std::size_t>(count);
        if (size > XmlReader::maxSize)
        {
            Throw(fmt::format("larger than {} bytes", XmlReader::maxSize));
        }
        if (size == text.size())
        {
            text.resize(2 * size);
        }
    }
}

void XmlFile::Throw(const String& reason) const
{
    throw XmlException::At(position.ToString(), fmt::format("Cannot read file '{0}': {1}", filePath, reason));
}

} // namespace Vela::System::Commons::Xml
