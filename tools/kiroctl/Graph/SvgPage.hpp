#pragma once

#include <string>
#include <string_view>

namespace Vela::Kiroctl
{

/// A page of vector graphics, written element by element, back to front. Lengths are pixels; texts have a font of fixed
/// width, so that the space that they take is known.
class SvgPage
{
public:
    /// Of a text at the given size.
    [[nodiscard]] static double GetTextWidth(std::string_view text, double fontSize);
    /// The text if it fits, else its beginning and dots.
    [[nodiscard]] static std::string Shorten(const std::string& text, double fontSize, double width);

    struct Look
    {
        std::string fill = "none";
        std::string stroke = "none";
        double strokeWidth = 1;
        bool isDashed = false;
        double opacity = 1;
        /// What the element is, for whoever reads the document; empty: nothing in particular.
        std::string kind = {};
    };

    enum class Anchor
    {
        Start,
        Middle,
        End,
    };

    /// @param title  shown when the pointer rests on it; empty: nothing
    void AddBox(double x, double y, double width, double height, double radius, const Look& look,
                std::string_view title = {});
    void AddText(double x, double y, std::string_view text, double fontSize, std::string_view colour,
                 bool isBold = false, Anchor anchor = Anchor::Start);
    /// A smooth line that leaves its start and reaches its end horizontally.
    void AddCurve(double fromX, double fromY, double toX, double toY, const Look& look);
    /// A smooth line that leaves its start to the right, as far as `reach`, and comes back to its end, where an arrow
    /// points.
    void AddLoop(double fromX, double fromY, double toX, double toY, double reach, const Look& look,
                 std::string_view title);
    void AddLine(double fromX, double fromY, double toX, double toY, const Look& look);

    /// The whole document.
    [[nodiscard]] std::string Finish(double width, double height, std::string_view title) const;

private:
    std::string body;
};

} // namespace Vela::Kiroctl
