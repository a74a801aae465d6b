#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>

#include <vector>

namespace Vela::System::Commons::Xml
{

/// The files that one include names, as absolute paths: the file itself, or all files that match its shell wildcards,
/// in byte order. Placeholders are resolved; wildcards count where the document writes them, not in values of
/// variables.
/// @param directory  where the including file lies
/// @throws XmlException for placeholders that cannot be resolved, for an empty path, and when a directory that a
/// wildcard searches cannot be read
std::vector<String> FindIncludedFiles(const XmlSerializationContext::Include& include, const String& directory);

} // namespace Vela::System::Commons::Xml
