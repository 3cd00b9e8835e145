// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "velasim/DiagLog.h"

#include <diag_log.h>

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <utility>

namespace velasim {

namespace {

constexpr std::size_t kUsualLine = 600;  // longer ones are formatted twice

// The caller's format is checked by the caller's compiler.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

std::string format(const char* pattern, std::va_list arguments) {
    std::array<char, kUsualLine> usual;
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(usual.data(), usual.size(), pattern, again);
    va_end(again);
    if (length < 0) {
        return {};
    }
    const auto size = static_cast<std::size_t>(length);
    if (size < usual.size()) {
        return {usual.data(), size};
    }
    std::string text(size + 1, '\0');
    std::vsnprintf(text.data(), text.size(), pattern, arguments);
    text.pop_back();
    return text;
}

#pragma GCC diagnostic pop

}  // namespace

DiagLog& DiagLog::instance() {
    static auto* const log = new DiagLog;  // never destroyed: others log until the process ends
    return *log;
}

unsigned DiagLog::registrations() const {
    const std::lock_guard lock(mutex);
    return attached;
}

std::vector<DiagLog::Line> DiagLog::lines() const {
    const std::lock_guard lock(mutex);
    return {kept.begin(), kept.end()};
}

void DiagLog::keep(std::size_t newest) {
    const std::lock_guard lock(mutex);
    limit = newest;
    dropOldest();
}

void DiagLog::clear() {
    const std::lock_guard lock(mutex);
    kept.clear();
}

void DiagLog::setSink(Sink newSink) {
    const std::lock_guard lock(sinkMutex);
    sink.swap(newSink);
}

bool DiagLog::waitFor(const std::function<bool(const Line&)>& predicate,
                      std::chrono::milliseconds atMost) const {
    std::unique_lock lock(mutex);
    return printed.wait_for(lock, atMost,
                            [&] { return std::any_of(kept.begin(), kept.end(), predicate); });
}

bool DiagLog::isRead() const {
    const std::lock_guard sinkLock(sinkMutex);
    const std::lock_guard lock(mutex);
    return attached != 0 && (limit != 0 || sink);
}

bool DiagLog::attach() {
    const std::lock_guard lock(mutex);
    ++attached;
    return true;
}

bool DiagLog::detach() {
    const std::lock_guard lock(mutex);
    if (attached == 0) {
        return false;
    }
    --attached;
    return true;
}

void DiagLog::dropOldest() {
    while (kept.size() > limit) {
        kept.pop_front();
    }
}

void DiagLog::print(const Line& line) {
    const std::lock_guard sinkLock(sinkMutex);
    {
        const std::lock_guard lock(mutex);
        if (attached == 0) {
            return;
        }
        kept.push_back(line);
        dropOldest();
    }
    printed.notify_all();
    if (sink) {
        sink(line);
    }
}

}  // namespace velasim

extern "C" {

VELASIM_API bool diagLogInit(void* /*argument*/) {
    return velasim::DiagLog::instance().attach();
}

VELASIM_API bool diagLogDeinit(void) {
    return velasim::DiagLog::instance().detach();
}

VELASIM_API void diagLogPrintf(const diag_log_descriptor* descriptor, ...) {
    if (descriptor == nullptr || descriptor->format == nullptr ||
        !velasim::DiagLog::instance().isRead()) {
        return;
    }
    std::va_list arguments;
    va_start(arguments, descriptor);
    auto text = velasim::format(descriptor->format, arguments);
    va_end(arguments);
    const char* file = descriptor->file == nullptr ? "" : descriptor->file;
    velasim::DiagLog::instance().print(
        {descriptor->mask, descriptor->subsystem_id, descriptor->line, file, std::move(text)});
}

}  // extern "C"
