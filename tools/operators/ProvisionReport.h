// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// Provisioning, told: text and JSON from one document.
#pragma once

#include <string>

#include "operators/Provisioner.h"
#include "profiles/Output.h"

namespace velactl {

/** Provisions the modem from an operator of the file and tells it, with the modem's tables. Returns
 * what went wrong; empty: nothing. `isExplained`: tells also which attributes were not sent. */
std::string provisionOne(Output& output, Workbench& bench, const Operator& candidate,
                         const OperatorFile& file, bool isExplained);

struct SurveyOptions {
    /** Of each operator's modem, which is a fresh one. */
    ModemOptions modem;
    /** Provisions each a second time, which must change nothing. */
    bool isTwice = false;
    bool isExplained = false;
};

/** Provisions all operators of a file, tells what is odd about each as it comes, and sums up. */
std::string provisionAll(Output& output, const OperatorFile& file, const SurveyOptions& options,
                         Progress& progress);

}  // namespace velactl
