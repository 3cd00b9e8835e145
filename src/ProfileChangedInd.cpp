// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "vela/ProfileChangedInd.h"

#include "DumpText.h"

namespace vela {

std::string ProfileChangedInd::dump() const {
    DumpText text;
    text << techType << ":" << profileId << " " << event;
    return text.take();
}

}  // namespace vela
