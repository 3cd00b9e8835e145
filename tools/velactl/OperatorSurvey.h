// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "Output.h"
#include "Provisioner.h"

namespace velactl {

/** Sums up the provisioning of all operators of a file: totals, and what was odd for whom. */
class OperatorSurvey {
  public:
    /** Output and file must outlive the survey. */
    OperatorSurvey(Output& output, const OperatorFile& file, bool isExplained)
        : output(output), file(file), isExplained(isExplained) {}

    void add(const Operator& candidate, const ProvisionResult& result,
             const std::vector<std::string>& disagreements);

    /** The second run on the same modem. */
    void addSecond(const Operator& candidate, const ProvisionResult& result);

    /** Prints all of it; false when an entry found no place or something went wrong. */
    bool report(double seconds);

  private:
    void odd(const Operator& candidate, std::vector<std::string> lines);
    Json totals(double seconds) const;

    Output& output;
    const OperatorFile& file;
    const bool isExplained;
    std::size_t hosts = 0;
    std::size_t virtuals = 0;
    std::size_t entries = 0;
    std::size_t added = 0;
    std::size_t shared = 0;
    std::size_t refusedEntries = 0;
    std::size_t missing = 0;
    std::size_t unattached = 0;
    std::size_t failed = 0;
    std::size_t requests = 0;
    std::size_t wrong = 0;
    std::size_t twice = 0;
    /** Of each operator, for JSON. */
    Json operators = Json::array();
    /** Operators and what is odd about them, in the file's order. */
    std::vector<std::pair<std::string, std::vector<std::string>>> oddities;
};

}  // namespace velactl
