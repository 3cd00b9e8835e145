// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// Other ways to have a thread do something and to wait for it.
#pragma once

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <uv.h>

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <future>
#include <mutex>
#include <thread>
#include <utility>

/** The limit: the library's own primitives, and nothing in between. */
class BareHandOver {
  public:
    BareHandOver() : thread([this] { run(); }) {}
    BareHandOver(const BareHandOver&) = delete;
    BareHandOver& operator=(const BareHandOver&) = delete;
    ~BareHandOver() {
        running = false;
        signal();
        thread.join();
        ::close(event);
        ::close(epoll);
    }

    void call() {
        std::unique_lock lock(mutex);
        signal();
        posted = true;
        while (!answered) {
            ready.wait(lock);
        }
        answered = false;
    }

    /** One way, and back when the other side has seen it. */
    void tell() {
        const auto seenBefore = seen.load();
        signal();
        while (seen.load() == seenBefore) {
            std::this_thread::yield();
        }
    }

  private:
    void signal() const {
        const std::uint64_t one = 1;
        if (::write(event, &one, sizeof one) != sizeof one) {
            std::abort();
        }
    }

    void run() {
        epoll_event interest{};
        interest.events = EPOLLIN;
        ::epoll_ctl(epoll, EPOLL_CTL_ADD, event, &interest);
        while (running) {
            epoll_event ready1{};
            ::epoll_wait(epoll, &ready1, 1, -1);
            std::uint64_t count = 0;
            if (::read(event, &count, sizeof count) != sizeof count) {
                continue;
            }
            ++seen;
            const std::lock_guard lock(mutex);
            if (std::exchange(posted, false)) {
                answered = true;
                ready.notify_one();
            }
        }
    }

    const int epoll = ::epoll_create1(EPOLL_CLOEXEC);
    const int event = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    std::mutex mutex;
    std::condition_variable ready;
    bool posted = false;
    bool answered = false;
    std::atomic<bool> running{true};
    std::atomic<std::uint64_t> seen{0};
    std::thread thread;
};

/** A loop of libuv, woken by its asynchronous handle. */
class UvHandOver {
  public:
    UvHandOver() {
        uv_loop_init(&loop);
        uv_async_init(&loop, &async,
                      [](uv_async_t* handle) { static_cast<UvHandOver*>(handle->data)->handle(); });
        async.data = this;
        thread = std::thread([this] { uv_run(&loop, UV_RUN_DEFAULT); });
    }
    UvHandOver(const UvHandOver&) = delete;
    UvHandOver& operator=(const UvHandOver&) = delete;
    ~UvHandOver() {
        call([this] { uv_close(reinterpret_cast<uv_handle_t*>(&async), nullptr); });
        thread.join();
        uv_loop_close(&loop);
    }

    void call(std::function<void()> newWork) {
        std::unique_lock lock(mutex);
        work = std::move(newWork);
        uv_async_send(&async);
        ready.wait(lock, [this] { return work == nullptr; });
    }

  private:
    void handle() {
        const std::lock_guard lock(mutex);
        if (work) {
            std::exchange(work, nullptr)();
            ready.notify_one();
        }
    }

    uv_loop_t loop{};
    uv_async_t async{};
    std::mutex mutex;
    std::condition_variable ready;
    std::function<void()> work;
    std::thread thread;
};

/** An execution context of Boost.Asio, and a future. */
class AsioHandOver {
  public:
    AsioHandOver() : thread([this] { context.run(); }) {}
    AsioHandOver(const AsioHandOver&) = delete;
    AsioHandOver& operator=(const AsioHandOver&) = delete;
    ~AsioHandOver() {
        context.stop();
        thread.join();
    }

    void call(std::function<void()> work) {
        std::packaged_task<void()> task(std::move(work));
        auto done = task.get_future();
        boost::asio::post(context, std::move(task));
        done.get();
    }

  private:
    boost::asio::io_context context;
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> guard{
        context.get_executor()};
    std::thread thread;
};
