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

/// Warnings about clients whose connections were refused or closed. A client that never stops must not fill the log: of
/// one peer's warnings only the first few of a period are written, the others are counted. Thread-safe.
class PeerLog : private Commons::Diagnostics::Loggable<PeerLog>
{
public:
    PeerLog() = default;
    PeerLog(const PeerLog&) = delete;
    PeerLog& operator=(const PeerLog&) = delete;
    /// Writes what is still only counted.
    ~PeerLog();

    void Warn(const ConnectionPeer& peer, const String& text);

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

    void EndPeriods(Clock::time_point now);
    static void ReportLeftOut(const ConnectionPeer& peer, const Account& account);

    std::mutex mutex;
    std::map<ConnectionPeer, Account> accounts;
};

} // namespace Vela::System::Rsc
