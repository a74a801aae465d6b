#pragma once

#include <Core/NotificationLimits.hpp>

#include <cstddef>
#include <deque>
#include <utility>

namespace Vela::System::Nm::Internal
{

/// A queue that owns what it holds and drops its oldest entries to make room for a new one, so that whoever puts
/// something in never waits. Not thread-safe.
template <typename Entry>
class BoundedQueue
{
public:
    explicit BoundedQueue(const NotificationLimits& limits)
        : maxCount(limits.maxQueuedNotifications)
        , maxSize(limits.maxQueuedBytes)
    {
    }

    /// Appends an entry of that size in bytes; `onDropped` is called with each entry that has to go. The newest entry
    /// always stays.
    template <typename OnDropped>
    void Push(Entry entry, std::size_t size, OnDropped&& onDropped)
    {
        items.push_back(Item{std::move(entry), size});
        totalSize += size;
        while (items.size() > 1 && (items.size() > maxCount || totalSize > maxSize))
        {
            onDropped(Pop());
        }
    }

    /// Takes the oldest entry; there must be one.
    Entry Pop()
    {
        Item item = std::move(items.front());
        items.pop_front();
        totalSize -= item.size;
        return std::move(item.entry);
    }

    /// Takes what fits into one call, oldest first.
    template <typename Consumer>
    void PopBatch(Consumer&& consumer)
    {
        std::size_t batchSize = 0;
        for (std::size_t count = 0; !items.empty() && count < maxBatchCount; ++count)
        {
            batchSize += items.front().size;
            if (count > 0 && batchSize > maxBatchSize)
            {
                return;
            }
            consumer(Pop());
        }
    }

    [[nodiscard]] bool IsEmpty() const noexcept
    {
        return items.empty();
    }

    [[nodiscard]] std::size_t GetCount() const noexcept
    {
        return items.size();
    }

private:
    struct Item
    {
        Entry entry;
        std::size_t size;
    };

    std::deque<Item> items;
    std::size_t totalSize = 0;
    std::size_t maxCount;
    std::size_t maxSize;
};

} // namespace Vela::System::Nm::Internal
