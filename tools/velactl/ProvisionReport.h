// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Output.h"
#include "Provisioner.h"

namespace velactl {

/** Tells the plan of the modem, before and after, and what has become of each entry.
 * `isExplained`: also which attributes were not sent. */
void reportProvisioning(Output& output, const Operator& candidate, const ProvisionResult& result,
                        bool isExplained);

/** One entry in a few words: "line 12 "internet" (Carrier)". */
std::string entryText(const OperatorEntry& entry);

}  // namespace velactl
