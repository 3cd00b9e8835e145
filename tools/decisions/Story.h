// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "profiles/ProfileRecord.h"

namespace velactl {

/** A decision's document, told for people. */
std::vector<std::string> storyOf(const Json& document);

/** A name of the document's own in words: "not_sent" as "not sent". */
std::string wordsOf(const Json& name);

/** "3GPP profile 2 (internet)", with the APN name when the profile is known. */
std::string titleOf(const Json& place, const Json& profile = {});

}  // namespace velactl
