#include <Config/Dependencies.hpp>
#include <Config/ReadItems.hpp>

#include <algorithm>

namespace Vela::System::Kiro::Internal::Sm::Config
{

void Dependencies::ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context)
{
    ReadItems(reader, context, Dependency::elementXmlName,
              [&]
              {
                  Dependency dependency;
                  dependency.ReadXml(reader, context);
                  if (!AddItem(dependency))
                  {
                      reader.Raise(Commons::Diagnostics::FindingCode::DuplicateName,
                                   reader.Error("Dependency '{0}' is already declared!", dependency.GetBinaryPath()));
                  }
              });
}

bool Dependencies::Equals(const Dependencies& other) const
{
    return std::equal(items.begin(), items.end(), other.items.begin(), other.items.end(),
                      [](const Dependency& left, const Dependency& right) { return left.Equals(right); });
}

bool Dependencies::AddItem(const Dependency& dependency)
{
    if (!binaryPaths.insert(dependency.GetBinaryPath()).second)
    {
        return false;
    }
    items.push_back(dependency);
    return true;
}

const std::vector<Dependency>& Dependencies::GetItems() const noexcept
{
    return items;
}

std::vector<String> Dependencies::GetBinaryPaths() const
{
    std::vector<String> paths;
    paths.reserve(items.size());
    for (const Dependency& dependency : items)
    {
        paths.push_back(dependency.GetBinaryPath());
    }
    return paths;
}

} // namespace Vela::System::Kiro::Internal::Sm::Config
