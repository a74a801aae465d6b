#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Nm/Api.hpp>

namespace Vela::System::Nm
{

/// Sets up and ends the notifications of a process. To be called by the host of the process alone, on its main thread,
/// after remoting is set up and before it is disposed.
class VELA_NM_API NotificationManagerSetup
{
public:
    /// Makes the notification manager, with the broker in the main process, without it in any other, which then sends
    /// and subscribes through remoting. A tool without an endpoint of its own sets up without broker.
    /// @param applicationName name of the process, as its notifications state it
    /// @param settingsPath document with the limits of queues; empty: the defaults
    /// @throws InvalidOperationException when there is a notification manager already
    /// @throws XmlException when the document cannot be read or is not valid
    static void Setup(const String& applicationName, bool withBroker, const String& settingsPath = {});

    /// Reads a settings document as Setup does, and changes nothing.
    /// @throws XmlException when the document cannot be read or is not valid
    static void CheckSettings(const String& settingsPath);

    /// Lets the broker deliver: what was sent so far, and from now on everything at once. Nothing happens in a process
    /// without broker, and when it dispatches already.
    static void StartDispatching();

    /// Ends the notifications of this process: waits for a callback in progress, hands on what was sent, as long as
    /// the broker takes it, and waits, within bounds, for calls of other processes. Nothing happens when there is no
    /// notification manager.
    /// @throws InvalidOperationException from inside a subscription's callback; nothing has ended then
    static void Dispose();
};

} // namespace Vela::System::Nm
