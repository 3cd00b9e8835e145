// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "OperatorOptions.h"

#include "ToolError.h"

namespace velactl {

void OperatorOptions::check() const {
    if (file.empty() && !plmn.empty()) {
        throw badUsage("--plmn needs --apns FILE, the operator file to look in");
    }
    if (plmn.empty() && !mvno.empty()) {
        throw badUsage("--mvno needs --plmn, the network of the virtual operator");
    }
    if (!plmn.empty()) {
        Plmn::parse(plmn);
    }
}

}  // namespace velactl
