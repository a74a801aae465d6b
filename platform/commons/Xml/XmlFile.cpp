#include "XmlFile.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/SystemError.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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
}

XmlFile::Identity XmlFile::GetIdentity() const noexcept
{
    return identity;
}

String XmlFile::Read() const
{
    constexpr std::size_t blockSize = std::size_t{64} * 1024;
    String text;
    for (;;)
    {
        const std::size_t size = text.size();
        text.resize(size + blockSize);
        const ssize_t count = RetryInterrupted([&] { return read(file.Get(), text.data() + size, blockSize); });
        if (count < 0)
        {
            Throw(GetErrorText(errno));
        }
        text.resize(size + static_cast<std::size_t>(count));
        if (count == 0)
        {
            return text;
        }
        if (text.size() > XmlReader::maxSize)
        {
            Throw(fmt::format("larger than {} bytes", XmlReader::maxSize));
        }
    }
}

void XmlFile::Throw(const String& reason) const
{
    throw XmlException::At(position.ToString(), fmt::format("Cannot read file '{0}': {1}", filePath, reason));
}

} // namespace Vela::System::Commons::Xml
