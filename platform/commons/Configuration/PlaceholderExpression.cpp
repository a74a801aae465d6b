#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Configuration/PlaceholderExpression.hpp>
#include <Vela/System/Commons/Diagnostics/LoadObserver.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/PlainText.hpp>

namespace Vela::System::Commons::Configuration
{

PlaceholderExpression::Enumerator::Enumerator(const String& expressionText)
    : text(expressionText)
{
}

bool PlaceholderExpression::Enumerator::MoveNext()
{
    textBefore.clear();
    name.clear();
    while (position < text.size())
    {
        const std::size_t dollar = text.find('$', position);
        textBefore.append(text, position, dollar == String::npos ? dollar : dollar - position);
        if (dollar == String::npos)
        {
            position = text.size();
            return false;
        }
        const char next = dollar + 1 < text.size() ? text[dollar + 1] : '\0';
        if (next == '{')
        {
            const std::size_t begin = dollar + 2;
            const std::size_t end = text.find('}', begin);
            if (end == String::npos || end == begin)
            {
                throw ArgumentException("A placeholder in '{0}' {1}.", text,
                                        end == begin ? "has no name" : "is not closed");
            }
            name = text.substr(begin, end - begin);
            position = end + 1;
            return true;
        }
        textBefore += '$';
        position = dollar + (next == '$' ? 2 : 1);
    }
    return false;
}

const String& PlaceholderExpression::Enumerator::GetName() const noexcept
{
    return name;
}

const String& PlaceholderExpression::Enumerator::GetTextBefore() const noexcept
{
    return textBefore;
}

String PlaceholderExpression::Resolve(const String& text)
{
    String result;
    Enumerator placeholders(text);
    while (placeholders.MoveNext())
    {
        String value;
        if (auto* observer = Diagnostics::LoadObserver::TryGet())
        {
            observer->OnVariableUsed(placeholders.GetName());
        }
        if (!Environment::GetVariableValue(placeholders.GetName(), value))
        {
            throw KeyNotFoundException("The environment variable '{0}' in '{1}' is not defined.",
                                       placeholders.GetName(), text);
        }
        result += placeholders.GetTextBefore();
        result += value;
        // Variables that stand for one another, several times each, grow without bounds.
        if (result.size() > maxResolvedSize)
        {
            throw InvalidOperationException("The text '{0}' takes more than {1} bytes when it is resolved.",
                                            MakePlainText(text, 200), maxResolvedSize);
        }
    }
    return result + placeholders.GetTextBefore();
}

String PlaceholderExpression::GetPlaceholderName(const String& text)
{
    Enumerator placeholders(text);
    if (!placeholders.MoveNext() || !placeholders.GetTextBefore().empty())
    {
        return {};
    }
    const String name = placeholders.GetName();
    return !placeholders.MoveNext() && placeholders.GetTextBefore().empty() ? name : String();
}

bool PlaceholderExpression::BeginsWithPlaceholder(const String& text)
{
    return text.starts_with("${");
}

String PlaceholderExpression::Escape(const String& text)
{
    String result;
    for (const char character : text)
    {
        result.append(character == '$' ? 2 : 1, character);
    }
    return result;
}

} // namespace Vela::System::Commons::Configuration
