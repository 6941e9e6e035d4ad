#include "Executables/NerixHost/ProgressLine.h"

#include "Common/Base/Files.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <system_error>

#include <sys/ioctl.h>
#include <unistd.h>

namespace Nerix {

namespace {

constexpr std::size_t widestBar = 40;
constexpr std::size_t narrowestBar = 10;
constexpr std::size_t widthElsewhere = 80; ///< for pipes, and terminals that do not report their width

bool canRedraw(int descriptor) {
    const char* const kind = std::getenv("TERM");
    return ::isatty(descriptor) == 1 && kind != nullptr && *kind != '\0' && std::string_view(kind) != "dumb";
}

std::string bar(const std::string& percent, std::size_t width) {
    const double done = std::strtod(percent.c_str(), nullptr);
    const std::size_t room = width - 2;
    const auto filled =
        done > 0 ? static_cast<std::size_t>(std::min(done, 100.0) * static_cast<double>(room) / 100.0)
                 : 0; // also for "nan"
    return "[" + std::string(filled, '#') + std::string(room - filled, ' ') + "]";
}

std::string joined(const std::string& left, const std::string& right) {
    return left.empty() || right.empty() ? left + right : left + ' ' + right;
}

} // namespace

std::string formatLine(const ProgressLine::Content& content, std::size_t columns) {
    const std::string padding(content.percent.size() < 5 ? 5 - content.percent.size() : 0, ' ');
    const std::string number = content.percent.empty() ? "" : padding + content.percent + " %";
    const std::string front = joined(content.before, number);
    std::string whole = joined(front, content.after);
    if (whole.size() > columns) {
        return front.substr(0, columns);
    }
    const std::size_t room = columns - whole.size();
    if (number.empty() || room < narrowestBar + 1) {
        return whole;
    }
    return joined(joined(front, bar(content.percent, std::min(room - 1, widestBar))), content.after);
}

ProgressLine::ProgressLine(int descriptor, Duration pause)
    : m_descriptor(descriptor),
      m_isRedrawn(canRedraw(descriptor)),
      m_pause(pause),
      m_lastLine(std::chrono::steady_clock::now()) {}

void ProgressLine::show(const Content& content) {
    if (m_isRedrawn || std::chrono::steady_clock::now() - m_lastLine >= m_pause) {
        showNow(content);
    }
}

void ProgressLine::showNow(const Content& content) {
    if (content == m_shown) {
        return;
    }
    m_shown = content;
    m_lastLine = std::chrono::steady_clock::now();
    // Leaves the last column free, because some terminals wrap to the next line after it.
    write(m_isRedrawn ? '\r' + formatLine(content, columns() - 1) + "\x1b[K"
                      : formatLine(content, columns() - 1) + '\n');
}

void ProgressLine::clear() {
    if (m_isRedrawn && !(m_shown == Content())) {
        write("\r\x1b[K");
        m_shown = Content();
    }
}

void ProgressLine::end() {
    if (m_isRedrawn && !(m_shown == Content())) {
        write("\n");
    }
}

std::size_t ProgressLine::columns() const {
    winsize size{};
    return ::ioctl(m_descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 1 ? size.ws_col : widthElsewhere;
}

void ProgressLine::write(const std::string& text) const {
    if (const int error = Common::writeAll(m_descriptor, text)) {
        throw std::system_error(error, std::generic_category(), "cannot show progress");
    }
}

} // namespace Nerix
