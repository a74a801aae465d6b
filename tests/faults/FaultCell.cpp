#include "FaultCell.hpp"

#include <algorithm>
#include <map>
#include <utility>

namespace Vela::Testing
{

namespace
{

const PhaseTraits phases[] = {
    {Phase::Connect, Group::Before, "Connect", "", ""},
    {Phase::Load, Group::Before, "Load", "LoadLibrary", ""},
    {Phase::Create, Group::Create, "Create", "CreateComponent", ""},
    {Phase::Initialize, Group::Settings, "Initialize", "InitializeComponent", "setting up component"},
    {Phase::SubscribeServices, Group::Settings, "SubscribeServices", "SubscribeComponentServices",
     "setting up component"},
    {Phase::LoadSettings, Group::Settings, "LoadSettings", "LoadComponentSettings", "setting up component"},
    {Phase::SetupSettings, Group::Settings, "SetupSettings", "SetupComponentSettings", "setting up component"},
    {Phase::PublishServices, Group::Settings, "PublishServices", "PublishComponentServices", "setting up component"},
    {Phase::LoadConfig, Group::Config, "LoadConfig", "LoadComponentConfig", "setting up config of component"},
    {Phase::SetupConfig, Group::Config, "SetupConfig", "SetupComponentConfig", "setting up config of component"},
    {Phase::Start, Group::Start, "Start", "StartComponent", "starting component"},
    {Phase::Idle, Group::Idle, "Idle", "", ""},
    {Phase::PowerDown, Group::Backward, "PowerDown", "PowerDownComponent", "powerdown component"},
    {Phase::Stop, Group::Backward, "Stop", "StopComponent", "stopping component"},
    {Phase::ResetConfig, Group::Backward, "ResetConfig", "ResetComponentConfig", "resetting config of component"},
    {Phase::Dispose, Group::Backward, "Dispose", "DisposeComponent", "disposing component"},
    {Phase::Destroy, Group::Backward, "Destroy", "DestroyComponent", "destroying component"},
};

const std::pair<Fault, const char*> faults[] = {
    {Fault::ThrowPlatform, "ThrowPlatform"},
    {Fault::ThrowStandard, "ThrowStandard"},
    {Fault::ThrowUnknown, "ThrowUnknown"},
    {Fault::Hang, "Hang"},
    {Fault::Crash, "Crash"},
    {Fault::Exit, "Exit"},
    {Fault::KillChild, "KillChild"},
    {Fault::KillMain, "KillMain"},
    {Fault::Terminate, "Terminate"},
    {Fault::TerminateTwice, "TerminateTwice"},
    {Fault::InterruptGroup, "InterruptGroup"},
    {Fault::StopAndContinue, "StopAndContinue"},
};

const std::pair<Place, const char*> places[] = {
    {Place::Main, "Main"},
    {Place::FirstChild, "FirstChild"},
    {Place::LastChild, "LastChild"},
};

/// The processes of the component before the faulty one, of the faulty one, and of the one behind it.
const std::map<Place, std::vector<std::string>> processes{
    {Place::Main, {"Left", "MainProcess", "Right"}},
    {Place::FirstChild, {"MainProcess", "Left", "Right"}},
    {Place::LastChild, {"Left", "Right", "MainProcess"}},
};

/// Why a cell is not in the matrix.
struct Exclusion
{
    const char* reason;
    bool (*excludes)(const FaultCell& cell);
};

const Exclusion exclusions[] = {
    {"The main process does not wait for itself to answer.",
     [](const FaultCell& cell)
     {
         return cell.phase == Phase::Connect && cell.place == Place::Main;
     }},
    {"A process that does not answer yet runs no code of components that could throw.",
     [](const FaultCell& cell)
     {
         return cell.phase == Phase::Connect && cell.IsThrow();
     }},
    {"Nobody waits for a component of a system that is up.",
     [](const FaultCell& cell)
     {
         return cell.phase == Phase::Idle && cell.fault == Fault::Hang;
     }},
    {"The second signal to a system that nothing holds comes in a backward phase.",
     [](const FaultCell& cell)
     {
         return cell.phase == Phase::Idle && cell.fault == Fault::TerminateTwice;
     }},
};

} // namespace

const PhaseTraits& FaultCell::GetPhase() const
{
    return *std::find_if(std::begin(phases), std::end(phases),
                         [this](const PhaseTraits& traits) { return traits.phase == phase; });
}

std::string FaultCell::GetName() const
{
    const auto find = [](const auto& table, auto value)
    {
        return std::string(std::find_if(std::begin(table), std::end(table),
                                        [value](const auto& entry) { return entry.first == value; })
                               ->second);
    };
    return std::string(GetPhase().step) + "/" + find(faults, fault) + "/" + find(places, place) + "/" +
           (isRequired ? "required" : "optional");
}

std::string FaultCell::GetProcess() const
{
    return processes.at(place)[1];
}

std::string FaultCell::GetFirstProcess() const
{
    return processes.at(place)[0];
}

std::string FaultCell::GetLastProcess() const
{
    return processes.at(place)[2];
}

bool FaultCell::IsForward() const
{
    return phase < Phase::Idle;
}

bool FaultCell::IsBackward() const
{
    return phase > Phase::PowerDown;
}

bool FaultCell::IsThrow() const
{
    return fault <= Fault::ThrowUnknown;
}

bool FaultCell::IsOwnFault() const
{
    return fault < Fault::KillChild;
}

bool FaultCell::IsFatalThrow() const
{
    return IsThrow() && (phase == Phase::Idle || phase == Phase::Destroy);
}

std::string FaultCell::GetKilledProcess() const
{
    switch (fault)
    {
    case Fault::Crash:
    case Fault::Exit:
        return GetProcess();
    case Fault::KillChild:
        return place == Place::Main ? "Left" : GetProcess();
    case Fault::KillMain:
        return "MainProcess";
    default:
        return IsFatalThrow() ? GetProcess() : "";
    }
}

bool FaultCell::KillsChild() const
{
    const std::string killed = GetKilledProcess();
    return !killed.empty() && killed != "MainProcess";
}

bool FaultCell::IsLeftToTheWatchdog() const
{
    if (!KillsChild() || phase == Phase::Connect)
    {
        return false;
    }
    // Another process than the one that is called has ended, so no call fails.
    if (GetKilledProcess() != GetProcess())
    {
        return true;
    }
    // What cannot be loaded or created ends the set-up at once, required or not: nothing holds the main process then.
    return !isRequired && phase > Phase::Create;
}

std::vector<FaultCell> ListCells()
{
    std::vector<FaultCell> cells;
    for (const PhaseTraits& traits : phases)
    {
        for (const auto& [fault, faultName] : faults)
        {
            for (const auto& [place, placeName] : places)
            {
                for (const bool isRequired : {true, false})
                {
                    const FaultCell cell{traits.phase, fault, place, isRequired};
                    if (std::none_of(std::begin(exclusions), std::end(exclusions),
                                     [&](const Exclusion& exclusion) { return exclusion.excludes(cell); }))
                    {
                        cells.push_back(cell);
                    }
                }
            }
        }
    }
    return cells;
}

std::vector<FaultCell> ListSliceOfCells()
{
    std::map<std::pair<Phase, Fault>, std::vector<FaultCell>> pairs;
    for (const FaultCell& cell : ListCells())
    {
        pairs[{cell.phase, cell.fault}].push_back(cell);
    }
    std::vector<FaultCell> slice;
    slice.reserve(pairs.size());
    std::size_t turn = 0;
    for (const auto& [pair, cells] : pairs)
    {
        slice.push_back(cells[turn++ % cells.size()]);
    }
    return slice;
}

} // namespace Vela::Testing
