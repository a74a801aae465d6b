#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Kiro/Services/Internal/SystemDiagnostics.hpp>

namespace Vela::System::Kiro::Internal::Sm
{

/// A timeline as a JSON document, in the form that the operator's tool reads.
String MakeTimelineDocument(const Services::Internal::Timeline& timeline);

} // namespace Vela::System::Kiro::Internal::Sm
