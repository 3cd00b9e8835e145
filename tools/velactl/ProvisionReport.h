// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Output.h"
#include "Provisioner.h"

namespace velactl {

/** Tells the plan of the modem, before and after, what has become of each entry, and what is odd in
 * the file beside its entries. `isExplained`: also which attributes were not sent. */
void reportProvisioning(Output& output, const Operator& candidate, const ProvisionResult& result,
                        const OperatorFile& file, bool isExplained);

/** What is odd about the entries, the attach and the whole, one line each. */
std::vector<std::string> odditiesOf(const ProvisionResult& result, bool isExplained);

/** All but the state of the modem. */
Json toJson(const Output& output, const Operator& candidate, const ProvisionResult& result);

/** One entry in a few words: "line 12 "internet" (Carrier)". */
std::string entryText(const OperatorEntry& entry);

}  // namespace velactl
