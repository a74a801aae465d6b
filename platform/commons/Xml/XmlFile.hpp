#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Io/FileTrust.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>
#include <Vela/System/Commons/Xml/XmlPosition.hpp>

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <utility>

namespace Vela::System::Commons::Xml
{

/// A file opened to be read as a document.
class XmlFile
{
public:
    /// The same for all paths that lead to one file.
    using Identity = std::pair<dev_t, ino_t>;

    /// @param path  absolute
    /// @param includedFrom  the include that names the file, named in errors; nowhere for a root file
    /// @throws XmlException when there is no such file, when it is none, or when it cannot be opened
    /// @throws InvalidOperationException when others can change it and that is not accepted
    XmlFile(const String& path, const XmlPosition& includedFrom, Io::TrustedFile use);

    [[nodiscard]] Identity GetIdentity() const noexcept;
    /// @throws XmlException when it is larger than a document may be, or cannot be read
    [[nodiscard]] String Read() const;

private:
    [[noreturn]] void Throw(const String& reason) const;

    const String filePath;
    const XmlPosition position;
    UniqueFd file;
    Identity identity{};
    std::uint64_t expectedSize = 0;
};

} // namespace Vela::System::Commons::Xml
