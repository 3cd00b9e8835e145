// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace velactl {

/** The streams of one run. */
struct Streams {
    std::ostream& out;
    std::ostream& err;
    /** Width of the terminal that `err` is; 0: it is none. The same of `out`. */
    std::size_t errColumns = 0;
    std::size_t outColumns = 0;
};

/** The whole tool: runs one verb. `arguments` are those after the program's name. Returns the exit
 * status. One run at a time in a process, as there is one library in it. */
int runVelactl(const std::vector<std::string>& arguments, const Streams& streams);

}  // namespace velactl
