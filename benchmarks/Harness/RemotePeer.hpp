#pragma once

#include "Harness/Child.hpp"
#include "Harness/TemporaryDirectory.hpp"

#include <Vela/System/Rsc/RscServiceFactory.hpp>
#include <Vela/System/Rsc/RscServiceProxy.hpp>
#include <Vela/System/Rsc/RscString.hpp>

#include <atomic>
#include <cstdint>
#include <memory>

namespace Vela::Benchmarks
{

/// Does nothing, at the price of a call.
class IBenchService : public System::Rsc::IRscService
{
public:
    virtual void Nothing() = 0;
    /// The shape of most lifecycle calls.
    virtual void Name(const System::Rsc::RscString<512>& component) = 0;
    virtual System::Rsc::RscString<512> Strings(const System::Rsc::RscString<512>& left,
                                                const System::Rsc::RscString<512>& right) = 0;
    /// Returns when that many calls of it are in progress.
    virtual void Gather(std::uint32_t count) = 0;
};

class BenchService final : public IBenchService
{
public:
    void Nothing() override;
    void Name(const System::Rsc::RscString<512>& component) override;
    System::Rsc::RscString<512> Strings(const System::Rsc::RscString<512>& left,
                                        const System::Rsc::RscString<512>& right) override;
    void Gather(std::uint32_t count) override;

private:
    std::atomic<std::uint32_t> gathered{0};
};

} // namespace Vela::Benchmarks

namespace Vela::System::Rsc
{

template <>
struct OperationTable<Benchmarks::IBenchService>
{
    using Service = Benchmarks::IBenchService;
    static constexpr const char* interfaceName = "Vela.Benchmarks.IBenchService";
    static constexpr auto operations =
        Operations(Operation<1, &Service::Nothing>("Nothing"), Operation<2, &Service::Name>("Name", noDeadline),
                   Operation<3, &Service::Strings>("Strings"), Operation<4, &Service::Gather>("Gather"));
};

} // namespace Vela::System::Rsc

namespace Vela::Benchmarks
{

/// Bytes of the requests, header and service numbers included; a text takes a type code, an encoding and its length.
inline constexpr std::size_t emptyRequestSize = 16 + 3 * 2;
inline constexpr std::size_t textOverhead = 6;
inline constexpr const char* sampleText = "Plant.Tanks.Simulator.North.01";
inline constexpr std::size_t stringsRequestSize = emptyRequestSize + 2 * (textOverhead + 30);

/// Remoting in a runtime directory of its own, where this process is the main process.
class RemotingScope
{
public:
    RemotingScope();
    RemotingScope(const RemotingScope&) = delete;
    RemotingScope& operator=(const RemotingScope&) = delete;
    ~RemotingScope();

    [[nodiscard]] const TemporaryDirectory& GetDirectory() const noexcept
    {
        return directory;
    }

private:
    TemporaryDirectory directory;
};

/// Another process with the service; remoting must be there.
class RemotePeer
{
public:
    RemotePeer();

    IBenchService& operator*() const noexcept
    {
        return *service;
    }

    IBenchService* operator->() const noexcept
    {
        return service.get();
    }

    [[nodiscard]] const Child& GetProcess() const noexcept
    {
        return process;
    }

private:
    Child process;
    std::shared_ptr<IBenchService> service;
};

/// The service of the process with that name.
std::shared_ptr<IBenchService> FindBenchService(const std::string& processName);

} // namespace Vela::Benchmarks
