#pragma once

#include <TestSystem.hpp>
#include <gtest/gtest.h>

#include <csignal>
#include <map>
#include <sstream>
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

    /// The trace of one step: the components that took it, in their order, blank-separated.
    [[nodiscard]] std::string GetOrder(const std::string& step) const
    {
        std::istringstream trace(system.directory.Read("trace"));
        std::string process;
        std::string component;
        std::string taken;
        std::string order;
        while (trace >> process >> component >> taken)
        {
            if (taken == step)
            {
                order += (order.empty() ? "" : " ") + component;
            }
        }
        return order;
    }

    /// The trace of one component: its steps in their order, blank-separated.
    [[nodiscard]] std::string GetSteps(const std::string& component) const
    {
        std::istringstream trace(system.directory.Read("trace"));
        std::string process;
        std::string name;
        std::string step;
        std::string steps;
        while (trace >> process >> name >> step)
        {
            if (name == component)
            {
                steps += (steps.empty() ? "" : " ") + step;
            }
        }
        return steps;
    }

    TestSystem system;
};

} // namespace Vela::Testing
