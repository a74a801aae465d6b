#include <FuzzTarget.hpp>

#include <cstdint>

/// libFuzzer's entry to the one target that is linked into this program.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Vela::Fuzz::FuzzTarget::GetAll().front()->run({reinterpret_cast<const char*>(data), size});
    return 0;
}
