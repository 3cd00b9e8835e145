// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <velasim/StoredProfile.h>

#include "ProfileRecord.h"

namespace velactl {

/** A stored profile in the words of the library's clients. Written against the modem's settings
 * alone, so that comparing it with what the library says proves something. */
ProfileRecord viewOf(velasim::Technology technology, const velasim::StoredProfile& profile);

}  // namespace velactl
