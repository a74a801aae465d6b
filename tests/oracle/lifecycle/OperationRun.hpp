#pragma once

#include "ProcessManagerModel.hpp"
#include "RecorderStage.hpp"

#include <Vela/CaughtException.hpp>

namespace Vela::Testing
{

/// Appends an operation of a model and its outcome.
template <typename Action>
void RunModelOperation(Trace& trace, const std::string& operation, const Action& action)
{
    try
    {
        const std::string outcome = action();
        trace.push_back(operation + ": " + outcome);
    }
    catch (const ModelFailure& failure)
    {
        trace.push_back(operation + ": " + DescribeFailure(failure));
    }
}

/// Appends what an operation of the framework says, and its outcome.
template <typename Action>
void RunRealOperation(RecorderStage& stage, Trace& trace, const std::string& operation, const Action& action)
{
    std::string outcome;
    try
    {
        outcome = action();
    }
    catch (...)
    {
        outcome = DescribeFailure(GetCurrentFailure());
    }
    stage.TakeLog(trace);
    trace.push_back(operation + ": " + outcome);
}

} // namespace Vela::Testing
