// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include <iostream>

#include "Velactl.h"

int main(int argc, char** argv) {
    return velactl::runVelactl({argv + 1, argv + argc},
                               {std::cout, std::cerr, isatty(STDERR_FILENO) != 0});
}
