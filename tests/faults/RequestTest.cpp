// Components that turn to the system that is just calling them, and requests that cross each other.

#include <Vela/System/Commons/UniqueFd.hpp>

#include <SystemFixture.hpp>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <tuple>

namespace Vela::Testing
{
namespace
{

namespace Commons = System::Commons;

class RequestTest : public SystemTest
{
protected:
    const std::vector<std::string> forwardSteps{"Create",       "Initialize",    "SubscribeServices",
                                                "LoadSettings", "SetupSettings", "PublishServices",
                                                "LoadConfig",   "SetupConfig",   "Start"};
    const std::vector<std::string> backwardSteps{"Stop", "ResetConfig", "Dispose", "Destroy"};
    const std::string whole =
        "Create Initialize SubscribeServices LoadSettings SetupSettings PublishServices LoadConfig "
        "SetupConfig Start Stop ResetConfig Dispose Destroy";
    const std::string gate = MakeFifo("gate");

    RequestTest()
    {
        Configure({"MainProcess", "Left"}, {{"InLeft", "Left"}, {"InMain", "MainProcess"}});
    }

    [[nodiscard]] std::string MakeFifo(const std::string& name) const
    {
        std::string fifo = system.directory / name;
        EXPECT_EQ(mkfifo(fifo.c_str(), S_IRUSR | S_IWUSR), 0);
        return fifo;
    }

    /// Waits until somebody waits at a FIFO, and keeps him there as long as the descriptor is open.
    static Commons::UniqueFd Hold(const std::string& fifo)
    {
        return Commons::UniqueFd(open(fifo.c_str(), O_WRONLY | O_CLOEXEC));
    }

    void OpenGate() const
    {
        Hold(gate);
    }

    void ExpectOrderlyEnd(StartedProcess& main) const
    {
        EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
        EXPECT_FALSE(main.HasOutput("Error")) << main.GetOutput();
        EXPECT_FALSE(main.HasOutput("Fatal")) << main.GetOutput();
        EXPECT_EQ(system.FindLeftovers(), "") << main.GetOutput();
    }

