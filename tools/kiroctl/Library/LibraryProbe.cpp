#include "LibraryProbe.hpp"

#include "Helper/HelperProcess.hpp"

#include <Pm/SharedLibraryLoader.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/Io/File.hpp>
#include <Vela/System/Commons/Io/Path.hpp>
#include <Vela/System/Kiro/ComponentCategory.hpp>
#include <Vela/System/Kiro/ComponentFactory.hpp>
#include <Vela/System/Kiro/IApplication.hpp>
#include <Vela/System/Kiro/IComponentFactory.hpp>
#include <Vela/System/Kiro/IControllerComponent.hpp>

#include <dlfcn.h>

#include <stdexcept>

namespace Vela::Kiroctl
{

namespace
{

namespace Kiro = System::Kiro;
namespace Io = System::Commons::Io;
using Kiro::Internal::Pm::SharedLibraryLoader;

/// Opens a shared object as the executable of a process finds it. The path to its own libraries is said, since not the
/// tool but a sanitizer may be who asks the loader, and that knows no way to them.
bool Open(const String& name)
{
    const String directory = Io::Path::GetDirectoryName(System::Commons::Environment::GetExecutablePath());
    const String own = Io::Path::Combine(Io::Path::Combine(directory, "../lib"), name);
    return ::dlopen(Io::File::Exists(own) ? own.c_str() : name.c_str(), RTLD_LAZY | RTLD_LOCAL) != nullptr;
}

/// Wherever a library would look for the framework: in a process of the runtime it is there already.
Kiro::Internal::Pm::LoadedLibrary Load(const String& path)
{
    if (!Open(KIRO_LIBRARY))
    {
        throw std::runtime_error(::dlerror());
    }
    return SharedLibraryLoader::Load(path, false, {});
}

class ProbingApplication final : public Kiro::IApplication
{
public:
    [[nodiscard]] String GetName() const override
    {
        return "kiroctl";
    }
};

/// Every component has a helper of its own: one that crashes spoils no other's answer.
Json Construct(const String& path, const ProbedComponent& component)
{
    static ProbingApplication application;
    const auto loaded = Load(path);
    const auto created =
        loaded.library->GetComponentFactory().CreateComponent(application, component.type, component.name);
    if (created == nullptr)
    {
        throw std::runtime_error("the factory created nothing");
    }
    return {{"startOrder", created->GetStartOrder()},
            {"hasCategory", created->GetCategory() != Kiro::ComponentCategory::None},
            {"isSystemComponent", created->IsSystemComponent()},
            {"isController", dynamic_cast<Kiro::IControllerComponent*>(created.get()) != nullptr}};
}

Json AskForTypes(const String& path, const std::vector<ProbedComponent>& components)
{
    const auto loaded = Load(path);
    Json answer{{"hasEntry", loaded.library != nullptr}, {"unknownTypes", Json::array()}};
    if (loaded.library != nullptr)
    {
        answer["version"] = loaded.library->GetVersion().ToString();
        Kiro::IComponentFactory& factory = loaded.library->GetComponentFactory();
        if (const auto* table = dynamic_cast<Kiro::ComponentFactory*>(&factory))
        {
            answer["componentTypes"] = table->GetComponentTypes();
        }
        for (const ProbedComponent& component : components)
        {
            if (!factory.ContainsComponentType(component.type))
            {
                answer["unknownTypes"].push_back(component.type);
            }
        }
    }
    return answer;
}

bool Contains(const std::vector<String>& texts, const String& text)
{
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

/// Opens a shared object as the dynamic loader would for the library that needs it.
bool CanOpen(const String& origin, const String& runPath, const String& name)
{
    std::size_t begin = 0;
    while (begin <= runPath.size() && !runPath.empty())
    {
        const std::size_t end = std::min(runPath.find(':', begin), runPath.size());
        String directory = runPath.substr(begin, end - begin);
        for (const std::string_view placeholder : {"${ORIGIN}", "$ORIGIN"})
        {
            if (const std::size_t at = directory.find(placeholder); at != String::npos)
            {
                directory.replace(at, placeholder.size(), origin);
            }
        }
        if (!directory.empty() &&
            ::dlopen(Io::Path::Combine(directory, name).c_str(), RTLD_LAZY | RTLD_LOCAL) != nullptr)
        {
            return true;
        }
        begin = end + 1;
    }
    return Open(name);
}

} // namespace

LibraryFacts ProbeLibrary(const String& path, const std::vector<ProbedComponent>& components, ProbeDepth depth)
{
    LibraryFacts facts;
    const HelperResult types = RunInHelper([&] { return AskForTypes(path, components); });
    if (!types.answer)
    {
        facts.failure = types.failure;
        return facts;
    }
    facts.hasEntry = types.answer->at("hasEntry");
    facts.version = types.answer->value("version", "");
    if (types.answer->contains("componentTypes"))
    {
        facts.componentTypes = types.answer->at("componentTypes").get<std::vector<String>>();
    }
    facts.unknownTypes = types.answer->at("unknownTypes").get<std::vector<String>>();
    for (const ProbedComponent& component : components)
    {
        if (depth == ProbeDepth::Types || !facts.hasEntry || Contains(facts.unknownTypes, component.type))
        {
            continue;
        }
        const HelperResult constructed = RunInHelper([&] { return Construct(path, component); });
        if (!constructed.answer)
        {
            facts.failedComponents[component.name] = constructed.failure;
            continue;
        }
        facts.components[component.name] = {constructed.answer->at("startOrder"), constructed.answer->at("hasCategory"),
                                            constructed.answer->at("isSystemComponent"),
                                            constructed.answer->at("isController")};
    }
    return facts;
}

std::map<String, String> FindMissingLibraries(const String& path, const String& runPath,
                                              const std::vector<String>& needed)
{
    const HelperResult result = RunInHelper(
        [&]
        {
            const String origin = path.substr(0, path.rfind('/'));
            Json missing = Json::object();
            for (const String& name : needed)
            {
                if (!CanOpen(origin, runPath, name))
                {
                    const char* error = ::dlerror();
                    missing[name] = error == nullptr ? "not found" : error;
                }
            }
            return missing;
        });
    // An initialiser of a needed library that does not return shows when the library itself is loaded.
    return result.answer ? result.answer->get<std::map<String, String>>() : std::map<String, String>();
}

} // namespace Vela::Kiroctl
