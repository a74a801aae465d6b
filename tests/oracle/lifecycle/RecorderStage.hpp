#pragma once

#include "../LogStream.hpp"
#include "LifecycleCase.hpp"

#include <Vela/AppDomain.hpp>
#include <Vela/System/Commons/Runtime/SharedLibrary.hpp>

#include <FakeHost.hpp>
#include <TemporaryDirectory.hpp>

namespace Vela::Testing
{

/// The application around a system of recorders.
class RecorderHost : public FakeHost
{
public:
    [[nodiscard]] String GetName() const override
    {
        return LifecycleCase::mainProcess;
    }
};

/// What recorders in the test's own process need: their library, their script and the log into which they write.
class RecorderStage
{
public:
    RecorderStage();
    RecorderStage(const RecorderStage&) = delete;
    RecorderStage& operator=(const RecorderStage&) = delete;
    ~RecorderStage();

    static std::string GetLibraryPath();

    /// Tells the recorders of a case what to do.
    void Prepare(const LifecycleCase& system) const;

    /// Appends what the framework and the recorders have said since the last call.
    void TakeLog(Trace& trace);

    TemporaryDirectory directory;
    AppDomain& appDomain = AppDomain::CreateInstance();
    LogStream log;

private:
    /// Stays loaded: mapping it anew for each case would take longer than the case.
    System::Commons::Runtime::SharedLibrary library;
};

} // namespace Vela::Testing
