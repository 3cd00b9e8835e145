// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace schedules {

// What happened before what, for the thread that runs. Switching before operations on locks and the
// like shows all there is to see only if everything else is ordered by them; so the library is
// compiled to report each access, and one that is not ordered after a conflicting one fails.

/** All that was released to `object` happened before what follows. */
void acquire(const void* object);

/** What went before happens before who acquires from `object`. */
void release(const void* object);

/** From now on memory is never used twice, and what was freed is spoilt. */
void startWatching();

}  // namespace schedules
