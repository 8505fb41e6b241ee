// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MStopSignal.h"

#include <csignal>
#include <cstdlib>

namespace {

volatile std::sig_atomic_t arrived = 0;

void Note(int signal) { arrived = signal; }

}  // namespace

MStopSignal::MStopSignal() {
    arrived = 0;
    std::signal(SIGINT, Note);
    std::signal(SIGTERM, Note);
    std::signal(SIGHUP, Note);
}

MStopSignal::~MStopSignal() {
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    std::signal(SIGHUP, SIG_DFL);
}

int MStopSignal::Arrived() noexcept { return arrived; }

void MIgnoreFileSizeSignal() { std::signal(SIGXFSZ, SIG_IGN); }

void MEndBySignal(int signal) {
    std::raise(signal);
    std::exit(128 + signal);  // when the signal is ignored or blocked
}
