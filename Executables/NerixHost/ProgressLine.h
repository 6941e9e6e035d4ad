#pragma once

#include <chrono>
#include <string>

namespace Nerix {

/// A line of progress on a stream: redrawn in place on a capable terminal; elsewhere (a pipe, TERM=dumb) a
/// new line is printed from time to time. The line is fitted to the terminal's current width. One thread at a
/// time may use it.
class ProgressLine {
public:
    using Duration = std::chrono::steady_clock::duration;

    struct Content {
        std::string before;  ///< in front of the percentage
        std::string percent; ///< a number, else no bar is drawn
        std::string after;   ///< behind the bar

        bool operator==(const Content& other) const {
            return before == other.before && percent == other.percent && after == other.after;
        }
    };

    /// descriptor: the stream's. pause: where lines cannot be redrawn, the minimum time before the first line
    /// and between lines.
    ProgressLine(int descriptor, Duration pause);

    /// Shows content, unless it is already shown or the pause has not elapsed. Throws std::system_error when
    /// the stream cannot be written.
    void show(const Content& content);

    /// Like show, but ignores the pause.
    void showNow(const Content& content);

    /// Erases the line from the terminal; does nothing elsewhere.
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
/// is short, the bar is dropped first, then `after`; what is left is truncated.
std::string formatLine(const ProgressLine::Content& content, std::size_t columns);

} // namespace Nerix
