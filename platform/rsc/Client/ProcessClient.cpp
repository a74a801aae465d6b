#include "Client/ProcessClient.hpp"

#include "Client/ProcessTransaction.hpp"
#include "Transport/TransportException.hpp"

#include <fmt/format.h>

#include <utility>

namespace Vela::System::Rsc
{

ProcessClient::ProcessClient(const std::shared_ptr<const Connector>& processConnector, EndpointAddress endpointAddress,
                             WelcomeMessage processWelcome)
    : connector(processConnector)
    , options(processConnector->GetOptions())
    , address(std::move(endpointAddress))
    , welcome(std::move(processWelcome))
{
}

const String& ProcessClient::GetProcessName() const noexcept
{
    return welcome.processName;
}

std::unique_ptr<IRscServiceLease> ProcessClient::TryLease(const RscCall&)
{
    return nullptr;
}

std::unique_ptr<IRscTransaction> ProcessClient::BeginTransaction(const RscCall& call)
{
    return std::make_unique<ProcessTransaction>(shared_from_this(), call);
}

void ProcessClient::Add(std::unique_ptr<Connection> connection)
{
    const std::lock_guard lock(mutex);
    if (!isClosed && idle.empty() && count < options.maxConnectionsPerProcess)
    {
        idle.push_back(std::move(connection));
        ++count;
    }
}

ProcessClient::Taken ProcessClient::Take(bool isReserved)
{
    Taken taken;
    {
        const std::lock_guard lock(mutex);
        if (isClosed)
        {
            throw TransportException(TransportFailure::Closed, "the connections to the process were closed");
        }
        taken.isReserved = isReserved && !isReservedInUse;
        if (taken.isReserved)
        {
            taken.connection = std::move(idleReserved);
        }
        else if (!idle.empty())
        {
            taken.connection = std::move(idle.back());
            idle.pop_back();
        }
        if (taken.connection == nullptr)
        {
            if (count >= options.maxConnectionsPerProcess)
            {
                throw TransportException(
                    TransportFailure::Refused,
                    fmt::format("{} calls to the process are in progress, which is the limit", count));
            }
            ++count;
        }
        else
        {
            inUse.push_back(taken.connection->channel.get());
        }
        isReservedInUse = isReservedInUse || taken.isReserved;
    }
    if (taken.connection == nullptr)
    {
        try
        {
            taken.connection = Connect();
        }
        catch (...)
        {
            Return(std::move(taken), false);
            throw;
        }
    }
    return taken;
}

std::unique_ptr<Connection> ProcessClient::Connect()
{
    const auto maker = connector.lock();
    if (maker == nullptr)
    {
        throw TransportException(TransportFailure::Closed, "remoting was closed");
    }
    auto connection = maker->Connect(address, Connector::Clock::now() + options.connectTimeout, {});
    if (!connection)
    {
        throw TransportException(TransportFailure::Closed, "the process does not listen any more");
    }
    if (connection->welcome.instanceId != welcome.instanceId)
    {
        throw TransportException(TransportFailure::Closed, "the process has ended; another one has its name now");
    }
    auto made = std::make_unique<Connection>(*std::move(connection));
    const std::lock_guard lock(mutex);
    if (isClosed)
    {
        throw TransportException(TransportFailure::Closed, "the connections to the process were closed");
    }
    inUse.push_back(made->channel.get());
    return made;
}

void ProcessClient::Return(Taken taken, bool isUsable) noexcept
{
    const std::lock_guard lock(mutex);
    if (taken.connection != nullptr)
    {
        std::erase(inUse, taken.connection->channel.get());
    }
    if (taken.isReserved)
    {
        isReservedInUse = false;
    }
    if (!isUsable || isClosed)
    {
        --count;
        return;
    }
    if (taken.isReserved)
    {
        idleReserved = std::move(taken.connection);
    }
    else
    {
        idle.push_back(std::move(taken.connection));
    }
}

void ProcessClient::Close(bool abortCalls) noexcept
{
    const std::lock_guard lock(mutex);
    isClosed = true;
    count -= idle.size() + (idleReserved == nullptr ? 0U : 1U);
    idle.clear();
    idleReserved.reset();
    if (abortCalls)
    {
        for (FrameChannel* channel : inUse)
        {
            channel->Abort();
        }
    }
}

} // namespace Vela::System::Rsc
