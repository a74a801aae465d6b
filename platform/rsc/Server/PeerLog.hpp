#pragma once

#include "Server/ConnectionPeer.hpp"

#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>

#include <chrono>
#include <cstddef>
#include <map>
#include <mutex>
#include <utility>

namespace Vela::System::Rsc
{

/// What warnings about refused and closed connections are about.
inline constexpr const char* connectionsSubject = "connections";

/// Warnings about clients that were refused something. A client that never stops must not fill the log: of one peer's
/// warnings about the same thing only the first few of a period are written, the others are counted. Thread-safe.
class PeerLog : private Commons::Diagnostics::Loggable<PeerLog>
{
public:
    using Writer = void (*)(const String& text);

    /// @param textWriter  logs a text; null: as this class's own warning
    explicit PeerLog(Writer textWriter = nullptr);
    PeerLog(const PeerLog&) = delete;
    PeerLog& operator=(const PeerLog&) = delete;
    /// Writes what is still only counted.
    ~PeerLog();

    /// @param subject  what it is about, such as "connections"; there must be a bounded number of them
    void Warn(const ConnectionPeer& peer, const String& subject, const String& text);
    /// Writes what is still only counted, and begins anew.
    void EndPeriods();

    static constexpr std::size_t maxPerPeriod = 20;
    static constexpr std::chrono::seconds period{10};

private:
    using Clock = std::chrono::steady_clock;

    struct Account
    {
        Clock::time_point begin;
        std::size_t written = 0;
        std::size_t leftOut = 0;
    };

    void EndPeriodsBefore(Clock::time_point end);

    const Writer writer;
    std::mutex mutex;
    std::map<std::pair<ConnectionPeer, String>, Account> accounts;
};

} // namespace Vela::System::Rsc
