// What is done again and again must not add up: memory, descriptors, threads and mappings end where they began.
//
// An ordinary run takes some rounds. VELA_ENDURE=1 takes all that "./dev endure" promises.

#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>
#include <Vela/System/Kiro/Internal/MainApplicationBase.hpp>
#include <Vela/System/Kiro/Services/Internal/ProcessManagerServiceProxy.hpp>
#include <Vela/System/Rsc/RscManager.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

#include <Emulation.hpp>
#include <SystemFixture.hpp>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <thread>

namespace Vela::Testing
{
namespace
{

using System::Commons::Environment;

/// What was freed stays in a sanitizer's quarantine, and an emulator keeps what it has translated.
bool IsMemoryTold()
{
#ifdef VELA_SANITIZED
    return false;
#else
    return !IsEmulated();
#endif
}

int GetRounds(int ordinary, int all)
{
    return std::getenv("VELA_ENDURE") == nullptr ? ordinary : all;
}

/// What a process holds.
struct Holdings
{
    long memory = 0; ///< of its own, in KiB
    long descriptors = 0;
    long threads = 0;
    long mappings = 0;

    static Holdings Of(pid_t process)
    {
        const std::filesystem::path directory = "/proc/" + std::to_string(process);
        Holdings holdings;
        std::ifstream status(directory / "status");
        for (std::string line; std::getline(status, line);)
        {
            std::istringstream words(line);
            std::string name;
            long value = 0;
            words >> name >> value;
            holdings.memory = name == "RssAnon:" ? value : holdings.memory;
            holdings.threads = name == "Threads:" ? value : holdings.threads;
        }
        using Iterator = std::filesystem::directory_iterator;
        holdings.descriptors = std::distance(Iterator(directory / "fd"), Iterator());
        std::ifstream maps(directory / "maps");
        using Characters = std::istreambuf_iterator<char>;
        holdings.mappings = static_cast<long>(std::count(Characters(maps), Characters(), '\n'));
        return holdings;
    }

    /// @param rounds  between the two
    static void ExpectNoGrowth(const Holdings& before, const Holdings& after, int rounds)
    {
        std::cout << rounds << " rounds: memory " << before.memory << " -> " << after.memory << " KiB, descriptors "
                  << before.descriptors << " -> " << after.descriptors << ", threads " << before.threads << " -> "
                  << after.threads << ", mappings " << before.mappings << " -> " << after.mappings << "\n";
        // The heap breathes by some pages; what is lost each round would be far more.
        constexpr long breath = 512;
        if (IsMemoryTold())
        {
            EXPECT_LE(after.memory, before.memory + breath);
            EXPECT_LE(after.mappings, before.mappings + 8);
        }
        EXPECT_LE(after.descriptors, before.descriptors);
        EXPECT_LE(after.threads, before.threads);
    }
};

class EnduranceTest : public SystemTest
{
protected:
    /// The rounds in which a process still finds its size.
    static constexpr int warmUp = 10;
    static constexpr int roundsPerReport = 100;

