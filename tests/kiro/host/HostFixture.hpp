#pragma once

#include <Host/ApplicationData.hpp>
#include <Vela/Singleton.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Kiro/Internal/ApplicationBase.hpp>

#include <TemporaryDirectory.hpp>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace Vela::System::Kiro::Internal
{

/// Arguments as main gets them.
class Arguments
{
public:
    Arguments(std::vector<std::string> list)
        : texts(std::move(list))
    {
        texts.insert(texts.begin(), "application");
        for (std::string& text : texts)
        {
            pointers.push_back(text.data());
        }
        pointers.push_back(nullptr);
    }

    [[nodiscard]] int GetCount() const noexcept
    {
        return static_cast<int>(texts.size());
    }

    [[nodiscard]] char** Get() noexcept
    {
        return pointers.data();
    }

private:
    std::vector<std::string> texts;
    std::vector<char*> pointers;
};

/// A host without basic components; it ends as soon as it is set up.
class PlainHost : public ApplicationBase
{
public:
    explicit PlainHost(bool loadSettings)
        : ApplicationBase("Plain", loadSettings)
    {
    }

    int Start(std::vector<std::string> list,
              Commons::Diagnostics::LogLevel level = Commons::Diagnostics::LogLevel::None)
    {
        Arguments arguments(std::move(list));
        return Main(arguments.GetCount(), arguments.Get(), level);
    }

    using ApplicationBase::GetData;

    std::function<void()> onSetup;
    std::function<void()> onDispose;

protected:
    void SetupInternal() override
    {
        SetupBasicComponents(ApplicationSetupKind::None, ProcessKind::None);
        RequestShutdown();
        if (onSetup)
        {
            onSetup();
        }
    }

    void DisposeInternal() override
    {
        ApplicationBase::DisposeInternal();
        if (onDispose)
        {
            onDispose();
        }
    }
};

/// A directory with a settings document, and a log file that a test can read.
class HostTest : public testing::Test
{
protected:
    /// The option that names a settings document which logs everything into the directory.
    std::string WriteSettings(const std::string& elements = {}) const
    {
        return "--settings=" +
               directory.Write("Test.settings", "<KiroSettingsDocument><LogSettings logDir=\".\" logLevel=\"Trace\"/>" +
                                                    elements + "</KiroSettingsDocument>");
    }

    [[nodiscard]] std::string ReadLog(const std::string& name = "Plain") const
    {
        return directory.Read(name + ".log");
    }

    Testing::TemporaryDirectory directory;
};

} // namespace Vela::System::Kiro::Internal
