#pragma once

#include "Server/ConnectionPeer.hpp"

#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>

#include <chrono>
#include <cstddef>
#include <map>
#include <mutex>

namespace Vela::System::Rsc
{

/// Warnings about clients that were refused something. A client that never stops must not fill the log: of one peer's
/// warnings only the first few of a period are written, the others are counted. Thread-safe.
class PeerLog : private Commons::Diagnostics::Loggable<PeerLog>
{
public:
    using Writer = void (*)(const String& text);

    /// @param whatIsRefused  such as "connections", for the count of what was left out
    /// @param textWriter  logs a text; null: as this class's own warning
    explicit PeerLog(const char* whatIsRefused, Writer textWriter = nullptr);
    PeerLog(const PeerLog&) = delete;
    PeerLog& operator=(const PeerLog&) = delete;
    /// Writes what is still only counted.
    ~PeerLog();

    void Warn(const ConnectionPeer& peer, const String& text);
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
    void ReportLeftOut(const ConnectionPeer& peer, const Account& account) const;

    const char* const subject;
    const Writer writer;
    std::mutex mutex;
    std::map<ConnectionPeer, Account> accounts;
};

} // namespace Vela::System::Rsc
