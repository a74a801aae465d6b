// Compiled into every component library by vela_add_component_library.
#include <Vela/System/Kiro/BinaryContract.hpp>

using namespace Vela::System::Kiro;

VELA_NOTE_SECTION static constinit const BinaryContract::Note note =
    BinaryContract::MakeNote(BinaryContract::contractVersion, BinaryContract::layoutHash);
