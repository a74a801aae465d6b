#include "Security/AccessControl.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Xml/IXmlSerializable.hpp>
#include <Vela/System/Commons/Xml/XmlConfigDocument.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <memory>
#include <utility>

namespace Vela::System::Rsc
{

using Commons::Diagnostics::FindingCode;
using Commons::Xml::XmlReader;
using Commons::Xml::XmlSerializationContext;

namespace
{

template <typename Id>
std::optional<Id> ParseId(const String& text)
{
    Id id = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), id);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(id) : std::nullopt;
}

std::optional<uid_t> FindUser(const String& name)
{
    passwd entry{};
    passwd* found = nullptr;
    std::array<char, 4096> texts{};
    ::getpwnam_r(name.c_str(), &entry, texts.data(), texts.size(), &found);
    return found != nullptr ? std::optional(found->pw_uid) : ParseId<uid_t>(name);
}

std::optional<gid_t> FindGroup(const String& name)
{
    group entry{};
    group* found = nullptr;
    // A group's entry lists its members.
    std::vector<char> texts(65536);
    ::getgrnam_r(name.c_str(), &entry, texts.data(), texts.size(), &found);
    return found != nullptr ? std::optional(found->gr_gid) : ParseId<gid_t>(name);
}

/// The document's root element "SecuritySettingsDocument":
///
///     <SecuritySettingsDocument>
///       <Grants>
///         <Grant user="operator" service="Vela.System.Kiro.Services.ISystemManagerService"
///         operation="GetComponentInfos"/> <Grant group="maintenance" service="Plant.ITankService" operation="*"/>
///       </Grants>
///     </SecuritySettingsDocument>
///
/// Users and groups are names or numbers. What the system does not know is an error: a grant that was mistyped must
/// not go unnoticed. The document has a schema, which says the same: security-settings.xsd.
class SecuritySettingsDocument final : public Commons::Xml::IXmlSerializable
{
public:
    void ReadXml(XmlReader& reader, XmlSerializationContext& context) override
    {
        String name;
        while (reader.ReadStartElement(name))
        {
            if (name == "Grants")
            {
                ReadGrants(reader, context);
            }
            else
            {
                context.InvalidXmlElementOccurs(reader, name);
            }
            reader.ReadEndElement();
        }
    }

    void WriteXml(Commons::Xml::XmlWriter&, XmlSerializationContext&) override
    {
        throw NotImplementedException("WriteXml");
    }

    std::vector<Grant> grants;

private:
    void ReadGrants(XmlReader& reader, XmlSerializationContext& context)
    {
        String name;
        while (reader.ReadStartElement(name))
        {
            if (name == "Grant")
            {
                grants.push_back(ReadGrant(reader));
            }
            else
            {
                context.InvalidXmlElementOccurs(reader, name);
            }
            reader.ReadEndElement();
        }
    }

    static Grant ReadGrant(XmlReader& reader)
    {
        Grant grant;
        String user;
        String group;
        const bool hasUser = reader.TryGetAttributeValue("user", user);
        const bool hasGroup = reader.TryGetAttributeValue("group", group);
        reader.GetAttributeValue("service", grant.interfaceName);
        reader.GetAttributeValue("operation", grant.operationName);
        if (grant.interfaceName.empty() || grant.operationName.empty())
        {
            reader.Raise(FindingCode::InvalidValue, reader.Error("A grant names a service and an operation."));
        }
        if (hasUser == hasGroup)
        {
            reader.Raise(FindingCode::InvalidValue, reader.Error("A grant names either a user or a group."));
        }
        if (hasUser && !(grant.user = FindUser(user)))
        {
            reader.Raise(FindingCode::InvalidValue, reader.Error("The system has no user '{}'.", user));
        }
        if (hasGroup && !(grant.group = FindGroup(group)))
        {
            reader.Raise(FindingCode::InvalidValue, reader.Error("The system has no group '{}'.", group));
        }
        return grant;
    }
};

} // namespace

std::shared_ptr<const AccessControl> AccessControl::Load(const String& path)
{
    if (::access(path.c_str(), F_OK) != 0)
    {
        throw NotExistException("Security settings file '{}' does not exist.", path);
    }
    SecuritySettingsDocument document;
    Commons::Xml::XmlConfigDocument("SecuritySettingsDocument", document)
        .Load(path, Commons::Io::TrustedFile::SecuritySettings);
    log.Info("{0} grants were read from security settings '{1}'.", document.grants.size(), path);
    return std::make_shared<const AccessControl>(std::move(document.grants));
}

} // namespace Vela::System::Rsc
