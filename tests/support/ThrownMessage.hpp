#pragma once

#include <Vela/Exceptions.hpp>
#include <Vela/String.hpp>

#include <gtest/gtest.h>

namespace Vela::Testing
{

/// Message and detail of the exception that `function` throws, which must be of class E; a test failure otherwise.
template <typename E, typename Function>
String GetThrownMessage(Function&& function)
{
    try
    {
        function();
    }
    catch (const E& exception)
    {
        return exception.what();
    }
    catch (const std::exception& exception)
    {
        ADD_FAILURE() << "Another exception was thrown: " << exception.what();
        return {};
    }
    ADD_FAILURE() << "No exception was thrown.";
    return {};
}

} // namespace Vela::Testing
