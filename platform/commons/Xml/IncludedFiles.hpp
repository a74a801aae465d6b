#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>

#include <vector>

namespace Vela::System::Commons::Xml
{

/// The files that one include names, as absolute paths: the file itself, or all files that match its shell
/// wildcards, in byte order.
/// @param directory  where the including file lies
/// @throws XmlException when a directory that a wildcard searches cannot be read
std::vector<String> FindIncludedFiles(const XmlSerializationContext::Include& include, const String& directory);

} // namespace Vela::System::Commons::Xml
