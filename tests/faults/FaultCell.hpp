#pragma once

#include <string>
#include <vector>

namespace Vela::Testing
{

/// Where a system can be hit, in the order in which it gets there.
enum class Phase
{
    Connect, ///< a child process runs, but does not answer yet
    Load,    ///< in the entry function of a component library
    Create,
    Initialize,
    SubscribeServices,
    LoadSettings,
    SetupSettings,
    PublishServices,
    LoadConfig,
    SetupConfig,
    Start,
    Idle, ///< the system is up
    PowerDown,
    Stop,
    ResetConfig,
    Dispose,
    Destroy,
};

/// What the phases of one group have in common is their roll-back.
enum class Group
{
    Before, ///< there is no component yet
    Create,
    Settings,
    Config,
    Start,
    Idle,
    Backward,
};

struct PhaseTraits
{
    Phase phase;
    Group group;
    const char* step;      ///< as recorders name it
    const char* call;      ///< the remote call that carries it out
    const char* describes; ///< the middle of the log's message of a failure
};

enum class Fault
{
    ThrowPlatform,
    ThrowStandard,
    ThrowUnknown,
    Hang,
    Crash,
    Exit,
    KillChild,
    KillMain,
    Terminate,       ///< SIGTERM to the process that the cell is about
    TerminateTwice,  ///< SIGTERM, and another one, to the main process
    InterruptGroup,  ///< SIGINT to the main process's group
    StopAndContinue, ///< SIGSTOP and SIGCONT to the process that the cell is about
};

enum class Place
{
    Main,
    FirstChild,
    LastChild,
};

/// One cell of the matrix: the faulty component lives in `place`, one that starts before it and one that starts behind
/// it live in the two other processes.
struct FaultCell
{
    Phase phase;
    Fault fault;
    Place place;
    bool isRequired;

    /// Like "Stop/Hang/LastChild/required".
    [[nodiscard]] std::string GetName() const;
    [[nodiscard]] const PhaseTraits& GetPhase() const;
    /// The process of the faulty component.
    [[nodiscard]] std::string GetProcess() const;
    /// The processes of the components before and behind it.
    [[nodiscard]] std::string GetFirstProcess() const;
    [[nodiscard]] std::string GetLastProcess() const;

    [[nodiscard]] bool IsForward() const;
    [[nodiscard]] bool IsBackward() const;
    [[nodiscard]] bool IsThrow() const;
    /// The component does it itself, as told by its script.
    [[nodiscard]] bool IsOwnFault() const;
    /// Nobody can catch what is thrown: it comes from a thread of the component's own, or from a destructor.
    [[nodiscard]] bool IsFatalThrow() const;
    /// The fault ends a process, and which one; empty when it ends none.
    [[nodiscard]] std::string GetKilledProcess() const;
    [[nodiscard]] bool KillsChild() const;
    /// A child ends while the watchdog looks, and it is the watchdog that ends the system. The other half of the cells
    /// in which a child ends lets it sleep, so that the failed call decides.
    [[nodiscard]] bool IsLeftToTheWatchdog() const;
};

/// All cells that are possible, in a fixed order; see the rules in the source.
std::vector<FaultCell> ListCells();

/// A part of them that has every phase with every fault once, with places and necessities in turn.
std::vector<FaultCell> ListSliceOfCells();

} // namespace Vela::Testing
