#pragma once

#include "Client/ProcessClient.hpp"

#include <Vela/System/Rsc/RscClient.hpp>

#include <cstdint>
#include <memory>
#include <optional>

namespace Vela::System::Rsc
{

struct Failure;

/// One call to another process.
class ProcessTransaction final : public IRscTransaction
{
public:
    /// @throws RscException when there is no connection
    ProcessTransaction(std::shared_ptr<ProcessClient> processClient, const RscCall& callToMake);
    ~ProcessTransaction() override;

    RemotingWriter& BeginServiceInvocationRequest() override;
    void EndServiceInvocationRequest() override;
    RemotingReader& BeginServiceInvocationResponse() override;
    void EndServiceInvocationResponse() override;
    [[nodiscard]] RscException MakeMalformedResponse(const String& why) const override;

private:
    [[nodiscard]] RscException MakeFailure(const String& why) const;
    [[nodiscard]] String Describe(const Failure& failure) const;

    const std::shared_ptr<ProcessClient> client;
    const RscCall call;
    ProcessClient::Taken taken;
    std::optional<RemotingReader> reader;
    /// Between sending the request and having its response the connection is of no use to anybody else.
    bool isInSync = true;
};

} // namespace Vela::System::Rsc
