#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

#include <cstddef>

namespace Vela::System::Commons::Configuration
{

/// A text with placeholders for environment variables: "${NAME}" stands for the variable's value, "$$" for a dollar
/// sign. Any other dollar sign stands for itself.
class VELA_COMMONS_API PlaceholderExpression
{
public:
    /// Puts the present values of the variables in place of the placeholders. Values are not searched for further
    /// placeholders.
    /// @throws KeyNotFoundException for a variable that is not defined
    /// @throws InvalidOperationException when the result exceeds maxResolvedSize
    /// @throws ArgumentException for a placeholder that is not closed or has no name
    static String Resolve(const String& text);
    /// The name, when the text consists of a single placeholder and nothing else; otherwise an empty text.
    /// @throws ArgumentException for a placeholder that is not closed or has no name
    static String GetPlaceholderName(const String& text);
    /// Whether the text begins with a placeholder.
    static bool BeginsWithPlaceholder(const String& text);
    /// The expression that resolves to exactly this text: its dollar signs doubled.
    static String Escape(const String& text);

    /// As much as the environment of a process holds under one name.
    static constexpr std::size_t maxResolvedSize = std::size_t{128} * 1024;

    /// Walks through the placeholders of a text in their order.
    class VELA_COMMONS_API Enumerator
    {
    public:
        /// The text must live as long as the enumerator.
        explicit Enumerator(const String& expressionText);
        /// Goes to the next placeholder; false when there is none.
        /// @throws ArgumentException for a placeholder that is not closed or has no name
        bool MoveNext();
        /// Name of the present placeholder.
        [[nodiscard]] const String& GetName() const noexcept;
        /// What stands between the placeholder before and the present one (after the last: the rest), "$$" replaced.
        [[nodiscard]] const String& GetTextBefore() const noexcept;

    private:
        const String& text;
        std::size_t position = 0;
        String textBefore;
        String name;
    };
};

} // namespace Vela::System::Commons::Configuration
