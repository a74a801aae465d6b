#pragma once

#include <Vela/String.hpp>

namespace Vela::System::Kiro::Testing
{

/// A directory of its own below the system's directory for temporary files; deleted with all that is in it.
class HostDirectory
{
public:
    /// @throws Exception
    HostDirectory();
    HostDirectory(const HostDirectory&) = delete;
    HostDirectory& operator=(const HostDirectory&) = delete;
    ~HostDirectory();

    [[nodiscard]] const String& GetPath() const noexcept;
    /// The same as ComponentHost::WriteFile.
    [[nodiscard]] String Write(const String& name, const String& text) const;
    void Delete() const noexcept;

private:
    String path;
};

} // namespace Vela::System::Kiro::Testing
