// A component library for tests: its components record every step that they take and misbehave as they are told.
//
// Trace. Every step appends one line "<process> <component> <step>" to the file that the environment variable
// RECORDING_TRACE names, each by a single write; the same goes to the log, at level 6, as "<component> takes step
// <step>". Steps are named like the operations (Initialize, ..., Start, Stop, ..., PowerDown); besides there are Create
// and Destroy, Call and CallEnd around a call of the published service, and Load and Unload of the library itself,
// whose process and component are "-".
//
// Types. A type is "Recorder", followed by any of ":controller", ":system", ":service", ":none", ":singleton" and
// ":order=<start order>", such as "Recorder:controller:order=5". "RecordingController", "RecordingSystem",
// "RecordingNone" and "RecordingSingleton" are short for the obvious.
//
// Script. The file that RECORDING_SCRIPT names (it holds from the constructor on) and the component's settings file (it
// holds from LoadSettings on) have one line per action, "<component or *> <step> <action>":
//
//     throw platform|standard|own|unknown [text]   own: a standard exception whose class lives in this library
//     sleep <milliseconds>
//     hang                                          never returns
//     await <fifo>                                  until somebody has opened the FIFO for writing and closed it again;
//                                                   when that opening returns, the step is here
//     settle <thread>                               waits until that thread of the parent process rests
//     crash | kill | exit <code>                    the process ends: SIGSEGV, SIGKILL, _exit
//     publish [<name>]                              publishes IRecordingService under the component's name
//     request Shutdown|Restart|PowerDown            asks the system manager
//     call <component> <action>                     lets a component that has published its service act
//     attempt <action>                              logs what the action throws and goes on
//     when <fifo> <action>                          goes on at once; a thread of the component awaits the FIFO, then
//     acts
//
// Lines for the step "Load" act in the library's entry function: of every process for the component "-", of one process
// for "-@<process>". Lines for "Destroy" act in the destructor, from which nothing may be thrown.

#include "Recorder.hpp"

#include <Vela/AppDomain.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Kiro/LibraryBase.hpp>

#include <map>
#include <sstream>

namespace
{

using namespace Vela;
using namespace Vela::System::Kiro;
using namespace Vela::Testing;

const std::map<String, String> shortTypes{
    {"RecordingController", "Recorder:controller"},
    {"RecordingSystem", "Recorder:system"},
    {"RecordingNone", "Recorder:none"},
    {"RecordingSingleton", "Recorder:singleton"},
};

struct RecorderType
{
    RecorderTraits traits;
    bool isController = false;

    /// False for a text that names no type.
    bool TryParse(const String& text)
    {
        const auto found = shortTypes.find(text);
        std::istringstream parts(found == shortTypes.end() ? text : found->second);
        String part;
        bool isValid = std::getline(parts, part, ':') && part == "Recorder";
        while (isValid && std::getline(parts, part, ':'))
        {
            isValid = TryParseOption(part);
        }
        return isValid;
    }

private:
    bool TryParseOption(const String& option)
    {
        static const std::map<String, ComponentCategory> categories{{"system", ComponentCategory::System},
                                                                    {"service", ComponentCategory::Service},
                                                                    {"none", ComponentCategory::None}};
        if (const auto found = categories.find(option); found != categories.end())
        {
            traits.category = found->second;
        }
        else if (option == "controller")
        {
            isController = true;
        }
        else if (option == "singleton")
        {
            traits.isSingleton = true;
        }
        else if (option.starts_with("order="))
        {
            traits.startOrder = static_cast<std::uint32_t>(std::stoul(option.substr(6)));
        }
        else
        {
            return false;
        }
        return true;
    }
};

class RecordingFactory : public IComponentFactory
{
public:
    explicit RecordingFactory(ILibrary& recordingLibrary)
        : library(recordingLibrary)
    {
    }

    bool ContainsComponentType(const String& componentType) override
    {
        return RecorderType().TryParse(componentType);
    }

    std::shared_ptr<IComponent> CreateComponent(IApplication& application, const String& componentType,
                                                const String& componentName) override
    {
        RecorderType type;
        if (!type.TryParse(componentType))
        {
            throw InvalidOperationException("There is no recorder of type '{0}'.", componentType);
        }
        return type.isController ? Make<RecordingController>(application, componentName, type.traits)
                                 : Make<Recorder>(application, componentName, type.traits);
    }

private:
    template <typename Base>
    std::shared_ptr<IComponent> Make(IApplication& application, const String& name, const RecorderTraits& traits)
    {
        if (traits.isSingleton)
        {
            return std::make_shared<SingularRecorder<Base>>(application, library, name, traits);
        }
        return std::make_shared<Base>(application, library, name, traits);
    }

    ILibrary& library;
};

class RecordingLibrary : public LibraryBase, private Vela::System::Commons::Diagnostics::Loggable<RecordingLibrary>
{
public:
    explicit RecordingLibrary(AppDomain& appDomain)
        : LibraryBase(appDomain, BasicVersion(1, 2, 3, 4))
        , factory(*this)
    {
        const String process = appDomain.GetApplicationName();
        const String text = ReadFile(Vela::System::Commons::Environment::GetVariableValueOr("RECORDING_SCRIPT", ""));
        Trace("-", "-", "Load");
        log.Info("Library in {0} takes step Load", process);
        Script script;
        script.AddLines(text, "-");
        script.AddLines(text, "-@" + process);
        for (const String& action : script.GetActions("Load"))
        {
            Act(action);
        }
    }

    ~RecordingLibrary() override
    {
        try
        {
            Trace("-", "-", "Unload");
        }
        catch (const std::bad_alloc&)
        {
            // A lost line of the trace must not end the process.
        }
    }

    IComponentFactory& GetComponentFactory() override
    {
        return factory;
    }

private:
    RecordingFactory factory;
};

} // namespace

ILibrary& VelaDynamicLibraryMain(AppDomain& appDomain)
{
    static RecordingLibrary library(appDomain);
    return library;
}
