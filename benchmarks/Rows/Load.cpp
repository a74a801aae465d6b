#include "Harness/System.hpp"
#include "Rows/Rows.hpp"

#include <Config/KiroConfigurationLoader.hpp>
#include <Vela/Exceptions.hpp>

#include <expat.h>
#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <memory>

namespace Vela::Benchmarks
{

namespace
{

constexpr double microsecondsPerMillisecond = 1000;

double LoadConfiguration(const std::string& path, unsigned components)
{
    using namespace System::Kiro::Internal::Sm::Config;
    const auto start = Clock::now();
    KiroConfiguration configuration;
    KiroConfigurationLoader::Load(path, false, true, configuration);
    const double taken = GetMicrosecondsSince(start);
    if (configuration.components.GetItems().size() != components)
    {
        throw Exception("{0} components were loaded.", configuration.components.GetItems().size());
    }
    return taken / microsecondsPerMillisecond;
}

void CountElement(void* count, const XML_Char*, const XML_Char**)
{
    ++*static_cast<std::size_t*>(count);
}

double ParseFiles(const std::vector<std::string>& paths)
{
    const auto start = Clock::now();
    std::size_t elements = 0;
    for (const std::string& path : paths)
    {
        std::string text(static_cast<std::size_t>(std::filesystem::file_size(path)), '\0');
        std::ifstream(path, std::ios::binary).read(text.data(), static_cast<std::streamsize>(text.size()));
        const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreate(nullptr),
                                                                                  &XML_ParserFree);
        XML_SetUserData(parser.get(), &elements);
        XML_SetStartElementHandler(parser.get(), CountElement);
        if (XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), XML_TRUE) != XML_STATUS_OK)
        {
            throw Exception("'{0}' was not parsed.", path);
        }
    }
    return GetMicrosecondsSince(start) / microsecondsPerMillisecond;
}

} // namespace

std::vector<Row> MeasureLoad(Effort effort)
{
    const TemporaryDirectory directory;
    const unsigned components = effort.Choose(10'000, 100);
    const unsigned files = effort.Choose(500, 5);
    WriteConfiguration(directory, {.childProcesses = 4, .components = components}, files);
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(directory / "."))
    {
        paths.push_back(entry.path().string());
    }
    const auto comparison = Compare(
        "load", effort.Choose(15, 1), [&] { return LoadConfiguration(directory / "Default.kiro.config", components); },
        [&] { return ParseFiles(paths); });
    return {{fmt::format("load: {} components in {} files", components, files), "ms", comparison,
             "bare Expat, the same bytes"}};
}

} // namespace Vela::Benchmarks
