// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MFailureReporter.h"

#include "core/MFormat.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <mutex>
#include <new>
#include <utility>

namespace {

struct Target {
    std::mutex mutex;
    MFailureReporter::Sink sink;
};

// Never destroyed: a host may still call into the library while it unloads it. It stands in the
// library's own memory, which goes with it.
Target& CurrentTarget() {
    alignas(Target) static std::array<std::byte, sizeof(Target)> place;
    static Target* const target = new (place.data()) Target;
    return *target;
}

// A report that cannot be delivered must not become a second failure. Allocates nothing.
void WriteUndelivered(const char* text) noexcept {
    for (const char* const part : {"Kestrune: could not be reported: ", text, "\n"}) {
        std::fputs(part, stderr);
    }
}

}  // namespace

void MFailureReporter::Report(const std::string& text) noexcept {
    try {
        Target& target = CurrentTarget();
        const std::scoped_lock lock(target.mutex);
        if (target.sink) {
            target.sink(text);
        } else {
            std::fprintf(stderr, "Kestrune: %s\n", text.c_str());
        }
    } catch (...) {
        WriteUndelivered(text.c_str());
    }
}

void MFailureReporter::ReportSystemException(const char* operation) noexcept {
    try {
        Report(MFormat("SYSTEM EXCEPTION! {0}", operation));
    } catch (...) {
        WriteUndelivered(operation);  // no memory, most likely, to make a text of it
    }
}

MFailureReporter::Sink MFailureReporter::Exchange(Sink sink) {
    Target& target = CurrentTarget();
    const std::scoped_lock lock(target.mutex);
    return std::exchange(target.sink, std::move(sink));
}
