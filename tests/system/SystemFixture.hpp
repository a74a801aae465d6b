#pragma once

#include <RecordedTrace.hpp>
#include <TestSystem.hpp>
#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <vector>

namespace Vela::Testing
{

/// A configured recorder; see the recording library for its types and scripts.
struct RecorderEntry
{
    std::string name;
    std::string process;
    std::string type = "RecordingController";
    std::string attributes = {};
};

/// A system of recorders, started from the built executable.
class SystemTest : public testing::Test
{
protected:
    static constexpr const char* isUp = "Application 'MainProcess' was setup successfully.";

    SystemTest()
    {
        system.environment["RECORDING_TRACE"] = system.directory / "trace";
        system.environment["RECORDING_SCRIPT"] = system.directory / "script";
    }

    /// Configures processes and recorders.
    void Configure(const std::vector<std::string>& processes, const std::vector<RecorderEntry>& recorders) const
    {
        std::string text = "<Processes>";
        for (const std::string& process : processes)
        {
            text += "<Process name=\"" + process + "\"/>";
        }
        text += "</Processes><Libraries><Library name=\"Recording\" binaryPath=\"" +
                TestSystem::GetBuiltFile("lib/libRecording.so") + "\"/></Libraries><Components>";
        for (const RecorderEntry& recorder : recorders)
        {
            text += "<Component name=\"" + recorder.name + "\" process=\"" + recorder.process + "\" type=\"" +
                    recorder.type + "\" library=\"Recording\" " + recorder.attributes + "/>";
        }
        system.WriteConfig(text + "</Components>");
    }

    /// What the recorders do: lines "<component or *> <step> <action>".
    void WriteScript(const std::string& lines) const
    {
        system.directory.Write("script", lines);
    }

    /// The components that took a step, in their order, blank-separated.
    [[nodiscard]] std::string GetOrder(const std::string& step) const
    {
        return GetRecordedOrder(system.directory.Read("trace"), step);
    }

    /// The steps that a component took, in their order, blank-separated.
    [[nodiscard]] std::string GetSteps(const std::string& component) const
    {
        return GetRecordedSteps(system.directory.Read("trace"), component);
    }

    TestSystem system;
};

} // namespace Vela::Testing
