#pragma once

#include <chrono>
#include <string>

namespace Nerix {

/// Shows progress. On a capable terminal, redraws one line; elsewhere (a pipe, TERM=dumb), prints a new line
/// from time to time. Fits the line to the terminal's current width. Only one thread at a time may use it.
class ProgressLine {
public:
    using Duration = std::chrono::steady_clock::duration;

    struct Content {
        std::string before;  ///< in front of the percentage
        std::string percent; ///< a number, or empty to draw no bar
        std::string after;   ///< after the bar

        bool operator==(const Content& other) const {
            return before == other.before && percent == other.percent && after == other.after;
        }
    };

    /// Writes to the descriptor. Where lines cannot be redrawn, pause is the minimum time before each line.
    ProgressLine(int descriptor, Duration pause);

    /// Shows content, unless it is already shown or, if the line cannot be redrawn, the pause has not
    /// elapsed. Throws std::system_error if writing fails.
    void show(const Content& content);

    /// Shows content like show, but ignores the pause.
    void showNow(const Content& content);

    /// Erases the line on a terminal; does nothing elsewhere.
    void clear();

    /// Ends the line, so that later output starts on a new one.
    void end();

private:
    void write(const std::string& text) const;
    std::size_t columns() const;

    const int m_descriptor;
    const bool m_isRedrawn;
    const Duration m_pause;
    std::chrono::steady_clock::time_point m_lastLine;
    Content m_shown;
};

/// Formats content in at most `columns` columns. The bar gets the remaining space, up to 40 columns. If space
/// is short, drops the bar first, then `after`; truncates the rest.
std::string formatLine(const ProgressLine::Content& content, std::size_t columns);

} // namespace Nerix
