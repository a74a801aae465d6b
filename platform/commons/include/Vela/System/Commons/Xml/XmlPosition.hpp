#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

#include <memory>

namespace Vela::System::Commons::Xml
{

struct XmlSource;

/// A line of a document, with the chain of includes that led to it. Cheap to copy and to keep: records remember with it
/// where they were written, long after the file was read.
class VELA_COMMONS_API XmlPosition
{
public:
    /// Nowhere: what stands for values that were not read from a document.
    XmlPosition() = default;
    XmlPosition(std::shared_ptr<const XmlSource> positionSource, unsigned long positionLine);

    /// "/a/b.config:12, included from /a/a.config:3"; empty when it is nowhere.
    [[nodiscard]] String ToString() const;
    /// Reads what ToString wrote; nowhere when the text is none of its.
    [[nodiscard]] static XmlPosition Parse(const String& text);
    /// Where the include stands that led to the file; nowhere for a root file.
    [[nodiscard]] const XmlPosition& GetIncludedFrom() const noexcept;
    /// The file; empty when it is nowhere.
    [[nodiscard]] const String& GetFile() const noexcept;
    /// Counted from 1; 0 when it is nowhere.
    [[nodiscard]] unsigned long GetLine() const noexcept;

private:
    std::shared_ptr<const XmlSource> source;
    unsigned long line = 0;
};

/// A document's file and the include that named it.
struct XmlSource
{
    /// Absolute path, or any name for a text that does not come from a file.
    String path;
    /// Nowhere for a root file.
    XmlPosition includedFrom;
};

} // namespace Vela::System::Commons::Xml
