#pragma once

#include "../Oracle.hpp"

#include <cstdint>
#include <map>
#include <optional>

namespace Vela::Testing
{

/// What a component throws at a step, and Lost: the call does not reach the component's process.
enum class Fault
{
    Platform,
    Standard,
    Own,
    Unknown,
    Lost,
};

/// The message of the exception that a component throws at a step.
std::string GetFaultText(const std::string& component, const std::string& step);

/// A recorder, as its library and the configuration describe it.
struct ComponentCase
{
    /// Its type, as the recording library reads it.
    [[nodiscard]] std::string GetType() const;

    std::string name;
    std::string process = {};
    /// Empty: the static library.
    std::string library = "Recording";
    std::string settingsPath = {};
    std::string category = "custom";
    bool isController = true;
    bool isSingleton = false;
    bool isKnownType = true;
    std::uint32_t startOrder = 0;
    std::optional<std::int32_t> configuredStartOrder = std::nullopt;
    bool isRequired = false;
    bool isEnabled = true;
    std::map<std::string, Fault> faults = {};
};

struct ProcessCase
{
    std::string name;
    /// False: it is external.
    bool isConnected = true;
};

/// A system and what is done with it.
struct LifecycleCase
{
    static constexpr const char* mainProcess = "MainProcess";
    static constexpr const char* recordingLibrary = "Recording";

    /// What the recorders are to do at their steps, as they read it.
    [[nodiscard]] std::string GetScript() const;
    /// The configuration document.
    [[nodiscard]] std::string GetDocument(const std::string& libraryPath) const;
    /// For people.
    [[nodiscard]] std::string Describe() const;

    bool isSingleProcess = false;
    /// All but the main process.
    std::vector<ProcessCase> processes;
    std::vector<ComponentCase> components;
    /// The operations that are called, in their order.
    std::vector<std::string> operations;
};

/// Simpler cases of the same kind.
std::vector<LifecycleCase> Simplify(const LifecycleCase& sample);

/// What a generator draws from.
struct LifecycleChoices
{
    std::size_t maxProcesses;
    std::size_t maxComponents;
    /// In percent: of a process to be external.
    unsigned external;
    bool hasLostCalls;
};

/// A random system without operations.
LifecycleCase GenerateSystem(Random& random, const LifecycleChoices& choices);

} // namespace Vela::Testing
