#include <Vela/System/Kiro/Testing/ComponentLibrary.hpp>

namespace Vela::System::Kiro::Testing
{

ComponentLibrary::ComponentLibrary(const String& name, const String& path)
    : libraryName(name)
{
    GetTable().insert_or_assign(name, path);
}

ComponentLibrary::~ComponentLibrary()
{
    GetTable().erase(libraryName);
}

const std::map<String, String>& ComponentLibrary::GetAll()
{
    return GetTable();
}

std::map<String, String>& ComponentLibrary::GetTable()
{
    static std::map<String, String> table;
    return table;
}

} // namespace Vela::System::Kiro::Testing
