// The components of the benchmark. An "Idler" does nothing in each of its steps. A "Reporter" writes a line
// "<component> <step> <microseconds> <heap bytes>" to the pipe that KIRO_BENCH_REPORTS names when it is created,
// started, stopped and destroyed.
#include <Vela/System/Commons/UniqueFd.hpp>
#include <Vela/System/Kiro/ComponentBase.hpp>
#include <Vela/System/Kiro/IControllerComponent.hpp>
#include <Vela/System/Kiro/LibraryBase.hpp>

#include <fcntl.h>
#include <fmt/format.h>
#include <malloc.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <tuple>

namespace
{

using namespace Vela;
using namespace Vela::System::Kiro;

ILibrary* benchLibrary = nullptr;

class Idler : public ComponentBase, public IControllerComponent
{
public:
    Idler(IApplication& application, const String& name)
        : ComponentBase(application, *benchLibrary, name, ComponentCategory::Custom, GetDefaultStartOrder(), false)
    {
    }

    void Start() override
    {
    }

    void Stop() override
    {
    }
};

class Reporter final : public Idler
{
public:
    Reporter(IApplication& application, const String& name)
        : Idler(application, name)
    {
        Report("create");
    }

    ~Reporter() override
    {
        Report("destroy");
    }

    void Start() override
    {
        Report("start");
    }

    void Stop() override
    {
        Report("stop");
    }

private:
    void Report(const char* step) const
    {
        using Microseconds = std::chrono::duration<double, std::micro>;
        const Microseconds now = std::chrono::steady_clock::now().time_since_epoch();
        const auto heap = ::mallinfo2();
        const String line = fmt::format("{} {} {:.1f} {}\n", GetName(), step, now.count(), heap.uordblks + heap.hblkhd);
        const char* path = std::getenv("KIRO_BENCH_REPORTS");
        const System::Commons::UniqueFd pipe(path == nullptr ? -1 : ::open(path, O_WRONLY | O_CLOEXEC));
        std::ignore = ::write(pipe.Get(), line.data(), line.size());
    }
};

template <typename Component>
std::shared_ptr<IComponent> Make(IApplication& application, const String& name)
{
    return std::make_shared<Component>(application, name);
}

class BenchLibrary final : public LibraryBase
{
public:
    explicit BenchLibrary(AppDomain& appDomain)
        : LibraryBase(appDomain, BasicVersion(1, 0, 0))
    {
        AddComponentFactoryMethod("Idler", &Make<Idler>);
        AddComponentFactoryMethod("Reporter", &Make<Reporter>);
    }
};

} // namespace

ILibrary& VelaDynamicLibraryMain(AppDomain& appDomain)
{
    static BenchLibrary library(appDomain);
    benchLibrary = &library;
    return library;
}
