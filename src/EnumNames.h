// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// The names under which the public enumerations are printed; empty for a value that has none.
#pragma once

#include <string_view>

#include "vela/ProfileChangedInd.h"
#include "vela/ProfileTypes.h"
#include "vela/Requests.h"
#include "vela/Responses.h"

namespace vela {

std::string_view nameOf(TechType value);
std::string_view nameOf(IPType value);
std::string_view nameOf(AuthType value);
std::string_view nameOf(ApnClass value);
std::string_view nameOf(ReqRespType value);
std::string_view nameOf(Status value);
std::string_view nameOf(ProfileChangedEvent value);

}  // namespace vela
