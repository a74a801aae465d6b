#include "PlanGraph.hpp"
#include "SvgPage.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <vector>

namespace Vela::Kiroctl
{

namespace
{

constexpr double margin = 24;
constexpr double padding = 12;
constexpr double nameSize = 13;
constexpr double detailSize = 10.5;
constexpr double titleSize = 18;
constexpr double headHeight = 30;
constexpr double chipHeight = 38;
constexpr double chipGap = 8;
constexpr double serviceHeight = 16;
constexpr double portSize = 7;
constexpr double processGap = 22;
constexpr double railWidth = 34;
constexpr double columnGap = 150;
constexpr double badgeWidth = 30;
constexpr double libraryHeight = 44;

constexpr const char* ink = "#1f2933";
constexpr const char* faintInk = "#616e7c";
constexpr const char* serviceColour = "#364fc7";

/// Told apart by people who do not see all colours, too.
constexpr std::array colours{"#0072b2", "#d55e00", "#009e73", "#cc79a7", "#e69f00", "#56b4e9", "#7a5195", "#666666"};

struct Chip
{
    const Json* component;
    int number;
    double y;
    std::vector<const Json*> services;

    [[nodiscard]] double GetHeight() const
    {
        return chipHeight + static_cast<double>(services.size()) * serviceHeight;
    }
};

struct ProcessBox
{
    const Json* process;
    std::vector<Chip> chips;
    /// Those that no component publishes.
    std::vector<const Json*> services;
    double y = 0;
    double height = 0;
};

/// Where a line to a component, process or service ends.
struct Place
{
    double x = 0;
    double y = 0;
};

struct LibraryBox
{
    std::string name;
    std::string file;
    const char* colour;
    double y = 0;
    /// Of the components that come from it, for its place.
    double sumOfY = 0;
    double users = 0;
};

/// The picture's layout, from left to right: the rail along which the main process starts the others, the processes,
/// their libraries.
class Drawing
{
public:
    explicit Drawing(const Json& systemPlan)
        : plan(systemPlan)
        , services(GetServices(systemPlan))
    {
        PlaceProcesses();
        PlaceLibraries();
    }

    std::string Draw()
    {
        const std::string configuration = plan.at("configuration");
        page.AddText(margin, margin + titleSize, configuration.substr(configuration.rfind('/') + 1), titleSize, ink,
                     true);
        page.AddText(margin, margin + titleSize + 20,
                     fmt::format("{} processes, {} components in start order, {} libraries{}", boxes.size(),
                                 plan.at("components").size(), libraries.size(),
                                 services.empty() ? std::string() : fmt::format(", {} services", services.size())),
                     nameSize, faintInk);
        DrawRail();
        // Lines lie behind the boxes.
        for (const ProcessBox& box : boxes)
        {
            for (const Chip& chip : box.chips)
            {
                DrawOrigin(chip);
            }
        }
        for (const ProcessBox& box : boxes)
        {
            DrawProcess(box);
        }
        for (const auto& [name, library] : libraries)
        {
            DrawLibrary(library);
        }
        for (const Json& service : services)
        {
            DrawUses(service);
        }
        return page.Finish(width, height, configuration);
    }

private:
    static double GetChipWidth(const Json& component)
    {
        const double name = SvgPage::GetTextWidth(component.at("name").get<std::string>(), nameSize);
        const double type = SvgPage::GetTextWidth(component.at("type").get<std::string>(), detailSize);
        return badgeWidth + std::max(name, type) + 2 * padding;
    }

    std::vector<const Json*> FindServices(const Json& process, const Json& component)
    {
        std::vector<const Json*> found;
        for (const Json& service : services)
        {
            if (service.at("process") == process && service.at("component") == component)
            {
                found.push_back(&service);
                boxWidth = std::max(boxWidth, badgeWidth + SvgPage::GetTextWidth(GetShortName(service), detailSize) +
                                                  4 * padding);
            }
        }
        return found;
    }

    void PlaceProcesses()
    {
        std::vector<const Json*> processes;
        for (const Json& process : plan.at("processes"))
        {
            // The main process stands above those that it starts.
            processes.insert(process.at("kind") == "main" ? processes.begin() : processes.end(), &process);
        }
        double y = margin + titleSize + 44;
        for (const Json* process : processes)
        {
            ProcessBox box{process, {}, FindServices(process->at("name"), ""), y, headHeight + padding};
            box.height += static_cast<double>(box.services.size()) * serviceHeight;
            boxWidth = std::max(boxWidth, SvgPage::GetTextWidth(GetHead(*process), nameSize) + 2 * padding);
            int number = 0;
            for (const Json& component : plan.at("components"))
            {
                ++number;
                if (component.at("process") == process->at("name"))
                {
                    box.chips.push_back({&component, number, y + box.height - chipGap / 2,
                                         FindServices(process->at("name"), component.at("name"))});
                    box.height += box.chips.back().GetHeight() + chipGap;
                    boxWidth = std::max(boxWidth, GetChipWidth(component) + 2 * padding);
                }
            }
            y += box.height + processGap;
            boxes.push_back(std::move(box));
        }
        height = y - processGap + margin;
    }

