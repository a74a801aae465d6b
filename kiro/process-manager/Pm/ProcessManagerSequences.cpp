#include <Pm/ProcessManager.hpp>
#include <Vela/Exceptions.hpp>

namespace Vela::System::Kiro::Internal::Pm
{

namespace
{

template <typename Forward, typename Undo>
void RunOrUndo(const Forward& forward, const Undo& undo)
{
    try
    {
        forward();
    }
    catch (...)
    {
        undo();
        throw;
    }
}

} // namespace

ComponentProperties ProcessManager::BuildUpComponent(const String& componentName, const String& componentType,
                                                     const String& libraryName, const String& settingsPath)
{
    const ComponentProperties properties = CreateComponent(componentType, componentName, libraryName);
    const auto dispose = [&]
    {
        Guard("disposing component", componentName, [&] { DisposeComponent(componentName); });
        Guard("destroying component", componentName, [&] { DestroyComponent(componentName); });
    };
    const auto reset = [&]
    {
        Guard("resetting component", componentName, [&] { ResetComponentConfig(componentName); });
        dispose();
    };
    const auto stop = [&]
    {
        Guard("stopping component", componentName, [&] { StopComponent(componentName); });
        reset();
    };
    RunOrUndo(
        [&]
        {
            InitializeComponent(componentName);
            SubscribeComponentServices(componentName);
            LoadComponentSettings(componentName, settingsPath);
            SetupComponentSettings(componentName);
            PublishComponentServices(componentName);
        },
        dispose);
    RunOrUndo(
        [&]
        {
            LoadComponentConfig(componentName);
            SetupComponentConfig(componentName);
        },
        reset);
    RunOrUndo([&] { StartComponent(componentName); }, stop);
    return properties;
}

void ProcessManager::TearDownComponent(const String& componentName)
{
    if (componentProvider.GetComponent(componentName) == nullptr)
    {
        throw ArgumentException("Component '{}' does not exists", componentName);
    }
    String failureText;
    const auto attempt = [&](const char* what, const char* failedPart, const Step& step)
    {
        if (!Guard(what, componentName, step))
        {
            failureText = fmt::format("{0} of component '{1}' failed", failedPart, componentName);
        }
    };
    attempt("stopping component", "Stopping", [&] { StopComponent(componentName); });
    attempt("resetting component", "Stopping", [&] { ResetComponentConfig(componentName); });
    attempt("disposing component", "Diposing", [&] { DisposeComponent(componentName); });
    attempt("destroying component", "Destroying", [&] { DestroyComponent(componentName); });
    if (!failureText.empty())
    {
        throw InvalidOperationException(failureText);
    }
}

} // namespace Vela::System::Kiro::Internal::Pm