    static std::string Repeat(const std::string& text, int count)
    {
        std::string all;
        for (int turn = 0; turn < count; ++turn)
        {
            all += (turn == 0 ? "" : " ") + text;
        }
        return all;
    }
};

TEST_F(RequestTest, AShutdownFromInsideAStepEndsTheSystemOnceItIsUp)
{
    for (const char* component : {"InLeft", "InMain"})
    {
        for (const std::string& step : forwardSteps)
        {
            system.directory.Write("trace", "");
            WriteScript(component + (" " + step) + " request Shutdown\n");
            StartedProcess main = system.Start();
            main.AwaitLine(isUp);
            ExpectOrderlyEnd(main);
            EXPECT_EQ(GetSteps("InLeft"), whole) << step;
            EXPECT_EQ(GetSteps("InMain"), whole) << step;
        }
    }
}

TEST_F(RequestTest, APowerDownFromInsideAStepIsRefused)
{
    for (const char* component : {"InLeft", "InMain"})
    {
        // In one system: each step asks.
        std::string script;
        for (const auto* steps : {&forwardSteps, &backwardSteps})
        {
            for (const std::string& step : *steps)
            {
                script += component + (" " + step) + " attempt request PowerDown\n";
            }
        }
        WriteScript(script);
        system.directory.Write("trace", "");
        StartedProcess main = system.Start();
        main.AwaitLine(isUp);
        main.Signal(SIGTERM);
        ExpectOrderlyEnd(main);
        EXPECT_EQ(main.CountOutput("attempted 'request PowerDown': InvalidOperationException: Power down is refused"),
                  static_cast<int>(forwardSteps.size() + backwardSteps.size()))
            << main.GetOutput();
        EXPECT_EQ(GetOrder("PowerDown"), "");
    }
}

TEST_F(RequestTest, ARestartFromInsideAStepStartsTheSystemAgainOnce)
{
    for (const char* component : {"InLeft", "InMain"})
    {
        for (const char* step : {"Create", "SetupSettings", "Start"})
        {
            system.directory.Write("trace", "");
            WriteScript(component + (" " + std::string(step)) + " await " + gate + "\n" + component + " " + step +
                        " request Restart\n");
            StartedProcess main = system.Start();
            main.AwaitLine(std::string(component) + " takes step " + step);
            WriteScript("");
            OpenGate();
            main.AwaitLine(isUp);
            main.AwaitLine(isUp);
            main.Signal(SIGTERM);
            ExpectOrderlyEnd(main);
            EXPECT_EQ(GetSteps("InLeft"), Repeat(whole, 2)) << step;
            EXPECT_EQ(GetSteps("InMain"), Repeat(whole, 2)) << step;
        }
    }
}

TEST_F(RequestTest, ASignalWhileARestartTakesTheSystemDownEndsIt)
{
    for (const std::string& step : backwardSteps)
    {
        system.directory.Write("trace", "");
        WriteScript("InLeft Start request Restart\nInLeft " + step + " await " + gate + "\n");
        StartedProcess main = system.Start();
        main.AwaitLine("InLeft takes step " + step);
        main.Signal(SIGTERM);
        main.AwaitLine("requests the shutdown of the system");
        OpenGate();
        ExpectOrderlyEnd(main);
        EXPECT_EQ(GetSteps("InLeft"), whole) << step;
    }
}

TEST_F(RequestTest, OnTheWayDownAShutdownWithdrawsARestartAndARestartComesTooLateForAShutdown)
{
    const std::tuple<std::string, std::string, int> cases[] = {
        {"Shutdown", "Restart", 1}, {"Restart", "Shutdown", 1}, {"Restart", "Restart", 2}};
    for (const char* component : {"InLeft", "InMain"})
    {
        for (const std::string& step : backwardSteps)
        {
            for (const auto& [first, second, runs] : cases)
            {
                SCOPED_TRACE(fmt::format("{}, then {} from {} at {}", first, second, component, step));
                system.directory.Write("trace", "");
                WriteScript(fmt::format("InLeft Start request {0}\n{1} {2} await {3}\n{1} {2} attempt request {4}\n",
                                        first, component, step, gate, second));
                StartedProcess main = system.Start();
                main.AwaitLine(fmt::format("{} takes step {}", component, step));
                WriteScript("");
                OpenGate();
                if (runs > 1)
                {
                    main.AwaitLine(isUp);
                    main.Signal(SIGTERM);
                }
                ExpectOrderlyEnd(main);
                EXPECT_TRUE(main.HasOutput("attempted 'request " + second + "'.")) << main.GetOutput();
                EXPECT_EQ(GetSteps("InLeft"), Repeat(whole, runs));
                EXPECT_EQ(GetSteps("InMain"), Repeat(whole, runs));
            }
        }
    }
}

TEST_F(RequestTest, AComponentCanCallItselfAndOthersFromInsideAStep)
{
    WriteScript("* PublishServices publish\n"
                "InLeft LoadConfig call InLeft sleep 0\n"
                "InLeft Start call InMain throw own the tank is empty\n"
                "InMain Start attempt call InLeft call InMain sleep 0\n");
    StartedProcess main = system.Start();
    main.AwaitLine(isUp);
    EXPECT_TRUE(main.HasOutput("InLeft takes step CallEnd")) << main.GetOutput();
    EXPECT_TRUE(main.HasOutput("will be disposed and removed.")) << main.GetOutput();
    EXPECT_TRUE(main.HasOutput("the tank is empty")) << main.GetOutput();
    main.Signal(SIGTERM);
    EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
    EXPECT_EQ(system.FindLeftovers(), "");
}

TEST_F(RequestTest, ShutdownRestartAndPowerDownAtOnceEndInOneOfTheOrdersThatArePossible)
{
    Configure({"MainProcess", "Left", "Right"}, {{"InLeft", "Left"}, {"InMain", "MainProcess"}, {"InRight", "Right"}});
    const std::vector<std::string> fifos{MakeFifo("first"), MakeFifo("second"), MakeFifo("third")};
    for (std::size_t round = 0; round < 12; ++round)
    {
        system.directory.Write("trace", "");
        WriteScript("InLeft Start when " + fifos[0] + " attempt request Restart\nInMain Start when " + fifos[1] +
                    " attempt request PowerDown\nInRight Start when " + fifos[2] + " attempt request Shutdown\n");
        StartedProcess main = system.Start();
        main.AwaitLine(isUp);
        WriteScript("");
        {
            std::vector<Commons::UniqueFd> held;
            for (std::size_t turn = 0; turn < fifos.size(); ++turn)
            {
                held.push_back(Hold(fifos[(turn + round) % fifos.size()]));
            }
        }
        main.AwaitLine("Application 'MainProcess' terminates.");
        // Who was last decides whether it starts again.
        try
        {
            main.AwaitLine(isUp);
            main.Signal(SIGTERM);
        }
        catch (const std::runtime_error&)
        {
            EXPECT_FALSE(main.HasOutput("Fatal")) << main.GetOutput();
        }
        EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
        EXPECT_EQ(system.FindLeftovers(), "") << main.GetOutput();
        const std::string order = GetOrder("Destroy");
        EXPECT_TRUE(order == "InRight InMain InLeft" || order == Repeat("InRight InMain InLeft", 2)) << order;
    }
}

} // namespace
} // namespace Vela::Testing
