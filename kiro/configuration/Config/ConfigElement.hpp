#pragma once

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Xml/IXmlSerializable.hpp>

#include <algorithm>

namespace Vela::System::Kiro::Internal::Sm::Config
{

/// What all elements of the configuration document share: they are read and never written.
class ConfigElement : public Commons::Xml::IXmlSerializable
{
public:
    /// @throws NotImplementedException "WriteXml"
    void WriteXml(Commons::Xml::XmlWriter&, Commons::Xml::XmlSerializationContext&) final
    {
        throw NotImplementedException("WriteXml");
    }
};

/// Whether two maps hold equal entries under equal names.
template <typename Map>
bool EqualItems(const Map& first, const Map& second)
{
    return std::equal(first.begin(), first.end(), second.begin(), second.end(),
                      [](const auto& left, const auto& right)
                      { return left.first == right.first && left.second.Equals(right.second); });
}

} // namespace Vela::System::Kiro::Internal::Sm::Config
