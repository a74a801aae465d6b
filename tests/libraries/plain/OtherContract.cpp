// A library of another contract or, without a difference, of this one, which ends the process that runs any of its
// code.
#include <Vela/System/Kiro/BinaryContract.hpp>

#include <cstdlib>

namespace
{

using namespace Vela::System::Kiro;

#ifdef OTHER_Version
constexpr auto contractVersion = BinaryContract::contractVersion + 1;
constexpr auto layoutHash = BinaryContract::layoutHash;
#elif defined(OTHER_Layout)
constexpr auto contractVersion = BinaryContract::contractVersion;
constexpr auto layoutHash = BinaryContract::layoutHash + 1;
#else
constexpr auto contractVersion = BinaryContract::contractVersion;
constexpr auto layoutHash = BinaryContract::layoutHash;
#endif

VELA_NOTE_SECTION constinit const BinaryContract::Note note = BinaryContract::MakeNote(contractVersion, layoutHash);

[[gnu::constructor]] void Initialise()
{
    std::abort();
}

} // namespace
