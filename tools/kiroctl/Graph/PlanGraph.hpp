#pragma once

#include "Output/Json.hpp"

#include <string>

namespace Vela::Kiroctl
{

/// A plan as a picture: processes with their components in start order, the libraries that these come from, and the
/// services that they publish and use, when the plan knows them.
std::string DrawSvg(const Json& plan);
/// The same for Graphviz.
std::string WriteDot(const Json& plan);
/// The same as facts: nodes and edges.
Json ListGraph(const Json& plan);

/// The services of a plan; none in a plan that was made from documents.
inline Json GetServices(const Json& plan)
{
    return plan.value("services", Json::array());
}

/// "ITankService" of "Plant.Services.ITankService"; a name that is none of an interface as it is.
inline std::string GetShortName(const Json& service)
{
    const std::string name = service.at("name");
    return service.at("interface") == name ? name.substr(name.rfind('.') + 1) : name;
}

} // namespace Vela::Kiroctl
