// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "profiles/ProfileRecord.h"
#include "profiles/Text.h"

namespace velactl {

/** A decision's document, told for people. */
Names storyOf(const Json& document);

/** A name of the document's own in words: "not_sent" as "not sent". */
inline std::string wordsOf(const Json& name) {
    return replaced(name.get<std::string>(), '_', ' ');
}

}  // namespace velactl
