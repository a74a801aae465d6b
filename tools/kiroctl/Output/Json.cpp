#include "Json.hpp"

template class nlohmann::basic_json<nlohmann::ordered_map>;

namespace Vela::Kiroctl
{

std::string RepairText(const std::string& text)
{
    return Json::parse(Json(text).dump(-1, ' ', false, Json::error_handler_t::replace));
}

} // namespace Vela::Kiroctl
