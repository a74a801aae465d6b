#pragma once

#include <Vela/System/Rsc/IRscServiceStub.hpp>
#include <Vela/System/Rsc/Marshaling.hpp>
#include <Vela/System/Rsc/OperationTable.hpp>
#include <Vela/System/Rsc/RscServerContext.hpp>
#include <Vela/System/Rsc/RscServiceAuthorizator.hpp>

#include <memory>
#include <tuple>
#include <type_traits>
#include <utility>

namespace Vela::System::Rsc
{

/// The stub of an interface, derived from its operation table.
template <typename Interface>
class RscServiceStub : public IRscServiceStub
{
public:
    explicit RscServiceStub(std::shared_ptr<Interface> serviceImpl)
        : impl(std::move(serviceImpl))
    {
    }

    void Invoke(int operationNumber, RscServerContext& context) override
    {
        const bool isKnown = VisitOperation<Interface>(operationNumber, [this, &context]<typename Entry>(const Entry&)
                                                       { this->template InvokeMethod<Entry::method>(context); });
        if (!isKnown)
        {
            context.AbortRequest(RscErrorCode::UnknownOperation, nullptr);
        }
    }

    void Authorize(const char*) const override
    {
    }

    [[nodiscard]] const char* GetOperationName(int operationNumber) const noexcept override
    {
        return FindOperationName<Interface>(operationNumber);
    }

    [[nodiscard]] bool IsSecure() const noexcept override
    {
        return false;
    }

    [[nodiscard]] IRscService& GetService() noexcept override
    {
        return *impl;
    }

private:
    template <auto Method>
    void InvokeMethod(RscServerContext& context)
    {
        using Traits = MethodTraits<decltype(Method)>;
        InvokeWithArguments<Method, Traits>(context, Traits::indexes);
    }

    template <auto Method, typename Traits, std::size_t... Index>
    void InvokeWithArguments(RscServerContext& context, std::index_sequence<Index...>)
    {
        typename Traits::Storage arguments{};
        [[maybe_unused]] RemotingReader& reader = context.GetReader();
        RemotingWriter& writer = context.GetWriter();
        bool isWellFormed = true;
        try
        {
            (ReadInArgument<Traits::template isOut<Index>>(reader, std::get<Index>(arguments)), ...);
            reader.ReadEnd();
        }
        catch (const RscException& exception)
        {
            context.AbortRequest(RscErrorCode::MalformedRequest, exception.GetMessage().c_str());
            isWellFormed = false;
        }
        if (!isWellFormed)
        {
            return;
        }
        if constexpr (std::is_void_v<typename Traits::Result>)
        {
            ((*impl).*Method)(static_cast<typename Traits::template Argument<Index>>(std::get<Index>(arguments))...);
            writer.WriteConfirmation(false);
        }
        else
        {
            const auto result = ((*impl).*Method)(
                static_cast<typename Traits::template Argument<Index>>(std::get<Index>(arguments))...);
            writer.WriteConfirmation(false);
            WriteRemote(writer, result);
        }
        (WriteOutArgument<Traits::template isOut<Index>>(writer, std::get<Index>(arguments)), ...);
    }

    std::shared_ptr<Interface> impl;
};

/// The same, authorising every call first, by the operation's name in the table.
template <typename Interface>
class RscServiceSecurityStub final : public RscServiceStub<Interface>
{
public:
    RscServiceSecurityStub(std::shared_ptr<Interface> serviceImpl, RscServiceAuthorizator serviceAuthorizator)
        : RscServiceStub<Interface>(std::move(serviceImpl))
        , authorizator(std::move(serviceAuthorizator))
    {
    }

    void Invoke(int operationNumber, RscServerContext& context) override
    {
        if (const char* operationName = this->GetOperationName(operationNumber))
        {
            Authorize(operationName);
        }
        RscServiceStub<Interface>::Invoke(operationNumber, context);
    }

    void Authorize(const char* operationName) const override
    {
        authorizator.AuthorizeServiceInvocation(operationName);
    }

    [[nodiscard]] bool IsSecure() const noexcept override
    {
        return true;
    }

private:
    RscServiceAuthorizator authorizator;
};

} // namespace Vela::System::Rsc