    void PlaceLibraries()
    {
        for (const Json& process : plan.at("processes"))
        {
            for (const Json& library : process.at("libraries"))
            {
                const std::string name = library.at("name");
                const std::string path = library.at("path");
                if (!libraries.contains(name))
                {
                    libraries[name] = {name, path.substr(path.rfind('/') + 1),
                                       colours.at(libraries.size() % colours.size())};
                }
            }
        }
        for (const ProcessBox& box : boxes)
        {
            for (const Chip& chip : box.chips)
            {
                const auto found = libraries.find(chip.component->at("library").get<std::string>());
                if (found != libraries.end())
                {
                    found->second.sumOfY += chip.y + chipHeight / 2;
                    found->second.users += 1;
                }
            }
        }
        // Each as near to the middle of its components as the others allow.
        std::vector<LibraryBox*> order;
        for (auto& [name, library] : libraries)
        {
            order.push_back(&library);
            libraryWidth = std::max({libraryWidth, SvgPage::GetTextWidth(name, nameSize) + 2 * padding,
                                     SvgPage::GetTextWidth(library.file, detailSize) + 2 * padding});
        }
        const auto getWish = [](const LibraryBox* library)
        {
            return library->users > 0 ? library->sumOfY / library->users : 0;
        };
        std::stable_sort(order.begin(), order.end(),
                         [&](const LibraryBox* left, const LibraryBox* right)
                         { return getWish(left) < getWish(right); });
        double y = boxes.empty() ? margin : boxes.front().y;
        for (LibraryBox* library : order)
        {
            library->y = std::max(y, getWish(library) - libraryHeight / 2);
            y = library->y + libraryHeight + chipGap;
        }
        height = std::max(height, y + margin);
        processX = margin + railWidth;
        libraryX = processX + boxWidth + columnGap;
        const double behindBoxes = services.empty() ? margin : margin + columnGap;
        width = libraries.empty() ? processX + boxWidth + behindBoxes : libraryX + libraryWidth + margin;
        width = std::max(
            width,
            2 * margin + SvgPage::GetTextWidth(plan.at("configuration")
                                                   .get<std::string>()
                                                   .substr(plan.at("configuration").get<std::string>().rfind('/') + 1),
                                               titleSize));
        width = std::max(width, 520.0);
    }

    static std::string GetHead(const Json& process)
    {
        return fmt::format("{}   {}", process.at("name").get<std::string>(), process.at("kind").get<std::string>());
    }

    static bool IsStarted(const Json& process)
    {
        return process.at("kind") != "main" && process.at("kind") != "external";
    }

    /// From the main process down to each process that it starts.
    void DrawRail()
    {
        const SvgPage::Look look{.stroke = "#9aa5b1", .strokeWidth = 1.5};
        const double x = margin + railWidth / 2;
        double lowest = 0;
        for (const ProcessBox& box : boxes)
        {
            const double y = box.y + headHeight / 2;
            if (IsStarted(*box.process))
            {
                page.AddLine(x, y, processX, y, look);
                page.AddLine(processX - 6, y - 4, processX, y, look);
                page.AddLine(processX - 6, y + 4, processX, y, look);
                lowest = y;
            }
        }
        if (lowest > 0 && !boxes.empty())
        {
            const double top = boxes.front().y + headHeight / 2;
            page.AddLine(processX, top, x, top, look);
            page.AddLine(x, top, x, lowest, look);
        }
    }

    void DrawOrigin(const Chip& chip)
    {
        const auto found = libraries.find(chip.component->at("library").get<std::string>());
        if (found != libraries.end())
        {
            page.AddCurve(processX + boxWidth - padding, chip.y + chipHeight / 2, libraryX,
                          found->second.y + libraryHeight / 2,
                          {.stroke = found->second.colour, .strokeWidth = 1.6, .opacity = 0.75});
        }
    }

    /// The rows of a component or process, one for each service that it publishes.
    void DrawServices(const std::vector<const Json*>& published, double x, double right, double y)
    {
        for (const Json* service : published)
        {
            page.AddText(x, y + detailSize, GetShortName(*service), detailSize, serviceColour);
            page.AddBox(right - portSize / 2, y + (serviceHeight - portSize) / 2, portSize, portSize, 1,
                        {.fill = serviceColour, .kind = "service"}, service->at("name").get<std::string>());
            ports[service] = {right + portSize / 2, y + serviceHeight / 2};
            y += serviceHeight;
        }
    }

