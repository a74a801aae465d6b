#pragma once

#include <Vela/System/Kiro/Api.hpp>
#include <Vela/System/Rsc/Marshaling.hpp>
#include <Vela/System/Rsc/RscString.hpp>

#include <cstdint>
#include <tuple>

namespace Vela::System::Kiro::Services
{

/// The public description of a component.
class VELA_KIRO_API ComponentInfo
{
public:
    ComponentInfo() = default;
    ComponentInfo(const ComponentInfo&) = default;
    ComponentInfo& operator=(const ComponentInfo&) = default;
    virtual ~ComponentInfo();

    Rsc::RscString<512> name;
    Rsc::RscString<512> type;
    /// Name of the library; empty for a type that the executable itself provides.
    Rsc::RscString<512> library;
    /// The start order that counts.
    std::uint32_t startOrder = 0;
    bool isRequired = false;
    bool isEnabled = false;
};

} // namespace Vela::System::Kiro::Services

template <>
struct Vela::System::Rsc::StructFields<Vela::System::Kiro::Services::ComponentInfo>
{
    using Info = Kiro::Services::ComponentInfo;
    static constexpr auto fields =
        std::tuple(&Info::name, &Info::type, &Info::library, &Info::startOrder, &Info::isRequired, &Info::isEnabled);
};
