#pragma once

#include <chrono>
#include <string>

namespace Nerix {

/// A line of progress on a stream: redrawn in place on a terminal that can do that, a line of its own now and
/// then elsewhere (a pipe, TERM=dumb). The line is fitted to the width that the terminal has at the time. One
/// thread at a time may use it.
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

    /// descriptor: the stream's. pause: the least time between two lines that cannot be redrawn, the first of
    /// which comes after it as well.
    ProgressLine(int descriptor, Duration pause);

    /// Shows the content unless that is what stands there, or it is not yet time for a line. Throws
    /// std::system_error when the stream cannot be written.
    void show(const Content& content);

    /// The same at once.
    void showNow(const Content& content);

    /// Takes the line off the terminal; lines elsewhere stay.
    void clear();

    /// Whatever is written next begins a line.
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

/// The content in at most so many columns: the bar takes what is left, up to 40, and goes first when there is
/// no room for it, then what stands behind it; the rest is cut.
std::string fitted(const ProgressLine::Content& content, std::size_t columns);

} // namespace Nerix
