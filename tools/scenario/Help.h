// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// The list of operations as it is told: on a terminal, in documents, in manuals, to shells.
#pragma once

#include <string>
#include <vector>

#include "scenario/Operation.h"

namespace velactl {

inline constexpr const char* kPurpose =
    "Reads and changes the data profiles of a cellular modem through libvelar.";
inline constexpr const char* kPlaceOfOptions = "The options may stand before or behind the verb.";
inline constexpr const char* kExitStatus = "0 done, 1 refused or not found, 2 bad usage.";

/** How a list under headings is written. */
struct HelpForm {
    std::string (*heading)(const std::string& title);
    /** What something is called, in pieces that stay together, and what it means. */
    std::string (*entry)(const Names& pieces, const std::string& meaning);
};

/** The meaning of each option, under the heading of its group. */
std::string helpOf(const std::vector<Option>& options, const HelpForm& form);

/** The usage and meaning of each operation, under the heading of its section. */
std::string helpOf(const Operations& list, unsigned place, const HelpForm& form);

/** The source of a manual page: the tool's, or that of the verb which is named. Throws ToolError
 * when there is no such verb. */
std::string manualOf(const Names& verb);

/** The shells that can be told how to complete the tool's lines. */
Names shellNames();

/** What such a shell has to read for it. */
std::string completionFor(const std::string& shell);

}  // namespace velactl
