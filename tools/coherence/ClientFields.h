// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Image.h"
#include "vela/ProfileParams.h"

namespace coherence {

// The fields that clients and profiles have in common; IP types and selectors are none of them.

/** The fields of `params` that a profile of the technology can have, as a client means them. */
Image clientFields(const vela::ProfileParams& params, bool is3gpp2);

/** As a client means a number that a profile keeps: only APN types differ. */
std::int64_t asClient(Field field, std::int64_t kept);

/** Tells a client all that `image` has of them. */
void tellFields(const Image& image, vela::ProfileParams& params);

}  // namespace coherence
