// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// What people are told of operations and their options.
#pragma once

#include <string>

#include "scenario/Operation.h"

namespace velactl {

/** What short words in usages stand for. */
inline constexpr const char* kLegend =
    "fields: --apn NAME and others, which add lists in its help.\n"
    "operator: --apns FILE --plmn MCCMNC [--mvno TYPE:DATA], whose entries take the\n"
    "place of fields.";

/** For a terminal: of several usage and meaning of each, under its heading; of one also every
 * option. */
std::string helpOf(const Operations& list, Place place);

/** The meaning of each option, under the heading of its group. */
std::string helpOf(const std::vector<Option>& options);

/** The list as a document has it: for each heading a table. */
std::string tablesOf(const Operations& list, Place place);

}  // namespace velactl
