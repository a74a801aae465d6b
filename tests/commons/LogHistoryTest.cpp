#include "CapturedLog.hpp"

#include <Vela/AppDomain.hpp>
#include <Vela/System/Commons/Diagnostics/LogManager.hpp>
#include <Vela/System/Commons/Diagnostics/Logger.hpp>

#include <gtest/gtest.h>

#include <random>

using namespace Vela;
using namespace Vela::System::Commons::Diagnostics;

namespace
{

/// The history belongs to the process: what other tests have left is passed over by its numbers.
struct LogHistoryTest : testing::Test
{
    [[nodiscard]] std::uint64_t GetLastNumber() const
    {
        return manager.GetHistory(0, 0).lastNumber;
    }

    Testing::CapturedLog log{LogLevel::Info};
    LogManager& manager = *LogManager::TryGetInstance();
    Logger& logger = Logger::Get(String("Plant.History"));
};

} // namespace

TEST_F(LogHistoryTest, GoesOnFromANumber)
{
    const auto before = GetLastNumber();
    for (int i = 0; i < 5; ++i)
    {
        logger.Info("message {}", i);
        logger.Debug("not written");
    }
    const auto page = manager.GetHistory(before, 2);
    ASSERT_EQ(page.entries.size(), 2U);
    EXPECT_EQ(page.lastNumber, before + 5);
    EXPECT_EQ(page.entries[0].number, before + 1);
    EXPECT_EQ(page.entries[1].text, "message 1");
    EXPECT_EQ(page.entries[0].category, "Plant.History");
    EXPECT_EQ(page.entries[0].level, LogLevel::Info);
    EXPECT_LE(page.entries[0].time, page.entries[1].time);

    EXPECT_EQ(manager.GetHistory(page.entries[1].number, 100).entries.front().text, "message 2");
    EXPECT_EQ(manager.GetHistory(page.lastNumber - 2, 100).entries.front().text, "message 3");
    EXPECT_TRUE(manager.GetHistory(page.lastNumber, 100).entries.empty());
    EXPECT_TRUE(manager.GetHistory(page.lastNumber + 100, 100).entries.empty()) << "a number of an earlier process";
}

TEST_F(LogHistoryTest, KeepsTheNewestOfMessagesOfAllSizesInBoundedMemory)
{
    std::mt19937 random(7);
    std::vector<String> written;
    const auto before = GetLastNumber();
    for (int i = 0; i < 3000; ++i)
    {
        // Mostly short ones, so that many entries give way to a long one; a few longer than what is kept.
        const auto size = random() % (i % 50 == 0 ? 5000 : 200);
        written.emplace_back(size, static_cast<char>('a' + i % 26));
        logger.Write(LogLevel::Info, written.back());

        const auto history = manager.GetHistory(before, 10'000);
        ASSERT_FALSE(history.entries.empty());
        std::size_t bytes = 0;
        auto number = history.lastNumber - history.entries.size();
        for (const LogEntry& entry : history.entries)
        {
            ASSERT_EQ(entry.number, ++number) << "after message " << i;
            ASSERT_EQ(entry.text, written[static_cast<std::size_t>(number - before) - 1].substr(0, 2048));
            bytes += entry.text.size();
        }
        ASSERT_EQ(number, before + written.size());
        ASSERT_LE(bytes, 32U * 1024);
        // Half of the memory is in use whatever the sizes are, once it has been filled.
        ASSERT_TRUE(i < 500 || bytes + history.entries.size() * 40 > 12U * 1024) << "after message " << i;
    }
}

TEST_F(LogHistoryTest, TellsTheLevelsThatAreSet)
{
    manager.SetLevel("Plant.Valve", LogLevel::Trace);
    manager.SetLevel("Plant", LogLevel::Error);
    std::vector<String> levels;
    for (const auto& [category, level] : manager.GetLevels())
    {
        levels.push_back(category + "=" + FindEnumString(level));
    }
    EXPECT_EQ(levels, (std::vector<String>{"=Info", "Plant=Error", "Plant.Valve=Trace"}));
}
