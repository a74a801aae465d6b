#include <Vela/System/Rsc/Marshaling.hpp>

#include <FuzzTarget.hpp>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Vela::Fuzz
{

namespace
{

using namespace System::Rsc;
using Variant = RscVariant<64>;

void CheckText(const Variant& variant)
{
    const String text = variant.ToString();
    if (const auto* number = std::get_if<double>(&variant.GetValue()))
    {
        const double read = std::strtod(text.c_str(), nullptr);
        Require(std::isnan(*number) ? std::isnan(read) : read == *number, "the text of a double reads back");
    }
    else if (const auto* single = std::get_if<float>(&variant.GetValue()))
    {
        const float read = std::strtof(text.c_str(), nullptr);
        Require(std::isnan(*single) ? std::isnan(read) : read == *single, "the text of a float reads back");
    }
    else if (const auto* string = std::get_if<String>(&variant.GetValue()))
    {
        Require(text == *string && text.size() <= Variant::maxStringSize, "a text is within its bound and itself");
    }
}

/// Values that follow each other until one is malformed.
bool Run(std::string_view input)
{
    const auto bytes = AsBytes(input);
    RemotingReader reader(bytes);
    while (reader.GetRemaining() > 0)
    {
        const std::size_t begin = bytes.size() - reader.GetRemaining();
        Variant variant;
        if (GetRefusal([&] { ReadRemote(reader, variant); }))
        {
            return false;
        }
        const auto taken = bytes.subspan(begin, bytes.size() - reader.GetRemaining() - begin);
        Require(variant.GetType() == static_cast<RscTypeCode>(taken.front()), "a variant has the type that arrived");
        CheckText(variant);

        RemotingWriter writer(taken.size());
        WriteRemote(writer, variant);
        Require(std::ranges::equal(writer.GetData(), taken), "a variant is written as it was read");
    }
    return true;
}

const FuzzTarget target("variants", &Run);

} // namespace

} // namespace Vela::Fuzz
