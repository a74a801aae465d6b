#include <Vela/System/Commons/SystemError.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>

#include <Contract/ReadBytes.hpp>
#include <fcntl.h>
#include <unistd.h>

#include <limits>
#include <memory>

namespace Vela::System::Kiro::Internal::Contract
{

ReadBytes ReadFrom(const String& path)
{
    auto file = std::make_shared<const Commons::UniqueFd>(
        Commons::RetryInterrupted([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); }));
    return [file](std::uint64_t offset, std::span<std::byte> target)
    {
        constexpr auto maxOffset = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());
        while (!target.empty() && offset <= maxOffset)
        {
            const ssize_t count = Commons::RetryInterrupted(
                [&] { return ::pread(file->Get(), target.data(), target.size(), static_cast<off_t>(offset)); });
            if (count <= 0)
            {
                break;
            }
            offset += static_cast<std::uint64_t>(count);
            target = target.subspan(static_cast<std::size_t>(count));
        }
        return target.empty();
    };
}

} // namespace Vela::System::Kiro::Internal::Contract
