#pragma once

#include "LifecycleCase.hpp"

#include <set>

namespace Vela::Testing
{

/// An exception, as the models know it.
struct ModelFailure
{
    bool isUnspecified = false;
    /// The full text of a platform exception, what() of a standard one.
    std::string text = {};

    template <typename E>
    static ModelFailure From(const E& exception)
    {
        return {false, exception.ToString()};
    }
};

/// The exception that is being handled.
ModelFailure GetCurrentFailure();

/// "exception: <text>", or that it is unspecified.
std::string DescribeFailure(const ModelFailure& failure);

/// The rules of a process: its libraries, its components and the steps that they take.
class ProcessManagerModel
{
public:
    /// @param linePrefix  begins each line of the trace
    ProcessManagerModel(Trace& sharedTrace, std::string linePrefix);

    /// All operations throw a ModelFailure.
    void LoadLibrary(const std::string& name, const std::string& path);
    void UnloadLibrary(const std::string& name);
    /// "Create", "Destroy", "BuildUp", "TearDown", or a step of the component's own.
    void Operate(const ComponentCase& component, const std::string& operation);

    /// The process ends with the components that are left.
    void End();

private:
    void Create(const ComponentCase& component);
    void Destroy(const ComponentCase& component);
    void BuildUp(const ComponentCase& component);
    void TearDown(const ComponentCase& component);
    void TakeStep(const ComponentCase& component, const std::string& step);
    /// Answers whether it succeeded; otherwise the log tells.
    bool Attempt(const ComponentCase& component, const char* activity, const std::string& step);
    void Undo(const ComponentCase& component, std::size_t depth);
    void Act(const ComponentCase& component, const std::string& step);
    void Say(const char* level, const std::string& message);

    Trace& trace;
    const std::string prefix;
    struct Library
    {
        int count = 0;
        /// The components that it has made and that still exist.
        std::set<std::string> components = {};
    };

    std::map<std::string, Library> libraries;
    std::map<std::string, const ComponentCase*> components;
};

} // namespace Vela::Testing
