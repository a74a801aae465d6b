"""What the C++ examples that are a part of something are a part of: the text in front of them and the text behind them. NUMBER
tells examples apart."""

PRELUDE = """\
#include "TankService.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Kiro/ComponentBase.hpp>
#include <Vela/System/Kiro/Testing/FakeService.hpp>
#include <Vela/System/Kiro/Testing/HostedComponent.hpp>
#include <Vela/System/Nm/NotificationRegistration.hpp>
#include <Vela/System/Nm/NotificationSubscription.hpp>
#include <Vela/System/Rsc/RscServiceFactory.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory>
#include <tuple>
#include <vector>

using namespace Vela;
using namespace Vela::System;
using namespace Vela::System::Kiro;
using namespace Vela::System::Kiro::Testing;
using namespace Vela::System::Nm;
using namespace WaterTanks;

struct CalmTanks : ITankService
{
    std::vector<TankState> GetTanks() override;
    double GetDemand() override;
    void SetActuators(double pump, double valve) override;
};

struct SomePump
{
    struct Service
    {
        int GetSpeed() const;
    };
    std::shared_ptr<Service> GetService(int) const;
};
int PumpServiceProxyFactory();
"""

CONTEXTS = {
    # A whole piece of a source.
    "file": ("", ""),
    # The beginning of a class derived from ComponentBase.
    "component-class": ("", "};"),
    "function": ("[[maybe_unused]] static void ExampleNUMBER()\n{", "}"),
    # Where a payload was made.
    "sender": ("[[maybe_unused]] static void ExampleNUMBER(const LevelPayload& payload)\n{", "}"),
    "component": ("struct ExampleNUMBER : ComponentBase\n{\nusing ComponentBase::ComponentBase;\n"
                  "std::shared_ptr<ITankService> tanks;\nRsc::RscServiceFactory<ITankService, CalmTanks> serviceFactory;\n"
                  "void Do()\n{", "}\n};"),
    "test": ("[[maybe_unused]] static void ExampleNUMBER([[maybe_unused]] ComponentHost& host, "
             "[[maybe_unused]] const SomePump& pump)\n{", "}"),
}