    /// Runs the function `rounds` times and compares what the process holds after the warm-up and at the end.
    template <typename Function>
    static void Repeat(int rounds, pid_t process, Function&& function)
    {
        Holdings before;
        for (int round = 0; round < rounds; ++round)
        {
            function();
            if (round + 1 == warmUp)
            {
                before = Holdings::Of(process);
            }
            if ((round + 1) % roundsPerReport == 0)
            {
                std::cerr << round + 1 << " of " << rounds << " rounds\n";
            }
        }
        // A connection that has just been closed may still be on its way out.
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        Holdings after = Holdings::Of(process);
        while ((after.descriptors > before.descriptors || after.threads > before.threads) &&
               std::chrono::steady_clock::now() < deadline)
        {
            std::this_thread::yield();
            after = Holdings::Of(process);
        }
        Holdings::ExpectNoGrowth(before, after, rounds - warmUp);
    }
};

TEST_F(EnduranceTest, AMainProcessComesAndGoesWithoutTrace)
{
    mkdir((system.directory / "log").c_str(), S_IRWXU);
    system.WriteSettings("<LogSettings logDir='log' logLevel='Error'/>");
    Configure({"MainProcess", "Left"}, {{"InMain", "MainProcess"}, {"InLeft", "Left"}});
    WriteScript("InMain Start request Shutdown\n");
    for (const auto& [name, value] : system.environment)
    {
        setenv(name.c_str(), value.c_str(), 1);
    }
    std::vector<std::string> arguments{"test", "--singleProcess=true",
                                       "--settings=" + (system.directory / "Default.kiro.settings"),
                                       "--config=" + (system.directory / "Default.kiro.config")};
    std::vector<char*> pointers;
    pointers.reserve(arguments.size());
    for (std::string& argument : arguments)
    {
        pointers.push_back(argument.data());
    }
    Repeat(GetRounds(60, 1000), getpid(),
           [&]
           {
               System::Kiro::Internal::MainApplicationBase host("MainProcess", true, false, true);
               EXPECT_EQ(host.Main(static_cast<int>(pointers.size()), pointers.data(),
                                   System::Commons::Diagnostics::LogLevel::None),
                         0);
               EXPECT_TRUE(host.Dispose());
               // It only grows as a file does.
               system.directory.Write("trace", "");
           });
    EXPECT_EQ(system.directory.Read("log/MainProcess.log"), "");
    EXPECT_EQ(system.FindLeftovers(), "");
}

TEST_F(EnduranceTest, AWholeSystemRestartsInPlaceWithoutTrace)
{
    const std::string gate = system.directory / "gate";
    ASSERT_EQ(mkfifo(gate.c_str(), S_IRUSR | S_IWUSR), 0);
    Configure({"MainProcess", "Left", "Right"}, {{"InMain", "MainProcess"}, {"InLeft", "Left"}, {"InRight", "Right"}});
    WriteScript("InRight Start when " + gate + " attempt request Restart\n");
    StartedProcess main = system.Start();
    main.AwaitLine(isUp);
    const int rounds = GetRounds(15, 1000);
    Repeat(rounds, main.GetId(),
           [&]
           {
               close(open(gate.c_str(), O_WRONLY | O_CLOEXEC));
               main.AwaitLine(isUp);
           });
    WriteScript("");
    close(open(gate.c_str(), O_WRONLY | O_CLOEXEC));
    main.AwaitLine(isUp);
    main.Signal(SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), 0);
    EXPECT_EQ(main.CountOutput(isUp), rounds + 2);
    EXPECT_FALSE(main.HasOutput("Error"));
    EXPECT_FALSE(main.HasOutput("Warning"));
    EXPECT_EQ(system.FindLeftovers(), "");
}

TEST_F(EnduranceTest, AProcessLoadsCreatesDestroysAndUnloadsWithoutTrace)
{
    using namespace System::Kiro::Services::Internal;
    using Name = System::Rsc::RscString<512>;
    Environment::Setup();
    Environment::SetVariable(Environment::runtimeDirectoryName, system.GetRuntimeDirectory());
    {
        // Nobody reads its output, so it says little.
        system.environment["RECORDING_TRACE"] = "";
        StartedProcess plant = system.Start({"--child=true", "--name=Plant", "--loglevel=Error"});
        System::Rsc::RscManager::CreateInstance("Operator", 0, String(), false);
        const auto service = System::Rsc::ServiceManager::GetService(ProcessManagerServiceProxyFactory::GetInstance(),
                                                                     System::Rsc::ServiceProvider::Process("Plant"));
        const Name library("Recording");
        const Name path(TestSystem::GetBuiltFile("lib/libRecording.so"));
        const Name name("Pump");
        Repeat(GetRounds(200, 10000), plant.GetId(),
               [&]
               {
                   ASSERT_TRUE(service->LoadLibrary(library, path));
                   service->CreateComponent(Name("RecordingController"), name, library);
                   service->InitializeComponent(name);
                   service->DisposeComponent(name);
                   service->DestroyComponent(name);
                   service->UnloadLibrary(library);
               });
        service->ShutdownProcess();
        EXPECT_EQ(plant.AwaitEnd(), 0) << plant.GetOutput();
        System::Rsc::RscManager::DisposeInstance();
    }
    Environment::Dispose();
    EXPECT_EQ(system.FindLeftovers(), "");
}

} // namespace
} // namespace Vela::Testing
