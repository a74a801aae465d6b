#include "Server/PeerLog.hpp"

namespace Vela::System::Rsc
{

PeerLog::~PeerLog()
{
    EndPeriods(Clock::time_point::max());
}

void PeerLog::Warn(const ConnectionPeer& peer, const String& text)
{
    const auto now = Clock::now();
    const std::lock_guard lock(mutex);
    EndPeriods(now);
    Account& account = accounts.try_emplace(peer, Account{now, 0, 0}).first->second;
    if (account.written == maxPerPeriod)
    {
        ++account.leftOut;
        return;
    }
    ++account.written;
    log.Warning("{0}", text);
}

void PeerLog::EndPeriods(Clock::time_point now)
{
    for (auto account = accounts.begin(); account != accounts.end();)
    {
        if (now - account->second.begin < period)
        {
            ++account;
            continue;
        }
        ReportLeftOut(account->first, account->second);
        account = accounts.erase(account);
    }
}

void PeerLog::ReportLeftOut(const ConnectionPeer& peer, const Account& account)
{
    if (account.leftOut > 0)
    {
        log.Warning("{0} more warnings about connections of {1} were left out.", account.leftOut, peer.ToString());
    }
}

} // namespace Vela::System::Rsc
