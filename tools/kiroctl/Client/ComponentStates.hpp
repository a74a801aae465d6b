#pragma once

#include <array>
#include <string_view>

namespace Vela::Kiroctl
{

struct ComponentState
{
    std::string_view name;
    std::string_view meaning;
};

/// The states of a component as the system names them, on its way up and down.
inline constexpr std::array componentStates{
    ComponentState{"configured", "It is configured and has not been created yet."},
    ComponentState{"external", "Its process is external: this system does not create it."},
    ComponentState{"created", "It has been created, and its set-up has not begun."},
    ComponentState{"disabled", "It is disabled in the configuration: it is created and nothing else."},
    ComponentState{"initialized", "Its set-up is under way."},
    ComponentState{"set-up", "Its settings are set up."},
    ComponentState{"configured-up", "It is set up and configured."},
    ComponentState{"running", "It is set up and started."},
    ComponentState{"busy", "One of its steps is running now."},
    ComponentState{"failed", "A step has failed."},
    ComponentState{"removed",
                   "A step has failed, and the system goes on without the component, which is not required."},
    ComponentState{"stopped", "It has been stopped."},
    ComponentState{"disposed", "It has been taken down."},
    ComponentState{"destroyed", "It has been taken down and is gone."},
};

} // namespace Vela::Kiroctl