    void DrawUses(const Json& service)
    {
        const auto port = ports.find(&service);
        for (const Json& user : service.at("users"))
        {
            const std::string& component = user.at("component").get_ref<const std::string&>();
            const std::string& name = component.empty() ? user.at("process").get_ref<const std::string&>() : component;
            const auto& places = component.empty() ? processPlaces : componentPlaces;
            const auto from = places.find(name);
            if (port != ports.end() && from != places.end())
            {
                const double distance = std::abs(from->second.y - port->second.y);
                page.AddLoop(from->second.x, from->second.y, port->second.x, port->second.y,
                             std::min(24 + distance / 4, columnGap * 1.1),
                             {.stroke = serviceColour, .strokeWidth = 1.2, .isDashed = true, .kind = "use"},
                             fmt::format("{} uses {}", name, service.at("name").get<std::string>()));
            }
        }
    }

    void DrawProcess(const ProcessBox& box)
    {
        const Json& process = *box.process;
        const std::string name = process.at("name");
        page.AddBox(processX, box.y, boxWidth, box.height, 8,
                    {.fill = "#f5f7fa",
                     .stroke = process.at("kind") == "main" ? "#3e4c59" : "#9aa5b1",
                     .strokeWidth = process.at("kind") == "main" ? 2.0 : 1.2,
                     .isDashed = process.at("kind") == "external"},
                    process.at("command").get<std::string>());
        page.AddText(processX + padding, box.y + 20, name, nameSize, ink, true);
        page.AddText(processX + padding + SvgPage::GetTextWidth(name + "  ", nameSize), box.y + 20,
                     process.at("kind").get<std::string>(), detailSize, faintInk);
        DrawServices(box.services, processX + padding, processX + boxWidth, box.y + headHeight);
        processPlaces[name] = {processX + boxWidth, box.y + headHeight / 2};
        for (const Chip& chip : box.chips)
        {
            DrawComponent(chip);
        }
    }

    void DrawComponent(const Chip& chip)
    {
        const Json& component = *chip.component;
        const auto found = libraries.find(component.at("library").get<std::string>());
        const std::string colour = found == libraries.end() ? "#9aa5b1" : found->second.colour;
        const bool isOff = component.at("enabled") == false || HasText(component.at("problem"));
        const double x = processX + padding;
        page.AddBox(x, chip.y, boxWidth - 2 * padding, chip.GetHeight(), 5,
                    {.fill = "#ffffff", .stroke = colour, .strokeWidth = 1.4, .isDashed = isOff},
                    component.at("origin").get<std::string>());
        page.AddText(x + 8, chip.y + 24, fmt::format("{:>2}", chip.number), nameSize, faintInk);
        page.AddText(x + badgeWidth, chip.y + 16, component.at("name").get<std::string>(), nameSize,
                     isOff ? faintInk : ink, component.at("required") == true);
        page.AddText(x + badgeWidth, chip.y + 31, component.at("type").get<std::string>(), detailSize, faintInk);
        const double right = processX + boxWidth - padding;
        DrawServices(chip.services, x + badgeWidth, right, chip.y + chipHeight - 2);
        componentPlaces[component.at("name").get<std::string>()] = {right, chip.y + chipHeight / 2 + 8};
    }

    void DrawLibrary(const LibraryBox& library)
    {
        page.AddBox(libraryX, library.y, libraryWidth, libraryHeight, 3,
                    {.fill = "#ffffff", .stroke = library.colour, .strokeWidth = 1.6});
        page.AddBox(libraryX, library.y, 5, libraryHeight, 0, {.fill = library.colour});
        page.AddText(libraryX + padding, library.y + (library.file.empty() ? 27 : 18), library.name, nameSize, ink,
                     true);
        page.AddText(libraryX + padding, library.y + 34, library.file, detailSize, faintInk);
    }

    const Json& plan;
    const Json services;
    SvgPage page;
    std::vector<ProcessBox> boxes;
    std::map<const Json*, Place> ports;
    std::map<std::string, Place> processPlaces;
    std::map<std::string, Place> componentPlaces;
    std::map<std::string, LibraryBox> libraries;
    double processX = 0;
    double boxWidth = 180;
    double libraryX = 0;
    double libraryWidth = 120;
    double width = 0;
    double height = 0;
};

} // namespace

std::string DrawSvg(const Json& plan)
{
    return Drawing(plan).Draw();
}

} // namespace Vela::Kiroctl
