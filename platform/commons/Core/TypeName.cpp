#include <Vela/Exceptions.hpp>
#include <Vela/TypeName.hpp>

#include <cxxabi.h>

#include <array>
#include <cstdlib>
#include <memory>

namespace Vela
{

namespace
{

void ReplaceAll(String& text, const String& what, const String& with)
{
    for (auto position = text.find(what); position != String::npos; position = text.find(what, position + with.size()))
    {
        text.replace(position, what.size(), with);
    }
}

} // namespace

const char* GetRawTypeName(const std::type_info& type) noexcept
{
    const char* name = type.name();
    return *name == '*' ? name + 1 : name;
}

String DemangleTypeName(const char* rawName)
{
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(abi::__cxa_demangle(rawName, nullptr, nullptr, &status),
                                                           &std::free);
    if (status != 0 || name == nullptr)
    {
        throw Exception("Demangling of type name '{0}' failed.", rawName);
    }
    return name.get();
}

String GetLogCategory(const std::type_info& type)
{
    String category = GetTypeName(type);
    for (const char* keyword : {"class ", "struct ", "enum "})
    {
        ReplaceAll(category, keyword, "");
    }
    ReplaceAll(category, "::", ".");
    return category;
}

} // namespace Vela
