#pragma once

#include <Vela/String.hpp>

#include <vector>

namespace Vela::Testing
{

/// What a recorder does at which step; see RecordingLibrary.cpp for the text.
class Script
{
public:
    /// Adds the lines of a text that are meant for a component.
    void AddLines(const String& text, const String& componentName);
    /// The actions of a step, in the order of the script.
    [[nodiscard]] std::vector<String> GetActions(const String& step) const;

private:
    struct Line
    {
        String step;
        String action;
    };

    std::vector<Line> lines;
};

/// The next word of the text; what remains is the rest of the line.
String TakeWord(String& text);

/// Carries out an action that needs no component.
void Act(const String& action);

/// Appends a line to the trace file, by one write; without a file nothing happens.
void Trace(const String& process, const String& component, const String& step);

/// A file's contents; empty when there is none.
String ReadFile(const String& path);

} // namespace Vela::Testing
