// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MBackgroundWorker.h"

#include "core/MFailureReporter.h"

#include <algorithm>

#ifdef _WIN32
#include <windows.h>
#else
#include <semaphore.h>
#endif

namespace {

std::atomic<MBackgroundWorker*> latest{nullptr};
std::atomic<int> wakers{0};  // who may hold what they read from it

}  // namespace

class MBackgroundWorker::Signal {
public:
#ifdef _WIN32
    Signal() : handle_(CreateSemaphoreW(nullptr, 0, 0x7FFF, nullptr)) {}
    ~Signal() { CloseHandle(handle_); }
    void Post() noexcept { ReleaseSemaphore(handle_, 1, nullptr); }
    void Wait() noexcept { WaitForSingleObject(handle_, INFINITE); }
#else
    Signal() { sem_init(&semaphore_, 0, 0); }
    ~Signal() { sem_destroy(&semaphore_); }
    void Post() noexcept { sem_post(&semaphore_); }
    void Wait() noexcept {
        while (sem_wait(&semaphore_) != 0) {  // interrupted by a signal
        }
    }
#endif
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

private:
#ifdef _WIN32
    HANDLE handle_;
#else
    sem_t semaphore_{};
#endif
};

std::shared_ptr<MBackgroundWorker> MBackgroundWorker::Acquire() {
    static std::mutex mutex;
    static std::weak_ptr<MBackgroundWorker> shared;
    const std::lock_guard lock(mutex);
    std::shared_ptr<MBackgroundWorker> worker = shared.lock();
    if (worker == nullptr) {
        worker = std::make_shared<MBackgroundWorker>();
        shared = worker;
    }
    return worker;
}

MBackgroundWorker::MBackgroundWorker()
    : signal_(std::make_unique<Signal>()), thread_([this] { Run(); }) {
    latest.store(this);
    Post();  // for what has been reported before
}

MBackgroundWorker::~MBackgroundWorker() {
    MBackgroundWorker* self = this;
    latest.compare_exchange_strong(self, nullptr);
    while (wakers.load() > 0)
        std::this_thread::yield();  // for as long as it takes to wake a thread
    isEnding_.store(true);
    signal_->Post();
    thread_.join();
    MFailureReporter::Flush();
}

void MBackgroundWorker::Add(Task& task) {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(&task);
}

void MBackgroundWorker::Remove(Task& task) {
    std::unique_lock lock(mutex_);
    std::erase(tasks_, &task);
    isIdle_.wait(lock, [&] { return running_ != &task; });
}

void MBackgroundWorker::Ask(Task& task) noexcept {
    task.isAsked_.store(true);
    Post();
}

void MBackgroundWorker::Wake() noexcept {
    wakers.fetch_add(1);
    if (MBackgroundWorker* const worker = latest.load()) worker->Post();
    wakers.fetch_sub(1);
}

void MBackgroundWorker::Post() noexcept {
    if (!isSignalled_.exchange(true)) signal_->Post();
}

void MBackgroundWorker::Run() {
    while (true) {
        signal_->Wait();
        if (isEnding_.load()) return;
        isSignalled_.store(false);
        while (Task* const task = TakeAsked()) {
            task->Work();
            const std::lock_guard lock(mutex_);
            running_ = nullptr;
            isIdle_.notify_all();
        }
        MFailureReporter::Flush();
    }
}

MBackgroundWorker::Task* MBackgroundWorker::TakeAsked() {
    const std::lock_guard lock(mutex_);
    const auto asked = std::find_if(tasks_.begin(), tasks_.end(),
                                    [](Task* task) { return task->isAsked_.exchange(false); });
    running_ = asked != tasks_.end() ? *asked : nullptr;
    return running_;
}
