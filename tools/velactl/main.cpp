// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <csignal>
#include <iostream>

#include "velactl/Velactl.h"

namespace {

std::size_t columnsOf(int fd) {
    constexpr std::size_t kUsual = 80;
    winsize size{};
    const bool isKnown = ioctl(fd, TIOCGWINSZ, &size) == 0 && size.ws_col != 0;
    return isatty(fd) == 0 ? 0 : isKnown ? size.ws_col : kUsual;
}

}  // namespace

int main(int argc, char** argv) {
    // If we were started with standard input, output or error closed, the next file to be opened
    // would get that number, and our output would go into it. So the number is taken here.
    for (int fd = 0; fd >= 0 && fd <= STDERR_FILENO;) {
        fd = open("/dev/null", O_RDONLY | O_CLOEXEC);
    }
    // A reader of our output that goes away must not end us before the modem's memory is saved.
    std::signal(SIGPIPE, SIG_IGN);
    return velactl::runVelactl(
        {argv + 1, argv + argc},
        {std::cout, std::cerr, columnsOf(STDERR_FILENO), columnsOf(STDOUT_FILENO)});
}
