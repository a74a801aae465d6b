#include "ResourceMonitor.hpp"

#include <Vela/System/Kiro/IApplication.hpp>

#include <ctime>
#include <fstream>
#include <string>
#include <utility>

namespace WaterTanks
{

using Vela::String;
using namespace Vela::System;
using namespace Vela::System::Kiro;

namespace
{

constexpr std::chrono::seconds reportTime(4);

/// The process's proportional share of memory, in kilobytes; 0 when the kernel does not tell.
long GetMemory()
{
    std::ifstream file("/proc/self/smaps_rollup");
    for (std::string word; file >> word;)
    {
        if (word == "Pss:")
        {
            long kilobytes = 0;
            file >> kilobytes;
            return kilobytes;
        }
    }
    return 0;
}

std::chrono::nanoseconds GetProcessorUse()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace

ResourceMonitor::ResourceMonitor(IApplication& application, ILibrary& library, const String& name)
    : ComponentBase(application, library, name, ComponentCategory::Custom, GetDefaultStartOrder(), false)
{
}

void ResourceMonitor::Start()
{
    isFirst = true;
    worker.emplace(
        "ResourceMonitor", [this] { Report(); }, reportTime);
    worker->Start();
}

void ResourceMonitor::Stop()
{
    worker.reset();
}

void ResourceMonitor::Report()
{
    const auto now = std::chrono::steady_clock::now();
    const auto use = GetProcessorUse();
    const std::chrono::duration<double> passed = now - std::exchange(lastTime, now);
    const std::chrono::duration<double> used = use - std::exchange(lastUse, use);
    if (!std::exchange(isFirst, false))
    {
        log.Info("process {:<12} {:5.1f} MB   {:4.1f} % of a processor", GetApplication().GetName(),
                 static_cast<double>(GetMemory()) / 1024, 100 * (used / passed));
    }
}

} // namespace WaterTanks
