// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MFailureReporter.h"

#include "core/MBackgroundWorker.h"
#include "core/MFailureQueue.h"
#include "core/MFormat.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdio>
#include <mutex>
#include <new>
#include <utility>

namespace {

// Usable before anything is constructed and after it is destroyed, as the target below.
constinit MFailureQueue queue;
constinit std::atomic<bool> hasSink{false};

struct Target {
    std::mutex mutex;  // over what is read from the queue, too: reports keep their order
    MFailureReporter::Sink sink;
};

// Never destroyed: a host may still call into the library while it unloads it. It stands in the
// library's own memory, which goes with it.
Target& CurrentTarget() {
    alignas(Target) static std::array<std::byte, sizeof(Target)> place;
    static Target* const target = new (place.data()) Target;
    return *target;
}

// In one piece: other programs' lines on the same terminal stay whole.
void WriteLine(std::string_view text) noexcept {
    constexpr std::string_view kName = "Kestrune: ";
    std::array<char, kName.size() + MFailureQueue::kLongest + 1> line{};
    auto end = std::copy(kName.begin(), kName.end(), line.begin());
    end = std::copy(text.begin(), text.end(), end);
    *end++ = '\n';
    std::fwrite(line.data(), 1, static_cast<std::size_t>(end - line.begin()), stderr);
}

// A report that cannot be delivered must not become a second failure.
void Deliver(const MFailureReporter::Sink& sink, std::string_view text) noexcept {
    try {
        if (sink) return sink(std::string(text));
    } catch (...) {
        WriteLine("could not be reported:");
    }
    WriteLine(text);
}

void DeliverAll(const Target& target) noexcept {
    MFailureQueue::Record record;
    while (queue.Take(record)) Deliver(target.sink, record.Text());
    const int lost = queue.TakeLost();
    if (lost == 0) return;
    try {
        Deliver(target.sink, MFormat("{0} more failures came too fast to be kept.", lost));
    } catch (...) {
        WriteLine("More failures came too fast to be kept.");
    }
}

struct AtTheEnd {
    AtTheEnd() noexcept { CurrentTarget(); }
    ~AtTheEnd() {
        // Whoever holds it may have been ended by the system in the middle of it.
        Target& target = CurrentTarget();
        const std::unique_lock lock(target.mutex, std::try_to_lock);
        if (lock.owns_lock()) DeliverAll(target);
    }
    AtTheEnd(const AtTheEnd&) = delete;
    AtTheEnd& operator=(const AtTheEnd&) = delete;
};
const AtTheEnd kAtTheEnd;

}  // namespace

void MFailureReporter::Report(std::string_view heading, std::string_view text) noexcept {
    queue.Post(heading, text);
    if (hasSink.load(std::memory_order_relaxed)) {
        Flush();
    } else {
        MBackgroundWorker::Wake();
    }
}

void MFailureReporter::Flush() noexcept {
    if (queue.IsEmpty()) return;
    try {
        Target& target = CurrentTarget();
        const std::scoped_lock lock(target.mutex);
        DeliverAll(target);
    } catch (...) {
        WriteLine("reports cannot be delivered.");  // they wait for the next time
    }
}

MFailureReporter::Sink MFailureReporter::Exchange(Sink sink) {
    Target& target = CurrentTarget();
    const std::scoped_lock lock(target.mutex);
    hasSink.store(static_cast<bool>(sink), std::memory_order_relaxed);
    return std::exchange(target.sink, std::move(sink));
}
