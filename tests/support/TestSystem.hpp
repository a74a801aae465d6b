#pragma once

#include "StartedProcess.hpp"
#include "TemporaryDirectory.hpp"

#include <map>
#include <string>
#include <vector>

namespace Vela::Testing
{

/// A system in a directory of its own: its documents, its runtime directory, and the executable of the build tree.
///
/// @code
/// TestSystem system;
/// system.WriteConfig(R"(<Processes><Process name="MainProcess"/></Processes>)");
/// StartedProcess main = system.Start();
/// main.AwaitLine("was setup successfully");
/// main.Signal(SIGTERM);
/// EXPECT_EQ(main.AwaitEnd(), 0) << main.GetOutput();
/// EXPECT_EQ(system.FindLeftovers(), "");
/// @endcode
class TestSystem
{
public:
    /// Writes an empty settings document and a configuration with nothing in it.
    TestSystem();

    /// Writes Default.kiro.settings with these elements in its root.
    void WriteSettings(const std::string& elements) const;
    /// Writes Default.kiro.config with these elements in its root.
    void WriteConfig(const std::string& elements) const;

    /// Starts the executable in the system's directory.
    [[nodiscard]] StartedProcess Start(const std::vector<std::string>& arguments = {}, int standardInput = -1) const;

    /// What lies in the runtime directory, blank-separated, but for the lock file; empty after an orderly end.
    [[nodiscard]] std::string FindLeftovers() const;

    /// The text of the one record that a crash or a failed set-up has left for its user alone, and removes it; what is
    /// wrong instead when there is none, or several.
    [[nodiscard]] std::string TakeCrashRecord() const;

    [[nodiscard]] std::string GetRuntimeDirectory() const
    {
        return directory / "run";
    }

    /// A file of the build tree, such as "lib/libRecording.so".
    [[nodiscard]] static std::string GetBuiltFile(const std::string& name);

    TemporaryDirectory directory;
    /// Variables that the executable gets on top of the test's own.
    std::map<std::string, std::string> environment;
};

} // namespace Vela::Testing
