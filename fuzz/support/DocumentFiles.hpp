#pragma once

#include <Vela/String.hpp>

#include <TemporaryDirectory.hpp>

#include <initializer_list>
#include <string_view>
#include <vector>

namespace Vela::Fuzz
{

/// Turns one input into several files of a directory of its own, so that documents can include each other. The files
/// follow each other in the input, with the byte 0x1f, which no document may contain, between them.
class DocumentFiles
{
public:
    /// @param names  of the files, the root document first
    DocumentFiles(std::initializer_list<const char*> names);

    /// Writes the files; those for which nothing is left in the input do not exist.
    /// @return false, having written nothing, when a search for files could leave the directory and so take forever
    bool Write(std::string_view input) const;
    [[nodiscard]] const String& GetRootPath() const noexcept;

private:
    const Testing::TemporaryDirectory directory;
    std::vector<String> paths;
};

/// The process has no environment variables any more.
void ClearEnvironment();

} // namespace Vela::Fuzz
