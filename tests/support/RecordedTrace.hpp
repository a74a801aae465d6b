#pragma once

#include <sstream>
#include <string>

namespace Vela::Testing
{

/// The trace of recorders, lines "<process> <component> <step>": which components took one step, in their order,
/// blank-separated.
inline std::string GetRecordedOrder(const std::string& trace, const std::string& step)
{
    std::istringstream stream(trace);
    std::string process;
    std::string component;
    std::string taken;
    std::string order;
    while (stream >> process >> component >> taken)
    {
        if (taken == step)
        {
            order += (order.empty() ? "" : " ") + component;
        }
    }
    return order;
}

/// The steps that one component took, in their order, blank-separated.
inline std::string GetRecordedSteps(const std::string& trace, const std::string& component)
{
    std::istringstream stream(trace);
    std::string process;
    std::string name;
    std::string step;
    std::string steps;
    while (stream >> process >> name >> step)
    {
        if (name == component)
        {
            steps += (steps.empty() ? "" : " ") + step;
        }
    }
    return steps;
}

} // namespace Vela::Testing
