#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Diagnostics/LoadObserver.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Commons/Io/FileTrust.hpp>
#include <Vela/System/Commons/Io/Path.hpp>

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <climits>
#include <deque>
#include <string_view>
#include <utility>

namespace Vela::System::Commons::Io
{

namespace
{

class Log : private Diagnostics::Loggable<FileTrust>
{
public:
    static void Warn(const Xml::XmlPosition& position, const String& text)
    {
        Diagnostics::Warn(log, Diagnostics::FindingCode::DoubtfulAccess, position, "{0}", text);
    }
};

Xml::XmlPosition GetWholeFile(const String& path)
{
    return {std::make_shared<const Xml::XmlSource>(Xml::XmlSource{path, {}}), 0};
}

/// In the order of the enumeration.
struct Use
{
    const char* name;
    std::atomic<TrustPolicy> policy;
};

Use& GetUse(TrustedFile use)
{
    static std::array<Use, 5> uses{Use{"File", TrustPolicy::Warn}, Use{"Security settings file", TrustPolicy::Refuse},
                                   Use{"Library", TrustPolicy::Warn}, Use{"Executable", TrustPolicy::Warn},
                                   Use{"Runtime directory", TrustPolicy::Refuse}};
    return uses.at(static_cast<std::size_t>(use));
}

/// The way along a path, as the system goes it.
class Walk
{
public:
    Walk(const String& path, uid_t trustedUser)
        : owner(trustedUser)
    {
        Push(Path::GetFullPath(path));
    }

    std::vector<TrustFinding> Go(int descriptor)
    {
        Visit("/");
        while (!rest.empty())
        {
            const String name = std::move(rest.front());
            rest.pop_front();
            const String next = present + "/" + name;
            struct stat status
            {
            };
            if (name == "..")
            {
                present.erase(present.empty() ? 0 : present.rfind('/'));
                continue;
            }
            if (::lstat(next.c_str(), &status) != 0)
            {
                break;
            }
            if (S_ISLNK(status.st_mode))
            {
                Follow(next, status);
                continue;
            }
            if (rest.empty() && descriptor >= 0 && ::fstat(descriptor, &status) != 0)
            {
                break;
            }
            Check(next, status);
            present = next;
        }
        return std::move(findings);
    }

private:
    /// Puts the parts of a path in front of what is left of the way.
    void Push(std::string_view path)
    {
        std::deque<String> parts;
        while (!path.empty())
        {
            const std::size_t end = std::min(path.find('/'), path.size());
            if (const std::string_view part = path.substr(0, end); !part.empty() && part != ".")
            {
                parts.emplace_back(part);
            }
            path.remove_prefix(std::min(end + 1, path.size()));
        }
        rest.insert(rest.begin(), parts.begin(), parts.end());
    }

    void Visit(const String& path)
    {
        struct stat status
        {
        };
        if (::lstat(path.c_str(), &status) == 0)
        {
            Check(path, status);
        }
    }

    void Follow(const String& link, const struct stat& status)
    {
        CheckOwner(link, status);
        std::array<char, PATH_MAX> target{};
        const auto length = ::readlink(link.c_str(), target.data(), target.size());
        if (length <= 0 || ++links > maxLinks)
        {
            findings.push_back({link, "is a link that cannot be followed"});
            rest.clear();
            return;
        }
        if (target[0] == '/')
        {
            present.clear();
        }
        Push({target.data(), static_cast<std::size_t>(length)});
    }

    bool CheckOwner(const String& path, const struct stat& status)
    {
        if (status.st_uid == 0 || status.st_uid == ::geteuid() || status.st_uid == owner)
        {
            return true;
        }
        findings.push_back({path, fmt::format("belongs to user {}", status.st_uid)});
        return false;
    }

    void Check(const String& path, const struct stat& status)
    {
        const mode_t mode = status.st_mode & 07777U;
        if (!CheckOwner(path, status) || (S_ISDIR(status.st_mode) && (mode & S_ISVTX) != 0))
        {
            return;
        }
        if ((mode & S_IWOTH) != 0)
        {
            findings.push_back({path, fmt::format("is writable for everybody (mode {:o})", mode)});
        }
        else if ((mode & S_IWGRP) != 0)
        {
            findings.push_back({path, fmt::format("is writable for group {} (mode {:o})", status.st_gid, mode)});
        }
    }

    /// As many as the system follows.
    static constexpr int maxLinks = 40;

    const uid_t owner;
    /// The way that is gone, without links and without a slash at its end.
    String present;
    std::deque<String> rest;
    int links = 0;
    std::vector<TrustFinding> findings;
};

} // namespace

const EnumDictionary<TrustPolicy>& GetEnumDictionary(TrustPolicy)
{
    static const EnumDictionary<TrustPolicy> dictionary{
        {TrustPolicy::Ignore, "Ignore"}, {TrustPolicy::Warn, "Warn"}, {TrustPolicy::Refuse, "Refuse"}};
    return dictionary;
}

std::vector<TrustFinding> FileTrust::Examine(const String& path, int descriptor, uid_t owner)
{
    return Walk(path, owner).Go(descriptor);
}

std::vector<TrustFinding> FileTrust::Examine(const String& path)
{
    return Examine(path, -1, ::geteuid());
}

void FileTrust::Require(TrustedFile use, const String& path, int descriptor, uid_t owner)
{
    const Use& kind = GetUse(use);
    const TrustPolicy policy = kind.policy;
    if (policy == TrustPolicy::Ignore)
    {
        return;
    }
    const auto findings = Examine(path, descriptor, owner);
    if (findings.empty())
    {
        return;
    }
    String text = fmt::format("{} '{}' can be changed by other users: ", kind.name, path);
    for (const TrustFinding& finding : findings)
    {
        text += fmt::format("{}'{}' {}", text.ends_with(": ") ? "" : ", ", finding.path, finding.reason);
    }
    const auto position = GetWholeFile(path);
    if (policy == TrustPolicy::Refuse)
    {
        Diagnostics::Raise(Diagnostics::FindingCode::RefusedAccess, position, InvalidOperationException("{0}.", text));
        return;
    }
    Log::Warn(position, text + ".");
}

void FileTrust::Require(TrustedFile use, const String& path, int descriptor)
{
    Require(use, path, descriptor, ::geteuid());
}

void FileTrust::SetPolicy(TrustedFile use, TrustPolicy policy) noexcept
{
    GetUse(use).policy = policy;
}

TrustPolicy FileTrust::GetPolicy(TrustedFile use) noexcept
{
    return GetUse(use).policy;
}

} // namespace Vela::System::Commons::Io
