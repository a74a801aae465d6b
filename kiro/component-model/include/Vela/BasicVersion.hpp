#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Kiro/Api.hpp>

#include <cstdint>

namespace Vela
{

/// A version: four numbers, with a name and a suffix that may be empty. A plain value.
class VELA_KIRO_API BasicVersion
{
public:
    /// 0.0.0.0
    BasicVersion() = default;
    /// A version without a name.
    BasicVersion(std::uint8_t majorNumber, std::uint8_t minorNumber, std::uint8_t patchNumber = 0,
                 std::uint32_t buildNumber = 0, String versionSuffix = {});
    /// A version with a name, such as "2024.0.8 LTS".
    BasicVersion(String versionName, std::uint8_t majorNumber, std::uint8_t minorNumber, std::uint8_t patchNumber,
                 std::uint32_t buildNumber, String versionSuffix = {});

    [[nodiscard]] const String& GetName() const noexcept;
    [[nodiscard]] std::uint8_t GetMajorVersion() const noexcept;
    [[nodiscard]] std::uint8_t GetMinorVersion() const noexcept;
    [[nodiscard]] std::uint8_t GetPatchVersion() const noexcept;
    [[nodiscard]] std::uint32_t GetBuildVersion() const noexcept;
    [[nodiscard]] const String& GetSuffix() const noexcept;

    /// The numbers, the suffix behind them and the name before them: "Release (1.2.3.4 beta)", "1.2.3.4 beta" or
    /// "1.2.3.4".
    [[nodiscard]] String ToString() const;

    /// Reads either text form; numbers left out are 0. Answers false, leaving `result` alone, for any other text and
    /// for a number that does not fit its field.
    static bool TryParse(const String& text, BasicVersion& result);
    /// @throws Exception where TryParse answers false
    static BasicVersion Parse(const String& text);

    bool operator==(const BasicVersion& other) const = default;

private:
    String name;
    std::uint8_t major = 0;
    std::uint8_t minor = 0;
    std::uint8_t patch = 0;
    std::uint32_t build = 0;
    String suffix;
};

} // namespace Vela
