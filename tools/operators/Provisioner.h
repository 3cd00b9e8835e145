// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// Provisioning, and its story: text and JSON from one document.
#pragma once

#include "modem/Workbench.h"
#include "operators/OperatorFile.h"

namespace velactl {

/** What provisioning has come to. */
struct Provisioned {
    /** The modem's table. */
    ProfileRecords before;
    ProfileRecords after;
    /** All else, secrets in clear: what became of each entry and of the attach, and what each
     * profile is there for. */
    Json document;
};

/**
 * Brings one modem in line with one operator's entries: APN classes, attach profile, a profile for
 * each entry that the modem does not hold, type masks.
 *
 * The order and what each step leaves alone make a second run change nothing. A class has one
 * owner, the first entry that asks for it. An attach profile is looked for only while the library
 * finds no profile that can serve the attach. An entry is held by a profile with its settings,
 * types and class apart. And types are written last, for all profiles at once, by the one policy
 * that knows how entries of one name share them.
 */
Provisioned provisionModem(Workbench& bench, const Operator& candidate);

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
