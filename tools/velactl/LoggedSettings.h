// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vela/ProfileParams.h>

#include <optional>
#include <string>
#include <string_view>

namespace velactl {

/** What one of the library's log lines says about a profile or a search, read back, so that it can
 * be told in the tool's own words. Passwords are masked already. */
struct LoggedSettings {
    std::optional<vela::TechType> tech;
    std::optional<int> index;
    std::optional<bool> isVela;
    std::optional<bool> isForAttach;
    /** All but the above. */
    vela::ProfileParams params;
    /** The library cuts its lines: there was more. */
    bool isCut = false;

    /** `text` is the part of `line` that holds "Label=value," over and over. */
    static LoggedSettings read(std::string_view text, std::string_view line);

    /** "apn=internet, auth=PAP"; empty when there is nothing. */
    std::string describe() const;
};

/** Whether the library has cut the line. */
bool isCutLine(std::string_view line);

}  // namespace velactl
