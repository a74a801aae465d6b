#include "../Command.hpp"
#include "../Generator/LibraryProject.hpp"

namespace Vela::Kiroctl
{

namespace
{

class New final : public Command
{
public:
    void Declare(const CommandDeclaration& command) override
    {
        command.RequireSubcommand();
        const CommandDeclaration library =
            command.AddSubcommand("library", "A component library with one component and its tests");
        library.AddText("NAME", names.library, "Name of the library, of its directory and of its namespace",
                        {.isRequired = true});
        library.AddText("--component", names.component, "Name of the component's class",
                        {.name = "TYPE", .isRequired = true});
        library.AddFlag("--controller", isController, "The component is started and stopped");
        library.AddText("--service", names.interface, "The component publishes a service with this interface",
                        {.name = "INTERFACE"});
    }

    ExitCode Run(Session& session) override
    {
        const LibraryProject project(names, isController);
        const std::vector<std::string> files = project.Write();
        Output& output = session.GetOutput();
        if (output.IsJson())
        {
            output.WriteJson(
                Json{{"directory", names.library}, {"files", files}, {"configuration", project.GetConfiguration()}});
            return ExitCode::Success;
        }
        output.WriteLine(fmt::format("Wrote to {}/:", names.library));
        for (const std::string& file : files)
        {
            output.WriteLine("  " + file);
        }
        output.Write(fmt::format("\nBuild and test it:\n"
                                 "  cmake -S {0} -B {0}/build -DCMAKE_PREFIX_PATH={1}\n"
                                 "  cmake --build {0}/build\n"
                                 "  ctest --test-dir {0}/build --output-on-failure\n"
                                 "\nLines for a system's configuration:\n{2}",
                                 names.library, project.GetPrefix(), project.GetConfiguration()));
        return ExitCode::Success;
    }

private:
    ProjectNames names;
    bool isController = false;
};

} // namespace

std::unique_ptr<Command> CreateNew()
{
    return std::make_unique<New>();
}

} // namespace Vela::Kiroctl
