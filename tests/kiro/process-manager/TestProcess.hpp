#pragma once

#include "CapturedLog.hpp"

#include <Pm/ProcessManager.hpp>
#include <Vela/AppDomain.hpp>
#include <Vela/Singleton.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Kiro/IApplication.hpp>

#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace Vela::Testing
{

/// A library of the build tree.
inline String GetLibraryPath(const String& name)
{
    return TEST_LIBRARIES_DIRECTORY "/lib" + name + ".so";
}

/// The hosting process of the tests.
class TestHost : public System::Kiro::IApplication, public System::Kiro::Internal::Pm::IProcessHost
{
public:
    [[nodiscard]] String GetName() const override
    {
        return "Test";
    }

    void RequestProcessShutdown() override
    {
        ++shutdownRequests;
    }

    int shutdownRequests = 0;
};

/// What a step of a static component throws.
struct StepFailure
{
    String step;
};

/// What the components of the static library have done, and where they are to fail.
struct StepRecord
{
    void Take(const String& step);

    std::vector<String> steps;
    std::set<String> failing;
};

/// A process manager with its host, log and environment. Its static library makes components of the types "Plain",
/// "Controller" (a system component) and "Nothing" (which is never created).
class TestProcess : public testing::Test
{
protected:
    TestProcess();
    ~TestProcess() override;

    AppDomain& appDomain = AppDomain::CreateInstance();
    CapturedLog log{System::Commons::Diagnostics::LogLevel::Trace};
    TestHost host;
    System::Kiro::Internal::Pm::ProcessManager processManager{host, host};

    StepRecord& record;
};

/// The message of the exception that `action` throws; empty when it throws nothing or something else.
template <typename E, typename Action>
String GetMessageOf(const Action& action)
{
    try
    {
        action();
    }
    catch (const E& exception)
    {
        return exception.GetMessage();
    }
    catch (...)
    {
    }
    return {};
}

} // namespace Vela::Testing
