#include "Server/PeerLog.hpp"

#include <fmt/format.h>

namespace Vela::System::Rsc
{

PeerLog::PeerLog(Writer textWriter)
    : writer(textWriter != nullptr ? textWriter : [](const String& text) { log.Warning("{0}", text); })
{
}

PeerLog::~PeerLog()
{
    EndPeriods();
}

void PeerLog::Warn(const ConnectionPeer& peer, const String& subject, const String& text)
{
    const auto now = Clock::now();
    const std::lock_guard lock(mutex);
    EndPeriodsBefore(now);
    Account& account = accounts.try_emplace({peer, subject}, Account{now, 0, 0}).first->second;
    if (account.written == maxPerPeriod)
    {
        ++account.leftOut;
        return;
    }
    ++account.written;
    writer(text);
}

void PeerLog::EndPeriods()
{
    const std::lock_guard lock(mutex);
    EndPeriodsBefore(Clock::time_point::max());
}

void PeerLog::EndPeriodsBefore(Clock::time_point end)
{
    for (auto entry = accounts.begin(); entry != accounts.end();)
    {
        const auto& [peer, subject] = entry->first;
        const Account& account = entry->second;
        if (end - account.begin < period)
        {
            ++entry;
            continue;
        }
        if (account.leftOut > 0)
        {
            writer(fmt::format("{0} more warnings about {1} of {2} were left out.", account.leftOut, subject,
                               peer.ToString()));
        }
        entry = accounts.erase(entry);
    }
}

} // namespace Vela::System::Rsc
