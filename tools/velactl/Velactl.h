// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace velactl {

/** The streams of one run. */
struct Streams {
    std::ostream& out;
    std::ostream& err;
    /** Whether `err` is a terminal. */
    bool isErrWatched = false;
};

/** The whole tool: runs one verb. `arguments` are those after the program's name. Returns the exit
 * status. One run at a time in a process, as there is one library in it. */
int runVelactl(const std::vector<std::string>& arguments, const Streams& streams);

}  // namespace velactl
