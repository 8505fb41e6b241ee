// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

/// A thread that does for the audio thread what takes time. One serves the whole process: it
/// starts with its first user and ends with its last, so that no thread outlives the library. Each
/// time it is woken it writes out what MFailureReporter has queued.
class MBackgroundWorker {
public:
    /// What may be asked for; asking several times before it has begun counts once.
    class Task {
    public:
        Task() = default;
        Task(const Task&) = delete;
        Task& operator=(const Task&) = delete;
        virtual ~Task() = default;

        /// The work itself, on the worker's thread.
        virtual void Work() noexcept = 0;

    private:
        friend class MBackgroundWorker;
        std::atomic<bool> isAsked_{false};
    };

    /// The worker of the process, started if need be. Never let go of it within Work. [main]
    static std::shared_ptr<MBackgroundWorker> Acquire();

    MBackgroundWorker();
    ~MBackgroundWorker();
    MBackgroundWorker(const MBackgroundWorker&) = delete;
    MBackgroundWorker& operator=(const MBackgroundWorker&) = delete;

    /// From now on `task` may be asked for. [main]
    void Add(Task& task);
    /// Waits until `task` is not at work; it will not be again. Not within Work. [main]
    void Remove(Task& task);
    /// Asks for a task that has been added. Neither waits nor allocates. [audio]
    void Ask(Task& task) noexcept;
    /// Wakes the worker that started last, if it still runs. Neither waits nor allocates. [any]
    static void Wake() noexcept;

private:
    /// The platform's semaphore: the standard's may take a lock to wake a thread.
    class Signal;

    void Run();
    Task* TakeAsked();
    void Post() noexcept;

    const std::unique_ptr<Signal> signal_;
    std::atomic<bool> isSignalled_{false};
    std::atomic<bool> isEnding_{false};
    std::mutex mutex_;  // over the next two
    std::vector<Task*> tasks_;
    Task* running_ = nullptr;
    std::condition_variable isIdle_;
    std::thread thread_;
};
