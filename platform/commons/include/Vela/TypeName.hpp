#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

#include <typeinfo>

namespace Vela
{

/// The raw name of a type without the leading "*" that the compiler puts in front of some of them.
VELA_COMMONS_API const char* GetRawTypeName(const std::type_info& type) noexcept;

/// Readable form of a raw type name.
/// @throws Exception "Demangling of type name '{0}' failed."
VELA_COMMONS_API String DemangleTypeName(const char* rawName);

/// Readable name of a type.
inline String GetTypeName(const std::type_info& type)
{
    return DemangleTypeName(GetRawTypeName(type));
}

template <typename T>
String GetTypeName()
{
    return GetTypeName(typeid(T));
}

/// A type's name as the category of its log: dots for "::", without "class ", "struct " and "enum ".
VELA_COMMONS_API String GetLogCategory(const std::type_info& type);

} // namespace Vela
