#include "Progress.h"

#include <unistd.h>

#include <cstdio>
#include <string>

namespace {

std::string clock(double seconds) {
    const long s = static_cast<long>(seconds + 0.5);
    char text[32];
    std::snprintf(text, sizeof text, "%ld:%02ld", s / 60, s % 60);
    return text;
}

}  // namespace

Progress::Progress(long totalFrames, bool enabled)
    : total(totalFrames),
      active(enabled && total > 0 && isatty(STDERR_FILENO)),
      start(std::chrono::steady_clock::now()) {}

void Progress::update(long done) {
    if (!active) return;
    const int permille = static_cast<int>(1000.0 * done / total);
    if (permille == lastPermille) return;
    lastPermille = permille;
    const double elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const double fraction = static_cast<double>(done) / total;
    const double remaining = fraction > 0 ? elapsed / fraction - elapsed : 0;
    constexpr int kWidth = 40;
    const int filled = static_cast<int>(fraction * kWidth);
    std::string bar(filled, '#');
    bar.resize(kWidth, '-');
    std::fprintf(stderr, "\r[%s] %5.1f%%  elapsed %s  left %s ", bar.c_str(), 100 * fraction, clock(elapsed).c_str(),
                 clock(remaining).c_str());
    std::fflush(stderr);
}

void Progress::finish() {
    if (!active) return;
    update(total);
    std::fputc('\n', stderr);
}
