#pragma once

#include <Vela/EnumDictionary.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

#include <sys/types.h>

#include <cstdint>
#include <vector>

namespace Vela::System::Commons::Io
{

/// What a file is to the process that uses it.
enum class TrustedFile : std::uint8_t
{
    /// Settings, configuration and all other documents.
    Document,
    SecuritySettings,
    Library,
    /// Of a child process.
    Executable,
    RuntimeDirectory,
};

/// What happens when others than root and the process's user can change a file.
enum class TrustPolicy : std::uint8_t
{
    Ignore,
    Warn,
    Refuse,
};

VELA_COMMONS_API const EnumDictionary<TrustPolicy>& GetEnumDictionary(TrustPolicy);

/// A file, directory or link that others can change.
struct TrustFinding
{
    String path;
    /// For example "is writable for everybody (mode 777)".
    String reason;
};

/// Tells whether others than root and this process's user can decide what a path leads to: by writing into the file, by
/// replacing it or a directory on the way to it, or by bending a link. A directory in which everybody makes files but
/// only their owners may replace them (sticky, as /tmp) is no way in.
///
/// When nothing is found, nobody else can change what a check saw after the check either. Thread-safe.
class VELA_COMMONS_API FileTrust
{
public:
    /// Walks the path as the system does, link by link.
    /// @param path  a path that leads nowhere is examined as far as it goes
    /// @param descriptor  the file as it was opened; it counts for what stands at the end of the path; -1: none
    /// @param owner  a further user who is trusted
    static std::vector<TrustFinding> Examine(const String& path, int descriptor, uid_t owner);
    static std::vector<TrustFinding> Examine(const String& path);

    /// Examines a path that is about to be used and does what the policy says.
    /// @throws InvalidOperationException
    static void Require(TrustedFile use, const String& path, int descriptor, uid_t owner);
    static void Require(TrustedFile use, const String& path, int descriptor = -1);

    /// At first security settings and the runtime directory are refused, all others are warned of.
    static void SetPolicy(TrustedFile use, TrustPolicy policy) noexcept;
    static TrustPolicy GetPolicy(TrustedFile use) noexcept;
};

} // namespace Vela::System::Commons::Io
