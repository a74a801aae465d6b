// Every phase of a system's life with every fault: see FaultCell for the cells and FaultExpectation for what must come
// of them.
//
// An ordinary run takes a slice. With VELA_FAULT_CELLS=all the whole matrix runs; another value runs the cells whose
// names contain it, such as "Stop/Hang" or "LastChild/required".

#include "FaultScenario.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <thread>

namespace Vela::Testing
{
namespace
{

/// The cells wait more than they work.
constexpr unsigned cellsAtATime = 4;

/// A long run tells after so many cells that it goes on.
constexpr std::size_t cellsPerReport = 100;

const char* GetWantedCells()
{
    return std::getenv("VELA_FAULT_CELLS");
}

std::vector<FaultCell> SelectCells()
{
    const char* wanted = GetWantedCells();
    if (wanted == nullptr)
    {
        return ListSliceOfCells();
    }
    std::vector<FaultCell> cells = ListCells();
    if (std::string(wanted) != "all")
    {
        std::erase_if(cells, [&](const FaultCell& cell) { return cell.GetName().find(wanted) == std::string::npos; });
    }
    return cells;
}

TEST(FaultMatrix, EveryCellEndsAsItMust)
{
    const std::vector<FaultCell> cells = SelectCells();
    ASSERT_FALSE(cells.empty());
    std::mutex mutex;
    std::size_t done = 0;
    std::vector<std::string> failures;
    std::atomic<std::size_t> next{0};
    const auto work = [&]
    {
        for (std::size_t index = next++; index < cells.size(); index = next++)
        {
            const std::string failure = FaultScenario(cells[index]).Run();
            const std::lock_guard lock(mutex);
            if (!failure.empty())
            {
                failures.push_back(failure);
            }
            if (++done % cellsPerReport == 0 && GetWantedCells() != nullptr)
            {
                std::cerr << done << "/" << cells.size() << " cells, " << failures.size() << " failed\n";
            }
        }
    };
    {
        std::vector<std::jthread> workers;
        for (unsigned count = 0; count < cellsAtATime; ++count)
        {
            workers.emplace_back(work);
        }
    }
    std::cout << cells.size() << " of " << ListCells().size() << " cells were run, " << failures.size() << " failed.\n";
    for (const std::string& failure : failures)
    {
        ADD_FAILURE() << failure;
    }
}

} // namespace
} // namespace Vela::Testing
